// DFT plans (factorization, cost estimate, tables), the per-thread plan
// cache, and the direct sum kept as the fallback.
#include "dft.hpp"

#include <cstring>
#include <type_traits>

namespace vek {

const DftOps& dft_ops() {
    static const DftOps* const kTables[kIsaCount] = {&sse2::dft_ops, &avx2::dft_ops,
                                                     &avx512::dft_ops};
    return pick(kTables);
}

namespace {

static_assert(kDftCapacity <= kOrders, "a plan row per DFT table entry");

// ----------------------------------------------------------------- choice
//
// The cost of a plan in units of about 0.04 ns (double) or 0.02 ns (float)
// on the reference machine, fitted to measured transforms: per point of
// each pass (butterfly, twiddle product, load and store), plus a fixed cost
// per loop over the data.
constexpr double kLoopCost = 200;

double pass_cost(int r, bool column) {
    switch (r) {
        case 2:
            return 4.5;
        case 3:
            return 7.7;
        case 4:
            return 6.8;
        case 5:
            return 10.4;
        case 7:
            return 12.7;
        case 8:
            return 9.6;
        default:
            // The generic butterfly: about r/2 products and sums per point
            // for each of the cosine and sine halves; more one column at a
            // time.
            return column ? 2.5 * r + 6 : 2.0 * r + 5;
    }
}

// The radices of n in pass order: radix 8 first (4 and 2 for the rest of
// the power of two), so that later passes have lane counts the vectors
// divide, then the odd primes ascending. False when a prime factor exceeds
// kDftMaxRadix.
bool factor(std::uint64_t n, int* radix, int* count) {
    int c = 0, twos = 0;
    while (n % 2 == 0) {
        n /= 2;
        ++twos;
    }
    int eights = twos / 3, fours = 0, two = 0;
    if (twos % 3 == 2) fours = 1;
    if (twos % 3 == 1) {
        if (eights > 0)
            --eights, fours = 2;
        else
            two = 1;
    }
    for (int i = 0; i < eights; ++i) radix[c++] = 8;
    for (int i = 0; i < fours; ++i) radix[c++] = 4;
    if (two) radix[c++] = 2;
    for (std::uint64_t p = 3; p <= std::uint64_t(kDftMaxRadix) && n > 1; p += 2)
        while (n % p == 0) {
            if (c == kDftMaxPasses) return false;
            n /= p;
            radix[c++] = int(p);
        }
    *count = c;
    return n == 1;
}

// Radices without a butterfly of their own.
bool generic(int r) { return r > 8; }

double passes_cost(std::uint64_t n, const int* radix, int count) {
    double per = 0;
    std::uint64_t lanes = 1;
    for (int i = 0; i < count; ++i) {
        // A first pass with more to follow runs its vector loop over the
        // sub-transforms instead.
        per += pass_cost(radix[i], lanes < kDftColumnLanes && (i > 0 || count == 1));
        lanes *= std::uint64_t(radix[i]);
    }
    return double(n) * per + kLoopCost * count;
}

// Bluestein: two transforms of the convolution length and three products.
double bluestein_cost(std::uint64_t n, std::uint64_t conv, double convCost) {
    return 2 * convCost + 4.0 * double(conv) + 8.0 * double(n) + 3 * kLoopCost;
}

// The cheapest convolution length 2^a 3^b 5^c 7^d >= 2n - 1 with a >= 3
// (so that its passes run at full vector width), with its cost; 0 when the
// length is out of reach.
std::uint64_t conv_length(std::uint64_t n, double* cost) {
    const std::uint64_t lo = 2 * n - 1;
    std::uint64_t hi = 8;
    while (hi < lo) hi *= 2;
    std::uint64_t best = 0;
    for (std::uint64_t a = 8; a <= hi; a *= 2)
        for (std::uint64_t b = a; b <= hi; b *= 3)
            for (std::uint64_t c = b; c <= hi; c *= 5)
                for (std::uint64_t d = c; d <= hi; d *= 7) {
                    if (d < lo) continue;
                    int radix[kDftMaxPasses], count;
                    if (!factor(d, radix, &count)) continue;
                    const double e = passes_cost(d, radix, count);
                    if (!best || e < *cost) best = d, *cost = e;
                }
    return best;
}

// ----------------------------------------------------------------- plans

// Sizes in 64 bits throughout: a plan too large for the address space
// must fail to allocate, not wrap around.

// Lays out the passes of n; sets the counts of twiddles and constants.
template <class C>
void plan_passes(DftSchedule<C>& s, std::uint64_t n, const int* radix, int count,
                 std::uint64_t* twCount, std::uint64_t* kCount) {
    s.n = n;
    s.passes = count;
    std::uint64_t L = 1, m = n, tw = 0, k = 0;
    for (int i = 0; i < count; ++i) {
        const int r = radix[i];
        m /= std::uint64_t(r);
        s.pass[i] = DftPass{
            r, i == 0 && m > 1, std::size_t(L), std::size_t(m), std::size_t(tw), std::size_t(k)};
        if (m > 1) tw += std::uint64_t(r - 1) * m;
        if (r % 2) k += 2 * std::uint64_t(r);
        if (generic(r)) k += 4 * std::uint64_t((r - 1) / 2) * dft_matrix_row(r);
        L *= std::uint64_t(r);
    }
    *twCount = tw;
    *kCount = k;
}

// The twiddles W^(r*p*L) of every pass and the odd radices' constants.
template <class C>
void fill_passes(DftSchedule<C>& s, C* tw, decltype(C::re)* k) {
    using R = decltype(C::re);
    for (int at = 0; at < s.passes; ++at) {
        const DftPass& ps = s.pass[at];
        const int r = ps.radix;
        if (ps.m > 1)
            for (int j = 1; j < r; ++j)
                for (std::size_t p = 0; p < ps.m; ++p)
                    tw[ps.tw + (ps.spread ? std::size_t(j - 1) * ps.m + p
                                          : p * std::size_t(r - 1) + std::size_t(j - 1))] =
                        root_as<C>(std::uint64_t(j) * p * ps.L, s.n);
        if (r % 2)
            for (int t = 0; t < r; ++t) {
                long double re, im;
                unit_root(std::uint64_t(t), std::uint64_t(r), &re, &im);
                k[ps.k + std::size_t(t)] = R(re);
                k[ps.k + std::size_t(r + t)] = R(-im);
            }
        if (generic(r)) {
            // cos and sin of 2*pi*j*i/r at row i-1, column j-1 (i, j = 1..h),
            // each twice (for both parts of a complex lane).
            const std::size_t h = std::size_t(r - 1) / 2, row = dft_matrix_row(r);
            R* cm = k + ps.k + 2 * std::size_t(r);
            R* sm = cm + 2 * h * row;
            for (std::size_t i = 0; i < 2 * h * row; ++i) cm[i] = sm[i] = 0;
            for (std::size_t i = 1; i <= h; ++i)
                for (std::size_t j = 1; j <= h; ++j) {
                    const std::size_t t = i * j % std::size_t(r), e = 2 * ((i - 1) * row + j - 1);
                    cm[e] = cm[e + 1] = k[ps.k + t];
                    sm[e] = sm[e + 1] = k[ps.k + std::size_t(r) + t];
                }
        }
    }
    s.tw = tw;
    s.k = k;
}

// Blocks of one allocation (which succeeded, so every block fits in
// size_t), each 64-byte aligned.
struct Carve {
    char* at;
    template <class T>
    T* take(std::uint64_t count) {
        T* p = reinterpret_cast<T*>(at);
        at += std::size_t(round64(count * sizeof(T)));
        return p;
    }
};

// The transform of the conjugate chirp over the convolution length,
// divided by it, computed in double whatever the plan's precision. False
// when memory is short.
template <class C>
bool fill_spectrum(const DftSchedule<C>& s, const int* radix, int count, std::uint64_t n,
                   C* spectrum) {
    using R = decltype(C::re);
    const std::uint64_t M = s.n;
    void* tables = nullptr;
    const DftSchedule<CplxDouble>* sd;
    DftSchedule<CplxDouble> own{};
    if constexpr (std::is_same<C, CplxDouble>::value) {
        (void)radix;
        (void)count;
        sd = &s;
    } else {
        std::uint64_t tw, k;
        plan_passes(own, M, radix, count, &tw, &k);
        tables = table_alloc(round64(tw * sizeof(CplxDouble)) + round64(k * sizeof(double)));
        if (!tables) return false;
        Carve c{static_cast<char*>(tables)};
        CplxDouble* t = c.take<CplxDouble>(tw);
        fill_passes(own, t, c.take<double>(k));
        sd = &own;
    }
    auto* b = static_cast<CplxDouble*>(table_alloc(2 * M * sizeof(CplxDouble)));
    if (!b) {
        table_free(tables);
        return false;
    }
    for (std::uint64_t j = 0; j < M; ++j) b[j] = CplxDouble{0, 0};
    for (std::uint64_t j = 0; j < n; ++j) {
        const CplxDouble w = root_as<CplxDouble>(j * j % (2 * n), 2 * n);
        b[j] = CplxDouble{w.re, -w.im};
        if (j) b[M - j] = b[j];
    }
    dft_ops().passes_z(sd, b, b, b + M);
    const long double inv = 1.0L / static_cast<long double>(M);
    for (std::uint64_t j = 0; j < M; ++j) spectrum[j] = C{R(b[j].re * inv), R(b[j].im * inv)};
    table_free(b);
    table_free(tables);
    return true;
}

template <class C>
DftPlan<C>* build_plan(int length) {
    using R = decltype(C::re);
    const std::uint64_t n = std::uint64_t(length);
    int radix[kDftMaxPasses], count = 0;
    const bool smooth = factor(n, radix, &count);
    double convCost = 0;
    const std::uint64_t M = n > 1 ? conv_length(n, &convCost) : 0;
    const bool chirp =
        M && (!smooth || bluestein_cost(n, M, convCost) < passes_cost(n, radix, count));
    if (!smooth && !chirp) return nullptr;
    if (chirp) factor(M, radix, &count);

    DftPlan<C> plan{};
    plan.length = length;
    std::uint64_t tw, k;
    plan_passes(plan.sched, chirp ? M : n, radix, count, &tw, &k);
    const std::uint64_t bytes = round64(sizeof(DftPlan<C>)) + round64(tw * sizeof(C)) +
                                round64(k * sizeof(R)) +
                                (chirp ? round64(n * sizeof(C)) + round64(M * sizeof(C)) : 0);
    auto* mem = static_cast<char*>(table_alloc(bytes));
    if (!mem) return nullptr;
    Carve c{mem + std::size_t(round64(sizeof(DftPlan<C>)))};
    C* t = c.take<C>(tw);
    fill_passes(plan.sched, t, c.take<R>(k));
    if (chirp) {
        C* w = c.take<C>(n);
        C* spectrum = c.take<C>(M);
        for (std::uint64_t j = 0; j < n; ++j) w[j] = root_as<C>(j * j % (2 * n), 2 * n);
        if (!fill_spectrum(plan.sched, radix, count, n, spectrum)) {
            table_free(mem);
            return nullptr;
        }
        plan.chirp = w;
        plan.spectrum = spectrum;
    }
    std::memcpy(mem, &plan, sizeof plan);
    return reinterpret_cast<DftPlan<C>*>(mem);
}

template <class C>
struct KindOf;
template <>
struct KindOf<CplxFloat> {
    static constexpr CplxKind kind = kKindC;
};
template <>
struct KindOf<CplxDouble> {
    static constexpr CplxKind kind = kKindZ;
};

template <class C>
const DftPlan<C>* plan_of(ThreadContext* ctx, int length) {
    constexpr CplxKind kind = KindOf<C>::kind;
    if (length <= dft_direct_max<C>()) return nullptr;
    const int count = ctx->dftCount[kind];
    int i = 0;
    while (i < count && ctx->dftLength[kind][i] != length) ++i;
    if (i == count) return nullptr;
    void*& slot = ctx->orderTbl[kind == kKindC ? kTblDftC : kTblDftZ][i];
    if (slot && static_cast<DftPlan<C>*>(slot)->length != length) {
        table_free(slot);
        slot = nullptr;
    }
    if (!slot) slot = build_plan<C>(length);
    return static_cast<const DftPlan<C>*>(slot);
}

template <class C>
bool run_plan(ThreadContext* ctx, const DftPlan<C>* plan, const C* src, C* dst, C* buff,
              bool inverse, double scale) {
    using R = decltype(C::re);
    C* work = plan->spectrum ? static_cast<C*>(dft_conv_buffer(ctx, KindOf<C>::kind, plan)) : buff;
    if (!work) return false;
    if constexpr (std::is_same<C, CplxFloat>::value)
        dft_ops().run_c(plan, src, dst, work, inverse, R(scale));
    else
        dft_ops().run_z(plan, src, dst, work, inverse, R(scale));
    return true;
}

template <class C>
bool fast(ThreadContext* ctx, const C* src, C* dst, C* buff, int length, bool inverse,
          double scale) {
    const DftPlan<C>* plan = plan_of<C>(ctx, length);
    return plan && run_plan(ctx, plan, src, dst, buff, inverse, scale);
}

}  // namespace

DftPlan<CplxDouble>* dft_plan_double(int length) {
    return length > dft_direct_max<CplxDouble>() ? build_plan<CplxDouble>(length) : nullptr;
}

bool dft_plan_run(ThreadContext* ctx, const DftPlan<CplxDouble>* plan, const CplxDouble* src,
                  CplxDouble* dst, CplxDouble* buff, bool inverse, double scale) {
    return run_plan(ctx, plan, src, dst, buff, inverse, scale);
}

const void* dft_plan(ThreadContext* ctx, CplxKind kind, int length) {
    if (kind == kKindC) return plan_of<CplxFloat>(ctx, length);
    if (kind == kKindZ) return plan_of<CplxDouble>(ctx, length);
    return nullptr;
}

void* dft_conv_buffer(ThreadContext* ctx, CplxKind kind, const void* plan) {
    std::uint64_t bytes;
    if (kind == kKindC) {
        const auto* p = static_cast<const DftPlan<CplxFloat>*>(plan);
        if (!p->spectrum) return nullptr;
        bytes = 2 * p->sched.n * sizeof(CplxFloat);
    } else {
        const auto* p = static_cast<const DftPlan<CplxDouble>*>(plan);
        if (!p->spectrum) return nullptr;
        bytes = 2 * p->sched.n * sizeof(CplxDouble);
    }
    return scratch(ctx, kind, kScratchWork2, bytes);
}

bool dft_fast(ThreadContext* ctx, const CplxFloat* src, CplxFloat* dst, CplxFloat* buff, int length,
              bool inverse, double scale) {
    return fast(ctx, src, dst, buff, length, inverse, scale);
}
bool dft_fast(ThreadContext* ctx, const CplxDouble* src, CplxDouble* dst, CplxDouble* buff,
              int length, bool inverse, double scale) {
    return fast(ctx, src, dst, buff, length, inverse, scale);
}

// ----------------------------------------------------------------- direct

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
        out[n / 2] =
            C{R(scale * (sumMid.re + sign * mid.re)), R(scale * (sumMid.im + sign * mid.im))};
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

void dft_direct(CplxFloat* x, CplxFloat* out, const CplxFloat* tbl, int n, bool inverse,
                double scale) {
    direct(x, out, tbl, n, inverse, scale);
}
void dft_direct(CplxDouble* x, CplxDouble* out, const CplxDouble* tbl, int n, bool inverse,
                double scale) {
    direct(x, out, tbl, n, inverse, scale);
}

}  // namespace vek
