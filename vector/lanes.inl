// Native-width vectors for the per-ISA kernel files, as GCC vector
// extensions: one source, lowered to SSE2, AVX2 or AVX-512 by the flags of
// the file that includes it. Include it from a *_kernels.inl after defining
// VEK_ISA; everything here lives in that ISA's namespace.
#ifndef VEK_LANES_INL
#define VEK_LANES_INL

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "vector/scale.hpp"  // VEK_ELEMENT

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#if defined(__AVX512F__) && defined(__GNUC__) && !defined(__clang__) && __GNUC__ < 13
// GCC 12 takes the undefined vectors that AVX-512 intrinsics pass for unused
// lanes for uninitialised reads (its bug 105593). The same kernels built for
// SSE2 and AVX2 keep the warning.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

namespace vek {
namespace VEK_ISA {

#if defined(__AVX512F__)
constexpr int kVecBytes = 64;
#elif defined(__AVX2__)
constexpr int kVecBytes = 32;
#else
constexpr int kVecBytes = 16;
#endif

template <class T, int N>
struct LanesOf {
    typedef T type __attribute__((vector_size(N * sizeof(T))));
};
// N lanes of T; by default as many as fill one native register.
template <class T, int N = kVecBytes / int(sizeof(T))>
using Vec = typename LanesOf<T, N>::type;

// The signed integer of a lane's width: the type of a comparison's result.
template <class T>
using MaskLane = std::conditional_t<
    sizeof(T) == 8, std::int64_t,
    std::conditional_t<sizeof(T) == 4, std::int32_t,
                       std::conditional_t<sizeof(T) == 2, std::int16_t, std::int8_t>>>;

template <class V, class T>
VEK_ELEMENT V load(const T* p) {
    V v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class V, class T>
VEK_ELEMENT void store(T* p, V v) {
    std::memcpy(p, &v, sizeof v);
}

// Loads and stores of the first `count` lanes (0 < count <= lanes) of V at
// p, for the ends of vectors. Memory past those lanes is neither read nor
// written. AVX-512 masks the lanes; elsewhere they are copied, and the
// kernels take their ends element by element instead.
#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512VL__)
constexpr bool kMaskedEnds = true;

template <class V, class T>
VEK_ELEMENT V load_first(const T* p, int count) {
    constexpr int kLane = sizeof(V{}[0]);
    const unsigned long long m = (2ull << (count - 1)) - 1;
    if constexpr (sizeof(V) == 64) {
        __m512i r;
        if constexpr (kLane == 1) r = _mm512_maskz_loadu_epi8(m, p);
        if constexpr (kLane == 2) r = _mm512_maskz_loadu_epi16(__mmask32(m), p);
        if constexpr (kLane == 4) r = _mm512_maskz_loadu_epi32(__mmask16(m), p);
        if constexpr (kLane == 8) r = _mm512_maskz_loadu_epi64(__mmask8(m), p);
        return reinterpret_cast<V>(r);
    } else if constexpr (sizeof(V) == 32) {
        __m256i r;
        if constexpr (kLane == 1) r = _mm256_maskz_loadu_epi8(__mmask32(m), p);
        if constexpr (kLane == 2) r = _mm256_maskz_loadu_epi16(__mmask16(m), p);
        if constexpr (kLane == 4) r = _mm256_maskz_loadu_epi32(__mmask8(m), p);
        if constexpr (kLane == 8) r = _mm256_maskz_loadu_epi64(__mmask8(m), p);
        return reinterpret_cast<V>(r);
    } else {
        __m128i r;
        if constexpr (kLane == 1) r = _mm_maskz_loadu_epi8(__mmask16(m), p);
        if constexpr (kLane == 2) r = _mm_maskz_loadu_epi16(__mmask8(m), p);
        if constexpr (kLane == 4) r = _mm_maskz_loadu_epi32(__mmask8(m), p);
        if constexpr (kLane == 8) r = _mm_maskz_loadu_epi64(__mmask8(m), p);
        V v;
        std::memcpy(&v, &r, sizeof v);  // an 8-byte vector is the low half
        return v;
    }
}

// Stores the lanes of v whose bit is set in `bits`; the others stay unwritten.
template <class V, class T>
VEK_ELEMENT void store_masked(T* p, V v, unsigned long long bits) {
    constexpr int kLane = sizeof(V{}[0]);
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
        std::memcpy(&x, &v, sizeof v);
        if constexpr (kLane == 1) _mm_mask_storeu_epi8(p, __mmask16(m), x);
        if constexpr (kLane == 2) _mm_mask_storeu_epi16(p, __mmask8(m), x);
        if constexpr (kLane == 4) _mm_mask_storeu_epi32(p, __mmask8(m), x);
        if constexpr (kLane == 8) _mm_mask_storeu_epi64(p, __mmask8(m), x);
    }
}

template <class V, class T>
VEK_ELEMENT void store_first(T* p, V v, int count) {
    store_masked(p, v, (2ull << (count - 1)) - 1);
}

#else
constexpr bool kMaskedEnds = false;

template <class V, class T>
VEK_ELEMENT V load_first(const T* p, int count) {
    V v{};
    std::memcpy(&v, p, std::size_t(count) * sizeof(v[0]));
    return v;
}

template <class V, class T>
VEK_ELEMENT void store_first(T* p, V v, int count) {
    std::memcpy(p, &v, std::size_t(count) * sizeof(v[0]));
}
#endif

template <class V>
VEK_ELEMENT V splat(decltype(V{}[0]) x) {
    return V{} + x;
}

// Lane i of the result is lane i ^ 1 of v: swaps re and im of complex pairs.
template <class V, std::size_t... I>
VEK_ELEMENT V swap_pairs_(V v, std::index_sequence<I...>) {
    return __builtin_shufflevector(v, v, (I ^ 1)...);
}
template <class V>
VEK_ELEMENT V swap_pairs(V v) {
    return swap_pairs_(v, std::make_index_sequence<sizeof(V) / sizeof(v[0])>());
}

// Each lane twice: (a, b, ...) -> (a, a, b, b, ...).
template <class W, class V, std::size_t... I>
VEK_ELEMENT W twice_(V v, std::index_sequence<I...>) {
    return __builtin_shufflevector(v, v, (I / 2)...);
}
template <class W, class V>
VEK_ELEMENT W twice(V v) {
    return twice_<W>(v, std::make_index_sequence<2 * sizeof(V) / sizeof(v[0])>());
}

// One bit per lane of a native-width float or double vector: set where
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

// Products of 16-bit lanes, added in pairs into 32-bit lanes:
// r[k] = a[2k] b[2k] + a[2k+1] b[2k+1], modulo 2^32 (the one sum that does
// not fit, 2 * (-32768)^2, wraps).
VEK_ELEMENT Vec<std::uint32_t> madd16(Vec<std::int16_t> a, Vec<std::int16_t> b) {
    using Out = Vec<std::uint32_t>;
#if defined(__AVX512BW__)
    return reinterpret_cast<Out>(
        _mm512_madd_epi16(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b)));
#elif defined(__AVX2__)
    return reinterpret_cast<Out>(
        _mm256_madd_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#elif defined(__SSE2__)
    return reinterpret_cast<Out>(
        _mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#else
    using W = Vec<std::int32_t>;
    const W aw = reinterpret_cast<W>(a), bw = reinterpret_cast<W>(b);
    const W alo = reinterpret_cast<W>(reinterpret_cast<Out>(aw) << 16) >> 16;
    const W blo = reinterpret_cast<W>(reinterpret_cast<Out>(bw) << 16) >> 16;
    return reinterpret_cast<Out>(alo * blo) + reinterpret_cast<Out>((aw >> 16) * (bw >> 16));
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
    constexpr std::size_t N = sizeof(V) / sizeof(v[0]);
    if constexpr (N == 1)
        return v[0];
    else
        return lane_total(fold_halves_(v, std::make_index_sequence<N / 2>()));
}

// ------------------------------------------------ sums in a fixed lane layout
//
// Floating-point sums must come out the same on every instruction set, so
// their order is fixed, not the ISA's: term i of a stream always goes to
// partial sum i mod kSumLanes (double precision), and the partial sums are
// then folded pairwise in a fixed order. A path with wider registers only
// holds the same partial sums in fewer of them.
constexpr int kSumLanes = 16;

// Runs `step(acc, r, at)` over the whole blocks of kSumLanes terms of an
// n-term stream, where acc[k][r] (k < Sets) holds the partial sums of the
// r-th native vector of the block and `at` is the index of its first term,
// then spills the sums to lanes[k][...] and adds each remaining term through
// `tail(lanes, lane, index)`.
template <int Sets, class Step, class Tail>
VEK_ELEMENT void sum_lanes(std::ptrdiff_t n, Step step, Tail tail,
                           double (&lanes)[Sets][kSumLanes]) {
    constexpr int L = kVecBytes / 8;
    constexpr int R = kSumLanes / L;
    Vec<double, L> acc[Sets][R] = {};
    std::ptrdiff_t i = 0;
    for (; i <= n - kSumLanes; i += kSumLanes) {
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r) step(acc, r, i + r * L);
    }
    for (int k = 0; k < Sets; ++k)
        for (int r = 0; r < R; ++r) store(&lanes[k][r * L], acc[k][r]);
    for (int lane = 0; i < n; ++i, ++lane) tail(lanes, lane, i);
}

// Pairwise sum of kSumLanes lanes kept in memory, in a fixed order: lane j
// gathers j + 8, then j + 4, ... down to the stride `until`. Leaves the sums
// of the `until` interleaved classes (1: all; 2: even and odd terms, the
// real and imaginary parts of complex streams) in lanes[0..until).
VEK_ELEMENT void fold_lanes(double* lanes, int until = 1) {
    for (int w = kSumLanes / 2; w >= until; w /= 2)
        for (int j = 0; j < w; ++j) lanes[j] += lanes[j + w];
}

}  // namespace VEK_ISA
}  // namespace vek

#endif  // VEK_LANES_INL
