// The thin SIMD layer of the per-ISA kernels.
//
// Include it from a kernel file after `#define VEK_ISA sse2` (or avx2,
// avx512): everything lands in namespace vek::VEK_ISA, so each instruction
// set gets its own copy. Vectors are GCC vector types: Vec<T> is as wide as
// the ISA's registers (16, 32 or 64 bytes), Vec<T, N> holds N lanes. What
// those types lack (square roots, saturating 16-bit arithmetic, masked ends,
// lane shuffles, mask tests, conversions the compiler would split) is
// written here with intrinsics, and nowhere else. Every operation also has
// a portable form for targets without SSE2.
#ifndef VEK_SIMD_INL
#define VEK_SIMD_INL

#ifndef VEK_ISA
#error "define VEK_ISA before including simd.inl"
#endif

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/cpu.hpp"  // VEK_ELEMENT

#if defined(__SSE2__)
// GCC 12 takes the undefined source operands of some AVX-512 intrinsics
// for uninitialised variables (its bug 105593).
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#endif

#if defined(__AVX512F__) && defined(__GNUC__) && !defined(__clang__) && __GNUC__ < 13
// The same false positive, reported where the kernels inline those
// intrinsics rather than in the header.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define VEK_SIMD_BYTES 64
#elif defined(__AVX2__)
#define VEK_SIMD_BYTES 32
#else
#define VEK_SIMD_BYTES 16
#endif

