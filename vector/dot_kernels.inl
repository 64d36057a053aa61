// Dot-product kernels, compiled once per instruction set (VEK_ISA names it).
#include "vector/dot.hpp"
#include "vector/lanes.inl"

namespace vek {
namespace VEK_ISA {
namespace {

constexpr int kDoubles = kVecBytes / 8;  // double lanes per register
using VD = Vec<double, kDoubles>;

// Real streams of n terms a[i] b[i].
float dot_s(const float* a, const float* b, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            acc[0][r] =
                add_exact_product(acc[0][r], widen<kDoubles>(load<Vec<float, kDoubles>>(a + at)),
                                  widen<kDoubles>(load<Vec<float, kDoubles>>(b + at)));
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) {
            l[0][lane] += double(a[i]) * double(b[i]);
        },
        lanes);
    fold_lanes(lanes[0]);
    return float(lanes[0][0]);
}

double dot_d(const double* a, const double* b, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            acc[0][r] += load<VD>(a + at) * load<VD>(b + at);
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) { l[0][lane] += a[i] * b[i]; },
        lanes);
    fold_lanes(lanes[0]);
    return lanes[0][0];
}

// Complex streams, as 2n interleaved reals: set 0 gathers x[k] y[k] (even
// terms re·re, odd terms im·im), set 1 gathers x[k] y[k ^ 1] (re·im, im·re).
template <class T, class Result>
Result dot_complex(const T* x, const T* y, int n) {
    double lanes[2][kSumLanes];
    sum_lanes<2>(
        2 * std::ptrdiff_t(n),
        [&](VD(&acc)[2][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            VD p, q;
            if constexpr (sizeof(T) == 4) {
                p = widen<kDoubles>(load<Vec<float, kDoubles>>(x + at));
                q = widen<kDoubles>(load<Vec<float, kDoubles>>(y + at));
                acc[0][r] = add_exact_product(acc[0][r], p, q);
                acc[1][r] = add_exact_product(acc[1][r], p, swap_pairs(q));
            } else {
                p = load<VD>(x + at);
                q = load<VD>(y + at);
                acc[0][r] += p * q;
                acc[1][r] += p * swap_pairs(q);
            }
        },
        [&](double(&l)[2][kSumLanes], int lane, std::ptrdiff_t i) {
            l[0][lane] += double(x[i]) * double(y[i]);
            l[1][lane] += double(x[i]) * double(y[i ^ 1]);
        },
        lanes);
    fold_lanes(lanes[0], 2);
    fold_lanes(lanes[1], 2);
    using Part = decltype(Result{}.re);
    return Result{Part(lanes[0][0] - lanes[0][1]), Part(lanes[1][0] + lanes[1][1])};
}

// Complex x by real y, as 2n interleaved reals x[k] y[k / 2]: even lanes
// gather the real part, odd lanes the imaginary part.
template <class T, class Result>
Result dot_mixed(const T* x, const T* y, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        2 * std::ptrdiff_t(n),
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            if constexpr (sizeof(T) == 4) {
                const VD p = widen<kDoubles>(load<Vec<float, kDoubles>>(x + at));
                const VD q =
                    twice<VD>(widen<kDoubles / 2>(load<Vec<float, kDoubles / 2>>(y + at / 2)));
                acc[0][r] = add_exact_product(acc[0][r], p, q);
            } else {
                acc[0][r] +=
                    load<VD>(x + at) * twice<VD>(load<Vec<double, kDoubles / 2>>(y + at / 2));
            }
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) {
            l[0][lane] += double(x[i]) * double(y[i / 2]);
        },
        lanes);
    fold_lanes(lanes[0], 2);
    using Part = decltype(Result{}.re);
    return Result{Part(lanes[0][0]), Part(lanes[0][1])};
}

