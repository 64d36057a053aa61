#include "native.hpp"

namespace native {

float dot_float(const float* a, const float* b, int n) {
    double s = 0;
    for (int i = 0; i < n; ++i) s += double(a[i]) * b[i];
    return float(s);
}

CplxFloat dot_cplx(const CplxFloat* a, const CplxFloat* b, int n) {
    double re = 0, im = 0;
    for (int i = 0; i < n; ++i) {
        re += double(a[i].re) * b[i].re - double(a[i].im) * b[i].im;
        im += double(a[i].re) * b[i].im + double(a[i].im) * b[i].re;
    }
    return CplxFloat{float(re), float(im)};
}

short dot_short(const short* a, const short* b, int n) {
    unsigned s = 0;
    for (int i = 0; i < n; ++i) s += unsigned(a[i] * b[i]);
    return short(s);
}

}  // namespace native