namespace vek {
namespace VEK_ISA {

constexpr int kVecBytes = VEK_SIMD_BYTES;

// ----------------------------------------------------------------- types

template <class T, int N>
struct LanesOf {
    typedef T type __attribute__((vector_size(N * sizeof(T))));
};
// N lanes of T; by default as many as fill one register.
template <class T, int N = kVecBytes / int(sizeof(T))>
using Vec = typename LanesOf<T, N>::type;

using VF = Vec<float>;
using VD = Vec<double>;
using VS = Vec<std::int16_t>;
using VUS = Vec<std::uint16_t>;
using VI = Vec<std::int32_t>;
using VU = Vec<std::uint32_t>;
using VL = Vec<std::int64_t>;
using VUL = Vec<std::uint64_t>;

// Lanes of T per register.
template <class T>
constexpr int lanes() {
    return kVecBytes / int(sizeof(T));
}

// The lane type and the lane count of a vector type.
template <class V>
using LaneOf = std::decay_t<decltype(V{}[0])>;
template <class V>
constexpr int lane_count() {
    return int(sizeof(V) / sizeof(LaneOf<V>));
}

// The signed integer of a lane's width: the lane type of a comparison.
template <class T>
using MaskLane = std::conditional_t<
    sizeof(T) == 8, std::int64_t,
    std::conditional_t<sizeof(T) == 4, std::int32_t,
                       std::conditional_t<sizeof(T) == 2, std::int16_t, std::int8_t>>>;

// ----------------------------------------------------------------- values

// Every lane x (by assignment: 0 + x would turn -0.0 into +0.0).
template <class V>
VEK_ELEMENT V splat(LaneOf<V> x) {
    V v{};
    for (int i = 0; i < lane_count<V>(); ++i) v[i] = x;
    return v;
}

// The pair (a, b) repeated: a in even lanes, b in odd lanes.
template <class V>
VEK_ELEMENT V pairs(LaneOf<V> a, LaneOf<V> b) {
    V v{};
    for (int i = 0; i < lane_count<V>(); ++i) v[i] = (i & 1) ? b : a;
    return v;
}

// ----------------------------------------------------------------- memory

// Unaligned loads and stores; callers' buffers need no alignment.
template <class V, class T>
VEK_ELEMENT V load(const T* p) {
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
template <class V, class T>
VEK_ELEMENT void store(T* p, V v) {
    __builtin_memcpy(p, &v, sizeof v);
}

// The first `count` lanes (0 < count <= lanes) of V at p, the others from
// pad; and the first `count` lanes of v stored at p. Nothing past them is
// read or written. With AVX-512 the lanes are masked (kMaskedEnds) and
// kernels may take their ends this way; elsewhere they are copied one by
// one, and kernels rather take their ends element by element.
#if VEK_SIMD_BYTES == 64
constexpr bool kMaskedEnds = true;

// The mask of the first `count` lanes.
VEK_ELEMENT unsigned long long first_lanes(int count) { return (2ull << (count - 1)) - 1; }

template <class V, class T>
VEK_ELEMENT V load_first(const T* p, int count, V pad = V{}) {
    constexpr int kLane = sizeof(LaneOf<V>);
    const unsigned long long m = first_lanes(count);
    if constexpr (sizeof(V) == 64) {
        const __m512i s = reinterpret_cast<__m512i>(pad);
        __m512i r;
        if constexpr (kLane == 1) r = _mm512_mask_loadu_epi8(s, m, p);
        if constexpr (kLane == 2) r = _mm512_mask_loadu_epi16(s, __mmask32(m), p);
        if constexpr (kLane == 4) r = _mm512_mask_loadu_epi32(s, __mmask16(m), p);
        if constexpr (kLane == 8) r = _mm512_mask_loadu_epi64(s, __mmask8(m), p);
        return reinterpret_cast<V>(r);
    } else if constexpr (sizeof(V) == 32) {
        const __m256i s = reinterpret_cast<__m256i>(pad);
        __m256i r;
        if constexpr (kLane == 1) r = _mm256_mask_loadu_epi8(s, __mmask32(m), p);
        if constexpr (kLane == 2) r = _mm256_mask_loadu_epi16(s, __mmask16(m), p);
        if constexpr (kLane == 4) r = _mm256_mask_loadu_epi32(s, __mmask8(m), p);
        if constexpr (kLane == 8) r = _mm256_mask_loadu_epi64(s, __mmask8(m), p);
        return reinterpret_cast<V>(r);
    } else {
        __m128i s = _mm_setzero_si128();
        __builtin_memcpy(&s, &pad, sizeof pad);  // an 8-byte vector is the low half
        __m128i r;
        if constexpr (kLane == 1) r = _mm_mask_loadu_epi8(s, __mmask16(m), p);
        if constexpr (kLane == 2) r = _mm_mask_loadu_epi16(s, __mmask8(m), p);
        if constexpr (kLane == 4) r = _mm_mask_loadu_epi32(s, __mmask8(m), p);
        if constexpr (kLane == 8) r = _mm_mask_loadu_epi64(s, __mmask8(m), p);
        V v;
        __builtin_memcpy(&v, &r, sizeof v);
        return v;
    }
}

// Stores the lanes of v whose bit is set in `bits`; the others stay unwritten.
template <class V, class T>
VEK_ELEMENT void store_masked(T* p, V v, unsigned long long bits) {
    constexpr int kLane = sizeof(LaneOf<V>);
    const unsigned long long m = bits;
    if constexpr (sizeof(V) == 64) {
        const __m512i x = reinterpret_cast<__m512i>(v);
        if constexpr (kLane == 1) _mm512_mask_storeu_epi8(p, m, x);
        if constexpr (kLane == 2) _mm512_mask_storeu_epi16(p, __mmask32(m), x);
        if constexpr (kLane == 4) _mm512_mask_storeu_epi32(p, __mmask16(m), x);
        if constexpr (kLane == 8) _mm512_mask_storeu_epi64(p, __mmask8(m), x);
    } else if constexpr (sizeof(V) == 32) {
        const __m256i x = reinterpret_cast<__m256i>(v);
        if constexpr (kLane == 1) _mm256_mask_storeu_epi8(p, __mmask32(m), x);
        if constexpr (kLane == 2) _mm256_mask_storeu_epi16(p, __mmask16(m), x);
        if constexpr (kLane == 4) _mm256_mask_storeu_epi32(p, __mmask8(m), x);
        if constexpr (kLane == 8) _mm256_mask_storeu_epi64(p, __mmask8(m), x);
    } else {
        __m128i x = _mm_setzero_si128();
        __builtin_memcpy(&x, &v, sizeof v);
        if constexpr (kLane == 1) _mm_mask_storeu_epi8(p, __mmask16(m), x);
        if constexpr (kLane == 2) _mm_mask_storeu_epi16(p, __mmask8(m), x);
        if constexpr (kLane == 4) _mm_mask_storeu_epi32(p, __mmask8(m), x);
        if constexpr (kLane == 8) _mm_mask_storeu_epi64(p, __mmask8(m), x);
    }
}

template <class V, class T>
VEK_ELEMENT void store_first(T* p, V v, int count) {
    store_masked(p, v, first_lanes(count));
}

#else
constexpr bool kMaskedEnds = false;

template <class V, class T>
VEK_ELEMENT V load_first(const T* p, int count, V pad = V{}) {
    using L = LaneOf<V>;
    const L* q = reinterpret_cast<const L*>(p);
    L t[lane_count<V>()];
    store(t, pad);
    for (int j = 0; j < count; ++j) t[j] = q[j];
    return load<V>(t);
}

template <class V, class T>
VEK_ELEMENT void store_first(T* p, V v, int count) {
    using L = LaneOf<V>;
    L* q = reinterpret_cast<L*>(p);
    L t[lane_count<V>()];
    store(t, v);
    for (int j = 0; j < count; ++j) q[j] = t[j];
}
#endif

// How many elements to handle before d reaches a vector boundary: stores
// that straddle cache lines cost more than one masked store up front. Only
// where masked stores are cheap (64-byte vectors), and only a whole number
// of kPair-element groups (complex pairs must keep their lanes).
template <int kPair, class S>
VEK_ELEMENT std::ptrdiff_t head_count(const S* d, std::ptrdiff_t n) {
#if VEK_SIMD_BYTES == 64
    const std::size_t gap = (0 - reinterpret_cast<std::uintptr_t>(d)) % kVecBytes;
    const std::ptrdiff_t h = std::ptrdiff_t(gap / sizeof(S));
    return gap % (sizeof(S) * kPair) == 0 && h < n ? h : 0;
#else
    (void)d;
    (void)n;
    return 0;
#endif
}

// ----------------------------------------------------------------- masks

// True when any bit of a native vector is set (comparison masks included).
template <class V>
VEK_ELEMENT bool any(V m) {
    static_assert(sizeof(V) == kVecBytes, "native vectors only");
#if VEK_SIMD_BYTES == 64
    const __m512i x = (__m512i)m;
    return _mm512_test_epi64_mask(x, x) != 0;
#elif VEK_SIMD_BYTES == 32
    const __m256i x = (__m256i)m;
    return !_mm256_testz_si256(x, x);
#elif defined(__SSE2__)
    const __m128i x = (__m128i)m;
    return _mm_movemask_epi8(_mm_cmpeq_epi8(x, _mm_setzero_si128())) != 0xFFFF;
#else
    VL l = (VL)m;
    std::int64_t acc = 0;
    for (int i = 0; i < lanes<std::int64_t>(); ++i) acc |= l[i];
    return acc != 0;
#endif
}

// One bit per lane of a native float or double vector: set where
// lo <= x <= hi (never for NaN).
template <class V>
VEK_ELEMENT unsigned long long in_range_bits(V x, V lo, V hi) {
    constexpr bool kFloat = sizeof(x[0]) == 4;
#if defined(__AVX512F__)
    if constexpr (sizeof(V) == 64 && kFloat) {
        const __m512 v = reinterpret_cast<__m512>(x);
        const __mmask16 ge = _mm512_cmp_ps_mask(v, reinterpret_cast<__m512>(lo), _CMP_GE_OQ);
        return _mm512_mask_cmp_ps_mask(ge, v, reinterpret_cast<__m512>(hi), _CMP_LE_OQ);
    }
    if constexpr (sizeof(V) == 64 && !kFloat) {
        const __m512d v = reinterpret_cast<__m512d>(x);
        const __mmask8 ge = _mm512_cmp_pd_mask(v, reinterpret_cast<__m512d>(lo), _CMP_GE_OQ);
        return _mm512_mask_cmp_pd_mask(ge, v, reinterpret_cast<__m512d>(hi), _CMP_LE_OQ);
    }
#endif
    const auto inside = (x >= lo) & (x <= hi);
#if defined(__AVX__)
    if constexpr (sizeof(V) == 32 && kFloat)
        return unsigned(_mm256_movemask_ps(reinterpret_cast<__m256>(inside)));
    if constexpr (sizeof(V) == 32 && !kFloat)
        return unsigned(_mm256_movemask_pd(reinterpret_cast<__m256d>(inside)));
#endif
#if defined(__SSE2__)
    if constexpr (sizeof(V) == 16 && kFloat)
        return unsigned(_mm_movemask_ps(reinterpret_cast<__m128>(inside)));
    if constexpr (sizeof(V) == 16 && !kFloat)
        return unsigned(_mm_movemask_pd(reinterpret_cast<__m128d>(inside)));
#endif
    unsigned long long bits = 0;
    for (std::size_t i = 0; i < sizeof(V) / sizeof(x[0]); ++i)
        if (inside[i]) bits |= 1ull << i;
    return bits;
}

// ----------------------------------------------------------------- floating point

VEK_ELEMENT VF vsqrt(VF x) {
#if VEK_SIMD_BYTES == 64
    return (VF)_mm512_sqrt_ps((__m512)x);
#elif VEK_SIMD_BYTES == 32
    return (VF)_mm256_sqrt_ps((__m256)x);
#elif defined(__SSE2__)
    return (VF)_mm_sqrt_ps((__m128)x);
#else
    for (int i = 0; i < lanes<float>(); ++i) x[i] = __builtin_sqrtf(x[i]);
    return x;
#endif
}

VEK_ELEMENT VD vsqrt(VD x) {
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_sqrt_pd((__m512d)x);
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_sqrt_pd((__m256d)x);
#elif defined(__SSE2__)
    return (VD)_mm_sqrt_pd((__m128d)x);
#else
    for (int i = 0; i < lanes<double>(); ++i) x[i] = __builtin_sqrt(x[i]);
    return x;
#endif
}

VEK_ELEMENT VF vabs(VF x) { return (VF)((VI)x & 0x7FFFFFFF); }
VEK_ELEMENT VD vabs(VD x) { return (VD)((VL)x & INT64_MAX); }

// Sign bit of s put on x (x without its sign, as from vabs).
VEK_ELEMENT VD with_sign_of(VD x, VD s) { return (VD)((VL)x | ((VL)s & INT64_MIN)); }

// acc + a * b where the product is known to be exact (products of widened
// floats): a fused multiply-add then rounds exactly as the separate
// operations do, so every path gives the same sums.
template <class V>
VEK_ELEMENT V add_exact_product(V acc, V a, V b) {
#if defined(__AVX512F__)
    if constexpr (sizeof(V) == 64)
        return reinterpret_cast<V>(_mm512_fmadd_pd(reinterpret_cast<__m512d>(a),
                                                   reinterpret_cast<__m512d>(b),
                                                   reinterpret_cast<__m512d>(acc)));
#endif
#if defined(__FMA__)
    if constexpr (sizeof(V) == 32)
        return reinterpret_cast<V>(_mm256_fmadd_pd(reinterpret_cast<__m256d>(a),
                                                   reinterpret_cast<__m256d>(b),
                                                   reinterpret_cast<__m256d>(acc)));
#endif
    return acc + a * b;
}

// a * b - c in even lanes and a * b + c in odd lanes of double vectors, where
// a * b is known to be exact: fused, it rounds as the separate operations do.
template <class V>
VEK_ELEMENT V addsub_exact_product(V a, V b, V c) {
    static_assert(sizeof(a[0]) == 8, "double lanes only");
#if defined(__AVX512F__)
    if constexpr (sizeof(V) == 64)
        return reinterpret_cast<V>(_mm512_fmaddsub_pd(reinterpret_cast<__m512d>(a),
                                                      reinterpret_cast<__m512d>(b),
                                                      reinterpret_cast<__m512d>(c)));
#endif
#if defined(__FMA__)
    if constexpr (sizeof(V) == 32)
        return reinterpret_cast<V>(_mm256_fmaddsub_pd(reinterpret_cast<__m256d>(a),
                                                      reinterpret_cast<__m256d>(b),
                                                      reinterpret_cast<__m256d>(c)));
    if constexpr (sizeof(V) == 16)
        return reinterpret_cast<V>(_mm_fmaddsub_pd(reinterpret_cast<__m128d>(a),
                                                   reinterpret_cast<__m128d>(b),
                                                   reinterpret_cast<__m128d>(c)));
#endif
    using M = Vec<std::int64_t, lane_count<V>()>;
    return a * b + reinterpret_cast<V>(reinterpret_cast<M>(c) ^ pairs<M>(INT64_MIN, 0));
}

// ----------------------------------------------------------------- conversions

// x clamped to lo..hi, NaN lanes to 0: min and max instructions and one
// ordered compare, where lane-wise selects would load the compare port.
template <class V>
VEK_ELEMENT V clamp_or_zero(V x, V lo, V hi) {
    constexpr bool kFloat = sizeof(x[0]) == 4;
#if VEK_SIMD_BYTES == 64
    if constexpr (sizeof(V) == 64 && kFloat) {
        const __m512 v = reinterpret_cast<__m512>(x);
        const __mmask16 ord = _mm512_cmp_ps_mask(v, v, _CMP_ORD_Q);
        return reinterpret_cast<V>(_mm512_maskz_min_ps(
            ord, _mm512_max_ps(v, reinterpret_cast<__m512>(lo)), reinterpret_cast<__m512>(hi)));
    }
    if constexpr (sizeof(V) == 64 && !kFloat) {
        const __m512d v = reinterpret_cast<__m512d>(x);
        const __mmask8 ord = _mm512_cmp_pd_mask(v, v, _CMP_ORD_Q);
        return reinterpret_cast<V>(_mm512_maskz_min_pd(
            ord, _mm512_max_pd(v, reinterpret_cast<__m512d>(lo)), reinterpret_cast<__m512d>(hi)));
    }
#endif
#if defined(__AVX__)
    if constexpr (sizeof(V) == 32 && kFloat) {
        const __m256 v = reinterpret_cast<__m256>(x);
        const __m256 c = _mm256_min_ps(_mm256_max_ps(v, reinterpret_cast<__m256>(lo)),
                                       reinterpret_cast<__m256>(hi));
        return reinterpret_cast<V>(_mm256_and_ps(c, _mm256_cmp_ps(v, v, _CMP_ORD_Q)));
    }
    if constexpr (sizeof(V) == 32 && !kFloat) {
        const __m256d v = reinterpret_cast<__m256d>(x);
        const __m256d c = _mm256_min_pd(_mm256_max_pd(v, reinterpret_cast<__m256d>(lo)),
                                        reinterpret_cast<__m256d>(hi));
        return reinterpret_cast<V>(_mm256_and_pd(c, _mm256_cmp_pd(v, v, _CMP_ORD_Q)));
    }
#endif
#if defined(__SSE2__)
    if constexpr (sizeof(V) == 16 && kFloat) {
        const __m128 v = reinterpret_cast<__m128>(x);
        const __m128 c =
            _mm_min_ps(_mm_max_ps(v, reinterpret_cast<__m128>(lo)), reinterpret_cast<__m128>(hi));
        return reinterpret_cast<V>(_mm_and_ps(c, _mm_cmpord_ps(v, v)));
    }
    if constexpr (sizeof(V) == 16 && !kFloat) {
        const __m128d v = reinterpret_cast<__m128d>(x);
        const __m128d c =
            _mm_min_pd(_mm_max_pd(v, reinterpret_cast<__m128d>(lo)), reinterpret_cast<__m128d>(hi));
        return reinterpret_cast<V>(_mm_and_pd(c, _mm_cmpord_pd(v, v)));
    }
#endif
    x = x == x ? x : V{};
    x = x > hi ? hi : x;
    return x < lo ? lo : x;
}

// Float lanes widened to double lanes, exactly.
template <int N>
VEK_ELEMENT Vec<double, N> widen(Vec<float, N> v) {
#if defined(__AVX512F__)
    if constexpr (N == 8)
        return reinterpret_cast<Vec<double, N>>(_mm512_cvtps_pd(reinterpret_cast<__m256>(v)));
#endif
#if defined(__AVX__)
    if constexpr (N == 4)
        return reinterpret_cast<Vec<double, N>>(_mm256_cvtps_pd(reinterpret_cast<__m128>(v)));
#endif
    return __builtin_convertvector(v, Vec<double, N>);
}

// The low and the high half of a float register, widened exactly.
VEK_ELEMENT VD widen_lo(VF x) {
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_cvtps_pd(_mm512_castps512_ps256((__m512)x));
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_cvtps_pd(_mm256_castps256_ps128((__m256)x));
#elif defined(__SSE2__)
    return (VD)_mm_cvtps_pd((__m128)x);
#else
    VD d;
    for (int i = 0; i < lanes<double>(); ++i) d[i] = x[i];
    return d;
#endif
}

VEK_ELEMENT VD widen_hi(VF x) {
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_cvtps_pd(_mm512_extractf32x8_ps((__m512)x, 1));
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_cvtps_pd(_mm256_extractf128_ps((__m256)x, 1));
#elif defined(__SSE2__)
    return (VD)_mm_cvtps_pd(_mm_movehl_ps((__m128)x, (__m128)x));
#else
    VD d;
    for (int i = 0; i < lanes<double>(); ++i) d[i] = x[i + lanes<double>()];
    return d;
#endif
}

// Two double registers rounded to float (to nearest) and joined.
VEK_ELEMENT VF to_floats(VD lo, VD hi) {
#if VEK_SIMD_BYTES == 64
    return (VF)_mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps((__m512d)lo)),
                                  _mm512_cvtpd_ps((__m512d)hi), 1);
#elif VEK_SIMD_BYTES == 32
    return (VF)_mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps((__m256d)lo)),
                                    _mm256_cvtpd_ps((__m256d)hi), 1);
