// The Goertzel recurrence as a user writes it, in the data's own precision:
// s = x + 2cos s1 - s2, and after the block (cos s1 - s2, sin s1) (complex
// data: the same for both parts, combined as one complex value).
#include "plain.hpp"

namespace plain {

CplxFloat goertzel(const float* x, int n, float cosw, float sinw) {
    const float coeff = 2 * cosw;
    float s1 = 0, s2 = 0;
    for (int i = 0; i < n; ++i) {
        const float s = x[i] + coeff * s1 - s2;
        s2 = s1;
        s1 = s;
    }
    return CplxFloat{cosw * s1 - s2, sinw * s1};
}

CplxFloat goertzel(const short* x, int n, float cosw, float sinw) {
    const float coeff = 2 * cosw;
    float s1 = 0, s2 = 0;
    for (int i = 0; i < n; ++i) {
        const float s = float(x[i]) + coeff * s1 - s2;
        s2 = s1;
        s1 = s;
    }
    return CplxFloat{cosw * s1 - s2, sinw * s1};
}

CplxDouble goertzel(const CplxDouble* x, int n, double cosw, double sinw) {
    const double coeff = 2 * cosw;
    double r1 = 0, r2 = 0, i1 = 0, i2 = 0;
    for (int k = 0; k < n; ++k) {
        const double r = x[k].re + coeff * r1 - r2;
        const double i = x[k].im + coeff * i1 - i2;
        r2 = r1;
        r1 = r;
        i2 = i1;
        i1 = i;
    }
    return CplxDouble{cosw * r1 - r2 - sinw * i1, sinw * r1 + cosw * i1 - i2};
}

}  // namespace plain
