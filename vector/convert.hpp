// Conversions between floating-point vectors and 8-, 16- and 32-bit integer
// vectors: the argument checks shared by the modules vekcvrts and vekcvrtd,
// and the table of conversion loops that each instruction set provides.
#pragma once

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
const ConvertOps& convert_ops();

// Clears the thread's status, then runs every check of a conversion call,
// reporting each failure at `site`. Returns the index of the loop that
// performs the call, or -1 after any failure.
enum class Direction { FromInt, ToInt };
int convert_checks(const Site& site, const void* src, const void* dst, int len, int intSize,
                   int flags, Direction direction);

}  // namespace vek
