// Conversions between floating-point vectors and 8-, 16- and 32-bit integer
// vectors: the argument checks shared by the modules vekcvrts and vekcvrtd,
// and the table of conversion loops that each instruction set provides.
#pragma once

#include "frame/context.hpp"
#include "frame/cpu.hpp"
#include "frame/report.hpp"

namespace vek {

// Loop order: rounding (nearest, zero, floor, ceil), then signedness, then
// width (8, 16, 32 bits).
enum Rounding { kNear = 0, kZero = 1, kFloor = 2, kCeil = 3 };
constexpr int kWidths = 3;
constexpr int kFromIntLoops = 2 * kWidths;
constexpr int kToIntLoops = 4 * 2 * kWidths;

constexpr int loop_index(int rounding, bool isUnsigned, int width) {
    return (rounding * 2 + (isUnsigned ? 1 : 0)) * kWidths + width;
}

// Conversion loops. A float-to-integer loop reports each out-of-range
// element at `site` when the flags ask for it.
using IntToFloat = void (*)(const void* src, float* dst, int len);
using IntToDouble = void (*)(const void* src, double* dst, int len);
using FloatToInt = void (*)(const float* src, void* dst, int len, int flags, const Site& site);
using DoubleToInt = void (*)(const double* src, void* dst, int len, int flags, const Site& site);

struct ConvertOps {
    IntToFloat int_to_s[kFromIntLoops];  // by loop_index(0, unsigned, width)
    IntToDouble int_to_d[kFromIntLoops];
    FloatToInt s_to_int[kToIntLoops];  // by loop_index(rounding, unsigned, width)
    DoubleToInt d_to_int[kToIntLoops];
};

namespace sse2 {
extern const ConvertOps convert_ops;
}
namespace avx2 {
extern const ConvertOps convert_ops;
}
namespace avx512 {
extern const ConvertOps convert_ops;
}

// The loops of the active instruction set.
inline const ConvertOps& convert_ops() {
    static const ConvertOps* const kConvertTables[kIsaCount] = {
        &sse2::convert_ops, &avx2::convert_ops, &avx512::convert_ops};
    return pick(kConvertTables);
}

enum class Direction { FromInt, ToInt };

// The rounding a float-to-integer flags word selects, or -1 unless exactly
// one rounding bit is set and nothing beyond the known bits.
inline int rounding_of(int flags) {
    constexpr int kKnown = VEK_RndNear | VEK_RndZero | VEK_RndFloor | VEK_RndCeil |
                           VEK_CvtUnsigned | VEK_CvtSaturate | VEK_CvtReport;
    if (flags & ~kKnown) return -1;
    switch (flags & (VEK_RndNear | VEK_RndZero | VEK_RndFloor | VEK_RndCeil)) {
        case VEK_RndNear:
            return kNear;
        case VEK_RndZero:
            return kZero;
        case VEK_RndFloor:
            return kFloor;
        case VEK_RndCeil:
            return kCeil;
        default:
            return -1;
    }
}

// Reports every failed check of a conversion call at `site`, in order
// (width and rounding are -1 when invalid).
void report_convert_args(const Site& site, const void* src, const void* dst, int len, int width,
                         int rounding);

// Clears the thread's status (these exports start afresh: an earlier
// failure does not stop them), then checks the arguments. Returns the index
// of the loop that performs the call, or -1 after reporting every failure.
inline int convert_loop(const Site& site, const void* src, const void* dst, int len, int intSize,
                        int flags, Direction direction) {
    context()->status = VEK_StatusOk;
    const int width = (intSize == 8) ? 0 : (intSize == 16) ? 1 : (intSize == 32) ? 2 : -1;
    const int rounding = direction == Direction::ToInt     ? rounding_of(flags)
                         : (flags & ~VEK_CvtUnsigned) == 0 ? 0
                                                           : -1;
    if (len > 0 && src && dst && width >= 0 && rounding >= 0)
        return loop_index(rounding, (flags & VEK_CvtUnsigned) != 0, width);
    report_convert_args(site, src, dst, len, width, rounding);
    return -1;
}

}  // namespace vek
