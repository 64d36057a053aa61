// Square, square root, thresholds, inverse thresholds and absolute value of
// float, double and complex vectors.
#include "frame/report.hpp"
#include "vector/arith.hpp"
#include "vector/checks.hpp"

namespace {

using vek::Site;

// The leading checks of the in-place and the two-operand forms.
bool in_place_ok(const Site& site, const void* vec, int len) {
    return vek::valid_args(site, len, "len<=0", vec, "vec==0");
}
bool two_operand_ok(const Site& site, const void* src, const void* dst, int len) {
    return vek::valid_args(site, len, "len<=0", src, "src==0", dst, "dst==0");
}

template <class T>
using Root = bool (*)(const T*, T*, int);

// The whole vector is done before a negative element is reported.
template <class T>
void root(const Site& site, Root<T> kernel, const T* src, T* dst, int len) {
    if (kernel(src, dst, len)) site.at(__LINE__).bad("Element of input vector is negative");
}

template <class T, class R>
void threshold(const Site& site, const vek::FloatKernels<T, R>& k, const T* src, T* dst, int len,
            R value, int relOp, const char* negativeMessage) {
    if (negativeMessage && value < 0) {
        site.bad(negativeMessage);
        return;
    }
    k.thresh(src, dst, len, value, relOp);
}

// Bounded reciprocal; the whole vector is done before a zero element under
// a zero thresh is reported.
template <class T, class R>
void inv_thresh(const Site& site, const vek::FloatKernels<T, R>& k, const T* src, T* dst, int len,
                R value, const char* negativeMessage, R zeroValue) {
    if (value < 0) {
        site.bad(negativeMessage);
        return;
    }
    if (k.inv_thresh(src, dst, len, value, zeroValue))
        site.at(__LINE__).bad("zero element and zero thresh");
}

// What a zero element becomes under a zero thresh: the largest float in
// float data, 0 in double data.
constexpr float kFloatZeroInv = 3.4028235e38f;
constexpr double kDoubleZeroInv = 0.0;

}  // namespace

#define VEK_MODULE "vekvec"

extern "C" {

// ---------------------------------------------------------------- square

VEK_API void veksbSqr1(float* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().s.sqr(vec, vec, len);
}
VEK_API void veksbSqr2(const float* src, float* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().s.sqr(src, dst, len);
}
VEK_API void vekdbSqr1(double* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().d.sqr(vec, vec, len);
}
VEK_API void vekdbSqr2(const double* src, double* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().d.sqr(src, dst, len);
}
VEK_API void vekcbSqr1(CplxFloat* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().c.sqr(vec, vec, len);
}
VEK_API void vekcbSqr2(const CplxFloat* src, CplxFloat* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().c.sqr(src, dst, len);
}
VEK_API void vekzbSqr1(CplxDouble* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().z.sqr(vec, vec, len);
}
VEK_API void vekzbSqr2(const CplxDouble* src, CplxDouble* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().z.sqr(src, dst, len);
}

// ---------------------------------------------------------------- square root

VEK_API void veksbSqrt1(float* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) root(site, vek::arith().s.sqrt, vec, vec, len);
}
VEK_API void veksbSqrt2(const float* src, float* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) root(site, vek::arith().s.sqrt, src, dst, len);
}
VEK_API void vekdbSqrt1(double* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) root(site, vek::arith().d.sqrt, vec, vec, len);
}
VEK_API void vekdbSqrt2(const double* src, double* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) root(site, vek::arith().d.sqrt, src, dst, len);
}
VEK_API void vekcbSqrt1(CplxFloat* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) root(site, vek::arith().c.sqrt, vec, vec, len);
}
VEK_API void vekcbSqrt2(const CplxFloat* src, CplxFloat* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) root(site, vek::arith().c.sqrt, src, dst, len);
}
VEK_API void vekzbSqrt1(CplxDouble* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) root(site, vek::arith().z.sqrt, vec, vec, len);
}
VEK_API void vekzbSqrt2(const CplxDouble* src, CplxDouble* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) root(site, vek::arith().z.sqrt, src, dst, len);
}

// ---------------------------------------------------------------- thresholds

