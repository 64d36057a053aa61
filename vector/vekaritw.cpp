// 16-bit (w) and complex 16-bit (v) element-wise arithmetic under the scale
// modes, conjugation of CplxShort vectors, and single CplxShort values.
#include <cstring>

#include "frame/report.hpp"
#include "vector/aritw.hpp"
#include "vector/checks.hpp"
#include "vector/scale.hpp"

namespace {

using vek::Site;

// Only exactly VEK_AUTO_SCALE writes the factor; the other modes read it
// where they use it, a null pointer reading as 0.
bool factor_ok(const Site& site, int scaleMode, const int* scaleFactor) {
    if (scaleMode == VEK_AUTO_SCALE && !scaleFactor) {
        site.bad("scalefactor==0");
        return false;
    }
    return true;
}

template <class T>
using Pairwise = void (*)(const T*, const T*, T*, int, int, int*);
template <class T>
using WithValue = void (*)(const T*, T, T*, int, int, int*);

template <class T>
void form1(const Site& site, WithValue<T> kernel, T val, T* dst, int n, int scaleMode,
           int* scaleFactor) {
    if (!vek::valid_args(site, n, "n<=0", dst, "dst==0")) return;
    if (!factor_ok(site, scaleMode, scaleFactor)) return;
    kernel(dst, val, dst, n, scaleMode, scaleFactor);
}

template <class T>
void form2(const Site& site, Pairwise<T> kernel, const T* src, T* dst, int n, int scaleMode,
           int* scaleFactor) {
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    if (!factor_ok(site, scaleMode, scaleFactor)) return;
    kernel(dst, src, dst, n, scaleMode, scaleFactor);
}

template <class T>
void form3(const Site& site, Pairwise<T> kernel, const T* srcA, const T* srcB, T* dst, int n,
           int scaleMode, int* scaleFactor) {
    if (!vek::valid_args(site, n, "n<=0", srcA, "srcA==0", srcB, "srcB==0", dst, "dst==0")) return;
    if (!factor_ok(site, scaleMode, scaleFactor)) return;
    kernel(srcA, srcB, dst, n, scaleMode, scaleFactor);
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

// As if through a temporary, like the floating-point copies.
template <class T>
void copy(const Site& site, const T* src, T* dst, int n) {
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    std::memmove(dst, src, sizeof(T) * std::size_t(n));
}

CplxShort conj(CplxShort x) { return CplxShort{x.re, vek::sat16(-std::int32_t(x.im))}; }

// The half spectrum of n points, X[0..n/2], is extended by X[n-k] =
// conj(X[k]) for 1 <= k <= (n-1)/2.
void extend(CplxShort* x, int n) {
    for (int k = 1; k <= (n - 1) / 2; ++k) x[n - k] = conj(x[k]);
}

// Single values saturate: there is no scale mode to ask.
CplxShort make_sat(std::int64_t re, std::int64_t im) {
    return CplxShort{vek::sat16(re), vek::sat16(im)};
}

}  // namespace

#define VEK_MODULE "vekaritw"

extern "C" {

// ---------------------------------------------------------------- short

VEK_API void vekwbZero(short* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void vekwbSet(short val, short* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::aritw().w_set, val, dst, n);
}
VEK_API void vekwbCopy(const short* src, short* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}
VEK_API void vekwbAdd1(short val, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().w_add_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbAdd2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().w_add, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbAdd3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().w_add, srcA, srcB, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbSub1(short val, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().w_sub_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbSub2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().w_sub, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbSub3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().w_sub, srcA, srcB, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbMpy1(short val, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().w_mpy_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbMpy2(const short* src, short* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().w_mpy, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekwbMpy3(const short* srcA, const short* srcB, short* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().w_mpy, srcA, srcB, dst, n, scaleMode, scaleFactor);
}

// ---------------------------------------------------------------- CplxShort

VEK_API void vekvbZero(CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    zero(site, dst, n);
}
VEK_API void vekvbSet(CplxShort val, CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    set(site, vek::aritw().v_set, val, dst, n);
}
VEK_API void vekvbCopy(const CplxShort* src, CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    copy(site, src, dst, n);
}
VEK_API void vekvbAdd1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().v_add_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbAdd2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().v_add, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbAdd3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().v_add, srcA, srcB, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbSub1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().v_sub_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbSub2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().v_sub, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbSub3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().v_sub, srcA, srcB, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbMpy1(CplxShort val, CplxShort* dst, int n, int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form1(site, vek::aritw().v_mpy_val, val, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbMpy2(const CplxShort* src, CplxShort* dst, int n, int scaleMode,
                       int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form2(site, vek::aritw().v_mpy, src, dst, n, scaleMode, scaleFactor);
}
VEK_API void vekvbMpy3(const CplxShort* srcA, const CplxShort* srcB, CplxShort* dst, int n,
                       int scaleMode, int* scaleFactor) {
    VEK_SITE(VEK_MODULE);
    form3(site, vek::aritw().v_mpy, srcA, srcB, dst, n, scaleMode, scaleFactor);
}

// ---------------------------------------------------------------- conjugates

VEK_API void vekvbConj1(CplxShort* vec, int n) {
    VEK_SITE(VEK_MODULE);
    if (vek::valid_args(site, n, "n<=0", vec, "vec==0")) vek::aritw().v_conj(vec, vec, n);
}
VEK_API void vekvbConj2(const CplxShort* src, CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    if (vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0"))
        vek::aritw().v_conj(src, dst, n);
}
// dst[i] = conj(src[n-1-i]); src may be dst.
VEK_API void vekvbConjFlip2(const CplxShort* src, CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    for (int i = 0, j = n - 1; i <= j; ++i, --j) {
        const CplxShort lo = src[i], hi = src[j];
        dst[i] = conj(hi);
        dst[j] = conj(lo);
    }
}
VEK_API void vekvbConjExtend1(CplxShort* vec, int n) {
    VEK_SITE(VEK_MODULE);
    if (vek::valid_args(site, n, "n<=0", vec, "vec==0")) extend(vec, n);
}
VEK_API void vekvbConjExtend2(const CplxShort* src, CplxShort* dst, int n) {
    VEK_SITE(VEK_MODULE);
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    std::memmove(dst, src, sizeof(CplxShort) * std::size_t(n / 2 + 1));
    extend(dst, n);
}

// ---------------------------------------------------------------- single values

VEK_API CplxShort vekvAdd(CplxShort a, CplxShort b) {
    return make_sat(std::int64_t(a.re) + b.re, std::int64_t(a.im) + b.im);
}
VEK_API CplxShort vekvSub(CplxShort a, CplxShort b) {
    return make_sat(std::int64_t(a.re) - b.re, std::int64_t(a.im) - b.im);
}
VEK_API CplxShort vekvMpy(CplxShort a, CplxShort b) {
    const std::int64_t ar = a.re, ai = a.im, br = b.re, bi = b.im;
    return make_sat(ar * br - ai * bi, ai * br + ar * bi);
}
// Quotient truncated toward zero, saturated.
VEK_API CplxShort vekvDiv(CplxShort a, CplxShort b) {
    VEK_SITE(VEK_MODULE);
    if (b.re == 0 && b.im == 0) {
        site.bad("(b.re==0)&&(b.im==0)");
        return CplxShort{0, 0};
    }
    // Integer numerators over an integer denominator, each divided once:
    // the truncation then sees the exact quotient's integer part.
    const double ar = a.re, ai = a.im, br = b.re, bi = b.im;
    const double den = br * br + bi * bi;
    return make_sat(std::int64_t((ar * br + ai * bi) / den),
                    std::int64_t((ai * br - ar * bi) / den));
}
VEK_API CplxShort vekvConj(CplxShort a) { return conj(a); }
VEK_API CplxShort vekvSet(short re, short im) { return CplxShort{re, im}; }

}  // extern "C"
