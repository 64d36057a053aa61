// Maximum and minimum of one vector with the index of their first
// occurrence; a null index pointer asks for the value alone.
#include "vector/stats.hpp"

extern "C" {

VEK_API float veksMaxExt(const float* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_s(vec, len, index);
}

VEK_API double vekdMaxExt(const double* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_d(vec, len, index);
}

VEK_API short vekwMaxExt(const short* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().max_w(vec, len, index);
}

VEK_API float veksMinExt(const float* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_s(vec, len, index);
}

VEK_API double vekdMinExt(const double* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_d(vec, len, index);
}

VEK_API short vekwMinExt(const short* vec, int len, int* index) {
    VEK_SITE("vekvece");
    if (!vek::stats_args_ok(site, vec, len)) return 0;
    return vek::stats_ops().min_w(vec, len, index);
}

}  // extern "C"
