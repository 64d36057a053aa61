// FFT kernels, compiled once per instruction set (see fft.hpp for the
// design). Include after defining VEK_ISA.
// GCC 12 flags the "undefined" source operand inside its own 512-bit
// intrinsics as (maybe) uninitialised.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "transform/fft.hpp"

namespace vek {
namespace VEK_ISA {
namespace {

#define VEK_KERNEL static inline __attribute__((always_inline))

// ------------------------------------------------------------ vector types
//
// Interleaved complex vectors of W points. Each type gives the same small
// set of operations, so the passes below are written once.

struct F2 {  // two complex floats
    using R = float;
    using C = CplxFloat;
    using V = __m128;
    static constexpr int W = 2;
    VEK_KERNEL V load(const C* p) { return _mm_loadu_ps(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm_storeu_ps(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm_add_ps(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm_sub_ps(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm_mul_ps(a, b); }
    VEK_KERNEL V set1(R x) { return _mm_set1_ps(x); }
    VEK_KERNEL V swap(V v) { return _mm_shuffle_ps(v, v, 0xB1); }
    VEK_KERNEL V neg_re(V v) {
        return _mm_xor_ps(v, _mm_castsi128_ps(_mm_set_epi32(0, INT32_MIN, 0, INT32_MIN)));
    }
    VEK_KERNEL V neg_im(V v) {
        return _mm_xor_ps(v, _mm_castsi128_ps(_mm_set_epi32(INT32_MIN, 0, INT32_MIN, 0)));
    }
    VEK_KERNEL V dup_re(V v) { return _mm_shuffle_ps(v, v, 0xA0); }
    VEK_KERNEL V dup_im(V v) { return _mm_shuffle_ps(v, v, 0xF5); }
#ifdef __FMA__
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm_fmaddsub_ps(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm_fmsubadd_ps(a, b, c); }
#else
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return add(mul(a, b), neg_re(c)); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return add(mul(a, b), neg_im(c)); }
#endif
    VEK_KERNEL void transpose(V* v) {
        const V a = v[0], b = v[1];
        v[0] = _mm_movelh_ps(a, b);
        v[1] = _mm_movehl_ps(b, a);
    }
    // y[4i + r] = v[r][i]
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        store(y, _mm_movelh_ps(a, b));
        store(y + 2, _mm_movelh_ps(c, d));
        store(y + 4, _mm_movehl_ps(b, a));
        store(y + 6, _mm_movehl_ps(d, c));
    }
    // a[i] = y[4i], b[i] = y[4i + 1], c[i] = y[4i + 2], d[i] = y[4i + 3]
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        const V v0 = load(y), v1 = load(y + 2), v2 = load(y + 4), v3 = load(y + 6);
        a = _mm_movelh_ps(v0, v2);
        b = _mm_movehl_ps(v2, v0);
        c = _mm_movelh_ps(v1, v3);
        d = _mm_movehl_ps(v3, v1);
    }
    // y[8i + r] = v[r][i]
    VEK_KERNEL void store8(C* y, const V* v) {
        for (int r = 0; r < 8; r += 2) {
            store(y + r, _mm_movelh_ps(v[r], v[r + 1]));
            store(y + 8 + r, _mm_movehl_ps(v[r + 1], v[r]));
        }
    }
};

struct F1 : F2 {  // one complex float, in the low half
    static constexpr int W = 1;
    VEK_KERNEL V load(const C* p) {
        return _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(p));
    }
    VEK_KERNEL void store(C* p, V v) { _mm_storel_pi(reinterpret_cast<__m64*>(p), v); }
    VEK_KERNEL void transpose(V*) {}
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        store(y, a);
        store(y + 1, b);
        store(y + 2, c);
        store(y + 3, d);
    }
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        a = load(y);
        b = load(y + 1);
        c = load(y + 2);
        d = load(y + 3);
    }
    VEK_KERNEL void store8(C* y, const V* v) {
        for (int r = 0; r < 8; ++r) store(y + r, v[r]);
    }
};

struct D1 {  // one complex double
    using R = double;
    using C = CplxDouble;
    using V = __m128d;
    static constexpr int W = 1;
    VEK_KERNEL V load(const C* p) { return _mm_loadu_pd(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm_storeu_pd(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm_add_pd(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm_sub_pd(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm_mul_pd(a, b); }
    VEK_KERNEL V set1(R x) { return _mm_set1_pd(x); }
    VEK_KERNEL V swap(V v) { return _mm_shuffle_pd(v, v, 1); }
    VEK_KERNEL V neg_re(V v) { return _mm_xor_pd(v, _mm_set_pd(0.0, -0.0)); }
    VEK_KERNEL V neg_im(V v) { return _mm_xor_pd(v, _mm_set_pd(-0.0, 0.0)); }
    VEK_KERNEL V dup_re(V v) { return _mm_unpacklo_pd(v, v); }
    VEK_KERNEL V dup_im(V v) { return _mm_unpackhi_pd(v, v); }
#ifdef __FMA__
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm_fmaddsub_pd(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm_fmsubadd_pd(a, b, c); }
#else
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return add(mul(a, b), neg_re(c)); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return add(mul(a, b), neg_im(c)); }
#endif
    VEK_KERNEL void transpose(V*) {}
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        store(y, a);
        store(y + 1, b);
        store(y + 2, c);
        store(y + 3, d);
    }
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        a = load(y);
        b = load(y + 1);
        c = load(y + 2);
        d = load(y + 3);
    }
    VEK_KERNEL void store8(C* y, const V* v) {
        for (int r = 0; r < 8; ++r) store(y + r, v[r]);
    }
};

#ifdef __AVX2__
struct F4 {  // four complex floats
    using R = float;
    using C = CplxFloat;
    using V = __m256;
    static constexpr int W = 4;
    VEK_KERNEL V load(const C* p) { return _mm256_loadu_ps(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm256_storeu_ps(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm256_add_ps(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm256_sub_ps(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm256_mul_ps(a, b); }
    VEK_KERNEL V set1(R x) { return _mm256_set1_ps(x); }
    VEK_KERNEL V swap(V v) { return _mm256_permute_ps(v, 0xB1); }
    VEK_KERNEL V neg_re(V v) {
        return _mm256_xor_ps(v, _mm256_castsi256_ps(_mm256_set1_epi64x(0x80000000LL)));
    }
    VEK_KERNEL V neg_im(V v) {
        return _mm256_xor_ps(v, _mm256_castsi256_ps(_mm256_set1_epi64x(INT64_MIN)));
    }
    VEK_KERNEL V dup_re(V v) { return _mm256_moveldup_ps(v); }
    VEK_KERNEL V dup_im(V v) { return _mm256_movehdup_ps(v); }
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm256_fmaddsub_ps(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm256_fmsubadd_ps(a, b, c); }
    // Columns of the 4 x 4 block of points a, b, c, d.
    VEK_KERNEL void transpose(V* v) {
        const __m256d a = _mm256_castps_pd(v[0]), b = _mm256_castps_pd(v[1]);
        const __m256d c = _mm256_castps_pd(v[2]), d = _mm256_castps_pd(v[3]);
        const __m256d t0 = _mm256_unpacklo_pd(a, b), t1 = _mm256_unpackhi_pd(a, b);
        const __m256d t2 = _mm256_unpacklo_pd(c, d), t3 = _mm256_unpackhi_pd(c, d);
        v[0] = _mm256_castpd_ps(_mm256_permute2f128_pd(t0, t2, 0x20));
        v[1] = _mm256_castpd_ps(_mm256_permute2f128_pd(t1, t3, 0x20));
        v[2] = _mm256_castpd_ps(_mm256_permute2f128_pd(t0, t2, 0x31));
        v[3] = _mm256_castpd_ps(_mm256_permute2f128_pd(t1, t3, 0x31));
    }
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        V v[4] = {a, b, c, d};
        transpose(v);
        store(y, v[0]);
        store(y + 4, v[1]);
        store(y + 8, v[2]);
        store(y + 12, v[3]);
    }
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        V v[4] = {load(y), load(y + 4), load(y + 8), load(y + 12)};
        transpose(v);
        a = v[0];
        b = v[1];
        c = v[2];
        d = v[3];
    }
    VEK_KERNEL void store8(C* y, const V* v) {
        V lo[4] = {v[0], v[1], v[2], v[3]}, hi[4] = {v[4], v[5], v[6], v[7]};
        transpose(lo);
        transpose(hi);
        for (int i = 0; i < 4; ++i) {
            store(y + 8 * i, lo[i]);
            store(y + 8 * i + 4, hi[i]);
        }
    }
};

struct D2 {  // two complex doubles
    using R = double;
    using C = CplxDouble;
    using V = __m256d;
    static constexpr int W = 2;
    VEK_KERNEL V load(const C* p) { return _mm256_loadu_pd(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm256_storeu_pd(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm256_add_pd(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm256_sub_pd(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm256_mul_pd(a, b); }
    VEK_KERNEL V set1(R x) { return _mm256_set1_pd(x); }
    VEK_KERNEL V swap(V v) { return _mm256_permute_pd(v, 0x5); }
    VEK_KERNEL V neg_re(V v) { return _mm256_xor_pd(v, _mm256_set_pd(0.0, -0.0, 0.0, -0.0)); }
    VEK_KERNEL V neg_im(V v) { return _mm256_xor_pd(v, _mm256_set_pd(-0.0, 0.0, -0.0, 0.0)); }
    VEK_KERNEL V dup_re(V v) { return _mm256_movedup_pd(v); }
    VEK_KERNEL V dup_im(V v) { return _mm256_permute_pd(v, 0xF); }
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm256_fmaddsub_pd(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm256_fmsubadd_pd(a, b, c); }
    VEK_KERNEL void transpose(V* v) {
        const V a = v[0], b = v[1];
        v[0] = _mm256_permute2f128_pd(a, b, 0x20);
        v[1] = _mm256_permute2f128_pd(a, b, 0x31);
    }
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        store(y, _mm256_permute2f128_pd(a, b, 0x20));
        store(y + 2, _mm256_permute2f128_pd(c, d, 0x20));
        store(y + 4, _mm256_permute2f128_pd(a, b, 0x31));
        store(y + 6, _mm256_permute2f128_pd(c, d, 0x31));
    }
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        const V v0 = load(y), v1 = load(y + 2), v2 = load(y + 4), v3 = load(y + 6);
        a = _mm256_permute2f128_pd(v0, v2, 0x20);
        b = _mm256_permute2f128_pd(v0, v2, 0x31);
        c = _mm256_permute2f128_pd(v1, v3, 0x20);
        d = _mm256_permute2f128_pd(v1, v3, 0x31);
    }
    VEK_KERNEL void store8(C* y, const V* v) {
        for (int r = 0; r < 8; r += 2) {
            store(y + r, _mm256_permute2f128_pd(v[r], v[r + 1], 0x20));
            store(y + 8 + r, _mm256_permute2f128_pd(v[r], v[r + 1], 0x31));
        }
    }
};
#endif

#ifdef __AVX512F__
struct F8 {  // eight complex floats
    using R = float;
    using C = CplxFloat;
    using V = __m512;
    static constexpr int W = 8;
    VEK_KERNEL V load(const C* p) { return _mm512_loadu_ps(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm512_storeu_ps(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm512_add_ps(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm512_sub_ps(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm512_mul_ps(a, b); }
    VEK_KERNEL V set1(R x) { return _mm512_set1_ps(x); }
    VEK_KERNEL V swap(V v) { return _mm512_permute_ps(v, 0xB1); }
    VEK_KERNEL V neg_re(V v) {
        return _mm512_xor_ps(v, _mm512_castsi512_ps(_mm512_set1_epi64(0x80000000LL)));
    }
    VEK_KERNEL V neg_im(V v) {
        return _mm512_xor_ps(v, _mm512_castsi512_ps(_mm512_set1_epi64(INT64_MIN)));
    }
    VEK_KERNEL V dup_re(V v) { return _mm512_moveldup_ps(v); }
    VEK_KERNEL V dup_im(V v) { return _mm512_movehdup_ps(v); }
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm512_fmaddsub_ps(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm512_fmsubadd_ps(a, b, c); }
    // y[8i + r] = v[r][i]: an 8 x 8 transpose of 64-bit points.
    VEK_KERNEL void store8(C* y, const V* v) {
        __m512d t[8], u[8];
        for (int r = 0; r < 8; r += 2) {
            t[r] = _mm512_unpacklo_pd(_mm512_castps_pd(v[r]), _mm512_castps_pd(v[r + 1]));
            t[r + 1] = _mm512_unpackhi_pd(_mm512_castps_pd(v[r]), _mm512_castps_pd(v[r + 1]));
        }
        for (int g = 0; g < 8; g += 4)
            for (int h = 0; h < 2; ++h) {
                u[g + h] = _mm512_shuffle_f64x2(t[g + h], t[g + h + 2], 0x88);
                u[g + h + 2] = _mm512_shuffle_f64x2(t[g + h], t[g + h + 2], 0xDD);
            }
        for (int i = 0; i < 4; ++i) {
            store(y + 8 * i, _mm512_castpd_ps(_mm512_shuffle_f64x2(u[i], u[i + 4], 0x88)));
            store(y + 8 * (i + 4), _mm512_castpd_ps(_mm512_shuffle_f64x2(u[i], u[i + 4], 0xDD)));
        }
    }
};

struct D4 {  // four complex doubles
    using R = double;
    using C = CplxDouble;
    using V = __m512d;
    static constexpr int W = 4;
    VEK_KERNEL V load(const C* p) { return _mm512_loadu_pd(&p->re); }
    VEK_KERNEL void store(C* p, V v) { _mm512_storeu_pd(&p->re, v); }
    VEK_KERNEL V add(V a, V b) { return _mm512_add_pd(a, b); }
    VEK_KERNEL V sub(V a, V b) { return _mm512_sub_pd(a, b); }
    VEK_KERNEL V mul(V a, V b) { return _mm512_mul_pd(a, b); }
    VEK_KERNEL V set1(R x) { return _mm512_set1_pd(x); }
    VEK_KERNEL V swap(V v) { return _mm512_permute_pd(v, 0x55); }
    VEK_KERNEL V neg_re(V v) {
        return _mm512_xor_pd(v, _mm512_castsi512_pd(_mm512_set_epi64(0, INT64_MIN, 0, INT64_MIN, 0,
                                                                     INT64_MIN, 0, INT64_MIN)));
    }
    VEK_KERNEL V neg_im(V v) {
        return _mm512_xor_pd(v, _mm512_castsi512_pd(_mm512_set_epi64(INT64_MIN, 0, INT64_MIN, 0,
                                                                     INT64_MIN, 0, INT64_MIN, 0)));
    }
    VEK_KERNEL V dup_re(V v) { return _mm512_movedup_pd(v); }
    VEK_KERNEL V dup_im(V v) { return _mm512_permute_pd(v, 0xFF); }
    VEK_KERNEL V fmaddsub(V a, V b, V c) { return _mm512_fmaddsub_pd(a, b, c); }
    VEK_KERNEL V fmsubadd(V a, V b, V c) { return _mm512_fmsubadd_pd(a, b, c); }
    VEK_KERNEL void transpose(V* v) {
        const V t0 = _mm512_shuffle_f64x2(v[0], v[1], 0x44),
                t1 = _mm512_shuffle_f64x2(v[0], v[1], 0xEE);
        const V t2 = _mm512_shuffle_f64x2(v[2], v[3], 0x44),
                t3 = _mm512_shuffle_f64x2(v[2], v[3], 0xEE);
        v[0] = _mm512_shuffle_f64x2(t0, t2, 0x88);
        v[1] = _mm512_shuffle_f64x2(t0, t2, 0xDD);
        v[2] = _mm512_shuffle_f64x2(t1, t3, 0x88);
        v[3] = _mm512_shuffle_f64x2(t1, t3, 0xDD);
    }
    VEK_KERNEL void store4(C* y, V a, V b, V c, V d) {
        V v[4] = {a, b, c, d};
        transpose(v);
        store(y, v[0]);
        store(y + 4, v[1]);
        store(y + 8, v[2]);
        store(y + 12, v[3]);
    }
    VEK_KERNEL void load4(const C* y, V& a, V& b, V& c, V& d) {
        V v[4] = {load(y), load(y + 4), load(y + 8), load(y + 12)};
        transpose(v);
        a = v[0];
        b = v[1];
        c = v[2];
        d = v[3];
    }
    VEK_KERNEL void store8(C* y, const V* v) {
        V lo[4] = {v[0], v[1], v[2], v[3]}, hi[4] = {v[4], v[5], v[6], v[7]};
        transpose(lo);
        transpose(hi);
        for (int i = 0; i < 4; ++i) {
            store(y + 8 * i, lo[i]);
            store(y + 8 * i + 4, hi[i]);
        }
    }
};
#endif

// Calls f with a tag of the widest vector type of at most `avail` points;
// `Narrow` limits the choice to types that transpose (at most 4 points).
template <class T>
struct Tag {
    using type = T;
};

template <bool Narrow = false, class F>
VEK_KERNEL void by_width(float*, std::size_t avail, F&& f) {
#ifdef __AVX512F__
    if constexpr (!Narrow) {
        if (avail >= 8) return f(Tag<F8>{});
    }
#endif
#ifdef __AVX2__
    if (avail >= 4) return f(Tag<F4>{});
#endif
    if (avail >= 2) return f(Tag<F2>{});
    f(Tag<F1>{});
}

template <bool Narrow = false, class F>
VEK_KERNEL void by_width(double*, std::size_t avail, F&& f) {
#ifdef __AVX512F__
    if (avail >= 4) return f(Tag<D4>{});
#endif
#ifdef __AVX2__
    if (avail >= 2) return f(Tag<D2>{});
#endif
    (void)avail;
    f(Tag<D1>{});
}

// ------------------------------------------------------------ butterflies

// v * (-i) forward, v * i inverse.
template <class V, bool Inv>
VEK_KERNEL typename V::V mul_mi(typename V::V v) {
    return Inv ? V::neg_re(V::swap(v)) : V::neg_im(V::swap(v));
}

// v * w forward, v * conj(w) inverse, with w's parts in wr and wi.
template <class V, bool Inv>
VEK_KERNEL typename V::V cmul(typename V::V v, typename V::V wr, typename V::V wi) {
    const typename V::V t = V::mul(V::swap(v), wi);
    return Inv ? V::fmsubadd(v, wr, t) : V::fmaddsub(v, wr, t);
}

// Four-point DFT in place: (a, b, c, d) becomes (X0, X1, X2, X3).
template <class V, bool Inv>
VEK_KERNEL void dft4(typename V::V& a, typename V::V& b, typename V::V& c, typename V::V& d) {
    const typename V::V t0 = V::add(a, c), t1 = V::sub(a, c);
    const typename V::V t2 = V::add(b, d), t3 = mul_mi<V, Inv>(V::sub(b, d));
    a = V::add(t0, t2);
    c = V::sub(t0, t2);
    b = V::add(t1, t3);
    d = V::sub(t1, t3);
}

// ------------------------------------------------------------ passes
//
// A pass of size n with m = n/radix reads x[q + si*(p + j*m)] and writes
// y[q + L*(radix*p + r)] for p < m, q < L; output r of sub-transform p is
// multiplied by W_n^(r*p) from the pass's own table. The input stride si
// is L except where a first pass reads its lanes straight from strided data.

// Twiddled radix-4 pass with the vector loop over the lanes q; tw holds
// W^p, W^2p, W^3p for each p.
template <class V, bool Inv>
void pass_q4(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t m, std::size_t L,
             const typename V::C* tw) {
    using VT = typename V::V;
    const std::size_t s = m * si;
    for (std::size_t p = 0; p < m; ++p) {
        const typename V::C* x0 = x + p * si;
        typename V::C* y0 = y + 4 * p * L;
        const typename V::C* w = tw + 3 * p;
        for (std::size_t q = 0; q < L; q += V::W) {
            VT a = V::load(x0 + q), b = V::load(x0 + s + q);
            VT c = V::load(x0 + 2 * s + q), d = V::load(x0 + 3 * s + q);
            dft4<V, Inv>(a, b, c, d);
            V::store(y0 + q, a);
            if (p == 0) {
                V::store(y0 + L + q, b);
                V::store(y0 + 2 * L + q, c);
                V::store(y0 + 3 * L + q, d);
            } else {
                V::store(y0 + L + q, cmul<V, Inv>(b, V::set1(w[0].re), V::set1(w[0].im)));
                V::store(y0 + 2 * L + q, cmul<V, Inv>(c, V::set1(w[1].re), V::set1(w[1].im)));
                V::store(y0 + 3 * L + q, cmul<V, Inv>(d, V::set1(w[2].re), V::set1(w[2].im)));
            }
        }
    }
}

// Eight-point DFT in place: x[0..7] becomes X[0..7]. A radix-2 step, W_8
// rotations (conjugated for the inverse), two four-point DFTs.
template <class V, bool Inv>
VEK_KERNEL void dft8(typename V::V* x) {
    using VT = typename V::V;
    using R = typename V::R;
    const VT h = V::set1(R(0.7071067811865475244008443621048490393L));
    VT a0 = V::add(x[0], x[4]), a1 = V::add(x[1], x[5]), a2 = V::add(x[2], x[6]),
       a3 = V::add(x[3], x[7]);
    VT b0 = V::sub(x[0], x[4]), b1 = V::sub(x[1], x[5]), b2 = V::sub(x[2], x[6]),
       b3 = V::sub(x[3], x[7]);
    // (1 -/+ i)/sqrt(2) rotations: b + (-/+ i) b, scaled.
    b1 = V::mul(V::add(b1, mul_mi<V, Inv>(b1)), h);
    b2 = mul_mi<V, Inv>(b2);
    b3 = mul_mi<V, Inv>(V::mul(V::add(b3, mul_mi<V, Inv>(b3)), h));
    dft4<V, Inv>(a0, a1, a2, a3);
    dft4<V, Inv>(b0, b1, b2, b3);
    x[0] = a0;
    x[1] = b0;
    x[2] = a1;
    x[3] = b1;
    x[4] = a2;
    x[5] = b2;
    x[6] = a3;
    x[7] = b3;
}

// Twiddled radix-8 pass with the vector loop over the lanes q; tw holds
// W^p .. W^7p for each p.
template <class V, bool Inv>
void pass_q8(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t m, std::size_t L,
             const typename V::C* tw) {
    using VT = typename V::V;
    const std::size_t s = m * si;
    for (std::size_t p = 0; p < m; ++p) {
        const typename V::C* x0 = x + p * si;
        typename V::C* y0 = y + 8 * p * L;
        const typename V::C* w = tw + 7 * p;
        for (std::size_t q = 0; q < L; q += V::W) {
            VT v[8];
            for (int j = 0; j < 8; ++j) v[j] = V::load(x0 + j * s + q);
            dft8<V, Inv>(v);
            V::store(y0 + q, v[0]);
            if (p == 0) {
                for (int r = 1; r < 8; ++r) V::store(y0 + r * L + q, v[r]);
            } else {
                for (int r = 1; r < 8; ++r)
                    V::store(y0 + r * L + q,
                             cmul<V, Inv>(v[r], V::set1(w[r - 1].re), V::set1(w[r - 1].im)));
            }
        }
    }
}

// Twiddled radix-4 first pass (L = 1) with the vector loop over p.
template <class V, bool Inv>
void pass_p4(const typename V::C* x, typename V::C* y, std::size_t m, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t p = 0; p < m; p += V::W) {
        VT a = V::load(x + p), b = V::load(x + m + p);
        VT c = V::load(x + 2 * m + p), d = V::load(x + 3 * m + p);
        dft4<V, Inv>(a, b, c, d);
        const VT w1 = V::load(tw + p), w2 = V::load(tw + m + p), w3 = V::load(tw + 2 * m + p);
        b = cmul<V, Inv>(b, V::dup_re(w1), V::dup_im(w1));
        c = cmul<V, Inv>(c, V::dup_re(w2), V::dup_im(w2));
        d = cmul<V, Inv>(d, V::dup_re(w3), V::dup_im(w3));
        V::store4(y + 4 * p, a, b, c, d);
    }
}

// Twiddled radix-8 first pass (L = 1) with the vector loop over p; tw
// holds W^(r*p) as seven arrays of m.
template <class V, bool Inv>
void pass_p8(const typename V::C* x, typename V::C* y, std::size_t m, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t p = 0; p < m; p += V::W) {
        VT v[8];
        for (int j = 0; j < 8; ++j) v[j] = V::load(x + j * m + p);
        dft8<V, Inv>(v);
        for (int r = 1; r < 8; ++r) {
            const VT w = V::load(tw + (r - 1) * m + p);
            v[r] = cmul<V, Inv>(v[r], V::dup_re(w), V::dup_im(w));
        }
        V::store8(y + 8 * p, v);
    }
}

// Last pass of size 4 (m = 1): no twiddles; may run in place. The outputs
// of lane l, point k go to y[l + so*k] for lanes l < L0 (so = L0: the
// usual packed layout), times `scale`.
template <class V, bool Inv>
void last4(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t L, std::size_t L0,
           std::size_t so, typename V::R scale) {
    using VT = typename V::V;
    const std::size_t K = L / L0, ro = so * K;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t k = 0; k < K; ++k)
        for (std::size_t l = 0; l < L0; l += V::W) {
            const std::size_t q = k * L0 + l;
            VT a = V::load(x + q), b = V::load(x + si + q), c = V::load(x + 2 * si + q),
               d = V::load(x + 3 * si + q);
            dft4<V, Inv>(a, b, c, d);
            if (scaled) {
                a = V::mul(a, sv);
                b = V::mul(b, sv);
                c = V::mul(c, sv);
                d = V::mul(d, sv);
            }
            typename V::C* y0 = y + k * so + l;
            V::store(y0, a);
            V::store(y0 + ro, b);
            V::store(y0 + 2 * ro, c);
            V::store(y0 + 3 * ro, d);
        }
}

// Last pass of size 8 (m = 1), as last4.
template <class V, bool Inv>
void last8(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t L, std::size_t L0,
           std::size_t so, typename V::R scale) {
    using VT = typename V::V;
    const std::size_t K = L / L0, ro = so * K;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t k = 0; k < K; ++k)
        for (std::size_t l = 0; l < L0; l += V::W) {
            const std::size_t q = k * L0 + l;
            VT v[8];
            for (int j = 0; j < 8; ++j) v[j] = V::load(x + j * si + q);
            dft8<V, Inv>(v);
            if (scaled)
                for (int r = 0; r < 8; ++r) v[r] = V::mul(v[r], sv);
            typename V::C* y0 = y + k * so + l;
            for (int r = 0; r < 8; ++r) V::store(y0 + r * ro, v[r]);
        }
}

// ------------------------------------------------------------ bit-reversed
//
// In place, without a permutation: decimation in frequency takes natural
// order to bit-reversed order when each butterfly stores its outputs in
// bit-reversed order within its block; decimation in time undoes it.

constexpr int kRev3[8] = {0, 4, 2, 6, 1, 5, 3, 7};

template <class V, bool Inv>
VEK_KERNEL typename V::V cmulv(typename V::V v, typename V::V w) {
    return cmul<V, Inv>(v, V::dup_re(w), V::dup_im(w));
}

template <class V, bool Inv>
void dif4(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 4 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT a = V::load(x0 + j), b = V::load(x0 + h + j), c = V::load(x0 + 2 * h + j),
               d = V::load(x0 + 3 * h + j);
            dft4<V, Inv>(a, b, c, d);
            V::store(x0 + j, a);
            V::store(x0 + h + j, cmulv<V, Inv>(c, V::load(tw + h + j)));
            V::store(x0 + 2 * h + j, cmulv<V, Inv>(b, V::load(tw + j)));
            V::store(x0 + 3 * h + j, cmulv<V, Inv>(d, V::load(tw + 2 * h + j)));
        }
    }
}

template <class V, bool Inv>
void dif8(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 8 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT v[8];
            for (int k = 0; k < 8; ++k) v[k] = V::load(x0 + k * h + j);
            dft8<V, Inv>(v);
            V::store(x0 + j, v[0]);
            for (int t = 1; t < 8; ++t) {
                const int r = kRev3[t];
                V::store(x0 + t * h + j, cmulv<V, Inv>(v[r], V::load(tw + (r - 1) * h + j)));
            }
        }
    }
}

// The last step on blocks of 4 contiguous points, several blocks per vector.
template <class V, bool Inv>
void dif_end4(typename V::C* x, std::size_t n, typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 4 * V::W) {
        VT a, b, c, d;
        V::load4(x + blk, a, b, c, d);
        dft4<V, Inv>(a, b, c, d);
        if (scaled) {
            a = V::mul(a, sv);
            b = V::mul(b, sv);
            c = V::mul(c, sv);
            d = V::mul(d, sv);
        }
        V::store4(x + blk, a, c, b, d);
    }
}

template <class V, bool Inv>
void dit_first4(typename V::C* x, std::size_t n) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 4 * V::W) {
        VT a, b, c, d;
        V::load4(x + blk, a, c, b, d);
        dft4<V, Inv>(a, b, c, d);
        V::store4(x + blk, a, b, c, d);
    }
}

