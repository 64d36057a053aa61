// The direct DFT as a plain loop: pair sums and differences, then for each
// output pair X[k], X[n-k] one pass over half the input, summed in double.
#include <cstring>

#include "plain.hpp"

namespace {

template <class C>
void direct(const C* src, C* y, C* x, const C* tbl, int n) {
    using R = decltype(C::re);
    std::memcpy(x, src, sizeof(C) * std::size_t(n));
    const int half = (n - 1) / 2;
    for (int m = 1; m <= half; ++m) {
        const C a = x[m], b = x[n - m];
        x[m] = C{a.re + b.re, a.im + b.im};
        x[n - m] = C{a.re - b.re, a.im - b.im};
    }
    const double midRe = n % 2 ? 0.0 : x[n / 2].re, midIm = n % 2 ? 0.0 : x[n / 2].im;
    for (int k = 0; k <= n / 2; ++k) {
        double are = x[0].re, aim = x[0].im, bre = 0, bim = 0;
        int idx = 0;
        for (int m = 1; m <= half; ++m) {
            idx += k;
            if (idx >= n) idx -= n;
            const double c = tbl[idx].re, s = -double(tbl[idx].im);
            are += c * x[m].re;
            aim += c * x[m].im;
            bre += s * x[n - m].re;
            bim += s * x[n - m].im;
        }
        const double sign = k % 2 ? -1.0 : 1.0;
        are += sign * midRe;
        aim += sign * midIm;
        y[k] = C{R(are + bim), R(aim - bre)};
        if (k && k != n - k) y[n - k] = C{R(are - bim), R(aim + bre)};
    }
}

}  // namespace

namespace plain {

void dft_direct(const CplxFloat* x, CplxFloat* y, CplxFloat* work, const CplxFloat* tbl, int n) {
    direct(x, y, work, tbl, n);
}
void dft_direct(const CplxDouble* x, CplxDouble* y, CplxDouble* work, const CplxDouble* tbl,
                int n) {
    direct(x, y, work, tbl, n);
}

}  // namespace plain
