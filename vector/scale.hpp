// Narrowing of 32-bit and floating-point results to 16 bits under the scale
// modes (scaleMode, scaleFactor) that every 16-bit export takes last.
//
// Two rule sets:
//  - element rules (wrap16, sat16, fixed_wrap, fixed_sat_*) used by the
//    element-wise 16-bit arithmetic, one result at a time;
//  - block conversions (narrow_block) used by dot products, transforms and
//    filters: one factor for the whole block, written back in auto mode.
#pragma once

#include <cstdint>

#include "frame/cpu.hpp"  // VEK_ELEMENT: the element rules are inlined into per-ISA kernels
#include "frame/report.hpp"

namespace vek {

constexpr std::int32_t kShortMax = 32767;
constexpr std::int32_t kShortMin = -32768;

// ----------------------------------------------------------------- elements

// The low 16 bits.
VEK_ELEMENT std::int16_t wrap16(std::int64_t r) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint64_t>(r)));
}

// Clamped to -32768..32767.
VEK_ELEMENT std::int16_t sat16(std::int64_t r) {
    return static_cast<std::int16_t>(r > kShortMax ? kShortMax : r < kShortMin ? kShortMin : r);
}

// Arithmetic shift of r by f: right for f > 0 (toward minus infinity), left
// for f < 0, exact in 64 bits for every f.
VEK_ELEMENT std::int64_t shift_by(std::int64_t r, int f) {
    if (f >= 0) return f >= 63 ? (r < 0 ? -1 : 0) : r >> f;
    const int s = -f;
    return s >= 32 ? 0 : static_cast<std::int64_t>(static_cast<std::uint64_t>(r) << s);
}

// True when r is a 16-bit value.
VEK_ELEMENT bool fits16(std::int64_t r) { return r >= kShortMin && r <= kShortMax; }

// Results are taken as 64-bit values: the imaginary part of a complex
// 16-bit product can reach 2^31.

// Fixed factor without saturation: the low 16 bits of r shifted by f.
VEK_ELEMENT std::int16_t fixed_wrap(std::int64_t r, int f) { return wrap16(shift_by(r, f)); }

// Fixed factor with saturation, for sums and differences: a right shift
// always fits, a left shift saturates against the shifted limits.
VEK_ELEMENT std::int16_t fixed_sat_left(std::int64_t r, int f) {
    const int s = -f;
    const std::int32_t upper = s >= 16 ? 0 : kShortMax >> s;
    const std::int32_t lower = s >= 16 ? 0 : kShortMin >> s;
    if (r > upper) return static_cast<std::int16_t>(kShortMax);
    if (r < lower) return static_cast<std::int16_t>(kShortMin);
    return wrap16(shift_by(r, f));
}

VEK_ELEMENT std::int16_t fixed_sat_sum(std::int64_t r, int f) {
    if (f == 0) return sat16(r);
    if (f > 0) return wrap16(shift_by(r, f));
    return fixed_sat_left(r, f);
}

// Fixed factor with saturation, for products: clamped after a right shift.
VEK_ELEMENT std::int16_t fixed_sat_product(std::int64_t r, int f) {
    if (f >= 0) return sat16(shift_by(r, f));
    return fixed_sat_left(r, f);
}

// A block conversion of one 32-bit result: shifted by f, then clamped
// (saturate) or cut to its low 16 bits.
VEK_ELEMENT std::int16_t shift16(std::int64_t r, int f, bool saturate) {
    const std::int64_t v = shift_by(r, f);
    return saturate ? sat16(v) : wrap16(v);
}

// A block conversion of one floating-point result, already scaled: NaN
// becomes 0; saturation clamps to -32768..32767, then truncates toward
// zero; otherwise the low 16 bits of the truncated value are kept (beyond
// 64 bits, those of the 64-bit limit).
VEK_ELEMENT std::int16_t real16(double x, bool saturate) {
    if (x != x) return 0;
    if (saturate) {
        if (x >= double(kShortMax)) return static_cast<std::int16_t>(kShortMax);
        if (x <= double(kShortMin)) return static_cast<std::int16_t>(kShortMin);
        return static_cast<std::int16_t>(x);
    }
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    const std::int64_t t = x >= kLimit    ? INT64_MAX
                           : x <= -kLimit ? INT64_MIN
                                          : static_cast<std::int64_t>(x);
    return wrap16(t);
}

// The factor a fixed path reads: a null pointer reads as 0.
VEK_ELEMENT int fixed_factor(const int* scaleFactor) { return scaleFactor ? *scaleFactor : 0; }

// ----------------------------------------------------------------- blocks

// 32-bit results to 16 bits: mode 0 wraps, 1 saturates, FIXED shifts by the
// caller's factor (right by at most 31, left by at most 15; saturating with
// bit 1, else wrapping), AUTO picks the smallest right shift that makes the
// largest magnitude fit and writes it to *scaleFactor (when not null).
// dst may equal src reinterpreted only if it does not run ahead of it.
void narrow_block(const std::int32_t* src, std::int16_t* dst, int n, int scaleMode,
                  int* scaleFactor);

// Floating-point results to 16 bits, truncating toward zero: AUTO takes the
// factor from the largest magnitude's binary exponent minus 14 (negative for
// small values, which are scaled up), FIXED multiplies by 2^-factor;
// saturation clamps to -32768..32767 before truncating, otherwise the low
// 16 bits are kept. NaN becomes 0.
void narrow_block(const float* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor);
void narrow_block(const double* src, std::int16_t* dst, int n, int scaleMode, int* scaleFactor);

// One value, as a block of one.
inline std::int16_t narrow_one(std::int32_t r, int scaleMode, int* scaleFactor) {
    std::int16_t out;
    narrow_block(&r, &out, 1, scaleMode, scaleFactor);
    return out;
}

// The argument check of the exports that reject the FIXED-and-AUTO
// combination, a FIXED factor that is null or negative, and AUTO without a
// factor pointer. Reports the first failure at `site` and returns false.
bool check_scale_args(const Site& site, int scaleMode, const int* scaleFactor);

}  // namespace vek