template <class V, bool Inv>
void dit4(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw,
          typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 4 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT a = V::load(x0 + j);
            VT b = cmulv<V, Inv>(V::load(x0 + 2 * h + j), V::load(tw + j));
            VT c = cmulv<V, Inv>(V::load(x0 + h + j), V::load(tw + h + j));
            VT d = cmulv<V, Inv>(V::load(x0 + 3 * h + j), V::load(tw + 2 * h + j));
            dft4<V, Inv>(a, b, c, d);
            if (scaled) {
                a = V::mul(a, sv);
                b = V::mul(b, sv);
                c = V::mul(c, sv);
                d = V::mul(d, sv);
            }
            V::store(x0 + j, a);
            V::store(x0 + h + j, b);
            V::store(x0 + 2 * h + j, c);
            V::store(x0 + 3 * h + j, d);
        }
    }
}

template <class V, bool Inv>
void dit8(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw,
          typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 8 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT v[8];
            v[0] = V::load(x0 + j);
            for (int r = 1; r < 8; ++r)
                v[r] = cmulv<V, Inv>(V::load(x0 + kRev3[r] * h + j), V::load(tw + (r - 1) * h + j));
            dft8<V, Inv>(v);
            if (scaled)
                for (int k = 0; k < 8; ++k) v[k] = V::mul(v[k], sv);
            for (int k = 0; k < 8; ++k) V::store(x0 + k * h + j, v[k]);
        }
    }
}

