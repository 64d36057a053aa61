#include "scale.hpp"

#include <algorithm>
#include <cmath>

#include "vector/narrow.hpp"

namespace vek {

namespace {

// The mode a block conversion takes: FIXED before AUTO, as the element-wise
// dispatch does with combined bits.
enum class Path { Wrap, Saturate, Fixed, Auto };

Path path_of(int scaleMode) {
    if (scaleMode & VEK_FIXED_SCALE) return Path::Fixed;
    if (scaleMode & VEK_AUTO_SCALE) return Path::Auto;
    return (scaleMode & VEK_SATURATE) ? Path::Saturate : Path::Wrap;
}

// Beyond this, 2^-factor is 0 or infinite in double either way.
constexpr int kFarFactor = 2048;

template <class Real>
void narrow_real(const Real* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor,
                 void (*scale)(const Real*, std::int16_t*, int, int, bool),
                 double (*peak)(const Real*, int)) {
    switch (path_of(scaleMode)) {
        case Path::Wrap:
            return scale(src, dst, n, 0, false);
        case Path::Saturate:
            return scale(src, dst, n, 0, true);
        case Path::Fixed: {
            const int f = std::clamp(fixed_factor(scaleFactor), -kFarFactor, kFarFactor);
            return scale(src, dst, n, f, (scaleMode & VEK_SATURATE) != 0);
        }
        case Path::Auto: {
            // Saturating: only infinities can lie beyond the limits.
            const double p = peak(src, n);
            const int f = p > 0 ? std::ilogb(p) - 14 : 0;
            if (scaleFactor) *scaleFactor = f;
            return scale(src, dst, n, f, true);
        }
    }
}

}  // namespace

void narrow_block(const std::int32_t* src, std::int16_t* dst, int n, int scaleMode,
                  int* scaleFactor) {
    const NarrowOps& ops = narrow_ops();
    switch (path_of(scaleMode)) {
        case Path::Wrap:
            return ops.shift(src, dst, n, 0, false);
        case Path::Saturate:
            return ops.shift(src, dst, n, 0, true);
        case Path::Fixed: {
            const int f = std::clamp(fixed_factor(scaleFactor), -15, 31);
            return ops.shift(src, dst, n, f, (scaleMode & VEK_SATURATE) != 0);
        }
        case Path::Auto: {
            std::int32_t lo, hi;
            ops.range(src, n, &lo, &hi);
            int f = 0;
            if (lo < kShortMin || hi > kShortMax) {
                const std::int64_t peak = std::max(-std::int64_t(lo), std::int64_t(hi));
                int log2 = 0;
                while ((peak >> (log2 + 1)) != 0) ++log2;
                f = log2 - 14;
            }
            ops.shift(src, dst, n, f, false);
            if (scaleFactor) *scaleFactor = f;
            return;
        }
    }
}

void narrow_block(const float* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor) {
    const NarrowOps& ops = narrow_ops();
    narrow_real(src, dst, n, scaleMode, scaleFactor, ops.scale_s, ops.peak_s);
}

void narrow_block(const double* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor) {
    const NarrowOps& ops = narrow_ops();
    narrow_real(src, dst, n, scaleMode, scaleFactor, ops.scale_d, ops.peak_d);
}

bool check_scale_args(const Site& site, int scaleMode, const int* scaleFactor) {
    if ((scaleMode & VEK_FIXED_SCALE) && (scaleMode & VEK_AUTO_SCALE)) {
        site.bad("scaleMode & VEK_FIXED_SCALE && scaleMode & VEK_AUTO_SCALE");
        return false;
    }
    if ((scaleMode & VEK_FIXED_SCALE) && (!scaleFactor || *scaleFactor < 0)) {
        site.bad("scaleMode & VEK_FIXED_SCALE && (scaleFactor==NULL || *scaleFactor<0)");
        return false;
    }
    if ((scaleMode & VEK_AUTO_SCALE) && !scaleFactor) {
        site.bad("scaleMode & VEK_AUTO_SCALE && scaleFactor==NULL");
        return false;
    }
    return true;
}

}  // namespace vek