#elif defined(__SSE2__)
    return (VF)_mm_movelh_ps(_mm_cvtpd_ps((__m128d)lo), _mm_cvtpd_ps((__m128d)hi));
#else
    VF f;
    for (int i = 0; i < lanes<double>(); ++i) {
        f[i] = float(lo[i]);
        f[i + lanes<double>()] = float(hi[i]);
    }
    return f;
#endif
}

// 8- or 16-bit integer lanes sign- or zero-extended to 32 bits, with one
// extension instruction where the compiler would split the vector.
template <class Int, int N>
VEK_ELEMENT Vec<std::int32_t, N> extend32(Vec<Int, N> v) {
    static_assert(sizeof(Int) <= 2, "narrow lanes only");
    [[maybe_unused]] constexpr bool kSigned = std::is_signed_v<Int>;
    using Out = Vec<std::int32_t, N>;
#if defined(__AVX512F__)
    if constexpr (N == 16 && sizeof(Int) == 2) {
        const __m256i x = reinterpret_cast<__m256i>(v);
        return reinterpret_cast<Out>(kSigned ? _mm512_cvtepi16_epi32(x) : _mm512_cvtepu16_epi32(x));
    }
    if constexpr (N == 16 && sizeof(Int) == 1) {
        const __m128i x = reinterpret_cast<__m128i>(v);
        return reinterpret_cast<Out>(kSigned ? _mm512_cvtepi8_epi32(x) : _mm512_cvtepu8_epi32(x));
    }
#endif
#if defined(__AVX2__)
    if constexpr (N == 8 && sizeof(Int) == 2) {
        const __m128i x = reinterpret_cast<__m128i>(v);
        return reinterpret_cast<Out>(kSigned ? _mm256_cvtepi16_epi32(x) : _mm256_cvtepu16_epi32(x));
    }
    if constexpr (N == 8 && sizeof(Int) == 1) {
        const __m128i x = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&v));  // 8 bytes
        return reinterpret_cast<Out>(kSigned ? _mm256_cvtepi8_epi32(x) : _mm256_cvtepu8_epi32(x));
    }