// ------------------------------------------------------------ transforms

template <class C>
struct RealOf;
template <>
struct RealOf<CplxFloat> {
    using type = float;
};
template <>
struct RealOf<CplxDouble> {
    using type = double;
};

// The transform of a schedule on 2^order points in L0 lanes: point j of
// lane q is read at src[q + s0*j] and written at dst[q + d0*j]. With d0 =
// L0, passes alternate between dst and tmp so that the last lands in dst,
// and src may equal dst (then s0 = L0: when the count is odd the last pass,
// which may, runs in place). Otherwise they alternate between tmp and tmp2.
template <class C, bool Inv>
void stockham(const C* src, std::size_t s0, C* dst, std::size_t d0, C* tmp, C* tmp2,
              const FftSchedule<C>& sc, std::size_t L0, typename RealOf<C>::type scale) {
    using R = typename RealOf<C>::type;
    const int passes = sc.passes;
    if (passes == 0) {
        for (std::size_t q = 0; q < L0; ++q) dst[q] = C{src[q].re * scale, src[q].im * scale};
        return;
    }
    const bool packed = d0 == L0;
    const bool lastInPlace = src == dst && passes % 2 == 1;
    const C* in = src;
    std::size_t si = s0, L = L0;
    for (int i = 0; i < passes; ++i) {
        const FftPass& ps = sc.pass[i];
        C* out;
        if (i == passes - 1) {
            out = dst;
        } else if (!packed) {
            out = i % 2 ? tmp2 : tmp;
        } else {
            const int after = lastInPlace ? passes - 2 - i : passes - 1 - i;
            out = after % 2 == 0 ? dst : tmp;
        }
        const C* tw = sc.tw + ps.tw;
        switch (ps.kind) {
            case kPassFirst4:
                by_width<true>(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_p4<V, Inv>(in, out, ps.m, tw);
                });
                break;
            case kPassFirst8:
                by_width(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_p8<V, Inv>(in, out, ps.m, tw);
                });
                break;
            case kPassTw4:
                by_width(static_cast<R*>(nullptr), L, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_q4<V, Inv>(in, si, out, ps.m, L, tw);
                });
                break;
            case kPassTw8:
                by_width(static_cast<R*>(nullptr), L, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_q8<V, Inv>(in, si, out, ps.m, L, tw);
                });
                break;
            case kPassLast2:
                for (std::size_t k = 0; k < L / L0; ++k)
                    for (std::size_t l = 0; l < L0; ++l) {
                        const std::size_t q = k * L0 + l;
                        const C a = in[q], b = in[q + si];
                        out[k * d0 + l] = C{(a.re + b.re) * scale, (a.im + b.im) * scale};
                        out[k * d0 + l + d0 * (L / L0)] =
                            C{(a.re - b.re) * scale, (a.im - b.im) * scale};
                    }
                break;
            case kPassLast4:
                // Packed output is one run of L points per output row.
                by_width(static_cast<R*>(nullptr), packed ? L : L0, [&](auto t) {
                    using V = typename decltype(t)::type;
                    last4<V, Inv>(in, si, out, L, packed ? L : L0, packed ? L : d0, scale);
                });
                break;
            default:
                by_width(static_cast<R*>(nullptr), packed ? L : L0, [&](auto t) {
                    using V = typename decltype(t)::type;
                    last8<V, Inv>(in, si, out, L, packed ? L : L0, packed ? L : d0, scale);
                });
                break;
        }
        const std::size_t radix =
            ps.kind == kPassLast2                                                    ? 2
            : ps.kind == kPassTw8 || ps.kind == kPassLast8 || ps.kind == kPassFirst8 ? 8
                                                                                     : 4;
        in = out;
        L *= radix;
        si = L;
    }
}

