// Real-FFT recombination, packed-spectrum products and the DCT's reordering
// and twiddle passes, compiled once per instruction set (see realfft.hpp).
// Include after defining VEK_ISA.
//
// Written once over GCC vector types of the ISA's width; the tails run the
// same arithmetic on one complex value at a time, so every path rounds
// alike (no contraction into FMA: the library builds with
// -ffp-contract=off).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "transform/realfft.hpp"

namespace vek {
namespace VEK_ISA {
namespace {

#define VEK_KERNEL static inline __attribute__((always_inline))

#if defined(__AVX512F__)
constexpr int kVecBytes = 64;
#elif defined(__AVX2__)
constexpr int kVecBytes = 32;
#else
constexpr int kVecBytes = 16;
#endif

template <class R>
struct IntOf;
template <>
struct IntOf<float> {
    using type = std::int32_t;
};
template <>
struct IntOf<double> {
    using type = std::int64_t;
};

// L reals (L/2 complex values) in one vector.
template <class R, int L>
struct Vx {
    static constexpr int kL = L;
    typedef R V __attribute__((vector_size(L * sizeof(R))));
    using I = typename IntOf<R>::type;
    typedef I M __attribute__((vector_size(L * sizeof(R))));

    template <class F, std::size_t... K>
    static constexpr M make(F f, std::index_sequence<K...>) {
        return M{I(f(int(K)))...};
    }
    template <class F>
    static constexpr M mask(F f) {
        return make(f, std::make_index_sequence<L>{});
    }
    template <std::size_t... K>
    VEK_KERNEL V splat_(R x, std::index_sequence<K...>) {
        return V{((void)K, x)...};
    }