#endif
    return __builtin_convertvector(v, Out);
}

// 32-bit lanes narrowed to Int lanes (8, 16 or 32 bits), keeping the low bits.
template <class Int, int N, class W>
VEK_ELEMENT Vec<Int, N> narrow_wrap(W w) {
    if constexpr (sizeof(Int) == 4) {
        return w;
    } else {
#if defined(__AVX512F__)
        if constexpr (N == 16) {
            const __m512i x = reinterpret_cast<__m512i>(w);
            if constexpr (sizeof(Int) == 2)
                return reinterpret_cast<Vec<Int, N>>(_mm512_cvtepi32_epi16(x));
            else
                return reinterpret_cast<Vec<Int, N>>(_mm512_cvtepi32_epi8(x));
        }
        if constexpr (N == 8) {
            const __m256i x = reinterpret_cast<__m256i>(w);
            const __m128i r = sizeof(Int) == 2 ? _mm256_cvtepi32_epi16(x) : _mm256_cvtepi32_epi8(x);
            Vec<Int, N> v;
            __builtin_memcpy(&v, &r, sizeof v);
            return v;
        }
#endif
        return __builtin_convertvector(w, Vec<Int, N>);
    }
}

// Float or double lanes truncated toward zero to 32-bit lanes, by x86's
// rule: NaN and lanes beyond the int32 range give INT32_MIN.
VEK_ELEMENT VI trunc_i32(VF x) {
#if VEK_SIMD_BYTES == 64
    return (VI)_mm512_cvttps_epi32((__m512)x);
#elif VEK_SIMD_BYTES == 32
    return (VI)_mm256_cvttps_epi32((__m256)x);
#elif defined(__SSE2__)
    return (VI)_mm_cvttps_epi32((__m128)x);
#else
    VI r;
    for (int i = 0; i < lanes<float>(); ++i)
        r[i] = x[i] >= -2147483648.0f && x[i] < 2147483648.0f ? std::int32_t(x[i]) : INT32_MIN;
    return r;
#endif
}

