// The Goertzel recurrence, written once for every view of GoertzState.
//   s = x - s2 + 2cos*s1; s2 = s1; s1 = s; output = (cos*s1 - s2, sin*s1)
// Real data give that complex output directly; complex data run the
// recurrence on both parts and combine the two outputs as re + i*im.
#pragma once

#include <cmath>

#include "frame/report.hpp"
#include "vek.h"

namespace vek::goertzel {

// The four state views.
using RealF = decltype(GoertzState::s);
using CplxF = decltype(GoertzState::c);
using RealD = decltype(GoertzState::d);
using CplxD = decltype(GoertzState::z);

// Delay values, held in double precision while a call runs.
struct Real {
    double v;
};
struct Cplx {
    double re, im;
};

inline Real load(float x) { return {x}; }
inline Real load(double x) { return {x}; }
inline Real load(short x) { return {double(x)}; }
inline Cplx load(const CplxFloat& x) { return {x.re, x.im}; }
inline Cplx load(const CplxDouble& x) { return {x.re, x.im}; }
inline Cplx load(const CplxShort& x) { return {double(x.re), double(x.im)}; }

inline void store(float& to, Real x) { to = float(x.v); }
inline void store(double& to, Real x) { to = x.v; }
inline void store(CplxFloat& to, Cplx x) { to = {float(x.re), float(x.im)}; }
inline void store(CplxDouble& to, Cplx x) { to = {x.re, x.im}; }

inline Real step(Real x, Real s2, Real s1, double twoCos) { return {x.v - s2.v + twoCos * s1.v}; }
inline Cplx step(Cplx x, Cplx s2, Cplx s1, double twoCos) {
    return {x.re - s2.re + twoCos * s1.re, x.im - s2.im + twoCos * s1.im};
}

inline Cplx output(Real s2, Real s1, double c, double s) { return {c * s1.v - s2.v, s * s1.v}; }
inline Cplx output(Cplx s2, Cplx s1, double c, double s) {
    // (c*s1.re - s2.re, s*s1.re) + i * (c*s1.im - s2.im, s*s1.im)
    return {c * s1.re - s2.re - s * s1.im, s * s1.re + c * s1.im - s2.im};
}

template <class View, class Freq>
void init(View& st, Freq rfreq) {
    const long double w = 6.283185307179586L * static_cast<long double>(rfreq);
    const long double c = std::cos(w);
    using R = decltype(st.rfreq);
    st.rfreq = static_cast<R>(rfreq);
    st.cos = static_cast<R>(c);
    st.sin = static_cast<R>(std::sin(w));
    st.twoCos = static_cast<R>(2 * c);
    st.s2 = {};
    st.s1 = {};
}

template <class View>
void reset(View& st) {
    st.s2 = {};
    st.s1 = {};
}

// Runs the recurrence over n samples (n >= 1) in double precision and
// returns the output after the last one; the delay values are rounded to
// the state's type once, at the end.
template <class View, class T>
Cplx run(View& st, const T* x, int n) {
    auto s2 = load(st.s2);
    auto s1 = load(st.s1);
    const double twoCos = st.twoCos;
    for (int i = 0; i < n; ++i) {
        const auto s = step(load(x[i]), s2, s1, twoCos);
        s2 = s1;
        s1 = s;
    }
    store(st.s2, s2);
    store(st.s1, s1);
    return output(s2, s1, st.cos, st.sin);
}

// The checked forms of init and reset that the exports share: the state
// pointer first, then the frequency range.
template <class View, class Freq>
int checked_init(const Site& site, View* st, Freq rfreq) {
    if (!st) return site.bad("Null state pointer");
    if (!(rfreq >= 0 && rfreq < 1)) return site.bad("Invalid frequency value");
    init(*st, rfreq);
    return VEK_StatusOk;
}

template <class View>
void checked_reset(const Site& site, View* st) {
    if (!st) {
        site.bad("Null state pointer");
        return;
    }
    reset(*st);
}

inline CplxFloat to_float(Cplx y) { return {float(y.re), float(y.im)}; }
inline CplxDouble to_double(Cplx y) { return {y.re, y.im}; }

}  // namespace vek::goertzel