CplxFloat dot_c(const CplxFloat* a, const CplxFloat* b, int n) {
    return dot_complex<float, CplxFloat>(&a->re, &b->re, n);
}
CplxFloat dot_cs(const CplxFloat* a, const float* b, int n) {
    return dot_mixed<float, CplxFloat>(&a->re, b, n);
}
CplxDouble dot_z(const CplxDouble* a, const CplxDouble* b, int n) {
    return dot_complex<double, CplxDouble>(&a->re, &b->re, n);
}
CplxDouble dot_zd(const CplxDouble* a, const double* b, int n) {
    return dot_mixed<double, CplxDouble>(&a->re, b, n);
}

// ----------------------------------------------------------------- 16 bits
// Sums modulo 2^32 do not depend on their order: the lanes are free.

using VS = Vec<std::int16_t>;
using VU = Vec<std::uint32_t>;
constexpr int kShorts = kVecBytes / 2;

std::int32_t dot_w(const short* a, const short* b, int n) {
    VU acc0 = {}, acc1 = {};
    int i = 0;
    for (; i <= n - 2 * kShorts; i += 2 * kShorts) {
        acc0 += madd16(load<VS>(a + i), load<VS>(b + i));
        acc1 += madd16(load<VS>(a + i + kShorts), load<VS>(b + i + kShorts));
    }
    if (i <= n - kShorts) {
        acc0 += madd16(load<VS>(a + i), load<VS>(b + i));
        i += kShorts;
    }
    if constexpr (kMaskedEnds) {
        if (i < n) acc1 += madd16(load_first<VS>(a + i, n - i), load_first<VS>(b + i, n - i));
        i = n;
    }
    std::uint32_t sum = lane_total(acc0 + acc1);
    for (; i < n; ++i) sum += std::uint32_t(std::int32_t(a[i]) * b[i]);
    return std::int32_t(sum);
}

// Complex lanes hold re in their low half and im in their high half.
// re = ar br - ai bi is taken as ar br + ai ~bi + ai, since ~bi = -bi - 1
// cannot overflow where -bi can.
CplxInt dot_v(const CplxShort* a, const CplxShort* b, int n) {
    constexpr int K = kShorts / 2;  // complex elements per register
    VU re = {}, im = {};
    int k = 0;
    for (; k <= n - K; k += K) {
        const VS x = load<VS>(&a[k].re);
        const VU y = load<VU>(&b[k].re);
        re += madd16(x, reinterpret_cast<VS>(y ^ 0xFFFF0000u)) +
              reinterpret_cast<VU>(reinterpret_cast<Vec<std::int32_t>>(x) >> 16);
        im += madd16(x, reinterpret_cast<VS>((y << 16) | (y >> 16)));
    }
    std::uint32_t sre = lane_total(re), sim = lane_total(im);
    for (; k < n; ++k) {
        const std::int64_t ar = a[k].re, ai = a[k].im, br = b[k].re, bi = b[k].im;
        sre += std::uint32_t(ar * br - ai * bi);
        sim += std::uint32_t(ar * bi + ai * br);
    }
    return CplxInt{std::int32_t(sre), std::int32_t(sim)};
}

CplxInt dot_vw(const CplxShort* a, const short* b, int n) {
    constexpr int K = kShorts / 2;
    VU re = {}, im = {};
    int k = 0;
    for (; k <= n - K; k += K) {
        const VS x = load<VS>(&a[k].re);
        const VU y = reinterpret_cast<VU>(twice<VS>(load<Vec<std::int16_t, K>>(b + k)));
        re += madd16(x, reinterpret_cast<VS>(y & 0xFFFFu));
        im += madd16(x, reinterpret_cast<VS>(y & 0xFFFF0000u));
    }
    std::uint32_t sre = lane_total(re), sim = lane_total(im);
    for (; k < n; ++k) {
        sre += std::uint32_t(std::int32_t(a[k].re) * b[k]);
        sim += std::uint32_t(std::int32_t(a[k].im) * b[k]);
    }
    return CplxInt{std::int32_t(sre), std::int32_t(sim)};
}

}  // namespace

const DotOps dot_ops = {dot_s, dot_d, dot_c, dot_cs, dot_z, dot_zd, dot_w, dot_v, dot_vw};

}  // namespace VEK_ISA
}  // namespace vek