VEK_ELEMENT Vec<std::int32_t, lanes<double>()> trunc_i32(VD x) {
    using Out = Vec<std::int32_t, lanes<double>()>;
#if VEK_SIMD_BYTES == 64
    return (Out)_mm512_cvttpd_epi32((__m512d)x);
#elif VEK_SIMD_BYTES == 32
    return (Out)_mm256_cvttpd_epi32((__m256d)x);
#elif defined(__SSE2__)
    const __m128i r = _mm_cvttpd_epi32((__m128d)x);  // two lanes, then zeros
    Out v;
    __builtin_memcpy(&v, &r, sizeof v);
    return v;
#else
    Out r;
    for (int i = 0; i < lanes<double>(); ++i)
        r[i] = x[i] > -2147483649.0 && x[i] < 2147483648.0 ? std::int32_t(x[i]) : INT32_MIN;
    return r;
#endif
}

// Two registers of 32-bit lanes as one of 16-bit lanes, a's lanes first:
// clamped to -32768..32767, or keeping the low 16 bits.
VEK_ELEMENT VS pack_sat16(VI a, VI b) {
#if VEK_SIMD_BYTES == 64
    const __m512i p = _mm512_packs_epi32((__m512i)a, (__m512i)b);  // by 128-bit lane
    return (VS)_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), p);
