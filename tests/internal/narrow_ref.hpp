// The rules of the 16-bit block narrowing, written out as a reference: 32-bit
// and floating-point results to 16 bits under a scale mode, computed in
// 64-bit integers and long double.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace vektest {

using Shorts = std::vector<std::int16_t>;

// The low 16 bits of an integral value held in a long double.
inline std::int16_t low16(long double t) {
    long double m = std::fmod(t, 65536.0L);
    if (m < 0) m += 65536.0L;
    const int u = int(m);
    return std::int16_t(u >= 32768 ? u - 65536 : u);
}

inline std::int16_t clamp16(long double t) {
    return std::int16_t(t > 32767 ? 32767 : t < -32768 ? -32768 : t);
}

enum class NarrowPath { Wrap, Saturate, Fixed, Auto };

inline NarrowPath narrow_path(int mode) {
    return (mode & 2)   ? NarrowPath::Fixed
           : (mode & 4) ? NarrowPath::Auto
           : (mode & 1) ? NarrowPath::Saturate
                        : NarrowPath::Wrap;
}

// 32-bit results: x * 2^-f rounded toward minus infinity, f limited to
// -15..31 (fixed) or taken from the largest magnitude (auto).
inline Shorts narrowed(const std::vector<std::int32_t>& v, int mode, int* factor) {
    int f = 0;
    bool saturate = (mode & 1) != 0;
    const NarrowPath path = narrow_path(mode);
    if (path == NarrowPath::Fixed) {
        f = factor ? *factor : 0;
        f = f > 31 ? 31 : f < -15 ? -15 : f;
    } else if (path == NarrowPath::Auto) {
        std::int64_t peak = 0;
        bool fits = true;
        for (std::int32_t x : v) {
            fits = fits && x >= -32768 && x <= 32767;
            peak = std::max<std::int64_t>(peak, std::llabs(x));
        }
        f = fits ? 0 : std::ilogb(double(peak)) - 14;
        saturate = false;
        if (factor) *factor = f;
    }
    Shorts out;
    for (std::int32_t x : v) {
        const long double y = std::floor(std::ldexp(static_cast<long double>(x), -f));
        out.push_back(saturate ? clamp16(y) : low16(y));
    }
    return out;
}

// Floating-point results: x * 2^-f truncated toward zero, NaN to 0;
// beyond 2^63 the wrapped value is that of the 64-bit limit.
template <class Real>
Shorts narrowed(const std::vector<Real>& v, int mode, int* factor) {
    int f = 0;
    bool saturate = (mode & 1) != 0;
    const NarrowPath path = narrow_path(mode);
    if (path == NarrowPath::Fixed) {
        f = factor ? *factor : 0;
    } else if (path == NarrowPath::Auto) {
        long double peak = 0;
        for (Real x : v)
            if (std::isfinite(x)) peak = std::max(peak, std::fabs(static_cast<long double>(x)));
        f = peak > 0 ? std::ilogb(peak) - 14 : 0;
        saturate = true;
        if (factor) *factor = f;
    }
    const long double k = std::ldexp(1.0L, -std::max(-3000, std::min(3000, f)));
    Shorts out;
    for (Real x : v) {
        const long double y = x * k;
        if (std::isnan(y)) {
            out.push_back(0);
        } else if (saturate) {
            out.push_back(clamp16(std::trunc(y)));
        } else {
            const long double limit = 9223372036854775808.0L;  // 2^63
            out.push_back(y >= limit    ? std::int16_t(-1)     // low bits of 2^63 - 1
                          : y <= -limit ? std::int16_t(0)      // and of -2^63
                                        : low16(std::trunc(y)));
        }
    }
    return out;
}

}  // namespace vektest
