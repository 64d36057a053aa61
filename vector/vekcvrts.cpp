// Conversions between single-precision vectors and 8-, 16- and 32-bit integer vectors.
#include "vector/convert.hpp"

namespace {

// Each of the 24 float-to-integer loops reports its out-of-range elements
// from a line of its own, in vek::loop_index order.
const int kLoopLine[vek::kToIntLoops] = {
    __LINE__,  // nearest, signed, 8 bits
    __LINE__,  // nearest, signed, 16 bits
    __LINE__,  // nearest, signed, 32 bits
    __LINE__,  // nearest, unsigned, 8 bits
    __LINE__,  // nearest, unsigned, 16 bits
    __LINE__,  // nearest, unsigned, 32 bits
    __LINE__,  // toward zero, signed, 8 bits
    __LINE__,  // toward zero, signed, 16 bits
    __LINE__,  // toward zero, signed, 32 bits
    __LINE__,  // toward zero, unsigned, 8 bits
    __LINE__,  // toward zero, unsigned, 16 bits
    __LINE__,  // toward zero, unsigned, 32 bits
    __LINE__,  // floor, signed, 8 bits
    __LINE__,  // floor, signed, 16 bits
    __LINE__,  // floor, signed, 32 bits
    __LINE__,  // floor, unsigned, 8 bits
    __LINE__,  // floor, unsigned, 16 bits
    __LINE__,  // floor, unsigned, 32 bits
    __LINE__,  // ceiling, signed, 8 bits
    __LINE__,  // ceiling, signed, 16 bits
    __LINE__,  // ceiling, signed, 32 bits
    __LINE__,  // ceiling, unsigned, 8 bits
    __LINE__,  // ceiling, unsigned, 16 bits
    __LINE__,  // ceiling, unsigned, 32 bits
};

}  // namespace

extern "C" {

VEK_API void veksbIntToFloat(const void* src, float* dst, int len, int intSize, int flags) {
    VEK_SITE("vekcvrts");
    const int loop =
        vek::convert_loop(site, src, dst, len, intSize, flags, vek::Direction::FromInt);
    if (loop < 0) return;
    vek::convert_ops().int_to_s[loop](src, dst, len);
}

VEK_API void veksbFloatToInt(const float* src, void* dst, int len, int intSize, int flags) {
    VEK_SITE("vekcvrts");
    const int loop = vek::convert_loop(site, src, dst, len, intSize, flags, vek::Direction::ToInt);
    if (loop < 0) return;
    vek::convert_ops().s_to_int[loop](src, dst, len, flags, site.at(kLoopLine[loop]));
}

}  // extern "C"