// The column FFTs' block (rows x lanes, b0[k1*lanes + b]) times the
// inter-step twiddle, stored transposed: mid[b*ld + k1].
template <class C, bool Inv>
void twiddle_transpose(const FftPlan<C>* pl, const C* b0, std::size_t cb, C* mid, std::size_t ld) {
    using R = typename RealOf<C>::type;
    const std::size_t rows = std::size_t(1) << pl->rowsLog, lanes = std::size_t(pl->lanes);
    const C* blk = pl->block + cb * rows;
    by_width<true>(static_cast<R*>(nullptr), 4, [&](auto t) {
        using V = typename decltype(t)::type;
        using VT = typename V::V;
        constexpr int W = V::W;
        for (std::size_t k1 = 0; k1 < rows; k1 += W)
            for (std::size_t b = 0; b < lanes; b += W) {
                VT v[W];
                for (int i = 0; i < W; ++i) {
                    const std::size_t row = k1 + i;
                    const VT w = cmul<V, false>(V::load(pl->lane + row * lanes + b),
                                                V::set1(blk[row].re), V::set1(blk[row].im));
                    v[i] = cmulv<V, Inv>(V::load(b0 + row * lanes + b), w);
                }
                V::transpose(v);
                for (int i = 0; i < W; ++i) V::store(mid + (b + i) * ld + k1, v[i]);
            }
    });
}

