// The thin SIMD layer of the per-ISA kernels.
//
// Include it from a kernel file after `#define VEK_ISA sse2` (or avx2,
// avx512): everything lands in namespace vek::VEK_ISA, so each instruction
// set gets its own copy. Vectors are GCC vector types as wide as the ISA's
// registers (16, 32 or 64 bytes); the few operations those types lack
// (square root, saturating 16-bit arithmetic, lane shuffles, mask tests)
// are intrinsics here and nowhere else.
#ifndef VEK_SIMD_INL
#define VEK_SIMD_INL

#ifndef VEK_ISA
#error "define VEK_ISA before including simd.inl"
#endif

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
// GCC 12 takes the undefined source operands of some AVX-512 intrinsics
// for uninitialised variables.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#endif

#ifndef VEK_ELEMENT
#define VEK_ELEMENT static inline __attribute__((always_inline))
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

typedef float VF __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef double VD __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef std::int16_t VS __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef std::uint16_t VUS __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef std::int32_t VI __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef std::uint32_t VU __attribute__((vector_size(VEK_SIMD_BYTES)));
typedef std::int64_t VL __attribute__((vector_size(VEK_SIMD_BYTES)));

// Lanes per vector.
template <class S>
constexpr int lanes() {
    return kVecBytes / int(sizeof(S));
}

// The vector type of a scalar type.
template <class S>
struct VecOf;
template <>
struct VecOf<float> {
    using type = VF;
};
template <>
struct VecOf<double> {
    using type = VD;
};
template <>
struct VecOf<std::int16_t> {
    using type = VS;
};
template <>
struct VecOf<std::int32_t> {
    using type = VI;
};
template <class S>
using Vec = typename VecOf<S>::type;

// ----------------------------------------------------------------- memory

// Unaligned loads and stores; callers' buffers need no alignment.
template <class V, class S>
VEK_ELEMENT V vload(const S* p) {
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
template <class V, class S>
VEK_ELEMENT void vstore(S* p, V v) {
    __builtin_memcpy(p, &v, sizeof v);
}

// Every lane s (by assignment: 0 + s would turn -0.0 into +0.0).
template <class V, class S>
VEK_ELEMENT V splat(S s) {
    V v{};
    for (int i = 0; i < int(sizeof(V) / sizeof(v[0])); ++i) v[i] = s;
    return v;
}

// A vector repeating the pair (a, b): a in even lanes, b in odd lanes.
template <class V, class S>
VEK_ELEMENT V pairs(S a, S b) {
    V v{};
    for (int i = 0; i < int(sizeof(V) / sizeof(v[0])); ++i) v[i] = (i & 1) ? b : a;
    return v;
}

// All ones in even lanes (a mask for "real part" lanes of pair data).
VEK_ELEMENT VL even_lanes_d() { return pairs<VL, std::int64_t>(-1, 0); }
VEK_ELEMENT VI even_lanes_f() { return pairs<VI, std::int32_t>(-1, 0); }

// The first r elements at p (0 < r < lanes), the other lanes taken from
// pad; and the first r lanes of v stored at p. Nothing past p[r-1] is read
// or written.
#if VEK_SIMD_BYTES == 64
VEK_ELEMENT VF load_part(const float* p, int r, VF pad) {
    return (VF)_mm512_mask_loadu_ps((__m512)pad, __mmask16((1u << r) - 1), p);
}
VEK_ELEMENT VD load_part(const double* p, int r, VD pad) {
    return (VD)_mm512_mask_loadu_pd((__m512d)pad, __mmask8((1u << r) - 1), p);
}
VEK_ELEMENT VS load_part(const std::int16_t* p, int r, VS pad) {
    return (VS)_mm512_mask_loadu_epi16((__m512i)pad, __mmask32((1u << r) - 1), p);
}
VEK_ELEMENT void store_part(float* p, VF v, int r) {
    _mm512_mask_storeu_ps(p, __mmask16((1u << r) - 1), (__m512)v);
}
VEK_ELEMENT void store_part(double* p, VD v, int r) {
    _mm512_mask_storeu_pd(p, __mmask8((1u << r) - 1), (__m512d)v);
}
VEK_ELEMENT void store_part(std::int16_t* p, VS v, int r) {
    _mm512_mask_storeu_epi16(p, __mmask32((1u << r) - 1), (__m512i)v);
}
#else
template <class V, class S>
VEK_ELEMENT V load_part(const S* p, int r, V pad) {
    S t[sizeof(V) / sizeof(S)];
    vstore(t, pad);
    for (int j = 0; j < r; ++j) t[j] = p[j];
    return vload<V>(t);
}
template <class V, class S>
VEK_ELEMENT void store_part(S* p, V v, int r) {
    S t[sizeof(V) / sizeof(S)];
    vstore(t, v);
    for (int j = 0; j < r; ++j) p[j] = t[j];
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

// True when any bit of the vector is set (comparison masks included).
template <class V>
VEK_ELEMENT bool any(V m) {
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

// ----------------------------------------------------------------- float

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

// The low and high halves of a float vector, widened exactly to double.
VEK_ELEMENT VD lo_pd(VF x) {
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

VEK_ELEMENT VD hi_pd(VF x) {
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

// Two double vectors rounded to float (round to nearest) and joined.
VEK_ELEMENT VF to_ps(VD lo, VD hi) {
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

// Pair shuffles of double vectors holding (re, im) pairs.
VEK_ELEMENT VD dup_even(VD x) {  // (re, re)
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

VEK_ELEMENT VD dup_odd(VD x) {  // (im, im)
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

VEK_ELEMENT VD swap_pairs(VD x) {  // (im, re)
#if VEK_SIMD_BYTES == 64
    return (VD)_mm512_permute_pd((__m512d)x, 0x55);
#elif VEK_SIMD_BYTES == 32
    return (VD)_mm256_permute_pd((__m256d)x, 0x5);
#elif defined(__SSE2__)
    return (VD)_mm_shuffle_pd((__m128d)x, (__m128d)x, 1);
#else
    for (int i = 0; i < lanes<double>(); i += 2) {
        const double t = x[i];
        x[i] = x[i + 1];
        x[i + 1] = t;
    }
    return x;
#endif
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

// Per 32-bit lane: a.lo*b.lo + a.hi*b.hi of the 16-bit halves, modulo 2^32.
VEK_ELEMENT VI madd16(VS a, VS b) {
#if VEK_SIMD_BYTES == 64
    return (VI)_mm512_madd_epi16((__m512i)a, (__m512i)b);
#elif VEK_SIMD_BYTES == 32
    return (VI)_mm256_madd_epi16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (VI)_mm_madd_epi16((__m128i)a, (__m128i)b);
#else
    VI r;
    for (int i = 0; i < lanes<std::int32_t>(); ++i)
        r[i] = std::int32_t(std::uint32_t(a[2 * i] * b[2 * i]) +
                            std::uint32_t(a[2 * i + 1] * b[2 * i + 1]));
    return r;
#endif
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

}  // namespace VEK_ISA
}  // namespace vek

#endif  // VEK_SIMD_INL
