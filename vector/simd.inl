// Native-width vectors for the per-ISA kernel files, as GCC vector
// extensions: one source, lowered to SSE2, AVX2 or AVX-512 by the flags of
// the file that includes it. Include it from a *_kernels.inl after defining
// VEK_ISA; everything here lives in that ISA's namespace.
#ifndef VEK_SIMD_INL
#define VEK_SIMD_INL

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "vector/scale.hpp"  // VEK_ELEMENT

#if defined(__SSE2__)
#include <immintrin.h>
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

// True when every lane of a comparison result is set.
template <class M>
VEK_ELEMENT bool all_set(M m) {
#if defined(__AVX512F__) && defined(__AVX512DQ__)
    if constexpr (sizeof(M) == 64 && sizeof(m[0]) == 4)
        return _mm512_movepi32_mask(reinterpret_cast<__m512i>(m)) == 0xFFFF;
    if constexpr (sizeof(M) == 64 && sizeof(m[0]) == 8)
        return _mm512_movepi64_mask(reinterpret_cast<__m512i>(m)) == 0xFF;
#endif
#if defined(__AVX__)
    if constexpr (sizeof(M) == 32 && sizeof(m[0]) == 4)
        return _mm256_movemask_ps(reinterpret_cast<__m256>(m)) == 0xFF;
    if constexpr (sizeof(M) == 32 && sizeof(m[0]) == 8)
        return _mm256_movemask_pd(reinterpret_cast<__m256d>(m)) == 0xF;
#endif
#if defined(__SSE2__)
    if constexpr (sizeof(M) == 16 && sizeof(m[0]) == 4)
        return _mm_movemask_ps(reinterpret_cast<__m128>(m)) == 0xF;
    if constexpr (sizeof(M) == 16 && sizeof(m[0]) == 8)
        return _mm_movemask_pd(reinterpret_cast<__m128d>(m)) == 0x3;
#endif
    bool all = true;
    for (std::size_t i = 0; i < sizeof(M) / sizeof(m[0]); ++i) all = all && m[i] != 0;
    return all;
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

// Pairwise sum of n (a power of two) lanes kept in memory, in a fixed order:
// lane j gathers j + n/2, then j + n/4, ... down to the stride `until`.
// Leaves the sums of the `until` interleaved classes in lanes[0..until).
template <class T>
VEK_ELEMENT void fold_lanes(T* lanes, int n, int until = 1) {
    for (int w = n / 2; w >= until; w /= 2)
        for (int j = 0; j < w; ++j) lanes[j] += lanes[j + w];
}

}  // namespace VEK_ISA
}  // namespace vek

#endif  // VEK_SIMD_INL