template <class C, bool Inv>
void four_step(const FftPlan<C>* pl, const C* src, C* dst, C* work,
               typename RealOf<C>::type scale) {
    const std::size_t rows = std::size_t(1) << pl->rowsLog, cols = std::size_t(1) << pl->colsLog;
    const std::size_t lanes = std::size_t(pl->lanes);
    C* mid = work;  // cols x rows: the columns' results, transposed
    C* b0 = mid + rows * cols;
    C* b1 = b0 + cols * lanes;
    // Columns, a block of lanes at a time, read straight from the strided
    // input; twiddled and transposed into mid.
    for (std::size_t cb = 0; cb < cols / lanes; ++cb) {
        stockham<C, Inv>(src + cb * lanes, cols, b0, lanes, b1, nullptr, pl->rows, lanes, 1);
        twiddle_transpose<C, Inv>(pl, b0, cb, mid + cb * lanes * rows, rows);
    }
    // Rows, now columns of mid, a block of lanes at a time; the last pass
    // writes the output in place: point k2 of row k1 at dst[k2*rows + k1].
    for (std::size_t k1 = 0; k1 < rows; k1 += lanes)
        stockham<C, Inv>(mid + k1, rows, dst + k1, rows, b0, b1, pl->cols, lanes, scale);
}

