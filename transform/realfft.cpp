#include "realfft.hpp"

#include <cstring>

#include "cfft.hpp"
#include "fft.hpp"
#include "vector/scale.hpp"

namespace vek {

const RealFftOps& realfft_ops() {
    static const RealFftOps* const kTables[kIsaCount] = {&sse2::realfft_ops, &avx2::realfft_ops,
                                                         &avx512::realfft_ops};
    return pick(kTables);
}

namespace {

int recomb_row(CplxKind kind) { return kind == kKindC ? kTblRecombC : kTblRecombZ; }

// W_N^k for k = 0..N/4, N = 2^order, kept in the slot of the half-length
// complex transform (order-1).
template <class C>
void* build_recomb(int order) {
    const std::uint64_t n = std::uint64_t(1) << order, count = n / 4 + 1;
    auto* t = static_cast<C*>(table_alloc(count * sizeof(C)));
    if (!t) return nullptr;
    for (std::uint64_t k = 0; k < count; ++k) t[k] = root_as<C>(k, n);
    return t;
}

void* recomb_table(ThreadContext* ctx, CplxKind kind, int order) {
    void*& slot = ctx->orderTbl[recomb_row(kind)][order - 1];
    if (!slot)
        slot = kind == kKindC ? build_recomb<CplxFloat>(order) : build_recomb<CplxDouble>(order);
    return slot;
}

// Everything already there: the common case, kept short.
bool ready(const ThreadContext* ctx, CplxKind kind, int order) {
    const int m = order - 1;
    const ScratchSet& set = ctx->scratch[kind];
    const std::uint64_t work = kind == kKindC ? fft_work<CplxFloat>(m) * sizeof(CplxFloat)
                                              : fft_work<CplxDouble>(m) * sizeof(CplxDouble);
    return ctx->orderTbl[recomb_row(kind)][m] &&
           ctx->orderTbl[kind == kKindC ? kTblPlanC : kTblPlanZ][m] && ctx->swapList[m] &&
           set.buffer[kScratchFft] && std::uint64_t(set.length[kScratchFft]) * 8 >= work;
}

bool try_acquire(ThreadContext* ctx, CplxKind kind, int order) {
    return fft_acquire(ctx, kind, order - 1) && recomb_table(ctx, kind, order);
}

}  // namespace

bool rfft_acquire(ThreadContext* ctx, CplxKind kind, int order) {
    if (order < 2 || ready(ctx, kind, order) || try_acquire(ctx, kind, order)) return true;
    release_kernel_tables(ctx, kind);
    return try_acquire(ctx, kind, order);
}

ThreadContext* rfft_tables(const Site& site, CplxKind kind, int order) {
    ThreadContext* ctx = context();
    if (rfft_acquire(ctx, kind, order)) return ctx;
    site.no_memory("No working Twd memory");
    return nullptr;
}

void rfft_free(CplxKind kind, int order) {
    ThreadContext* ctx = context();
    fft_release(ctx, kind, order - 1);
    if (order >= 1 && order <= kOrders) {
        void*& slot = ctx->orderTbl[recomb_row(kind)][order - 1];
        table_free(slot);
        slot = nullptr;
    }
}

namespace {

template <class R>
struct Real;
template <>
struct Real<float> {
    using C = CplxFloat;
    static constexpr CplxKind kind = kKindC;
    static RecombFn<float, C> recomb() { return realfft_ops().recomb_s; }
    static void cmul(const float* a, const float* b, float* d, std::size_t n) {
        realfft_ops().cmul_s(a, b, d, n);
    }
};
template <>
struct Real<double> {
    using C = CplxDouble;
    static constexpr CplxKind kind = kKindZ;
    static RecombFn<double, C> recomb() { return realfft_ops().recomb_d; }
    static void cmul(const double* a, const double* b, double* d, std::size_t n) {
        realfft_ops().cmul_d(a, b, d, n);
    }
};

template <class R>
R scale_of(int order, int flags) {
    const bool scaled = (flags & VEK_Inv) && !(flags & VEK_NoScale);
    return scaled ? R(1.0 / double(std::uint64_t(1) << order)) : R(1);
}

template <class R>
const typename Real<R>::C* recomb_of(const ThreadContext* ctx, int order) {
    return static_cast<const typename Real<R>::C*>(
        ctx->orderTbl[recomb_row(Real<R>::kind)][order - 1]);
}

template <class R>
void forward(ThreadContext* ctx, const R* in, R* out, int order, int flags, SpectrumLayout layout) {
    using C = typename Real<R>::C;
    const std::size_t n = std::size_t(1) << order;
    const R s = scale_of<R>(order, flags);
    R x0, xm;  // X[0] and X[N/2], both real
    if (order == 0) {
        x0 = in[0];
        xm = 0;
    } else if (order == 1) {
        const R a = in[0], b = in[1];
        x0 = (a + b) * s;
        xm = (a - b) * s;
    } else {
        const int dir = flags & VEK_Inv ? VEK_Inv : VEK_Forw;
        fft_exec(ctx, reinterpret_cast<const C*>(in), reinterpret_cast<C*>(out), order - 1,
                 dir | VEK_NoScale);
        const R t0 = out[0], t1 = out[1];
        const R h = s * R(0.5);
        Real<R>::recomb()(out, out, n / 2, recomb_of<R>(ctx, order), h, dir == VEK_Forw ? h : -h,
                          -h, 0, layout == kLayoutPack ? 1 : 0);
        x0 = (t0 + t1) * s;
        xm = (t0 - t1) * s;
    }
    out[0] = x0;
    switch (layout) {
        case kLayoutCcs:
            out[1] = 0;
            if (order > 0) {
                out[n] = xm;
                out[n + 1] = 0;
            }
            break;
        case kLayoutPack:
            if (order > 0) out[n - 1] = xm;
            break;
        case kLayoutPerm:
            if (order > 0) out[1] = xm;
            break;
    }
}

template <class R>
void inverse(ThreadContext* ctx, const R* in, R* out, int order, int flags, SpectrumLayout layout) {
    using C = typename Real<R>::C;
    const std::size_t n = std::size_t(1) << order;
    if (order == 0) {
        out[0] = in[0];
        return;
    }
    const R s = scale_of<R>(order, flags);
    const R a = in[0];
    const R b = layout == kLayoutCcs ? in[n] : layout == kLayoutPack ? in[n - 1] : in[1];
    if (order >= 2) {
        const int dir = flags & VEK_Inv ? VEK_Inv : VEK_Forw;
        Real<R>::recomb()(in, out, n / 2, recomb_of<R>(ctx, order), s, dir == VEK_Inv ? s : -s, s,
                          layout == kLayoutPack ? 1 : 0, 0);
        out[0] = (a + b) * s;
        out[1] = (a - b) * s;
        fft_exec(ctx, reinterpret_cast<const C*>(out), reinterpret_cast<C*>(out), order - 1,
                 dir | VEK_NoScale);
        return;
    }
    out[0] = (a + b) * s;
    out[1] = (a - b) * s;
}

template <class R>
void mul(const R* a, const R* b, R* dst, int order, SpectrumLayout layout) {
    const std::size_t n = std::size_t(1) << order;
    dst[0] = a[0] * b[0];
    if (order == 0) return;
    const std::size_t last = layout == kLayoutPack ? n - 1 : 1;
    dst[last] = a[last] * b[last];
    if (order == 1) return;
    const std::size_t first = layout == kLayoutPack ? 1 : 2;
    Real<R>::cmul(a + first, b + first, dst + first, n / 2 - 1);
}

template <class R>
void real_call(const Site& site, const R* in, R* out, int order, int flags, RealCall call) {
    constexpr CplxKind kind = Real<R>::kind;
    if (flags & VEK_Free) return rfft_free(kind, order);
    if (!order_ok(site, order)) return;
    ThreadContext* ctx = rfft_tables(site, kind, order);
    if (!ctx || (flags & VEK_Init)) return;
    if (call.nip && !in) return void(site.bad("inSamps==0"));
    if (!out) return void(site.bad(call.nip ? "outSamps==0" : "samps==0"));
    if (!real_flags_ok(site, flags, call)) return;
    SpectrumLayout layout = kLayoutCcs;
    if (call.low) {
        const int pack = call.toSpectrum ? VEK_OutRCPack : VEK_InRCPack;
        layout = (flags & pack) ? kLayoutPack : kLayoutPerm;
    }
    if (call.toSpectrum)
        forward(ctx, in, out, order, flags, layout);
    else
        inverse(ctx, in, out, order, flags, layout);
}

template <class R>
void mul_call(const Site& site, const R* a, const R* b, R* dst, int order, SpectrumLayout layout,
              bool three) {
    if (!order_ok(site, order)) return;
    if (three && !a) return void(site.bad("srcA==0"));
    if (!b) return void(site.bad(three ? "srcB==0" : "src==0"));
    if (!dst) return void(site.bad("dst==0"));
    mul(three ? a : dst, b, dst, order, layout);
}

}  // namespace

bool real_flags_ok(const Site& site, int flags, RealCall call) {
    const char* bad = nullptr;
    const int a = call.toSpectrum ? VEK_OutRCPack : VEK_InRCPack;
    const int b = call.toSpectrum ? VEK_OutRCPerm : VEK_InRCPerm;
    if ((flags & VEK_Forw) && (flags & VEK_Inv))
        bad = "(flags & 1) && (flags & 2)";
    else if (!(flags & VEK_Forw) && !(flags & VEK_Inv))
        bad = "(flags & 1)==0 && (flags & 2)==0";
    else if (call.low && (flags & a) && (flags & b))
        bad =
            call.toSpectrum ? "(flags & 256) && (flags & 512)" : "(flags & 1024) && (flags & 4096)";
    else if (call.low && !(flags & a) && !(flags & b))
        bad = call.toSpectrum ? "(flags & 256)==0 && (flags & 512)==0"
                              : "(flags & 1024)==0 && (flags & 4096)==0";
    if (bad) site.bad(bad);
    return !bad;
}

void real_fft(const Site& site, const float* in, float* out, int order, int flags, RealCall call) {
    real_call(site, in, out, order, flags, call);
}
void real_fft(const Site& site, const double* in, double* out, int order, int flags,
              RealCall call) {
    real_call(site, in, out, order, flags, call);
}
void spectrum_mul(const Site& site, const float* a, const float* b, float* dst, int order,
                  SpectrumLayout layout, bool three) {
    mul_call(site, a, b, dst, order, layout, three);
}
void spectrum_mul(const Site& site, const double* a, const double* b, double* dst, int order,
                  SpectrumLayout layout, bool three) {
    mul_call(site, a, b, dst, order, layout, three);
}

namespace {

// Calls f(position, exact product) for every value of the packed product
// of two 16-bit spectra; both parts of a complex value are computed before
// either is passed on, so dst may alias a or b.
template <class F>
void each_product(const short* a, const short* b, int order, SpectrumLayout layout, F&& f) {
    const std::size_t n = std::size_t(1) << order;
    f(std::size_t(0), std::int64_t(a[0]) * b[0]);
    if (order == 0) return;
    const std::size_t last = layout == kLayoutPack ? n - 1 : 1;
    f(last, std::int64_t(a[last]) * b[last]);
    const std::size_t first = layout == kLayoutPack ? 1 : 2;
    for (std::size_t k = 0; k + 1 < n / 2; ++k) {
        const std::size_t p = first + 2 * k;
        const std::int64_t ar = a[p], ai = a[p + 1], br = b[p], bi = b[p + 1];
        const std::int64_t re = ar * br - ai * bi, im = ar * bi + ai * br;
        f(p, re);
        f(p + 1, im);
    }
}

}  // namespace

void spectrum_mul(const Site& site, const short* a, const short* b, short* dst, int order,
                  SpectrumLayout layout, bool three, int scaleMode, int* scaleFactor) {
    if (!order_ok(site, order)) return;
    if (three && !a) return void(site.bad("srcA==0"));
    if (!b) return void(site.bad(three ? "srcB==0" : "src==0"));
    if (!dst) return void(site.bad("dst==0"));
    if (scaleMode == VEK_AUTO_SCALE && !scaleFactor) return void(site.bad("scalefactor==0"));
    if (!three) a = dst;
    // The element-wise product rules, with one factor for the spectrum.
    switch (scaleMode) {
        case VEK_NO_SCALE:
            each_product(a, b, order, layout,
                         [&](std::size_t i, std::int64_t r) { dst[i] = wrap16(r); });
            return;
        case VEK_SATURATE:
            each_product(a, b, order, layout,
                         [&](std::size_t i, std::int64_t r) { dst[i] = sat16(r); });
            return;
        case VEK_AUTO_SCALE: {
            // The smallest right shift that makes every product fit.
            int sh = 0;
            each_product(a, b, order, layout, [&](std::size_t, std::int64_t r) {
                while (!fits16(r >> sh)) ++sh;
            });
            each_product(a, b, order, layout,
                         [&](std::size_t i, std::int64_t r) { dst[i] = wrap16(r >> sh); });
            *scaleFactor = sh;
            return;
        }
        case VEK_SATURATE | VEK_FIXED_SCALE: {
            const int f = fixed_factor(scaleFactor);
            each_product(a, b, order, layout, [&](std::size_t i, std::int64_t r) {
                dst[i] = fixed_sat_product(r, f);
            });
            return;
        }
        default: {
            const int f = fixed_factor(scaleFactor);
            each_product(a, b, order, layout,
                         [&](std::size_t i, std::int64_t r) { dst[i] = wrap16(shift_by(r, f)); });
            return;
        }
    }
}

void rfft_forward(ThreadContext* ctx, const float* in, float* out, int order, int flags,
                  SpectrumLayout layout) {
    forward(ctx, in, out, order, flags, layout);
}
void rfft_forward(ThreadContext* ctx, const double* in, double* out, int order, int flags,
                  SpectrumLayout layout) {
    forward(ctx, in, out, order, flags, layout);
}
void rfft_inverse(ThreadContext* ctx, const float* in, float* out, int order, int flags,
                  SpectrumLayout layout) {
    inverse(ctx, in, out, order, flags, layout);
}
void rfft_inverse(ThreadContext* ctx, const double* in, double* out, int order, int flags,
                  SpectrumLayout layout) {
    inverse(ctx, in, out, order, flags, layout);
}
}  // namespace vek
