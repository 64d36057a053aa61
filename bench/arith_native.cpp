// Plain loops doing the arithmetic of the benchmarked vek exports, compiled
// with -O3 -march=native: what the compiler makes of the obvious C++ on
// this machine.
#include <cmath>
#include <cstdint>

#include "plain.hpp"

namespace plain {

void s_add3(const float* a, const float* b, float* d, int n) {
    for (int i = 0; i < n; ++i) d[i] = a[i] + b[i];
}

void s_mpy2(const float* s, float* d, int n) {
    for (int i = 0; i < n; ++i) d[i] *= s[i];
}

// Complex float products in float, as a user writes them (vek computes
// them in double, so this is the speed to be measured against, not the
// result).
void c_mpy3(const CplxFloat* a, const CplxFloat* b, CplxFloat* d, int n) {
    for (int i = 0; i < n; ++i) {
        const float ar = a[i].re, ai = a[i].im, br = b[i].re, bi = b[i].im;
        d[i].re = ar * br - ai * bi;
        d[i].im = ai * br + ar * bi;
    }
}

void c_mpy1(CplxFloat v, CplxFloat* d, int n) {
    for (int i = 0; i < n; ++i) {
        const float re = d[i].re, im = d[i].im;
        d[i].re = re * v.re - im * v.im;
        d[i].im = im * v.re + re * v.im;
    }
}

void z_mpy3(const CplxDouble* a, const CplxDouble* b, CplxDouble* d, int n) {
    for (int i = 0; i < n; ++i) {
        const double ar = a[i].re, ai = a[i].im, br = b[i].re, bi = b[i].im;
        d[i].re = ar * br - ai * bi;
        d[i].im = ai * br + ar * bi;
    }
}

// Negative elements leave their destination alone and are counted. (GCC 12
// keeps this loop scalar, with or without -fno-math-errno.)
bool d_sqrt2(const double* s, double* d, int n) {
    bool negative = false;
    for (int i = 0; i < n; ++i) {
        if (s[i] < 0)
            negative = true;
        else
            d[i] = __builtin_sqrt(s[i]);
    }
    return negative;
}

void w_add3_wrap(const short* a, const short* b, short* d, int n) {
    for (int i = 0; i < n; ++i) d[i] = short(a[i] + b[i]);
}

void w_add3_sat(const short* a, const short* b, short* d, int n) {
    for (int i = 0; i < n; ++i) {
        const int r = a[i] + b[i];
        d[i] = short(r > 32767 ? 32767 : r < -32768 ? -32768 : r);
    }
}

// One pass; a second, halving pass only when a sum overflowed.
int w_add3_auto(const short* a, const short* b, short* d, int n) {
    int overflow = 0;
    for (int i = 0; i < n; ++i) {
        const int r = a[i] + b[i];
        overflow |= r != short(r);
        d[i] = short(r);
    }
    if (!overflow) return 0;
    for (int i = 0; i < n; ++i) d[i] = short((a[i] + b[i]) >> 1);
    return 1;
}

void v_mpy3_wrap(const CplxShort* a, const CplxShort* b, CplxShort* d, int n) {
    for (int i = 0; i < n; ++i) {
        const int ar = a[i].re, ai = a[i].im, br = b[i].re, bi = b[i].im;
        d[i].re = short(ar * br - ai * bi);
        d[i].im = short(unsigned(ai * br) + unsigned(ar * bi));
    }
}

void v_mpy3_sat(const CplxShort* a, const CplxShort* b, CplxShort* d, int n) {
    for (int i = 0; i < n; ++i) {
        const int ar = a[i].re, ai = a[i].im, br = b[i].re, bi = b[i].im;
        const int re = ar * br - ai * bi;
        const int im = int(unsigned(ai * br) + unsigned(ar * bi));
        d[i].re = short(re > 32767 ? 32767 : re < -32768 ? -32768 : re);
        d[i].im = short(im > 32767 ? 32767 : im < -32768 ? -32768 : im);
    }
}

}  // namespace plain
