// Set, copy, add, subtract and multiply on float, double and complex
// vectors, and arithmetic on single complex values.
#include <cstring>

#include "frame/report.hpp"
#include "vector/arith.hpp"
#include "vector/checks.hpp"

namespace {

using vek::Site;

template <class T>
using Pairwise = void (*)(const T*, const T*, T*, int);
template <class T>
using WithValue = void (*)(const T*, T, T*, int);

// dst = dst op val
template <class T>
void form1(const Site& site, WithValue<T> kernel, T val, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", dst, "dst==0")) return;
    kernel(dst, val, dst, n);
}

// dst = dst op src
template <class T>
void form2(const Site& site, Pairwise<T> kernel, const T* src, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    kernel(dst, src, dst, n);
}

// dst = srcA op srcB
template <class T>
void form3(const Site& site, Pairwise<T> kernel, const T* srcA, const T* srcB, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", srcA, "srcA==0", srcB, "srcB==0", dst, "dst==0")) return;
    kernel(srcA, srcB, dst, n);
}

template <class T>
void zero(const Site& site, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", dst, "dst==0")) return;
    std::memset(dst, 0, sizeof(T) * std::size_t(n));
}

template <class T>
void set(const Site& site, void (*kernel)(T, T*, int), T val, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", dst, "dst==0")) return;
    kernel(val, dst, n);
}

// As if through a temporary: a destination overlapping the source on
// either side gets the source's old values.
template <class T>
void copy(const Site& site, const T* src, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    std::memmove(dst, src, sizeof(T) * std::size_t(n));
}

// Single complex values, in double and rounded once (as the vector kernels).
template <class C>
C make(double re, double im) {
    using R = decltype(C{}.re);
    return C{R(re), R(im)};
}

template <class C>
C c_add(C a, C b) {
    return make<C>(double(a.re) + double(b.re), double(a.im) + double(b.im));
}
template <class C>
C c_sub(C a, C b) {
    return make<C>(double(a.re) - double(b.re), double(a.im) - double(b.im));
}
template <class C>
C c_mpy(C a, C b) {
    return make<C>(double(a.re) * double(b.re) - double(a.im) * double(b.im),
                   double(a.im) * double(b.re) + double(a.re) * double(b.im));
}
template <class C>
C c_div(const Site& site, C a, C b) {
    if (b.re == 0 && b.im == 0) {
        site.bad("(b.re==0.0)&&(b.im==0.0)");
        return C{0, 0};
    }
    const double br = b.re, bi = b.im;
    const double k = 1.0 / (br * br + bi * bi);
    return make<C>((double(a.re) * br + double(a.im) * bi) * k,
                   (double(a.im) * br - double(a.re) * bi) * k);
}

}  // namespace

#define VEK_MODULE "vekarith"

extern "C" {

// ---------------------------------------------------------------- float

VEK_API void veksbAdd1(float val, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().s.add_val, val, dst, n);
}
VEK_API void veksbAdd2(const float* src, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().s.add, src, dst, n);
}
VEK_API void veksbAdd3(const float* srcA, const float* srcB, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().s.add, srcA, srcB, dst, n);
}
VEK_API void veksbSub1(float val, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().s.sub_val, val, dst, n);
}
VEK_API void veksbSub2(const float* src, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().s.sub, src, dst, n);
}
VEK_API void veksbSub3(const float* srcA, const float* srcB, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().s.sub, srcA, srcB, dst, n);
}
VEK_API void veksbMpy1(float val, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().s.mpy_val, val, dst, n);
}
VEK_API void veksbMpy2(const float* src, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().s.mpy, src, dst, n);
}
VEK_API void veksbMpy3(const float* srcA, const float* srcB, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().s.mpy, srcA, srcB, dst, n);
}
VEK_API void veksbZero(float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void veksbSet(float val, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::arith().s.set, val, dst, n);
}
VEK_API void veksbCopy(const float* src, float* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}

// ---------------------------------------------------------------- double

VEK_API void vekdbAdd1(double val, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().d.add_val, val, dst, n);
}
VEK_API void vekdbAdd2(const double* src, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().d.add, src, dst, n);
}
VEK_API void vekdbAdd3(const double* srcA, const double* srcB, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().d.add, srcA, srcB, dst, n);
}
VEK_API void vekdbSub1(double val, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().d.sub_val, val, dst, n);
}
VEK_API void vekdbSub2(const double* src, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().d.sub, src, dst, n);
}
VEK_API void vekdbSub3(const double* srcA, const double* srcB, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().d.sub, srcA, srcB, dst, n);
}
VEK_API void vekdbMpy1(double val, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().d.mpy_val, val, dst, n);
}
VEK_API void vekdbMpy2(const double* src, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().d.mpy, src, dst, n);
}
VEK_API void vekdbMpy3(const double* srcA, const double* srcB, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().d.mpy, srcA, srcB, dst, n);
}
VEK_API void vekdbZero(double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void vekdbSet(double val, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::arith().d.set, val, dst, n);
}
VEK_API void vekdbCopy(const double* src, double* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}

