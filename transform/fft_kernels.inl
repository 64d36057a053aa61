// FFT kernels, compiled once per instruction set (see fft.hpp for the
// design). Include after defining VEK_ISA.
// GCC 12 flags the "undefined" source operand inside its own 512-bit
// intrinsics as (maybe) uninitialised.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "transform/fft.hpp"

namespace vek {
namespace VEK_ISA {
namespace {

#include "transform/cplx_lanes.inl"

// ------------------------------------------------------------ passes
//
// A pass of size n with m = n/radix reads x[q + si*(p + j*m)] and writes
// y[q + L*(radix*p + r)] for p < m, q < L; output r of sub-transform p is
// multiplied by W_n^(r*p) from the pass's own table. The input stride si
// is L except where a first pass reads its lanes straight from strided data.

// Twiddled radix-4 pass with the vector loop over the lanes q; tw holds
// W^p, W^2p, W^3p for each p.
template <class V, bool Inv>
void pass_q4(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t m, std::size_t L,
             const typename V::C* tw) {
    using VT = typename V::V;
    const std::size_t s = m * si;
    for (std::size_t p = 0; p < m; ++p) {
        const typename V::C* x0 = x + p * si;
        typename V::C* y0 = y + 4 * p * L;
        const typename V::C* w = tw + 3 * p;
        for (std::size_t q = 0; q < L; q += V::W) {
            VT a = V::load(x0 + q), b = V::load(x0 + s + q);
            VT c = V::load(x0 + 2 * s + q), d = V::load(x0 + 3 * s + q);
            dft4<V, Inv>(a, b, c, d);
            V::store(y0 + q, a);
            if (p == 0) {
                V::store(y0 + L + q, b);
                V::store(y0 + 2 * L + q, c);
                V::store(y0 + 3 * L + q, d);
            } else {
                V::store(y0 + L + q, cmul<V, Inv>(b, V::set1(w[0].re), V::set1(w[0].im)));
                V::store(y0 + 2 * L + q, cmul<V, Inv>(c, V::set1(w[1].re), V::set1(w[1].im)));
                V::store(y0 + 3 * L + q, cmul<V, Inv>(d, V::set1(w[2].re), V::set1(w[2].im)));
            }
        }
    }
}

// Twiddled radix-8 pass with the vector loop over the lanes q; tw holds
// W^p .. W^7p for each p.
template <class V, bool Inv>
void pass_q8(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t m, std::size_t L,
             const typename V::C* tw) {
    using VT = typename V::V;
    const std::size_t s = m * si;
    for (std::size_t p = 0; p < m; ++p) {
        const typename V::C* x0 = x + p * si;
        typename V::C* y0 = y + 8 * p * L;
        const typename V::C* w = tw + 7 * p;
        for (std::size_t q = 0; q < L; q += V::W) {
            VT v[8];
            for (int j = 0; j < 8; ++j) v[j] = V::load(x0 + j * s + q);
            dft8<V, Inv>(v);
            V::store(y0 + q, v[0]);
            if (p == 0) {
                for (int r = 1; r < 8; ++r) V::store(y0 + r * L + q, v[r]);
            } else {
                for (int r = 1; r < 8; ++r)
                    V::store(y0 + r * L + q,
                             cmul<V, Inv>(v[r], V::set1(w[r - 1].re), V::set1(w[r - 1].im)));
            }
        }
    }
}

// Twiddled radix-4 first pass (L = 1) with the vector loop over p.
template <class V, bool Inv>
void pass_p4(const typename V::C* x, typename V::C* y, std::size_t m, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t p = 0; p < m; p += V::W) {
        VT a = V::load(x + p), b = V::load(x + m + p);
        VT c = V::load(x + 2 * m + p), d = V::load(x + 3 * m + p);
        dft4<V, Inv>(a, b, c, d);
        const VT w1 = V::load(tw + p), w2 = V::load(tw + m + p), w3 = V::load(tw + 2 * m + p);
        b = cmul<V, Inv>(b, V::dup_re(w1), V::dup_im(w1));
        c = cmul<V, Inv>(c, V::dup_re(w2), V::dup_im(w2));
        d = cmul<V, Inv>(d, V::dup_re(w3), V::dup_im(w3));
        V::store4(y + 4 * p, a, b, c, d);
    }
}

// Twiddled radix-8 first pass (L = 1) with the vector loop over p; tw
// holds W^(r*p) as seven arrays of m.
template <class V, bool Inv>
void pass_p8(const typename V::C* x, typename V::C* y, std::size_t m, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t p = 0; p < m; p += V::W) {
        VT v[8];
        for (int j = 0; j < 8; ++j) v[j] = V::load(x + j * m + p);
        dft8<V, Inv>(v);
        for (int r = 1; r < 8; ++r) {
            const VT w = V::load(tw + (r - 1) * m + p);
            v[r] = cmul<V, Inv>(v[r], V::dup_re(w), V::dup_im(w));
        }
        V::store8(y + 8 * p, v);
    }
}

// Last pass of size 4 (m = 1): no twiddles; may run in place. The outputs
// of lane l, point k go to y[l + so*k] for lanes l < L0 (so = L0: the
// usual packed layout), times `scale`.
template <class V, bool Inv>
void last4(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t L, std::size_t L0,
           std::size_t so, typename V::R scale) {
    using VT = typename V::V;
    const std::size_t K = L / L0, ro = so * K;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t k = 0; k < K; ++k)
        for (std::size_t l = 0; l < L0; l += V::W) {
            const std::size_t q = k * L0 + l;
            VT a = V::load(x + q), b = V::load(x + si + q), c = V::load(x + 2 * si + q),
               d = V::load(x + 3 * si + q);
            dft4<V, Inv>(a, b, c, d);
            if (scaled) {
                a = V::mul(a, sv);
                b = V::mul(b, sv);
                c = V::mul(c, sv);
                d = V::mul(d, sv);
            }
            typename V::C* y0 = y + k * so + l;
            V::store(y0, a);
            V::store(y0 + ro, b);
            V::store(y0 + 2 * ro, c);
            V::store(y0 + 3 * ro, d);
        }
}