template <class C>
void run(const FftPlan<C>* pl, const C* src, C* dst, C* work, bool inverse,
         typename RealOf<C>::type scale) {
    if (pl->rowsLog == 0) {
        if (inverse)
            stockham<C, true>(src, 1, dst, 1, work, nullptr, pl->whole, 1, scale);
        else
            stockham<C, false>(src, 1, dst, 1, work, nullptr, pl->whole, 1, scale);
    } else {
        if (inverse)
            four_step<C, true>(pl, src, dst, work, scale);
        else
            four_step<C, false>(pl, src, dst, work, scale);
    }
}

template <class C, bool Inv>
void rev_passes(const FftSchedule<C>& sc, C* x, bool fromRev, typename RealOf<C>::type scale) {
    using R = typename RealOf<C>::type;
    const std::size_t n = std::size_t(1) << sc.order;
    for (int k = 0; k < sc.passes; ++k) {
        const FftPass& ps = sc.pass[fromRev ? sc.passes - 1 - k : k];
        const C* tw = sc.tw + ps.tw;
        const R s = k == sc.passes - 1 ? scale : R(1);
        if (ps.kind == kPassRevEnd4) {
            by_width<true>(static_cast<R*>(nullptr), n / 4, [&](auto t) {
                using V = typename decltype(t)::type;
                if (fromRev)
                    dit_first4<V, Inv>(x, n);
                else
                    dif_end4<V, Inv>(x, n, s);
            });
        } else {
            by_width(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                using V = typename decltype(t)::type;
                if (ps.kind == kPassRev8)
                    fromRev ? dit8<V, Inv>(x, n, ps.m, tw, s) : dif8<V, Inv>(x, n, ps.m, tw);
                else
                    fromRev ? dit4<V, Inv>(x, n, ps.m, tw, s) : dif4<V, Inv>(x, n, ps.m, tw);
            });
        }
    }
}