VEK_API void veksbThresh1(float* vec, int len, float thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        threshold(site, vek::arith().s, vec, vec, len, thresh, relOp, nullptr);
}
VEK_API void veksbThresh2(const float* src, float* dst, int len, float thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        threshold(site, vek::arith().s, src, dst, len, thresh, relOp, nullptr);
}
VEK_API void vekdbThresh1(double* vec, int len, double thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        threshold(site, vek::arith().d, vec, vec, len, thresh, relOp, nullptr);
}
VEK_API void vekdbThresh2(const double* src, double* dst, int len, double thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        threshold(site, vek::arith().d, src, dst, len, thresh, relOp, nullptr);
}
VEK_API void vekcbThresh1(CplxFloat* vec, int len, float thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        threshold(site, vek::arith().c, vec, vec, len, thresh, relOp, "thresh<0.0f");
}
VEK_API void vekcbThresh2(const CplxFloat* src, CplxFloat* dst, int len, float thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        threshold(site, vek::arith().c, src, dst, len, thresh, relOp, "thresh<0.0f");
}
VEK_API void vekzbThresh1(CplxDouble* vec, int len, double thresh, int relOp) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        threshold(site, vek::arith().z, vec, vec, len, thresh, relOp, "thresh<0.0");
}
VEK_API void vekzbThresh2(const CplxDouble* src, CplxDouble* dst, int len, double thresh,
                          int relOp) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        threshold(site, vek::arith().z, src, dst, len, thresh, relOp, "thresh<0.0");
}

// ---------------------------------------------------------------- inverse thresholds

VEK_API void veksbInvThresh1(float* vec, int len, float thresh) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        inv_thresh(site, vek::arith().s, vec, vec, len, thresh, "thresh<0.0f", kFloatZeroInv);
}
VEK_API void veksbInvThresh2(const float* src, float* dst, int len, float thresh) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        inv_thresh(site, vek::arith().s, src, dst, len, thresh, "thresh<0.0f", kFloatZeroInv);
}
VEK_API void vekdbInvThresh1(double* vec, int len, double thresh) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        inv_thresh(site, vek::arith().d, vec, vec, len, thresh, "thresh<0.0", kDoubleZeroInv);
}
VEK_API void vekdbInvThresh2(const double* src, double* dst, int len, double thresh) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        inv_thresh(site, vek::arith().d, src, dst, len, thresh, "thresh<0.0", kDoubleZeroInv);
}
VEK_API void vekcbInvThresh1(CplxFloat* vec, int len, float thresh) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        inv_thresh(site, vek::arith().c, vec, vec, len, thresh, "thresh<0.0f", kFloatZeroInv);
}
VEK_API void vekcbInvThresh2(const CplxFloat* src, CplxFloat* dst, int len, float thresh) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        inv_thresh(site, vek::arith().c, src, dst, len, thresh, "thresh<0.0f", kFloatZeroInv);
}
// The two z forms word their negative-thresh report differently.
VEK_API void vekzbInvThresh1(CplxDouble* vec, int len, double thresh) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len))
        inv_thresh(site, vek::arith().z, vec, vec, len, thresh, "thresh<0.0", kDoubleZeroInv);
}
VEK_API void vekzbInvThresh2(const CplxDouble* src, CplxDouble* dst, int len, double thresh) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len))
        inv_thresh(site, vek::arith().z, src, dst, len, thresh, "thresh<0.0f", kDoubleZeroInv);
}

// ---------------------------------------------------------------- absolute value

VEK_API void veksbAbs1(float* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().s.abs(vec, vec, len);
}
VEK_API void veksbAbs2(const float* src, float* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().s.abs(src, dst, len);
}
VEK_API void vekdbAbs1(double* vec, int len) {
    VEK_SITE(VEK_MODULE);
    if (in_place_ok(site, vec, len)) vek::arith().d.abs(vec, vec, len);
}
VEK_API void vekdbAbs2(const double* src, double* dst, int len) {
    VEK_SITE(VEK_MODULE);
    if (two_operand_ok(site, src, dst, len)) vek::arith().d.abs(src, dst, len);
}

}  // extern "C"