// Last pass of size 8 (m = 1), as last4.
template <class V, bool Inv>
void last8(const typename V::C* x, std::size_t si, typename V::C* y, std::size_t L, std::size_t L0,
           std::size_t so, typename V::R scale) {
    using VT = typename V::V;
    const std::size_t K = L / L0, ro = so * K;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t k = 0; k < K; ++k)
        for (std::size_t l = 0; l < L0; l += V::W) {
            const std::size_t q = k * L0 + l;
            VT v[8];
            for (int j = 0; j < 8; ++j) v[j] = V::load(x + j * si + q);
            dft8<V, Inv>(v);
            if (scaled)
                for (int r = 0; r < 8; ++r) v[r] = V::mul(v[r], sv);
            typename V::C* y0 = y + k * so + l;
            for (int r = 0; r < 8; ++r) V::store(y0 + r * ro, v[r]);
        }
}

// ------------------------------------------------------------ bit-reversed
//
// In place, without a permutation: decimation in frequency takes natural
// order to bit-reversed order when each butterfly stores its outputs in
// bit-reversed order within its block; decimation in time undoes it.

constexpr int kRev3[8] = {0, 4, 2, 6, 1, 5, 3, 7};

template <class V, bool Inv>
void dif4(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 4 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT a = V::load(x0 + j), b = V::load(x0 + h + j), c = V::load(x0 + 2 * h + j),
               d = V::load(x0 + 3 * h + j);
            dft4<V, Inv>(a, b, c, d);
            V::store(x0 + j, a);
            V::store(x0 + h + j, cmulv<V, Inv>(c, V::load(tw + h + j)));
            V::store(x0 + 2 * h + j, cmulv<V, Inv>(b, V::load(tw + j)));
            V::store(x0 + 3 * h + j, cmulv<V, Inv>(d, V::load(tw + 2 * h + j)));
        }
    }
}

template <class V, bool Inv>
void dif8(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 8 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT v[8];
            for (int k = 0; k < 8; ++k) v[k] = V::load(x0 + k * h + j);
            dft8<V, Inv>(v);
            V::store(x0 + j, v[0]);
            for (int t = 1; t < 8; ++t) {
                const int r = kRev3[t];
                V::store(x0 + t * h + j, cmulv<V, Inv>(v[r], V::load(tw + (r - 1) * h + j)));
            }
        }
    }
}

