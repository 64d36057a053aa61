// Plain narrowing loops of the benchmarked 16-bit exports (-O3 -march=native).
#include <algorithm>
#include <cmath>

#include "plain.hpp"

namespace plain {

void narrow_fixed(const float* src, short* dst, int n, int f, bool saturate) {
    const float k = std::ldexp(1.0f, -f);
    if (saturate) {
        for (int i = 0; i < n; ++i) {
            float x = src[i] * k;
            x = x > 32767.f ? 32767.f : x < -32768.f ? -32768.f : x;
            dst[i] = short(int(x));
        }
    } else {
        for (int i = 0; i < n; ++i) dst[i] = short(int(src[i] * k));
    }
}

int narrow_auto(const float* src, short* dst, int n) {
    float peak = 0;
    for (int i = 0; i < n; ++i) peak = std::max(peak, std::fabs(src[i]));
    const int f = peak > 0 ? std::ilogb(peak) - 14 : 0;
    narrow_fixed(src, dst, n, f, true);
    return f;
}

}  // namespace plain
