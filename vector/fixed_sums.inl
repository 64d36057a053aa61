// Floating-point sums in a fixed lane layout, for the per-ISA kernels of
// dot products and statistics (include after simd.inl).
//
// Floating-point sums must come out the same on every instruction set, so
// their order is fixed, not the ISA's: term i of a stream always goes to
// partial sum i mod kSumLanes (double precision), and the partial sums are
// then folded pairwise in a fixed order. A path with wider registers only
// holds the same partial sums in fewer of them.
#ifndef VEK_FIXED_SUMS_INL
#define VEK_FIXED_SUMS_INL

#include <cstddef>

#include "vector/simd.inl"

namespace vek {
namespace VEK_ISA {

constexpr int kSumLanes = 16;

// Runs `step(acc, r, at)` over the whole blocks of kSumLanes terms of an
// n-term stream, where acc[k][r] (k < Sets) holds the partial sums of the
// r-th register of the block and `at` is the index of its first term, then
// spills the sums to sums[k][...] and adds each remaining term through
// `tail(sums, lane, index)`.
template <int Sets, class Step, class Tail>
VEK_ELEMENT void sum_lanes(std::ptrdiff_t n, Step step, Tail tail,
                           double (&sums)[Sets][kSumLanes]) {
    constexpr int L = lanes<double>();
    constexpr int R = kSumLanes / L;
    VD acc[Sets][R] = {};
    std::ptrdiff_t i = 0;
    for (; i <= n - kSumLanes; i += kSumLanes) {
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r) step(acc, r, i + r * L);
    }
    for (int k = 0; k < Sets; ++k)
        for (int r = 0; r < R; ++r) store(&sums[k][r * L], acc[k][r]);
    for (int lane = 0; i < n; ++i, ++lane) tail(sums, lane, i);
}

// Pairwise sum of kSumLanes partial sums kept in memory, in a fixed order:
// lane j gathers j + 8, then j + 4, ... down to the stride `until`. Leaves
// the sums of the `until` interleaved classes (1: all; 2: even and odd
// terms, the real and imaginary parts of complex streams) in sums[0..until).
VEK_ELEMENT void fold_lanes(double* sums, int until = 1) {
    for (int w = kSumLanes / 2; w >= until; w /= 2)
        for (int j = 0; j < w; ++j) sums[j] += sums[j + w];
}

}  // namespace VEK_ISA
}  // namespace vek

#endif  // VEK_FIXED_SUMS_INL