// The last step on blocks of 4 contiguous points, several blocks per vector.
template <class V, bool Inv>
void dif_end4(typename V::C* x, std::size_t n, typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 4 * V::W) {
        VT a, b, c, d;
        V::load4(x + blk, a, b, c, d);
        dft4<V, Inv>(a, b, c, d);
        if (scaled) {
            a = V::mul(a, sv);
            b = V::mul(b, sv);
            c = V::mul(c, sv);
            d = V::mul(d, sv);
        }
        V::store4(x + blk, a, c, b, d);
    }
}

template <class V, bool Inv>
void dit_first4(typename V::C* x, std::size_t n) {
    using VT = typename V::V;
    for (std::size_t blk = 0; blk < n; blk += 4 * V::W) {
        VT a, b, c, d;
        V::load4(x + blk, a, c, b, d);
        dft4<V, Inv>(a, b, c, d);
        V::store4(x + blk, a, b, c, d);
    }
}

template <class V, bool Inv>
void dit4(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw,
          typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 4 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT a = V::load(x0 + j);
            VT b = cmulv<V, Inv>(V::load(x0 + 2 * h + j), V::load(tw + j));
            VT c = cmulv<V, Inv>(V::load(x0 + h + j), V::load(tw + h + j));
            VT d = cmulv<V, Inv>(V::load(x0 + 3 * h + j), V::load(tw + 2 * h + j));
            dft4<V, Inv>(a, b, c, d);
            if (scaled) {
                a = V::mul(a, sv);
                b = V::mul(b, sv);
                c = V::mul(c, sv);
                d = V::mul(d, sv);
            }
            V::store(x0 + j, a);
            V::store(x0 + h + j, b);
            V::store(x0 + 2 * h + j, c);
            V::store(x0 + 3 * h + j, d);
        }
    }
}

template <class V, bool Inv>
void dit8(typename V::C* x, std::size_t n, std::size_t h, const typename V::C* tw,
          typename V::R scale) {
    using VT = typename V::V;
    const bool scaled = scale != typename V::R(1);
    const VT sv = V::set1(scale);
    for (std::size_t blk = 0; blk < n; blk += 8 * h) {
        typename V::C* x0 = x + blk;
        for (std::size_t j = 0; j < h; j += V::W) {
            VT v[8];
            v[0] = V::load(x0 + j);
            for (int r = 1; r < 8; ++r)
                v[r] = cmulv<V, Inv>(V::load(x0 + kRev3[r] * h + j), V::load(tw + (r - 1) * h + j));
            dft8<V, Inv>(v);
            if (scaled)
                for (int k = 0; k < 8; ++k) v[k] = V::mul(v[k], sv);
            for (int k = 0; k < 8; ++k) V::store(x0 + k * h + j, v[k]);
        }
    }
}

// ------------------------------------------------------------ transforms

template <class C>
struct RealOf;
template <>
struct RealOf<CplxFloat> {
    using type = float;
};
template <>
struct RealOf<CplxDouble> {
    using type = double;
};

