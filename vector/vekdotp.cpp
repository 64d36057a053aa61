// Dot products of floating-point vectors.
#include "frame/report.hpp"
#include "vector/dot.hpp"

namespace {

// The checks of every floating dot product, reported at the export's line.
bool arguments_ok(const vek::Site& site, const void* srcA, const void* srcB, int len) {
    if (!srcA) return site.bad("Null buffer pointer"), false;
    if (!srcB) return site.bad("Null buffer pointer"), false;
    if (len < 0) return site.bad("Invalid value"), false;
    return true;
}

}  // namespace

extern "C" {

VEK_API float veksDotProd(const float* srcA, const float* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return 0;
    return vek::dot_ops().s(srcA, srcB, len);
}

VEK_API double vekdDotProd(const double* srcA, const double* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return 0;
    return vek::dot_ops().d(srcA, srcB, len);
}

VEK_API CplxFloat vekcDotProd(const CplxFloat* srcA, const CplxFloat* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxFloat{0, 0};
    return vek::dot_ops().c(srcA, srcB, len);
}

VEK_API CplxFloat vekcsDotProd(const CplxFloat* srcA, const float* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxFloat{0, 0};
    return vek::dot_ops().cs(srcA, srcB, len);
}

VEK_API CplxFloat vekscDotProd(const float* srcA, const CplxFloat* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxFloat{0, 0};
    return vek::dot_ops().cs(srcB, srcA, len);
}

VEK_API CplxDouble vekzDotProd(const CplxDouble* srcA, const CplxDouble* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxDouble{0, 0};
    return vek::dot_ops().z(srcA, srcB, len);
}

VEK_API CplxDouble vekzdDotProd(const CplxDouble* srcA, const double* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxDouble{0, 0};
    return vek::dot_ops().zd(srcA, srcB, len);
}

VEK_API CplxDouble vekdzDotProd(const double* srcA, const CplxDouble* srcB, int len) {
    VEK_SITE("vekdotp");
    if (!arguments_ok(site, srcA, srcB, len)) return CplxDouble{0, 0};
    return vek::dot_ops().zd(srcB, srcA, len);
}

}  // extern "C"