// ---------------------------------------------------------------- CplxFloat

VEK_API void vekcbAdd1(CplxFloat val, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().c.add_val, val, dst, n);
}
VEK_API void vekcbAdd2(const CplxFloat* src, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().c.add, src, dst, n);
}
VEK_API void vekcbAdd3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().c.add, srcA, srcB, dst, n);
}
VEK_API void vekcbSub1(CplxFloat val, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().c.sub_val, val, dst, n);
}
VEK_API void vekcbSub2(const CplxFloat* src, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().c.sub, src, dst, n);
}
VEK_API void vekcbSub3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().c.sub, srcA, srcB, dst, n);
}
VEK_API void vekcbMpy1(CplxFloat val, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().c.mpy_val, val, dst, n);
}
VEK_API void vekcbMpy2(const CplxFloat* src, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().c.mpy, src, dst, n);
}
VEK_API void vekcbMpy3(const CplxFloat* srcA, const CplxFloat* srcB, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().c.mpy, srcA, srcB, dst, n);
}
VEK_API void vekcbZero(CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void vekcbSet(CplxFloat val, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::arith().c.set, val, dst, n);
}
VEK_API void vekcbCopy(const CplxFloat* src, CplxFloat* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}

// ---------------------------------------------------------------- CplxDouble

VEK_API void vekzbAdd1(CplxDouble val, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().z.add_val, val, dst, n);
}
VEK_API void vekzbAdd2(const CplxDouble* src, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().z.add, src, dst, n);
}
VEK_API void vekzbAdd3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().z.add, srcA, srcB, dst, n);
}
VEK_API void vekzbSub1(CplxDouble val, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().z.sub_val, val, dst, n);
}
VEK_API void vekzbSub2(const CplxDouble* src, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().z.sub, src, dst, n);
}
VEK_API void vekzbSub3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().z.sub, srcA, srcB, dst, n);
}
VEK_API void vekzbMpy1(CplxDouble val, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::arith().z.mpy_val, val, dst, n);
}
VEK_API void vekzbMpy2(const CplxDouble* src, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::arith().z.mpy, src, dst, n);
}
VEK_API void vekzbMpy3(const CplxDouble* srcA, const CplxDouble* srcB, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::arith().z.mpy, srcA, srcB, dst, n);
}
VEK_API void vekzbZero(CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void vekzbSet(CplxDouble val, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::arith().z.set, val, dst, n);
}
VEK_API void vekzbCopy(const CplxDouble* src, CplxDouble* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}

// ---------------------------------------------------------------- scalars

VEK_API CplxFloat vekcAdd(CplxFloat a, CplxFloat b) { return c_add(a, b); }
VEK_API CplxFloat vekcSub(CplxFloat a, CplxFloat b) { return c_sub(a, b); }
VEK_API CplxFloat vekcMpy(CplxFloat a, CplxFloat b) { return c_mpy(a, b); }
VEK_API CplxFloat vekcDiv(CplxFloat a, CplxFloat b) {
    VEK_SITE(VEK_MODULE);
    return c_div(site, a, b);
}
VEK_API CplxFloat vekcConj(CplxFloat a) { return CplxFloat{a.re, -a.im}; }
VEK_API CplxFloat vekcSet(float re, float im) { return CplxFloat{re, im}; }

VEK_API CplxDouble vekzAdd(CplxDouble a, CplxDouble b) { return c_add(a, b); }
VEK_API CplxDouble vekzSub(CplxDouble a, CplxDouble b) { return c_sub(a, b); }
VEK_API CplxDouble vekzMpy(CplxDouble a, CplxDouble b) { return c_mpy(a, b); }
VEK_API CplxDouble vekzDiv(CplxDouble a, CplxDouble b) {
    VEK_SITE(VEK_MODULE);
    return c_div(site, a, b);
}
VEK_API CplxDouble vekzConj(CplxDouble a) { return CplxDouble{a.re, -a.im}; }
VEK_API CplxDouble vekzSet(double re, double im) { return CplxDouble{re, im}; }

}  // extern "C"
