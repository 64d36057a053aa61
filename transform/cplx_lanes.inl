// Interleaved complex vectors of one instruction set and the small
// butterflies built on them, shared by the FFT and DFT kernels. Include
// inside namespace vek::VEK_ISA (anonymous), after <immintrin.h>.
#ifndef VEK_KERNEL
#define VEK_KERNEL static inline __attribute__((always_inline))
#endif

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

// v * w forward, v * conj(w) inverse, with w interleaved.
template <class V, bool Inv>
VEK_KERNEL typename V::V cmulv(typename V::V v, typename V::V w) {
    return cmul<V, Inv>(v, V::dup_re(w), V::dup_im(w));
}