// The transform of a schedule on 2^order points in L0 lanes: point j of
// lane q is read at src[q + s0*j] and written at dst[q + d0*j]. With d0 =
// L0, passes alternate between dst and tmp so that the last lands in dst,
// and src may equal dst (then s0 = L0: when the count is odd the last pass,
// which may, runs in place). Otherwise they alternate between tmp and tmp2.
template <class C, bool Inv>
void stockham(const C* src, std::size_t s0, C* dst, std::size_t d0, C* tmp, C* tmp2,
              const FftSchedule<C>& sc, std::size_t L0, typename RealOf<C>::type scale) {
    using R = typename RealOf<C>::type;
    const int passes = sc.passes;
    if (passes == 0) {
        for (std::size_t q = 0; q < L0; ++q) dst[q] = C{src[q].re * scale, src[q].im * scale};
        return;
    }
    const bool packed = d0 == L0;
    const bool lastInPlace = src == dst && passes % 2 == 1;
    const C* in = src;
    std::size_t si = s0, L = L0;
    for (int i = 0; i < passes; ++i) {
        const FftPass& ps = sc.pass[i];
        C* out;
        if (i == passes - 1) {
            out = dst;
        } else if (!packed) {
            out = i % 2 ? tmp2 : tmp;
        } else {
            const int after = lastInPlace ? passes - 2 - i : passes - 1 - i;
            out = after % 2 == 0 ? dst : tmp;
        }
        const C* tw = sc.tw + ps.tw;
        switch (ps.kind) {
            case kPassFirst4:
                by_width<true>(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_p4<V, Inv>(in, out, ps.m, tw);
                });
                break;
            case kPassFirst8:
                by_width(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_p8<V, Inv>(in, out, ps.m, tw);
                });
                break;
            case kPassTw4:
                by_width(static_cast<R*>(nullptr), L, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_q4<V, Inv>(in, si, out, ps.m, L, tw);
                });
                break;
            case kPassTw8:
                by_width(static_cast<R*>(nullptr), L, [&](auto t) {
                    using V = typename decltype(t)::type;
                    pass_q8<V, Inv>(in, si, out, ps.m, L, tw);
                });
                break;
            case kPassLast2:
                for (std::size_t k = 0; k < L / L0; ++k)
                    for (std::size_t l = 0; l < L0; ++l) {
                        const std::size_t q = k * L0 + l;
                        const C a = in[q], b = in[q + si];
                        out[k * d0 + l] = C{(a.re + b.re) * scale, (a.im + b.im) * scale};
                        out[k * d0 + l + d0 * (L / L0)] =
                            C{(a.re - b.re) * scale, (a.im - b.im) * scale};
                    }
                break;
            case kPassLast4:
                // Packed output is one run of L points per output row.
                by_width(static_cast<R*>(nullptr), packed ? L : L0, [&](auto t) {
                    using V = typename decltype(t)::type;
                    last4<V, Inv>(in, si, out, L, packed ? L : L0, packed ? L : d0, scale);
                });
                break;
            default:
                by_width(static_cast<R*>(nullptr), packed ? L : L0, [&](auto t) {
                    using V = typename decltype(t)::type;
                    last8<V, Inv>(in, si, out, L, packed ? L : L0, packed ? L : d0, scale);
                });
                break;
        }
        const std::size_t radix =
            ps.kind == kPassLast2                                                    ? 2
            : ps.kind == kPassTw8 || ps.kind == kPassLast8 || ps.kind == kPassFirst8 ? 8
                                                                                     : 4;
        in = out;
        L *= radix;
        si = L;
    }
}

// The column FFTs' block (rows x lanes, b0[k1*lanes + b]) times the
// inter-step twiddle, stored transposed: mid[b*ld + k1].
template <class C, bool Inv>
void twiddle_transpose(const FftPlan<C>* pl, const C* b0, std::size_t cb, C* mid, std::size_t ld) {
    using R = typename RealOf<C>::type;
    const std::size_t rows = std::size_t(1) << pl->rowsLog, lanes = std::size_t(pl->lanes);
    const C* blk = pl->block + cb * rows;
    by_width<true>(static_cast<R*>(nullptr), 4, [&](auto t) {
        using V = typename decltype(t)::type;
        using VT = typename V::V;
        constexpr int W = V::W;
        for (std::size_t k1 = 0; k1 < rows; k1 += W)
            for (std::size_t b = 0; b < lanes; b += W) {
                VT v[W];
                for (int i = 0; i < W; ++i) {
                    const std::size_t row = k1 + i;
                    const VT w = cmul<V, false>(V::load(pl->lane + row * lanes + b),
                                                V::set1(blk[row].re), V::set1(blk[row].im));
                    v[i] = cmulv<V, Inv>(V::load(b0 + row * lanes + b), w);
                }
                V::transpose(v);
                for (int i = 0; i < W; ++i) V::store(mid + (b + i) * ld + k1, v[i]);
            }
    });
}

