#include "scale.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

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

template <class Real>
std::int16_t from_real(Real x, bool saturate) {
    if (x != x) return 0;
    if (saturate) {
        if (x >= Real(kShortMax)) return static_cast<std::int16_t>(kShortMax);
        if (x <= Real(kShortMin)) return static_cast<std::int16_t>(kShortMin);
        return static_cast<std::int16_t>(x);
    }
    // Low 16 bits of the truncated value; values beyond 64 bits keep the
    // limit's low bits.
    constexpr Real kLimit = Real(9.2233720368547758e18);
    const std::int64_t t = x >= kLimit    ? std::numeric_limits<std::int64_t>::max()
                           : x <= -kLimit ? std::numeric_limits<std::int64_t>::min()
                                          : static_cast<std::int64_t>(x);
    return wrap16(t);
}

template <class Real>
void narrow_real(const Real* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor) {
    const Path path = path_of(scaleMode);
    int f = 0;
    bool saturate = (scaleMode & VEK_SATURATE) != 0;
    if (path == Path::Fixed) {
        f = fixed_factor(scaleFactor);
    } else if (path == Path::Auto) {
        double peak = 0;
        for (int i = 0; i < n; ++i) {
            const double m = std::fabs(double(src[i]));
            if (m > peak && m <= std::numeric_limits<double>::max()) peak = m;
        }
        f = peak > 0 ? std::ilogb(peak) - 14 : 0;
        saturate = true;  // only infinities can lie beyond the limits
        if (scaleFactor) *scaleFactor = f;
    }
    if (f == 0) {
        for (int i = 0; i < n; ++i) dst[i] = from_real(double(src[i]), saturate);
        return;
    }
    const double k = std::ldexp(1.0, -f);
    for (int i = 0; i < n; ++i) dst[i] = from_real(double(src[i]) * k, saturate);
}

}  // namespace

void narrow_block(const std::int32_t* src, std::int16_t* dst, int n, int scaleMode,
                  int* scaleFactor) {
    switch (path_of(scaleMode)) {
        case Path::Wrap:
            for (int i = 0; i < n; ++i) dst[i] = wrap16(src[i]);
            return;
        case Path::Saturate:
            for (int i = 0; i < n; ++i) dst[i] = sat16(src[i]);
            return;
        case Path::Fixed: {
            int f = fixed_factor(scaleFactor);
            if (f > 31) f = 31;
            if (f < -15) f = -15;
            const bool saturate = (scaleMode & VEK_SATURATE) != 0;
            for (int i = 0; i < n; ++i) {
                const std::int64_t v = shift_by(src[i], f);
                dst[i] = saturate ? sat16(v) : wrap16(v);
            }
            return;
        }
        case Path::Auto: {
            std::int32_t lo = 0, hi = 0;
            for (int i = 0; i < n; ++i) {
                if (src[i] < lo) lo = src[i];
                if (src[i] > hi) hi = src[i];
            }
            int f = 0;
            if (lo < kShortMin || hi > kShortMax) {
                const std::int64_t peak = std::max(-std::int64_t(lo), std::int64_t(hi));
                int log2 = 0;
                while ((peak >> (log2 + 1)) != 0) ++log2;
                f = log2 - 14;
            }
            for (int i = 0; i < n; ++i) dst[i] = wrap16(src[i] >> f);
            if (scaleFactor) *scaleFactor = f;
            return;
        }
    }
}

void narrow_block(const float* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor) {
    narrow_real(src, dst, n, scaleMode, scaleFactor);
}

void narrow_block(const double* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor) {
    narrow_real(src, dst, n, scaleMode, scaleFactor);
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
