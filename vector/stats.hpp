// Statistics of one real vector: the kernels each instruction set provides
// for the modules vekvec (mean, mean square, extremes) and vekvece (extremes
// with their index), and the argument checks they share.
#pragma once

#include <cstdint>

#include "frame/cpu.hpp"
#include "frame/report.hpp"

namespace vek {

struct StatsOps {
    // Floating sums in the fixed layout of partial sums (sum_lanes, lanes.inl).
    double (*sum_s)(const float* x, int n);
    double (*sum_squares_s)(const float* x, int n);
    double (*sum_d)(const double* x, int n);
    double (*sum_squares_d)(const double* x, int n);
    std::int32_t (*sum_w)(const short* x, int n);           // modulo 2^32
    std::uint64_t (*sum_squares_w)(const short* x, int n);  // exact
    // The extreme and the index of its first occurrence (written unless
    // index is null); NaN elements are passed over unless all are NaN (then
    // element 0).
    float (*max_s)(const float* x, int n, int* index);
    float (*min_s)(const float* x, int n, int* index);
    double (*max_d)(const double* x, int n, int* index);
    double (*min_d)(const double* x, int n, int* index);
    short (*max_w)(const short* x, int n, int* index);
    short (*min_w)(const short* x, int n, int* index);
};

namespace sse2 {
extern const StatsOps stats_ops;
}
namespace avx2 {
extern const StatsOps stats_ops;
}
namespace avx512 {
extern const StatsOps stats_ops;
}

inline const StatsOps& stats_ops() {
    static const StatsOps* const kStatsTables[kIsaCount] = {&sse2::stats_ops, &avx2::stats_ops,
                                                            &avx512::stats_ops};
    return pick(kStatsTables);
}

// The checks of every statistics export: the length before the pointer.
inline bool stats_args_ok(const Site& site, const void* vec, int len) {
    if (len < 1) return site.bad("len<=0"), false;
    if (!vec) return site.bad("vec==0"), false;
    return true;
}

}  // namespace vek
