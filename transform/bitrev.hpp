// Bit-reversal permutations driven by the quarter-length swap list: index
// n = t*(N/2) + 2*m + l goes to l*(N/2) + 2*rev(m) + t, so one list over
// N/4 entries serves every order of 3 and above and every element size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vek {

// In place; `list` is the swap list of this order (unused below order 3).
template <class T>
void bitrev_inplace(T* x, int order, const std::int32_t* list) {
    if (order < 2) return;
    if (order == 2) {
        std::swap(x[1], x[2]);
        return;
    }
    const std::size_t h = std::size_t(1) << (order - 1);
    const std::int32_t* w = list;
    for (; *w; w += 2) {
        const std::size_t a = std::size_t(w[0]) / 2, b = std::size_t(w[1]) / 2;
        std::swap(x[a], x[b]);
        std::swap(x[a + 1], x[h + b]);
        std::swap(x[h + a], x[b + 1]);
        std::swap(x[h + a + 1], x[h + b + 1]);
    }
    // Index pairs whose middle bits are their own reversal: only the
    // outer bits trade places. The walk starts with m = 0.
    std::size_t a = 0;
    for (;;) {
        std::swap(x[a + 1], x[h + a]);
        ++w;
        if (!*w) break;
        a = std::size_t(*w) / 2;
    }
}

// Out of place; src is only read.
template <class T>
void bitrev_copy(const T* src, T* dst, int order, const std::int32_t* list) {
    const std::size_t n = std::size_t(1) << order;
    if (n < 8) {
        dst[0] = src[0];
        dst[n - 1] = src[n - 1];
        if (n > 2) {
            dst[1] = src[2];
            dst[2] = src[1];
        }
        return;
    }
    const std::size_t h = n / 2;
    const std::int32_t* w = list;
    for (; *w; w += 2) {
        const std::size_t a = std::size_t(w[0]) / 2, b = std::size_t(w[1]) / 2;
        dst[a] = src[b];
        dst[b] = src[a];
        dst[a + 1] = src[h + b];
        dst[h + b] = src[a + 1];
        dst[h + a] = src[b + 1];
        dst[b + 1] = src[h + a];
        dst[h + a + 1] = src[h + b + 1];
        dst[h + b + 1] = src[h + a + 1];
    }
    std::size_t a = 0;
    for (;;) {
        dst[a] = src[a];
        dst[a + 1] = src[h + a];
        dst[h + a] = src[a + 1];
        dst[h + a + 1] = src[h + a + 1];
        ++w;
        if (!*w) break;
        a = std::size_t(*w) / 2;
    }
}

}  // namespace vek