    VEK_KERNEL V load(const R* p) {
        V v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    VEK_KERNEL void store(R* p, V v) { std::memcpy(p, &v, sizeof v); }
    VEK_KERNEL V splat(R x) { return splat_(x, std::make_index_sequence<L>{}); }
    // (re, im) pairs: both parts from re, both from im, parts swapped.
    VEK_KERNEL V dup_re(V v) {
        constexpr M m = mask([](int i) { return i & ~1; });
        return __builtin_shuffle(v, m);
    }
    VEK_KERNEL V dup_im(V v) {
        constexpr M m = mask([](int i) { return i | 1; });
        return __builtin_shuffle(v, m);
    }
    VEK_KERNEL V swap(V v) {
        constexpr M m = mask([](int i) { return i ^ 1; });
        return __builtin_shuffle(v, m);
    }
    // The complex values in reverse order.
    VEK_KERNEL V rev_pairs(V v) {
        constexpr M m = mask([](int i) { return L - 2 - (i & ~1) + (i & 1); });
        return __builtin_shuffle(v, m);
    }
    // The reals in reverse order.
    VEK_KERNEL V rev(V v) {
        constexpr M m = mask([](int i) { return L - 1 - i; });
        return __builtin_shuffle(v, m);
    }
    // Even and odd lanes of the 2L reals a, b.
    VEK_KERNEL V evens(V a, V b) {
        constexpr M m = mask([](int i) { return 2 * i; });
        return __builtin_shuffle(a, b, m);
    }
    VEK_KERNEL V odds(V a, V b) {
        constexpr M m = mask([](int i) { return 2 * i + 1; });
        return __builtin_shuffle(a, b, m);
    }
    // Interleaved a[0], b[0], a[1], b[1], ...: the low and the high half.
    VEK_KERNEL V zip_lo(V a, V b) {
        constexpr M m = mask([](int i) { return (i & 1) * L + i / 2; });
        return __builtin_shuffle(a, b, m);
    }
    VEK_KERNEL V zip_hi(V a, V b) {
        constexpr M m = mask([](int i) { return (i & 1) * L + L / 2 + i / 2; });
        return __builtin_shuffle(a, b, m);
    }
    // Imaginary parts negated.
    VEK_KERNEL V conj(V v) {
        constexpr M m = mask([](int i) { return (i & 1) ? I(1) << (8 * sizeof(I) - 1) : I(0); });
        return (V)((M)v ^ m);
    }
    // Real parts negated.
    VEK_KERNEL V neg_re(V v) {
        constexpr M m = mask([](int i) { return (i & 1) ? I(0) : I(1) << (8 * sizeof(I) - 1); });
        return (V)((M)v ^ m);
    }
    // (-a, a, -a, a, ...)
    VEK_KERNEL V alt(R a) { return neg_re(splat(a)); }
};

template <class R>
using Wide = Vx<R, kVecBytes / int(sizeof(R))>;
template <class R>
using One = Vx<R, 2>;

// ------------------------------------------------------------ recombination

// One step on a block of complex values: a from the front (k ascending),
// b from the back (M-k, already in ascending-k order), w the twiddles.
template <class X>
VEK_KERNEL void recomb_step(typename X::V a, typename X::V b, typename X::V w, typename X::V h,
                            typename X::V k1, typename X::V k2, typename X::V& front,
                            typename X::V& back) {
    using V = typename X::V;
    const V bc = X::conj(b);
    const V s = a + bc, d = a - bc;
    const V pd = d * (X::dup_im(w) * k1) + X::swap(d) * (X::dup_re(w) * k2);
    const V hs = h * s;
    front = hs + pd;
    back = X::conj(hs - pd);
}

// The pairs k..half from the copy `mid` (which starts at pair k0), in
// blocks of L/2 values while front and back blocks stay apart, then
// narrower ones; the middle pair (k = half) stores one value.
template <class R, int L>
VEK_KERNEL void recomb_tail(const R* mid, R* dst, std::size_t m, std::size_t k, std::size_t k0,
                            const R* twr, R h, R c1, R c2, int osh) {
    static_assert(L >= 2, "whole complex values");
    using X = Vx<R, L>;
    constexpr std::size_t W = L / 2;
    const std::size_t half = m / 2;
    const typename X::V h_ = X::splat(h), k1 = X::splat(c1), k2 = X::alt(c2);
    for (; k + W <= half || (W == 1 && k <= half); k += W) {
        const std::size_t j0 = m - k - W + 1;
        typename X::V front, back;
        recomb_step<X>(X::load(mid + 2 * (k - k0)), X::rev_pairs(X::load(mid + 2 * (j0 - k0))),
                       X::load(twr + 2 * k), h_, k1, k2, front, back);
        X::store(dst + 2 * k - osh, front);
        if (k != half) X::store(dst + 2 * j0 - osh, X::rev_pairs(back));
    }
    if constexpr (L > 2) recomb_tail<R, L / 2>(mid, dst, m, k, k0, twr, h, c1, c2, osh);
}

template <class R, class C>
void recomb(const R* src, R* dst, std::size_t m, const C* tw, R h, R c1, R c2, int ish, int osh) {
    using X = Wide<R>;
    constexpr std::size_t W = X::kL / 2;
    const std::size_t half = m / 2;
    const std::size_t blocks = (half - 1) / W;
    const std::size_t krem = 1 + blocks * W;
    const auto* twr = reinterpret_cast<const R*>(tw);

    // The values of the scalar tail (pairs krem..half): in place, the
    // shifted stores of the vector loop may reach into them.
    R mid[4 * W];
    const std::size_t midCount = 2 * (m - 2 * krem + 1);
    std::memcpy(mid, src + 2 * krem - ish, midCount * sizeof(R));

    if (blocks) {
        const typename X::V h_ = X::splat(h), k1 = X::splat(c1), k2 = X::alt(c2);
        // The next blocks are loaded before the current ones are stored.
        typename X::V a = X::load(src + 2 - ish), b = X::load(src + 2 * (m - W) - ish);
        for (std::size_t i = 0; i < blocks; ++i) {
            const std::size_t k = 1 + i * W, j0 = m - k - W + 1;
            typename X::V an = a, bn = b;
            if (i + 1 < blocks) {
                an = X::load(src + 2 * (k + W) - ish);
                bn = X::load(src + 2 * (j0 - W) - ish);
            }
            typename X::V front, back;
            recomb_step<X>(a, X::rev_pairs(b), X::load(twr + 2 * k), h_, k1, k2, front, back);
            X::store(dst + 2 * k - osh, front);
            X::store(dst + 2 * j0 - osh, X::rev_pairs(back));
            a = an;
            b = bn;
        }
    }

    recomb_tail<R, (X::kL > 2 ? X::kL / 2 : 2)>(mid, dst, m, krem, krem, twr, h, c1, c2, osh);
}

// ------------------------------------------------------------ products

template <class X>
VEK_KERNEL typename X::V cmul_step(typename X::V a, typename X::V b) {
    // (ar br - ai bi, ai br + ar bi)
    return a * X::dup_re(b) + X::swap(a) * X::neg_re(X::dup_im(b));
}

template <class R>
void cmul(const R* a, const R* b, R* dst, std::size_t n) {
    using X = Wide<R>;
    using X1 = One<R>;
    constexpr std::size_t W = X::kL / 2;
    std::size_t k = 0;
    for (; k + W <= n; k += W)
        X::store(dst + 2 * k, cmul_step<X>(X::load(a + 2 * k), X::load(b + 2 * k)));
    for (; k < n; ++k)
        X1::store(dst + 2 * k, cmul_step<X1>(X1::load(a + 2 * k), X1::load(b + 2 * k)));
}

// ------------------------------------------------------------ DCT passes

// v[i] = x[2i], v[n-1-i] = x[2i+1].
template <class R>
void dct_split(const R* x, R* v, std::size_t n) {
    using X = Wide<R>;
    constexpr std::size_t L = X::kL;
    const std::size_t h = n / 2;
    std::size_t i = 0;
    for (; i + L <= h; i += L) {
        const typename X::V p = X::load(x + 2 * i), q = X::load(x + 2 * i + L);
        X::store(v + i, X::evens(p, q));
        X::store(v + n - i - L, X::rev(X::odds(p, q)));
    }
    for (; i < h; ++i) {
        v[i] = x[2 * i];
        v[n - 1 - i] = x[2 * i + 1];
    }
}

// x[2i] = v[i], x[2i+1] = v[n-1-i].
template <class R>
void dct_merge(const R* v, R* x, std::size_t n) {
    using X = Wide<R>;
    constexpr std::size_t L = X::kL;
    const std::size_t h = n / 2;
    std::size_t i = 0;
    for (; i + L <= h; i += L) {
        const typename X::V e = X::load(v + i), o = X::rev(X::load(v + n - i - L));
        X::store(x + 2 * i, X::zip_lo(e, o));
        X::store(x + 2 * i + L, X::zip_hi(e, o));
    }
    for (; i < h; ++i) {
        x[2 * i] = v[i];
        x[2 * i + 1] = v[n - 1 - i];
    }
}

// y[k] = tc vr + ts vi, y[n-k] = ts vr - tc vi from V[k] = (vr, vi) in
// RCPerm layout.
template <class R>
void dct_post(const R* v, R* y, std::size_t n, const R* tc, const R* ts) {
    using X = Wide<R>;
    constexpr std::size_t L = X::kL;
    const std::size_t h = n / 2;
    y[0] = v[0] * tc[0];
    y[h] = v[1] * tc[h];
    std::size_t k = 1;
    for (; k + L <= h; k += L) {
        const typename X::V p = X::load(v + 2 * k), q = X::load(v + 2 * k + L);
        const typename X::V vr = X::evens(p, q), vi = X::odds(p, q);
        const typename X::V c = X::load(tc + k), s = X::load(ts + k);
        X::store(y + k, c * vr + s * vi);
        X::store(y + n - k - L + 1, X::rev(s * vr - c * vi));
    }
    for (; k < h; ++k) {
        const R vr = v[2 * k], vi = v[2 * k + 1];
        y[k] = tc[k] * vr + ts[k] * vi;
        y[n - k] = ts[k] * vr - tc[k] * vi;
    }
}

// The mirror: V[k] = ((tc a + ts b) / 2, (ts a - tc b) / 2) with a = y[k],
// b = y[n-k], into RCPerm layout.
template <class R>
void dct_pre(const R* y, R* v, std::size_t n, const R* tc, const R* ts) {
    using X = Wide<R>;
    constexpr std::size_t L = X::kL;
    const std::size_t h = n / 2;
    v[0] = y[0] * tc[0];
    v[1] = y[h] * tc[h];
    const typename X::V half = X::splat(R(0.5));
    std::size_t k = 1;
    for (; k + L <= h; k += L) {
        const typename X::V a = X::load(y + k), b = X::rev(X::load(y + n - k - L + 1));
        const typename X::V c = X::load(tc + k), s = X::load(ts + k);
        const typename X::V vr = (c * a + s * b) * half, vi = (s * a - c * b) * half;
        X::store(v + 2 * k, X::zip_lo(vr, vi));
        X::store(v + 2 * k + L, X::zip_hi(vr, vi));
    }
    for (; k < h; ++k) {
        const R a = y[k], b = y[n - k];
        v[2 * k] = (tc[k] * a + ts[k] * b) * R(0.5);
        v[2 * k + 1] = (ts[k] * a - tc[k] * b) * R(0.5);
    }
}

// y = sum over i of x[i] times row i of the n x n matrix m (n a power of
// two up to 32). All of x is read before y is written.
template <class R, int N>
VEK_KERNEL void axpy_rows(const R* m, const R* x, R* y) {
    // Rows as whole native vectors, so that the sums stay in registers.
    constexpr int kNative = kVecBytes / int(sizeof(R));
    constexpr int L = N < kNative ? N : kNative, P = N / L;
    typedef R V __attribute__((vector_size(L * sizeof(R))));
    V acc[P] = {};
    for (int i = 0; i < N; ++i) {
        const R xi = x[i];
        for (int p = 0; p < P; ++p) {
            V row;
            std::memcpy(&row, m + i * N + p * L, sizeof row);
            acc[p] += row * xi;
        }
    }
    for (int p = 0; p < P; ++p) std::memcpy(y + p * L, &acc[p], sizeof acc[p]);
}

template <class R>
void dct_matrix(const R* m, const R* x, R* y, std::size_t n) {
    switch (n) {
        case 1:
            y[0] = m[0] * x[0];
            break;
        case 2:
            axpy_rows<R, 2>(m, x, y);
            break;
        case 4:
            axpy_rows<R, 4>(m, x, y);
            break;
        case 8:
            axpy_rows<R, 8>(m, x, y);
            break;
        case 16:
            axpy_rows<R, 16>(m, x, y);
            break;
        default:
            axpy_rows<R, 32>(m, x, y);
            break;
    }
}

void recomb_s(const float* src, float* dst, std::size_t m, const CplxFloat* tw, float h, float c1,
              float c2, int ish, int osh) {
    recomb(src, dst, m, tw, h, c1, c2, ish, osh);
}
void recomb_d(const double* src, double* dst, std::size_t m, const CplxDouble* tw, double h,
              double c1, double c2, int ish, int osh) {
    recomb(src, dst, m, tw, h, c1, c2, ish, osh);
}

#undef VEK_KERNEL

}  // namespace

// clang-format off
extern const RealFftOps realfft_ops = {
    recomb_s, recomb_d,
    cmul<float>, cmul<double>,
    dct_split<float>, dct_split<double>,
    dct_merge<float>, dct_merge<double>,
    dct_post<float>, dct_post<double>,
    dct_pre<float>, dct_pre<double>,
    dct_matrix<float>, dct_matrix<double>};
// clang-format on

}  // namespace VEK_ISA
}  // namespace vek