#elif VEK_SIMD_BYTES == 32
    const __m256i p = _mm256_packs_epi32((__m256i)a, (__m256i)b);
    return (VS)_mm256_permute4x64_epi64(p, 0xD8);
#elif defined(__SSE2__)
    return (VS)_mm_packs_epi32((__m128i)a, (__m128i)b);
#else
    VS r;
    for (int i = 0; i < 2 * lanes<std::int32_t>(); ++i) {
        const std::int32_t x = i < lanes<std::int32_t>() ? a[i] : b[i - lanes<std::int32_t>()];
        r[i] = std::int16_t(x > 32767 ? 32767 : x < -32768 ? -32768 : x);
    }
    return r;
#endif
}

VEK_ELEMENT VS pack_wrap16(VI a, VI b) {
#if VEK_SIMD_BYTES == 64
    // The even 16-bit lanes of a, then those of b.
    const __m512i even = _mm512_setr_epi64(
        0x0006000400020000, 0x000E000C000A0008, 0x0016001400120010, 0x001E001C001A0018,
        0x0026002400220020, 0x002E002C002A0028, 0x0036003400320030, 0x003E003C003A0038);
    return (VS)_mm512_permutex2var_epi16((__m512i)a, even, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    const __m256i low = _mm256_set1_epi32(0xFFFF);  // then the unsigned pack is exact
    const __m256i p =
        _mm256_packus_epi32(_mm256_and_si256((__m256i)a, low), _mm256_and_si256((__m256i)b, low));
    return (VS)_mm256_permute4x64_epi64(p, 0xD8);
#elif defined(__SSE2__)
    // Sign-extended low halves, which the signed pack passes unchanged.
    const __m128i x = _mm_srai_epi32(_mm_slli_epi32((__m128i)a, 16), 16);
    const __m128i y = _mm_srai_epi32(_mm_slli_epi32((__m128i)b, 16), 16);
    return (VS)_mm_packs_epi32(x, y);
#else
    VS r;
    for (int i = 0; i < 2 * lanes<std::int32_t>(); ++i)
        r[i] = std::int16_t(i < lanes<std::int32_t>() ? a[i] : b[i - lanes<std::int32_t>()]);
    return r;
#endif
}

// ----------------------------------------------------------------- shuffles

// Lane i of the result is lane i ^ 1 of v: swaps re and im of complex pairs.
template <class V, std::size_t... I>
VEK_ELEMENT V swap_pairs_(V v, std::index_sequence<I...>) {
    return __builtin_shufflevector(v, v, (I ^ 1)...);
}
template <class V>
VEK_ELEMENT V swap_pairs(V v) {
    return swap_pairs_(v, std::make_index_sequence<lane_count<V>()>());
}

// The even (re) or the odd (im) lane of each pair, in both lanes of the pair.
VEK_ELEMENT VD dup_even(VD x) {
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_movedup_pd((__m512d)x);
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_movedup_pd((__m256d)x);
#elif defined(__SSE2__)
    return (VD)_mm_unpacklo_pd((__m128d)x, (__m128d)x);
#else
    for (int i = 0; i < lanes<double>(); i += 2) x[i + 1] = x[i];
    return x;
#endif
}

VEK_ELEMENT VD dup_odd(VD x) {
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_permute_pd((__m512d)x, 0xFF);
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_permute_pd((__m256d)x, 0xF);
#elif defined(__SSE2__)
    return (VD)_mm_unpackhi_pd((__m128d)x, (__m128d)x);
#else
    for (int i = 0; i < lanes<double>(); i += 2) x[i] = x[i + 1];
    return x;
#endif
}

// The lanes of a, then those of b.
template <class V, std::size_t... I>
VEK_ELEMENT auto join_(V a, V b, std::index_sequence<I...>) {
    return __builtin_shufflevector(a, b, I...);
}
template <class V>
VEK_ELEMENT auto join(V a, V b) {
    return join_(a, b, std::make_index_sequence<2 * lane_count<V>()>());
}

// Each lane twice: (a, b, ...) -> (a, a, b, b, ...).
template <class W, class V, std::size_t... I>
VEK_ELEMENT W twice_(V v, std::index_sequence<I...>) {
    return __builtin_shufflevector(v, v, (I / 2)...);
}
template <class W, class V>
VEK_ELEMENT W twice(V v) {
    return twice_<W>(v, std::make_index_sequence<2 * lane_count<V>()>());
}

// Swaps the two 16-bit halves of every 32-bit lane.
VEK_ELEMENT VS swap16(VS a) {
#if VEK_SIMD_BYTES == 64
    return (VS)_mm512_rol_epi32((__m512i)a, 16);
#else
    const VU u = (VU)a;
    return (VS)((u << 16) | (u >> 16));
#endif
}

// The sum of all lanes of an integer vector (modulo the lane width), by
// halving: high half onto low half.
template <class V, std::size_t... I>
VEK_ELEMENT auto fold_halves_(V v, std::index_sequence<I...>) {
    constexpr std::size_t kHalf = sizeof...(I);
    return __builtin_shufflevector(v, v, I...) + __builtin_shufflevector(v, v, (I + kHalf)...);
}
template <class V>
VEK_ELEMENT auto lane_total(V v) {
    if constexpr (lane_count<V>() == 1)
        return v[0];
    else
        return lane_total(fold_halves_(v, std::make_index_sequence<lane_count<V>() / 2>()));
}

// ----------------------------------------------------------------- 16-bit

VEK_ELEMENT VS adds16(VS a, VS b) {
#if VEK_SIMD_BYTES == 64
    return (VS)_mm512_adds_epi16((__m512i)a, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    return (VS)_mm256_adds_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (VS)_mm_adds_epi16((__m128i)a, (__m128i)b);
#else
    for (int i = 0; i < lanes<std::int16_t>(); ++i) {
        const int r = a[i] + b[i];
        a[i] = std::int16_t(r > 32767 ? 32767 : r < -32768 ? -32768 : r);
    }
    return a;
#endif
}

VEK_ELEMENT VS subs16(VS a, VS b) {
#if VEK_SIMD_BYTES == 64
    return (VS)_mm512_subs_epi16((__m512i)a, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    return (VS)_mm256_subs_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (VS)_mm_subs_epi16((__m128i)a, (__m128i)b);
#else
    for (int i = 0; i < lanes<std::int16_t>(); ++i) {
        const int r = a[i] - b[i];
        a[i] = std::int16_t(r > 32767 ? 32767 : r < -32768 ? -32768 : r);
    }
    return a;
#endif
}

// The high 16 bits of the 32-bit products.
VEK_ELEMENT VS mulhi16(VS a, VS b) {
#if VEK_SIMD_BYTES == 64
    return (VS)_mm512_mulhi_epi16((__m512i)a, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    return (VS)_mm256_mulhi_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (VS)_mm_mulhi_epi16((__m128i)a, (__m128i)b);
#else
    for (int i = 0; i < lanes<std::int16_t>(); ++i) a[i] = std::int16_t((a[i] * b[i]) >> 16);
    return a;
#endif
}

// Products of 16-bit lanes, added in pairs into 32-bit lanes:
// r[k] = a[2k] b[2k] + a[2k+1] b[2k+1], modulo 2^32 (the one sum that does
// not fit, 2 * (-32768)^2, wraps).
VEK_ELEMENT VU madd16(VS a, VS b) {
#if VEK_SIMD_BYTES == 64
    return (VU)_mm512_madd_epi16((__m512i)a, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    return (VU)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (VU)_mm_madd_epi16((__m128i)a, (__m128i)b);
#else
    VU r;
    for (int i = 0; i < lanes<std::int32_t>(); ++i)
        r[i] = std::uint32_t(a[2 * i] * b[2 * i]) + std::uint32_t(a[2 * i + 1] * b[2 * i + 1]);
    return r;
#endif
}

}  // namespace VEK_ISA
}  // namespace vek

#endif  // VEK_SIMD_INL
