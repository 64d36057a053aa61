#include "dft.hpp"

namespace vek {

namespace {

struct Acc {
    double re = 0, im = 0;
};

template <class C>
void direct(C* x, C* out, const C* tbl, int n, bool inverse, double scale) {
    using R = decltype(x[0].re);
    const int half = (n - 1) / 2;  // pairs (m, n-m), m = 1..half
    const bool even = (n % 2) == 0;
    const Acc x0{x[0].re, x[0].im};
    const Acc mid = even ? Acc{x[n / 2].re, x[n / 2].im} : Acc{};

    // Sums in the lower half, differences in the upper half.
    for (int m = 1; m <= half; ++m) {
        const C a = x[m], b = x[n - m];
        x[m] = C{R(double(a.re) + b.re), R(double(a.im) + b.im)};
        x[n - m] = C{R(double(a.re) - b.re), R(double(a.im) - b.im)};
    }

    // X[0] and, for even n, X[n/2].
    Acc sum0 = x0, sumMid = x0;
    for (int m = 1; m <= half; ++m) {
        sum0.re += x[m].re;
        sum0.im += x[m].im;
        const double sign = (m & 1) ? -1.0 : 1.0;
        sumMid.re += sign * x[m].re;
        sumMid.im += sign * x[m].im;
    }
    out[0] = C{R(scale * (sum0.re + mid.re)), R(scale * (sum0.im + mid.im))};
    if (even) {
        const double sign = ((n / 2) & 1) ? -1.0 : 1.0;
        out[n / 2] = C{R(scale * (sumMid.re + sign * mid.re)), R(scale * (sumMid.im + sign * mid.im))};
    }

    // X[k] = x0 + (-1)^k mid + A - iB, X[n-k] = x0 + (-1)^k mid + A + iB with
    // A = sum of sums * cos, B = sum of differences * sin (forward; the
    // inverse swaps the signs of B).
    const double dir = inverse ? -1.0 : 1.0;
    for (int k = 1; k <= half; ++k) {
        Acc a, b;
        int idx = 0;
        for (int m = 1; m <= half; ++m) {
            idx += k;
            if (idx >= n) idx -= n;
            const double c = tbl[idx].re;
            const double s = -double(tbl[idx].im);
            a.re += c * x[m].re;
            a.im += c * x[m].im;
            b.re += s * x[n - m].re;
            b.im += s * x[n - m].im;
        }
        const double sign = (k & 1) ? -1.0 : 1.0;
        const double baseRe = x0.re + sign * mid.re + a.re;
        const double baseIm = x0.im + sign * mid.im + a.im;
        // -iB = (B.im, -B.re)
        out[k] = C{R(scale * (baseRe + dir * b.im)), R(scale * (baseIm - dir * b.re))};
        out[n - k] = C{R(scale * (baseRe - dir * b.im)), R(scale * (baseIm + dir * b.re))};
    }
}

}  // namespace

void dft_direct(CplxFloat* x, CplxFloat* out, const CplxFloat* tbl, int n, bool inverse, double scale) {
    direct(x, out, tbl, n, inverse, scale);
}
void dft_direct(CplxDouble* x, CplxDouble* out, const CplxDouble* tbl, int n, bool inverse, double scale) {
    direct(x, out, tbl, n, inverse, scale);
}

}  // namespace vek