template <class C, bool Inv>
void four_step(const FftPlan<C>* pl, const C* src, C* dst, C* work,
               typename RealOf<C>::type scale) {
    const std::size_t rows = std::size_t(1) << pl->rowsLog, cols = std::size_t(1) << pl->colsLog;
    const std::size_t lanes = std::size_t(pl->lanes);
    C* mid = work;  // cols x rows: the columns' results, transposed
    C* b0 = mid + rows * cols;
    C* b1 = b0 + cols * lanes;
    // Columns, a block of lanes at a time, read straight from the strided
    // input; twiddled and transposed into mid.
    for (std::size_t cb = 0; cb < cols / lanes; ++cb) {
        stockham<C, Inv>(src + cb * lanes, cols, b0, lanes, b1, nullptr, pl->rows, lanes, 1);
        twiddle_transpose<C, Inv>(pl, b0, cb, mid + cb * lanes * rows, rows);
    }
    // Rows, now columns of mid, a block of lanes at a time; the last pass
    // writes the output in place: point k2 of row k1 at dst[k2*rows + k1].
    for (std::size_t k1 = 0; k1 < rows; k1 += lanes)
        stockham<C, Inv>(mid + k1, rows, dst + k1, rows, b0, b1, pl->cols, lanes, scale);
}

template <class C>
void run(const FftPlan<C>* pl, const C* src, C* dst, C* work, bool inverse,
         typename RealOf<C>::type scale) {
    if (pl->rowsLog == 0) {
        if (inverse)
            stockham<C, true>(src, 1, dst, 1, work, nullptr, pl->whole, 1, scale);
        else
            stockham<C, false>(src, 1, dst, 1, work, nullptr, pl->whole, 1, scale);
    } else {
        if (inverse)
            four_step<C, true>(pl, src, dst, work, scale);
        else
            four_step<C, false>(pl, src, dst, work, scale);
    }
}

template <class C, bool Inv>
void rev_passes(const FftSchedule<C>& sc, C* x, bool fromRev, typename RealOf<C>::type scale) {
    using R = typename RealOf<C>::type;
    const std::size_t n = std::size_t(1) << sc.order;
    for (int k = 0; k < sc.passes; ++k) {
        const FftPass& ps = sc.pass[fromRev ? sc.passes - 1 - k : k];
        const C* tw = sc.tw + ps.tw;
        const R s = k == sc.passes - 1 ? scale : R(1);
        if (ps.kind == kPassRevEnd4) {
            by_width<true>(static_cast<R*>(nullptr), n / 4, [&](auto t) {
                using V = typename decltype(t)::type;
                if (fromRev)
                    dit_first4<V, Inv>(x, n);
                else
                    dif_end4<V, Inv>(x, n, s);
            });
        } else {
            by_width(static_cast<R*>(nullptr), ps.m, [&](auto t) {
                using V = typename decltype(t)::type;
                if (ps.kind == kPassRev8)
                    fromRev ? dit8<V, Inv>(x, n, ps.m, tw, s) : dif8<V, Inv>(x, n, ps.m, tw);
                else
                    fromRev ? dit4<V, Inv>(x, n, ps.m, tw, s) : dif4<V, Inv>(x, n, ps.m, tw);
            });
        }
    }
}

template <class C>
void rev(const FftSchedule<C>* sc, C* x, bool inverse, bool fromRev,
         typename RealOf<C>::type scale) {
    if (inverse)
        rev_passes<C, true>(*sc, x, fromRev, scale);
    else
        rev_passes<C, false>(*sc, x, fromRev, scale);
}

void rev_c(const FftSchedule<CplxFloat>* sc, CplxFloat* x, bool inverse, bool fromRev,
           float scale) {
    rev(sc, x, inverse, fromRev, scale);
}

void rev_z(const FftSchedule<CplxDouble>* sc, CplxDouble* x, bool inverse, bool fromRev,
           double scale) {
    rev(sc, x, inverse, fromRev, scale);
}

void run_c(const FftPlan<CplxFloat>* pl, const CplxFloat* src, CplxFloat* dst, CplxFloat* work,
           bool inverse, float scale) {
    run(pl, src, dst, work, inverse, scale);
}

void run_z(const FftPlan<CplxDouble>* pl, const CplxDouble* src, CplxDouble* dst, CplxDouble* work,
           bool inverse, double scale) {
    run(pl, src, dst, work, inverse, scale);
}

#undef VEK_KERNEL

}  // namespace

extern const FftOps fft_ops = {run_c, run_z, rev_c, rev_z};

}  // namespace VEK_ISA
}  // namespace vek
