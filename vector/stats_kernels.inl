// Statistics kernels, compiled once per instruction set (VEK_ISA names it).
#include <limits>
#include <type_traits>

#include "vector/lanes.inl"
#include "vector/stats.hpp"

namespace vek {
namespace VEK_ISA {
namespace {

constexpr int kDoubles = kVecBytes / 8;
using VD = Vec<double, kDoubles>;
using VF = Vec<float, kDoubles>;  // as many floats as a register holds doubles

// ----------------------------------------------------------------- sums

double sum_s(const float* x, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            acc[0][r] += widen<kDoubles>(load<VF>(x + at));
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) { l[0][lane] += double(x[i]); },
        lanes);
    fold_lanes(lanes[0]);
    return lanes[0][0];
}

double sum_squares_s(const float* x, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            const VD v = widen<kDoubles>(load<VF>(x + at));
            acc[0][r] = add_exact_product(acc[0][r], v, v);
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) {
            l[0][lane] += double(x[i]) * double(x[i]);
        },
        lanes);
    fold_lanes(lanes[0]);
    return lanes[0][0];
}

double sum_d(const double* x, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            acc[0][r] += load<VD>(x + at);
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) { l[0][lane] += x[i]; }, lanes);
    fold_lanes(lanes[0]);
    return lanes[0][0];
}

double sum_squares_d(const double* x, int n) {
    double lanes[1][kSumLanes];
    sum_lanes<1>(
        n,
        [&](VD(&acc)[1][kSumLanes / kDoubles], int r, std::ptrdiff_t at) {
            const VD v = load<VD>(x + at);
            acc[0][r] += v * v;
        },
        [&](double(&l)[1][kSumLanes], int lane, std::ptrdiff_t i) { l[0][lane] += x[i] * x[i]; },
        lanes);
    fold_lanes(lanes[0]);
    return lanes[0][0];
}

// 16-bit sums are exact (or modulo 2^32): their order is free.
using VS = Vec<std::int16_t>;
using VU = Vec<std::uint32_t>;
using VU64 = Vec<std::uint64_t>;
constexpr int kShorts = kVecBytes / 2;

std::int32_t sum_w(const short* x, int n) {
    const VS one = splat<VS>(1);
    VU acc = {};
    int i = 0;
    for (; i <= n - kShorts; i += kShorts) acc += madd16(load<VS>(x + i), one);
    std::uint32_t sum = lane_total(acc);
    for (; i < n; ++i) sum += std::uint32_t(std::int32_t(x[i]));
    return std::int32_t(sum);
}

// Each pair of squares is at most 2^31: it fits a 32-bit lane unsigned, and
// the pairs are gathered in 64-bit lanes.
std::uint64_t sum_squares_w(const short* x, int n) {
    VU64 acc = {};
    int i = 0;
    for (; i <= n - kShorts; i += kShorts) {
        const VS v = load<VS>(x + i);
        const VU64 pairs = reinterpret_cast<VU64>(madd16(v, v));
        acc += (pairs & 0xFFFFFFFFu) + (pairs >> 32);
    }
    std::uint64_t sum = lane_total(acc);
    for (; i < n; ++i) sum += std::uint64_t(std::int32_t(x[i]) * x[i]);
    return sum;
}

// ----------------------------------------------------------------- extremes

// The first occurrence of the largest (kMax) or smallest element. Lanes keep
// their own best value and its index, replacing it only by a strictly
// better one, which passes NaN over; lanes are then merged preferring the
// better value and, between equal ones, the lower index.
template <bool kMax, class T>
T extreme(const T* x, int n, int* index) {
    using E = std::conditional_t<std::is_same_v<T, short>, std::int32_t, T>;  // lane values
    using I = std::make_unsigned_t<MaskLane<E>>;        // lane indexes, unsigned: they may wrap
    constexpr I kNone = std::numeric_limits<I>::max();  // no element has beaten kWorst
    constexpr int L = kVecBytes / int(sizeof(E));
    constexpr int U = 4;  // independent accumulators
    using VE = Vec<E, L>;
    using VI = Vec<I, L>;
    // Worse than every int16 lane; for floats, the infinity on the wrong
    // side, which no element beats but NaN does not equal either.
    constexpr E kWorst =
        std::is_floating_point_v<E>
            ? (kMax ? -std::numeric_limits<E>::infinity() : std::numeric_limits<E>::infinity())
            : (kMax ? std::numeric_limits<E>::min() : std::numeric_limits<E>::max());
    auto better = [](auto a, auto b) {
        if constexpr (kMax)
            return a > b;
        else
            return a < b;
    };
    auto lanes_at = [&](int at) {
        if constexpr (std::is_same_v<T, short>)
            return extend32<std::int16_t, L>(load<Vec<std::int16_t, L>>(x + at));
        else
            return load<VE>(x + at);
    };

    E best = kWorst;
    I where = kNone;
    int i = 0;
    if (n >= U * L) {
        VE b[U];
        VI w[U], idx[U];
        for (int u = 0; u < U; ++u) {
            b[u] = splat<VE>(kWorst);
            w[u] = splat<VI>(kNone);
            for (int j = 0; j < L; ++j) idx[u][j] = I(u * L + j);
        }
        for (; i <= n - U * L; i += U * L) {
            for (int u = 0; u < U; ++u) {
                const VE v = lanes_at(i + u * L);
                const auto m = better(v, b[u]);
                b[u] = m ? v : b[u];
                w[u] = m ? idx[u] : w[u];
                idx[u] += I(U * L);
            }
        }
        // A lane still at kWorst has index kNone: it can tie only with
        // another such lane, and loses every other comparison.
        for (int u = 1; u < U; ++u) {
            const auto m = better(b[u], b[0]) | ((b[u] == b[0]) & (w[u] < w[0]));
            b[0] = m ? b[u] : b[0];
            w[0] = m ? w[u] : w[0];
        }
        for (int j = 0; j < L; ++j) {
            if (better(b[0][j], best) || (b[0][j] == best && w[0][j] < where)) {
                best = b[0][j];
                where = w[0][j];
            }
        }
    }
    for (; i < n; ++i) {
        if (better(E(x[i]), best)) {
            best = x[i];
            where = i;
        }
    }
    if (where == kNone) {
        // Only floats get here: every element is NaN or the infinity on the
        // wrong side. Take the first that is not NaN, or else element 0.
        where = 0;
        while (where < I(n) && x[where] != x[where]) ++where;
        if (where == I(n)) where = 0;
    }
    if (index) *index = int(where);
    return x[where];
}

}  // namespace

const StatsOps stats_ops = {
    sum_s,
    sum_squares_s,
    sum_d,
    sum_squares_d,
    sum_w,
    sum_squares_w,
    extreme<true, float>,
    extreme<false, float>,
    extreme<true, double>,
    extreme<false, double>,
    extreme<true, short>,
    extreme<false, short>,
};

}  // namespace VEK_ISA
}  // namespace vek
