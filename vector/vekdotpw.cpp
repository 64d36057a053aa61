// Dot products of 16-bit vectors: 32-bit sums, narrowed by the scale mode
// or returned whole (the Ext forms).
#include <cstdint>

#include "frame/report.hpp"
#include "vector/dot.hpp"
#include "vector/scale.hpp"

namespace {

// The checks of every 16-bit dot product, each reported from a line of its own.
bool arguments_ok(const vek::Site& site, const void* srcA, const void* srcB, int len, int scaleMode,
                  const int* scaleFactor) {
    if (!srcA) return site.at(__LINE__).bad("Null buffer pointer"), false;
    if (!srcB) return site.at(__LINE__).bad("Null buffer pointer"), false;
    if (len < 0) return site.at(__LINE__).bad("Invalid value"), false;
    if (scaleMode == VEK_AUTO_SCALE && !scaleFactor)
        return site.at(__LINE__).bad("Null scale factor pointer"), false;
    return true;
}

CplxShort narrow_pair(CplxInt sum, int scaleMode, int* scaleFactor) {
    const std::int32_t in[2] = {sum.re, sum.im};
    std::int16_t out[2];
    vek::narrow_block(in, out, 2, scaleMode, scaleFactor);
    return CplxShort{out[0], out[1]};
}

// The Ext forms return the sums whole: AUTO (exactly) writes factor 0,
// FIXED (exactly) shifts by the caller's factor keeping the low 32 bits, any
// other mode leaves them as they are.
std::int32_t shifted(std::int32_t sum, int scaleMode, const int* scaleFactor) {
    if (scaleMode != VEK_FIXED_SCALE) return sum;
    return std::int32_t(std::uint32_t(vek::shift_by(sum, vek::fixed_factor(scaleFactor))));
}

std::int32_t scale_whole(std::int32_t sum, int scaleMode, int* scaleFactor) {
    if (scaleMode == VEK_AUTO_SCALE) *scaleFactor = 0;
    return shifted(sum, scaleMode, scaleFactor);
}

CplxInt scale_whole(CplxInt sum, int scaleMode, int* scaleFactor) {
    if (scaleMode == VEK_AUTO_SCALE) *scaleFactor = 0;
    return CplxInt{shifted(sum.re, scaleMode, scaleFactor),
                   shifted(sum.im, scaleMode, scaleFactor)};
}

}  // namespace

extern "C" {

VEK_API short vekwDotProd(const short* srcA, const short* srcB, int len, int scaleMode,
                          int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return 0;
    return vek::narrow_one(vek::dot_ops().w(srcA, srcB, len), scaleMode, scaleFactor);
}

VEK_API CplxShort vekvDotProd(const CplxShort* srcA, const CplxShort* srcB, int len, int scaleMode,
                              int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow_pair(vek::dot_ops().v(srcA, srcB, len), scaleMode, scaleFactor);
}

VEK_API CplxShort vekwvDotProd(const short* srcA, const CplxShort* srcB, int len, int scaleMode,
                               int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow_pair(vek::dot_ops().vw(srcB, srcA, len), scaleMode, scaleFactor);
}

VEK_API CplxShort vekvwDotProd(const CplxShort* srcA, const short* srcB, int len, int scaleMode,
                               int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow_pair(vek::dot_ops().vw(srcA, srcB, len), scaleMode, scaleFactor);
}

VEK_API int vekwDotProdExt(const short* srcA, const short* srcB, int len, int scaleMode,
                           int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return 0;
    return scale_whole(vek::dot_ops().w(srcA, srcB, len), scaleMode, scaleFactor);
}

VEK_API CplxInt vekvDotProdExt(const CplxShort* srcA, const CplxShort* srcB, int len, int scaleMode,
                               int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxInt{0, 0};
    return scale_whole(vek::dot_ops().v(srcA, srcB, len), scaleMode, scaleFactor);
}

VEK_API CplxInt vekwvDotProdExt(const short* srcA, const CplxShort* srcB, int len, int scaleMode,
                                int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxInt{0, 0};
    return scale_whole(vek::dot_ops().vw(srcB, srcA, len), scaleMode, scaleFactor);
}

VEK_API CplxInt vekvwDotProdExt(const CplxShort* srcA, const short* srcB, int len, int scaleMode,
                                int* scaleFactor) {
    VEK_SITE("vekdotpw");
    if (!arguments_ok(site, srcA, srcB, len, scaleMode, scaleFactor)) return CplxInt{0, 0};
    return scale_whole(vek::dot_ops().vw(srcA, srcB, len), scaleMode, scaleFactor);
}

}  // extern "C"
