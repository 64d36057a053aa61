#include "dct.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "dft.hpp"
#include "realfft.hpp"
#include "tables.hpp"

namespace vek {

namespace {

// The fast-path tables: one array of pointers, float tables by order, then
// double tables by order, then the DFT plan and the quarter-turn table of
// the latest other length that takes the DFT.
constexpr int kPlanSlot = 2 * kOrders;
constexpr int kTurnSlot = kPlanSlot + 1;
constexpr int kDctSlots = kTurnSlot + 1;

// Other lengths above this take the N-point DFT; the direct sums serve the
// shorter ones (and any length whose plan cannot be had).
constexpr int kDctDirectMax = 32;

// Work arrays up to this size live on the stack: small transforms would
// otherwise spend more on the allocator than on the arithmetic.
constexpr std::size_t kStackBytes = 4096;

template <class R>
struct DctType;
template <>
struct DctType<float> {
    static constexpr int slot = 0;
    static constexpr CplxKind kind = kKindC;
    static void split(const float* x, float* v, std::size_t n) {
        realfft_ops().dct_split_s(x, v, n);
    }
    static void merge(const float* v, float* x, std::size_t n) {
        realfft_ops().dct_merge_s(v, x, n);
    }
    static void post(const float* v, float* y, std::size_t n, const float* tc, const float* ts) {
        realfft_ops().dct_post_s(v, y, n, tc, ts);
    }
    static void pre(const float* y, float* v, std::size_t n, const float* tc, const float* ts) {
        realfft_ops().dct_pre_s(y, v, n, tc, ts);
    }
    static void matrix(const float* m, const float* x, float* y, std::size_t n) {
        realfft_ops().dct_matrix_s(m, x, y, n);
    }
};
template <>
struct DctType<double> {
    static constexpr int slot = kOrders;
    static constexpr CplxKind kind = kKindZ;
    static void split(const double* x, double* v, std::size_t n) {
        realfft_ops().dct_split_d(x, v, n);
    }
    static void merge(const double* v, double* x, std::size_t n) {
        realfft_ops().dct_merge_d(v, x, n);
    }
    static void post(const double* v, double* y, std::size_t n, const double* tc,
                     const double* ts) {
        realfft_ops().dct_post_d(v, y, n, tc, ts);
    }
    static void pre(const double* y, double* v, std::size_t n, const double* tc, const double* ts) {
        realfft_ops().dct_pre_d(y, v, n, tc, ts);
    }
    static void matrix(const double* m, const double* x, double* y, std::size_t n) {
        realfft_ops().dct_matrix_d(m, x, y, n);
    }
};

// cos(pi * i / (2n)) from the exact angle.
long double cos_quarter(std::uint64_t i, std::uint64_t n, long double* sine = nullptr) {
    long double re, im;
    unit_root(i, 4 * n, &re, &im);
    if (sine) *sine = -im;
    return re;
}

// Up to kDctMatrixMax points the matrix m[k][i] = c(k) cos(pi (2i+1) k / 2N)
// twice: transposed (rows i, for the forward transform), then by rows k
// (for the inverse). Above, tc[k] = c(k) cos(pi k / 2N) and ts[k] =
// c(k) sin(pi k / 2N) for k = 0..N/2 (ts after tc).
template <class R>
R* build_fast(int order) {
    const std::uint64_t n = std::uint64_t(1) << order;
    const long double c0 = 1.0L / std::sqrt(static_cast<long double>(n));
    const long double ck = std::sqrt(2.0L) * c0;
    if (n <= std::uint64_t(kDctMatrixMax)) {
        auto* t = static_cast<R*>(table_alloc(2 * n * n * sizeof(R)));
        if (!t) return nullptr;
        for (std::uint64_t k = 0; k < n; ++k)
            for (std::uint64_t i = 0; i < n; ++i) {
                const R m = R((k ? ck : c0) * cos_quarter((2 * i + 1) * k, n));
                t[i * n + k] = m;
                t[n * n + k * n + i] = m;
            }
        return t;
    }
    const std::uint64_t count = n / 2 + 1;
    auto* t = static_cast<R*>(table_alloc(2 * count * sizeof(R)));
    if (!t) return nullptr;
    t[0] = R(c0);
    t[count] = 0;
    for (std::uint64_t k = 1; k < count; ++k) {
        long double s;
        const long double c = cos_quarter(k, n, &s);
        t[k] = R(ck * c);
        t[count + k] = R(ck * s);
    }
    return t;
}

void** dct_slots(ThreadContext* ctx) {
    if (!ctx->dctTbls) {
        auto** slots = static_cast<void**>(table_alloc(kDctSlots * sizeof(void*)));
        if (!slots) return nullptr;
        for (int i = 0; i < kDctSlots; ++i) slots[i] = nullptr;
        ctx->dctTbls = slots;
        ctx->dctTblCount = kDctSlots;
    }
    return ctx->dctTbls;
}

template <class R>
const R* fast_table(ThreadContext* ctx, int order) {
    if (!dct_slots(ctx)) return nullptr;
    void*& slot = ctx->dctTbls[DctType<R>::slot + order];
    if (!slot) slot = build_fast<R>(order);
    return static_cast<const R*>(slot);
}

// The cosines cos(pi i / 2N), i < 4N, of the latest length.
const double* cos_table(ThreadContext* ctx, int len) {
    const std::int64_t size = 4 * std::int64_t(len);
    if (ctx->dctCosTbl && ctx->dctLength == size) return ctx->dctCosTbl;
    table_free(ctx->dctCosTbl);
    ctx->dctCosTbl = nullptr;
    ctx->dctLength = 0;
    ctx->dctNorm = 0;
    auto* t = static_cast<double*>(table_alloc(std::uint64_t(size) * sizeof(double)));
    if (!t) return nullptr;
    for (std::int64_t i = 0; i < size; ++i)
        t[i] = double(cos_quarter(std::uint64_t(i), std::uint64_t(len)));
    ctx->dctCosTbl = t;
    ctx->dctLength = std::int32_t(size);
    ctx->dctNorm = double(1.0L / std::sqrt(static_cast<long double>(len)));
    return t;
}

// One retry after releasing every transform cache of the thread.
template <class F>
bool with_retry(ThreadContext* ctx, F&& acquire) {
    if (acquire()) return true;
    release_all(ctx);
    dct_release(ctx);
    return acquire();
}

int order_of(int len) {
    int order = 0;
    while ((1 << order) < len) ++order;
    return order;
}

// Powers of two up to kDctMatrixMax: one matrix product, no work array.
template <class R>
bool small(ThreadContext* ctx, const R* src, R* dst, int len, bool inverse) {
    const int order = order_of(len);
    void* const* slots = ctx->dctTbls;
    const R* tbl = slots ? static_cast<const R*>(slots[DctType<R>::slot + order]) : nullptr;
    if (!tbl && !with_retry(ctx, [&] { return (tbl = fast_table<R>(ctx, order)) != nullptr; }))
        return false;
    const std::size_t n = std::size_t(len);
    DctType<R>::matrix(tbl + (inverse ? n * n : 0), src, dst, n);
    return true;
}

template <class R>
bool fast(ThreadContext* ctx, const R* src, R* dst, int len, bool inverse, R* w) {
    using T = DctType<R>;
    const int order = order_of(len);
    const std::size_t n = std::size_t(len);
    const R* tbl = nullptr;
    const bool ok = with_retry(ctx, [&] {
        tbl = fast_table<R>(ctx, order);
        return tbl && rfft_acquire(ctx, T::kind, order);
    });
    if (!ok) return false;
    const R* tc = tbl;
    const R* ts = tbl + n / 2 + 1;
    if (inverse) {
        T::pre(src, w, n, tc, ts);
        rfft_inverse(ctx, w, w, order, VEK_Inv | VEK_NoScale, kLayoutPerm);
        T::merge(w, dst, n);
    } else {
        T::split(src, w, n);
        rfft_forward(ctx, w, w, order, VEK_Forw, kLayoutPerm);
        T::post(w, dst, n, tc, ts);
    }
    return true;
}

// The quarter turns exp(-i pi k / 2N), k < N.
void* build_turns(int len) {
    const std::uint64_t n = std::uint64_t(len);
    auto* w = static_cast<CplxDouble*>(table_alloc(n * sizeof(CplxDouble)));
    if (!w) return nullptr;
    for (std::uint64_t k = 0; k < n; ++k) w[k] = root_as<CplxDouble>(k, 4 * n);
    return w;
}

// The plan and turns for len, kept for the latest such length.
bool dft_tables(ThreadContext* ctx, int len) {
    void** slots = dct_slots(ctx);
    if (!slots) return false;
    auto* plan = static_cast<DftPlan<CplxDouble>*>(slots[kPlanSlot]);
    if (plan && plan->length == len && slots[kTurnSlot]) return true;
    table_free(slots[kPlanSlot]);
    table_free(slots[kTurnSlot]);
    slots[kPlanSlot] = dft_plan_double(len);
    slots[kTurnSlot] = slots[kPlanSlot] ? build_turns(len) : nullptr;
    return slots[kTurnSlot] != nullptr;
}

// Makhoul's arrangement: the DFT V of v[n] = x[2n], v[N-1-n] = x[2n+1]
// gives X[k] = c(k) Re(exp(-i pi k / 2N) V[k]); the inverse rebuilds V[k]
// from X[k] and X[N-k] and takes the inverse DFT. All in double; w holds
// 3N complex values. False (dst unwritten) when Bluestein's buffer cannot
// be had.
template <class R>
bool by_dft(ThreadContext* ctx, const R* src, R* dst, int len, bool inverse, CplxDouble* w) {
    const std::size_t n = std::size_t(len), half = (n + 1) / 2;
    const auto* plan = static_cast<const DftPlan<CplxDouble>*>(ctx->dctTbls[kPlanSlot]);
    const auto* t = static_cast<const CplxDouble*>(ctx->dctTbls[kTurnSlot]);
    CplxDouble *v = w, *V = w + n, *buff = w + 2 * n;
    const double norm = double(1.0L / std::sqrt(static_cast<long double>(len)));
    const double ck = 1.4142135623730951 * norm;
    if (!inverse) {
        for (std::size_t i = 0; i < half; ++i) v[i] = {double(src[2 * i]), 0.0};
        for (std::size_t i = 0; i < n / 2; ++i) v[n - 1 - i] = {double(src[2 * i + 1]), 0.0};
        if (!dft_plan_run(ctx, plan, v, V, buff, false, 1.0)) return false;
        dst[0] = R(norm * V[0].re);
        for (std::size_t k = 1; k < n; ++k)
            dst[k] = R(ck * (t[k].re * V[k].re - t[k].im * V[k].im));
        return true;
    }
    // X[k] / c(k) / N = X[k] times these, so that the inverse DFT needs no scale.
    const double a0 = norm, ak = norm * 0.70710678118654752;
    V[0] = {a0 * double(src[0]), 0.0};
    for (std::size_t k = 1; k < n; ++k) {
        const double a = ak * double(src[k]), b = ak * double(src[n - k]);
        // exp(i pi k / 2N) (a - i b), the turn being conj(t[k]).
        V[k] = {t[k].re * a - t[k].im * b, -t[k].im * a - t[k].re * b};
    }
    if (!dft_plan_run(ctx, plan, V, v, buff, true, 1.0)) return false;
    for (std::size_t i = 0; i < half; ++i) dst[2 * i] = R(v[i].re);
    for (std::size_t i = 0; i < n / 2; ++i) dst[2 * i + 1] = R(v[n - 1 - i].re);
    return true;
}

// Direct sums in double from the cosine table; x[n] and x[N-1-n] share
// their cosines up to the sign (-1)^k.
template <class R>
bool direct(ThreadContext* ctx, const R* src, R* dst, int len, bool inverse, double* w) {
    const double* cs = nullptr;
    if (!with_retry(ctx, [&] { return (cs = cos_table(ctx, len)) != nullptr; })) return false;
    const std::size_t n = std::size_t(len), n4 = 4 * n, half = n / 2;
    const bool odd = n & 1;
    const double norm = ctx->dctNorm, ck = 1.4142135623730951 * norm;
    if (!inverse) {
        // Sums of the pairs, then their differences.
        for (std::size_t i = 0; i < half; ++i) {
            const double a = src[i], b = src[n - 1 - i];
            w[i] = a + b;
            w[half + i] = a - b;
        }
        const double mid = odd ? double(src[half]) : 0.0;
        double sum = mid;
        for (std::size_t i = 0; i < half; ++i) sum += w[i];
        dst[0] = R(norm * sum);
        for (std::size_t k = 1; k < n; ++k) {
            const double* u = (k & 1) ? w + half : w;
            double a0 = 0, a1 = 0;
            std::size_t idx = k;
            const std::size_t step = 2 * k;
            std::size_t i = 0;
            for (; i + 1 < half; i += 2) {
                a0 += u[i] * cs[idx];
                idx += step;
                if (idx >= n4) idx -= n4;
                a1 += u[i + 1] * cs[idx];
                idx += step;
                if (idx >= n4) idx -= n4;
            }
            if (i < half) a0 += u[i] * cs[idx];
            double acc = a0 + a1;
            // The middle sample's cosine: N k (k even) is 0 or 2N mod 4N.
            if (odd && !(k & 1)) acc += mid * cs[n * (k % 4)];
            dst[k] = R(acc * ck);
        }
        return true;
    }
    w[0] = norm * double(src[0]);
    for (std::size_t k = 1; k < n; ++k) w[k] = ck * double(src[k]);
    // Even and odd k apart: x[n] = E + O, x[N-1-n] = E - O.
    for (std::size_t i = 0; i < half; ++i) {
        const std::size_t step = 2 * i + 1;
        double e = 0, o = 0;
        std::size_t idx = 0, k = 0;
        for (; k + 1 < n; k += 2) {
            e += w[k] * cs[idx];
            idx += step;
            if (idx >= n4) idx -= n4;
            o += w[k + 1] * cs[idx];
            idx += step;
            if (idx >= n4) idx -= n4;
        }
        if (k < n) e += w[k] * cs[idx];
        dst[i] = R(e + o);
        dst[n - 1 - i] = R(e - o);
    }
    if (odd) {
        // The middle sample: cos(pi k / 2) vanishes for odd k.
        double e = 0;
        for (std::size_t k = 0; k < n; k += 2) e += w[k] * cs[n * (k % 4)];
        dst[half] = R(e);
    }
    return true;
}

template <class R>
bool run(const R* src, R* dst, int len, bool inverse) {
    ThreadContext* ctx = context();
    const std::uint32_t u = std::uint32_t(len);
    const bool pow2 = ((u | 0x80000000u) & (u - 1)) == 0;
    if (pow2 && len <= kDctMatrixMax) return small(ctx, src, dst, len, inverse);
    // Other lengths take the DFT when its tables can be had, else the sums.
    const bool viaDft = !pow2 && len > kDctDirectMax && dft_tables(ctx, len);
    const std::uint64_t bytes = std::uint64_t(u) * (pow2     ? sizeof(R)
                                                    : viaDft ? 3 * sizeof(CplxDouble)
                                                             : sizeof(double));
    alignas(64) unsigned char stack[kStackBytes];
    void* heap = nullptr;
    if (bytes > sizeof stack &&
        !with_retry(ctx, [&] { return (heap = table_alloc(bytes)) != nullptr; }))
        return false;
    void* work = heap ? heap : stack;
    bool ok;
    if (pow2)
        ok = fast(ctx, src, dst, len, inverse, static_cast<R*>(work));
    else if (viaDft && by_dft(ctx, src, dst, len, inverse, static_cast<CplxDouble*>(work)))
        ok = true;
    else
        ok = direct(ctx, src, dst, len, inverse, static_cast<double*>(work));
    table_free(heap);
    return ok;
}

}  // namespace

bool dct(const float* src, float* dst, int len, bool inverse) {
    return run(src, dst, len, inverse);
}
bool dct(const double* src, double* dst, int len, bool inverse) {
    return run(src, dst, len, inverse);
}

float* dct_floats(std::uint64_t count) {
    void* p = nullptr;
    with_retry(context(), [&] { return (p = table_alloc(count * sizeof(float))) != nullptr; });
    return static_cast<float*>(p);
}

void dct_release(ThreadContext* ctx) {
    if (ctx->dctTbls) {
        for (int i = 0; i < ctx->dctTblCount; ++i) table_free(ctx->dctTbls[i]);
        table_free(ctx->dctTbls);
    }
    ctx->dctTbls = nullptr;
    ctx->dctTblCount = 0;
    table_free(ctx->dctCosTbl);
    ctx->dctCosTbl = nullptr;
    ctx->dctLength = 0;
    ctx->dctNorm = 0;
}

namespace {

// After the complex tables and bit reversal (ranks 0..3).
struct RegisterRelease {
    RegisterRelease() { register_cache_release(4, dct_release); }
} g_register;

}  // namespace

}  // namespace vek
