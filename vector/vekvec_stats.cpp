// Statistics of one vector: mean, mean square, maximum and minimum.
#include <cstdint>

#include "vector/scale.hpp"
#include "vector/stats.hpp"

extern "C" {

VEK_API float veksMean(const float* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return float(vek::stats_ops().sum_s(vec, len) / len);
}

VEK_API double vekdMean(const double* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().sum_d(vec, len) / len;
}

VEK_API short vekwMean(const short* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return short(vek::stats_ops().sum_w(vec, len) / len);
}

// The mean square: no mean is taken off and no root is taken.
VEK_API float veksStdDev(const float* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return float(vek::stats_ops().sum_squares_s(vec, len) / len);
}

VEK_API double vekdStdDev(const double* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().sum_squares_d(vec, len) / len;
}

VEK_API short vekwStdDev(const short* vec, int len, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    if (!vek::check_scale_args(site, scaleMode, scaleFactor)) return 0;
    const double meanSquare = double(vek::stats_ops().sum_squares_w(vec, len)) / len;
    std::int16_t out;
    vek::narrow_block(&meanSquare, &out, 1, scaleMode, scaleFactor);
    return out;
}

VEK_API float veksMax(const float* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_s(vec, len, nullptr);
}

VEK_API double vekdMax(const double* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_d(vec, len, nullptr);
}

VEK_API short vekwMax(const short* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_w(vec, len, nullptr);
}

VEK_API float veksMin(const float* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_s(vec, len, nullptr);
}

VEK_API double vekdMin(const double* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_d(vec, len, nullptr);
}

VEK_API short vekwMin(const short* vec, int len) {
    VEK_SITE("vekvec");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_w(vec, len, nullptr);
}

}  // extern "C"