template <class C>
void rev(const FftSchedule<C>* sc, C* x, bool inverse, bool fromRev,
         typename RealOf<C>::type scale) {
    if (inverse)
        rev_passes<C, true>(*sc, x, fromRev, scale);
    else
        rev_passes<C, false>(*sc, x, fromRev, scale);
}

void rev_c(const FftSchedule<CplxFloat>* sc, CplxFloat* x, bool inverse, bool fromRev,
           float scale) {
    rev(sc, x, inverse, fromRev, scale);
}

void rev_z(const FftSchedule<CplxDouble>* sc, CplxDouble* x, bool inverse, bool fromRev,
           double scale) {
    rev(sc, x, inverse, fromRev, scale);
}

void run_c(const FftPlan<CplxFloat>* pl, const CplxFloat* src, CplxFloat* dst, CplxFloat* work,
           bool inverse, float scale) {
    run(pl, src, dst, work, inverse, scale);
}

void run_z(const FftPlan<CplxDouble>* pl, const CplxDouble* src, CplxDouble* dst, CplxDouble* work,
           bool inverse, double scale) {
    run(pl, src, dst, work, inverse, scale);
}

#undef VEK_KERNEL

}  // namespace

extern const FftOps fft_ops = {run_c, run_z, rev_c, rev_z};

}  // namespace VEK_ISA
}  // namespace vek
