// DFT kernels: mixed-radix passes and Bluestein's chirp products, compiled
// once per instruction set (see dft.hpp for the design). Include after
// defining VEK_ISA.
// GCC 12 flags the "undefined" source operand inside its own 512-bit
// intrinsics as (maybe) uninitialised.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "transform/dft.hpp"

namespace vek {
namespace VEK_ISA {
namespace {

#include "transform/cplx_lanes.inl"

// Calls f(tag, a, b) over [0, n) in runs of the widest vectors that fit.
template <bool Narrow, class R, class F>
VEK_KERNEL void chunks(std::size_t n, F&& f) {
    std::size_t i = 0;
    while (i < n) {
        by_width<Narrow>(static_cast<R*>(nullptr), n - i, [&](auto t) {
            using V = typename decltype(t)::type;
            const std::size_t e = i + (n - i) / V::W * V::W;
            f(t, i, e);
            i = e;
        });
    }
}

// One complex value in every lane (loaded through the intrinsics' own
// types, which may alias the complex element).
VEK_KERNEL __m128 bcast(Tag<F1>, const CplxFloat* p) { return F1::load(p); }
VEK_KERNEL __m128 bcast(Tag<F2>, const CplxFloat* p) {
    const __m128 v = F1::load(p);
    return _mm_movelh_ps(v, v);
}
VEK_KERNEL __m128d bcast(Tag<D1>, const CplxDouble* p) { return D1::load(p); }
#ifdef __AVX2__
VEK_KERNEL __m256 bcast(Tag<F4>, const CplxFloat* p) {
    return _mm256_castpd_ps(_mm256_broadcastsd_pd(_mm_castps_pd(F1::load(p))));
}
VEK_KERNEL __m256d bcast(Tag<D2>, const CplxDouble* p) {
    return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(p));
}
#endif
#ifdef __AVX512F__
VEK_KERNEL __m512 bcast(Tag<F8>, const CplxFloat* p) {
    return _mm512_castpd_ps(_mm512_broadcastsd_pd(_mm_castps_pd(F1::load(p))));
}
VEK_KERNEL __m512d bcast(Tag<D4>, const CplxDouble* p) {
    return _mm512_broadcast_f64x2(D1::load(p));
}
#endif

// ------------------------------------------------------------ butterflies

// Odd radix RX (0: r at run time): x[0..r) becomes X[0..r). Pairs x[k],
// x[r-k] share their sum a and difference b: X[j] = x0 + sum cos*a -/+ i
// sum sin*b, and X[r-j] the same with the other sign. cs[t], sn[t]: cos
// and sin of 2*pi*t/r.
template <int RX, class V, bool Inv>
VEK_KERNEL void bfly_odd(typename V::V* x, const typename V::R* cs, const typename V::R* sn,
                         int rr) {
    using VT = typename V::V;
    constexpr int kH = RX ? (RX - 1) / 2 : (kDftMaxRadix - 1) / 2;
    const int r = RX ? RX : rr;
    const int h = (r - 1) / 2;
    VT a[kH], b[kH];
    const VT x0 = x[0];
    VT y0 = x0;
#pragma GCC unroll 16
    for (int k = 1; k <= h; ++k) {
        a[k - 1] = V::add(x[k], x[r - k]);
        b[k - 1] = V::sub(x[k], x[r - k]);
        y0 = V::add(y0, a[k - 1]);
    }
#pragma GCC unroll 16
    for (int j = 1; j <= h; ++j) {
        VT A = V::add(x0, V::mul(a[0], V::set1(cs[j])));
        VT B = V::mul(b[0], V::set1(sn[j]));
        int t = j;  // j*k mod r
#pragma GCC unroll 16
        for (int k = 2; k <= h; ++k) {
            t += j;
            if (t >= r) t -= r;
            A = V::add(A, V::mul(a[k - 1], V::set1(cs[t])));
            B = V::add(B, V::mul(b[k - 1], V::set1(sn[t])));
        }
        const VT mb = mul_mi<V, Inv>(B);
        x[j] = V::add(A, mb);
        x[r - j] = V::sub(A, mb);
    }
    x[0] = y0;
}

template <int RX, class V, bool Inv>
VEK_KERNEL void bfly(typename V::V* x, const typename V::R* cs, const typename V::R* sn, int rr) {
    if constexpr (RX == 2) {
        const typename V::V a = x[0];
        x[0] = V::add(a, x[1]);
        x[1] = V::sub(a, x[1]);
    } else if constexpr (RX == 4) {
        dft4<V, Inv>(x[0], x[1], x[2], x[3]);
    } else if constexpr (RX == 8) {
        dft8<V, Inv>(x);
    } else {
        bfly_odd<RX, V, Inv>(x, cs, sn, rr);
    }
}

// ------------------------------------------------------------ passes

// Lanes [q0, q1) of a pass (see DftPass), vector loop over the lanes with
// the twiddles broadcast; the last pass (m = 1) needs none, may run in
// place, and applies the scale.
template <int RX, class V, bool Inv>
void pass_q(const typename V::C* x, typename V::C* y, std::size_t L, std::size_t m,
            const typename V::C* tw, const typename V::R* cs, const typename V::R* sn, int rr,
            std::size_t q0, std::size_t q1, typename V::R scale) {
    using VT = typename V::V;
    constexpr int kR = RX ? RX : kDftMaxRadix;
    const int r = RX ? RX : rr;
    const std::size_t s = L * m;
    // The loop over the lanes, with or without twiddles and scale, each
    // without a test inside.
    auto lanes = [&](const typename V::C* x0, typename V::C* y0, const typename V::C* w,
                     auto twiddled, auto scaled) {
        VT v[kR];
        const VT sv = V::set1(scale);
        for (std::size_t q = q0; q < q1; q += V::W) {
#pragma GCC unroll 16
            for (int j = 0; j < r; ++j) v[j] = V::load(x0 + q + std::size_t(j) * s);
            bfly<RX, V, Inv>(v, cs, sn, r);
            if constexpr (decltype(twiddled)::value) {
#pragma GCC unroll 16
                for (int k = 1; k < r; ++k)
                    v[k] = cmul<V, Inv>(v[k], V::set1(w[k - 1].re), V::set1(w[k - 1].im));
            }
            if constexpr (decltype(scaled)::value) {
#pragma GCC unroll 16
                for (int k = 0; k < r; ++k) v[k] = V::mul(v[k], sv);
            }
#pragma GCC unroll 16
            for (int k = 0; k < r; ++k) V::store(y0 + q + std::size_t(k) * L, v[k]);
        }
    };
    using No = std::false_type;
    using Yes = std::true_type;
    // Only the last pass (m = 1, no twiddles) scales.
    if (scale != typename V::R(1))
        lanes(x, y, tw, No{}, Yes{});
    else
        lanes(x, y, tw, No{}, No{});
    for (std::size_t p = 1; p < m; ++p)
        lanes(x + L * p, y + L * std::size_t(r) * p, tw + p * std::size_t(r - 1), Yes{}, No{});
}

// y[r*(p+i) + k] = v[k][i]: the outputs of W sub-transforms, interleaved.
template <int RX, class V>
VEK_KERNEL void store_spread(typename V::C* y, typename V::V* v, int r) {
    if constexpr (V::W == 1) {
#pragma GCC unroll 16
        for (int k = 0; k < r; ++k) V::store(y + k, v[k]);
    } else if constexpr (RX == 8) {
        V::store8(y, v);
    } else if constexpr (RX == 4 && V::W <= 4) {
        V::store4(y, v[0], v[1], v[2], v[3]);
    } else {
        constexpr int kR = RX ? RX : kDftMaxRadix;
        alignas(64) typename V::C t[kR * V::W];
#pragma GCC unroll 16
        for (int k = 0; k < r; ++k) V::store(t + k * V::W, v[k]);
        for (int i = 0; i < V::W; ++i)
#pragma GCC unroll 16
            for (int k = 0; k < r; ++k) y[r * i + k] = t[k * V::W + i];
    }
}

// Sub-transforms [p0, p1) of a first pass (L = 1), vector loop over p with
// the twiddles loaded as vectors.
template <int RX, class V, bool Inv>
void pass_p(const typename V::C* x, typename V::C* y, std::size_t m, const typename V::C* tw,
            const typename V::R* cs, const typename V::R* sn, int rr, std::size_t p0,
            std::size_t p1) {
    using VT = typename V::V;
    constexpr int kR = RX ? RX : kDftMaxRadix;
    const int r = RX ? RX : rr;
    VT v[kR];
    for (std::size_t p = p0; p < p1; p += V::W) {
#pragma GCC unroll 16
        for (int j = 0; j < r; ++j) v[j] = V::load(x + p + std::size_t(j) * m);
        bfly<RX, V, Inv>(v, cs, sn, r);
#pragma GCC unroll 16
        for (int k = 1; k < r; ++k)
            v[k] = cmulv<V, Inv>(v[k], V::load(tw + std::size_t(k - 1) * m + p));
        store_spread<RX, V>(y + std::size_t(r) * p, v, r);
    }
}

// The generic radix r one column at a time, for passes with few lanes:
// the pair sums a and differences b of a column, then X[j] and X[r-j] for
// a vector of j at once from the matrices cos(2*pi*i*j/r) and sin (rows i,
// columns j, see fill_passes), then the twiddles on each output.
template <class C, bool Inv>
void odd_columns(const C* x, C* y, std::size_t L, std::size_t m, const C* tw,
                 const decltype(C::re)* k, int r, decltype(C::re) scale) {
    using R = decltype(C::re);
    constexpr int kH = (kDftMaxRadix - 1) / 2;
    const std::size_t h = std::size_t(r - 1) / 2, row = dft_matrix_row(r), s = L * m;
    const R* cm = k + 2 * r;
    const R* sm = cm + 2 * h * row;
    C a[kH], b[kH];
    alignas(64) C P[dft_matrix_row(kDftMaxRadix)], Q[dft_matrix_row(kDftMaxRadix)];
    by_width(static_cast<R*>(nullptr), row, [&](auto t) {
        using V = typename decltype(t)::type;
        using VT = typename V::V;
        for (std::size_t p = 0; p < m; ++p)
            for (std::size_t q = 0; q < L; ++q) {
                const C* x0 = x + q + L * p;
                const C first = x0[0];
                C sum = first;
                for (std::size_t i = 1; i <= h; ++i) {
                    const C u = x0[i * s], v = x0[(std::size_t(r) - i) * s];
                    a[i - 1] = C{u.re + v.re, u.im + v.im};
                    b[i - 1] = C{u.re - v.re, u.im - v.im};
                    sum = C{sum.re + a[i - 1].re, sum.im + a[i - 1].im};
                }
                for (std::size_t j = 0; j < h; j += V::W) {
                    VT A = bcast(t, &first);
                    VT B = V::mul(bcast(t, &b[0]), V::load(reinterpret_cast<const C*>(sm) + j));
                    A = V::add(
                        A, V::mul(bcast(t, &a[0]), V::load(reinterpret_cast<const C*>(cm) + j)));
                    for (std::size_t i = 1; i < h; ++i) {
                        const C* c = reinterpret_cast<const C*>(cm) + i * row + j;
                        const C* d = reinterpret_cast<const C*>(sm) + i * row + j;
                        A = V::add(A, V::mul(bcast(t, &a[i]), V::load(c)));
                        B = V::add(B, V::mul(bcast(t, &b[i]), V::load(d)));
                    }
                    const VT mb = mul_mi<V, Inv>(B);
                    V::store(P + j, V::add(A, mb));
                    V::store(Q + j, V::sub(A, mb));
                }
                C* y0 = y + q + L * std::size_t(r) * p;
                auto put = [&](std::size_t i, C v) {
                    if (p != 0 && i != 0) {
                        const C w = tw[p * (std::size_t(r) - 1) + i - 1];
                        const R wi = Inv ? -w.im : w.im;
                        v = C{v.re * w.re - v.im * wi, v.re * wi + v.im * w.re};
                    }
                    y0[i * L] = C{v.re * scale, v.im * scale};
                };
                put(0, sum);
                for (std::size_t j = 1; j <= h; ++j) {
                    put(j, P[j - 1]);
                    put(std::size_t(r) - j, Q[j - 1]);
                }
            }
    });
}

template <int RX, class C, bool Inv>
void pass(const DftPass& ps, const C* in, C* out, const C* tw, const decltype(C::re)* k,
          decltype(C::re) scale) {
    using R = decltype(C::re);
    const R* cs = k;
    const R* sn = k + ps.radix;
    if (RX == 0 && !ps.spread && ps.L < kDftColumnLanes) {
        odd_columns<C, Inv>(in, out, ps.L, ps.m, tw, k, ps.radix, scale);
    } else if (ps.spread) {
        // Four outputs interleave with the four-wide transposes only.
        chunks<RX == 4, R>(ps.m, [&](auto t, std::size_t a, std::size_t b) {
            using V = typename decltype(t)::type;
            pass_p<RX, V, Inv>(in, out, ps.m, tw, cs, sn, ps.radix, a, b);
        });
    } else {
        chunks<false, R>(ps.L, [&](auto t, std::size_t a, std::size_t b) {
            using V = typename decltype(t)::type;
            pass_q<RX, V, Inv>(in, out, ps.L, ps.m, tw, cs, sn, ps.radix, a, b, scale);
        });
    }
}

// The passes of a schedule from src to dst, alternating with tmp so that
// the last lands in dst; src may equal dst (then, for an odd count, the
// last pass runs in place).
template <class C, bool Inv>
void run_passes(const DftSchedule<C>& s, const C* src, C* dst, C* tmp, decltype(C::re) scale) {
    using R = decltype(C::re);
    const int passes = s.passes;
    if (passes == 0) {
        dst[0] = C{src[0].re * scale, src[0].im * scale};
        return;
    }
    const bool lastInPlace = src == dst && passes % 2 == 1;
    const C* in = src;
    for (int i = 0; i < passes; ++i) {
        const DftPass& ps = s.pass[i];
        const int after = lastInPlace ? passes - 2 - i : passes - 1 - i;
        C* out = i == passes - 1 || after % 2 == 0 ? dst : tmp;
        const C* tw = s.tw + ps.tw;
        const R* k = s.k + ps.k;
        const R sc = i == passes - 1 ? scale : R(1);
        switch (ps.radix) {
            case 2:
                pass<2, C, Inv>(ps, in, out, tw, k, sc);
                break;
            case 3:
                pass<3, C, Inv>(ps, in, out, tw, k, sc);
                break;
            case 4:
                pass<4, C, Inv>(ps, in, out, tw, k, sc);
                break;
            case 5:
                pass<5, C, Inv>(ps, in, out, tw, k, sc);
                break;
            case 7:
                pass<7, C, Inv>(ps, in, out, tw, k, sc);
                break;
            case 8:
                pass<8, C, Inv>(ps, in, out, tw, k, sc);
                break;
            default:
                pass<0, C, Inv>(ps, in, out, tw, k, sc);
                break;
        }
        in = out;
    }
}

// ------------------------------------------------------------ Bluestein

// a[j] = x[j] * w[j] for j < n (conj(w) for the inverse), 0 up to M.
template <class C, bool Inv>
void chirp_in(const C* x, const C* w, C* a, std::size_t n, std::size_t M) {
    using R = decltype(C::re);
    chunks<false, R>(n, [&](auto t, std::size_t lo, std::size_t hi) {
        using V = typename decltype(t)::type;
        for (std::size_t j = lo; j < hi; j += V::W)
            V::store(a + j, cmulv<V, Inv>(V::load(x + j), V::load(w + j)));
    });
    for (std::size_t j = n; j < M; ++j) a[j] = C{0, 0};
}

// a[j] *= s[j] (conj(s) for the inverse).
template <class C, bool Inv>
void spectrum_mul(C* a, const C* s, std::size_t M) {
    using R = decltype(C::re);
    chunks<false, R>(M, [&](auto t, std::size_t lo, std::size_t hi) {
        using V = typename decltype(t)::type;
        for (std::size_t j = lo; j < hi; j += V::W)
            V::store(a + j, cmulv<V, Inv>(V::load(a + j), V::load(s + j)));
    });
}

// y[j] = a[j] * w[j] * scale (conj(w) for the inverse).
template <class C, bool Inv>
void chirp_out(const C* a, const C* w, C* y, std::size_t n, decltype(C::re) scale) {
    using R = decltype(C::re);
    const bool scaled = scale != R(1);
    chunks<false, R>(n, [&](auto t, std::size_t lo, std::size_t hi) {
        using V = typename decltype(t)::type;
        const typename V::V sv = V::set1(scale);
        for (std::size_t j = lo; j < hi; j += V::W) {
            typename V::V v = cmulv<V, Inv>(V::load(a + j), V::load(w + j));
            if (scaled) v = V::mul(v, sv);
            V::store(y + j, v);
        }
    });
}

// The conjugate direction is the same convolution of the conjugated
// chirps (the spectrum is symmetric), so only the chirp products differ.
template <class C, bool Inv>
void bluestein(const DftPlan<C>& pl, const C* src, C* dst, C* work, decltype(C::re) scale) {
    const std::size_t n = std::size_t(pl.length), M = std::size_t(pl.sched.n);
    C* a = work;
    C* tmp = work + M;
    chirp_in<C, Inv>(src, pl.chirp, a, n, M);
    run_passes<C, false>(pl.sched, a, a, tmp, 1);
    spectrum_mul<C, Inv>(a, pl.spectrum, M);
    run_passes<C, true>(pl.sched, a, a, tmp, 1);
    chirp_out<C, Inv>(a, pl.chirp, dst, n, scale);
}

template <class C>
void run(const DftPlan<C>* pl, const C* src, C* dst, C* work, bool inverse, decltype(C::re) scale) {
    if (pl->spectrum) {
        if (inverse)
            bluestein<C, true>(*pl, src, dst, work, scale);
        else
            bluestein<C, false>(*pl, src, dst, work, scale);
    } else {
        if (inverse)
            run_passes<C, true>(pl->sched, src, dst, work, scale);
        else
            run_passes<C, false>(pl->sched, src, dst, work, scale);
    }
}

void run_c(const DftPlan<CplxFloat>* pl, const CplxFloat* src, CplxFloat* dst, CplxFloat* work,
           bool inverse, float scale) {
    run(pl, src, dst, work, inverse, scale);
}

void run_z(const DftPlan<CplxDouble>* pl, const CplxDouble* src, CplxDouble* dst, CplxDouble* work,
           bool inverse, double scale) {
    run(pl, src, dst, work, inverse, scale);
}

void passes_z(const DftSchedule<CplxDouble>* s, const CplxDouble* src, CplxDouble* dst,
              CplxDouble* tmp) {
    run_passes<CplxDouble, false>(*s, src, dst, tmp, 1);
}

#undef VEK_KERNEL

}  // namespace

extern const DftOps dft_ops = {run_c, run_z, passes_z};

}  // namespace VEK_ISA
}  // namespace vek
