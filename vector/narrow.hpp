// The loops of the block narrowing to 16 bits (narrow_block, scale.cpp), one
// table per instruction set. The caller takes the factor and the rule from
// the scale mode; these apply them. dst may be src reinterpreted: every loop
// writes no further ahead than it has read.
#pragma once

#include <cstdint>

#include "frame/cpu.hpp"

namespace vek {

struct NarrowOps {
    // dst[i] = src[i] shifted by f (right for f > 0, left for f < 0;
    // -15 <= f <= 31), then clamped or cut to its low 16 bits.
    void (*shift)(const std::int32_t* src, std::int16_t* dst, int n, int f, bool saturate);
    // The least and the greatest of 0 and the elements.
    void (*range)(const std::int32_t* src, int n, std::int32_t* lo, std::int32_t* hi);
    // dst[i] = src[i] * 2^-f truncated toward zero (|f| <= 2048; f = 0 does
    // not multiply), by the rule of real16.
    void (*scale_s)(const float* src, std::int16_t* dst, int n, int f, bool saturate);
    void (*scale_d)(const double* src, std::int16_t* dst, int n, int f, bool saturate);
    // The largest finite magnitude, or 0.
    double (*peak_s)(const float* src, int n);
    double (*peak_d)(const double* src, int n);
};

namespace sse2 {
extern const NarrowOps narrow_ops;
}
namespace avx2 {
extern const NarrowOps narrow_ops;
}
namespace avx512 {
extern const NarrowOps narrow_ops;
}

inline const NarrowOps& narrow_ops() {
    static const NarrowOps* const kNarrowTables[kIsaCount] = {&sse2::narrow_ops, &avx2::narrow_ops,
                                                              &avx512::narrow_ops};
    return pick(kNarrowTables);
}

}  // namespace vek
