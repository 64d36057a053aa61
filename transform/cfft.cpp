#include "cfft.hpp"

#include <cstring>

#include "bitrev.hpp"
#include "fft.hpp"

namespace vek {

bool fft_flags_ok(const Site& site, int flags) {
    const char* bad = nullptr;
    if ((flags & VEK_Forw) && (flags & VEK_Inv))
        bad = "(flags & 1) && (flags & 2)";
    else if (!(flags & VEK_Forw) && !(flags & VEK_Inv))
        bad = "(flags & 1)==0 && (flags & 2)==0";
    else if ((flags & VEK_InBitRev) && (flags & VEK_OutBitRev))
        bad = "(flags & 64) && (flags & 128)";
    else if ((flags & VEK_InBitRev) && (flags & VEK_NoBitRev))
        bad = "(flags & 64) && (flags & 32)";
    else if ((flags & VEK_NoBitRev) && (flags & VEK_OutBitRev))
        bad = "(flags & 32) && (flags & 128)";
    if (bad) site.bad(bad);
    return !bad;
}

namespace {

std::size_t elem_size(CplxKind kind) {
    return kind == kKindC ? sizeof(CplxFloat) : sizeof(CplxDouble);
}

bool split_buffer(ThreadContext* ctx, CplxKind kind, int order) {
    return scratch(ctx, kind, kScratchSplit, (std::uint64_t(1) << order) * elem_size(kind));
}

}  // namespace

namespace {

// Everything already there: the common case, kept short.
bool ready(const ThreadContext* ctx, CplxKind kind, int order, bool split) {
    const ScratchSet& set = ctx->scratch[kind];
    const std::uint64_t work = kind == kKindC ? fft_work<CplxFloat>(order) * sizeof(CplxFloat)
                                              : fft_work<CplxDouble>(order) * sizeof(CplxDouble);
    if (!ctx->orderTbl[kind == kKindC ? kTblPlanC : kTblPlanZ][order] || !ctx->swapList[order] ||
        !set.buffer[kScratchFft] || std::uint64_t(set.length[kScratchFft]) * 8 < work)
        return false;
    return !split || (set.buffer[kScratchSplit] && std::uint64_t(set.length[kScratchSplit]) * 8 >=
                                                       (std::uint64_t(elem_size(kind)) << order));
}

}  // namespace

ThreadContext* fft_tables(const Site& site, CplxKind kind, int order, bool split) {
    ThreadContext* ctx = context();
    if (ready(ctx, kind, order, split)) return ctx;
    if (!fft_acquire(ctx, kind, order)) {
        site.no_memory("No working Twd memory");
        return nullptr;
    }
    if (split && !split_buffer(ctx, kind, order)) {
        release_all(ctx);
        if (!split_buffer(ctx, kind, order) || !fft_acquire(ctx, kind, order)) {
            site.no_memory("No working memory");
            return nullptr;
        }
    }
    return ctx;
}

void fft_free(CplxKind kind, int order) { fft_release(context(), kind, order); }

void fft_init_orderings(ThreadContext* ctx, CplxKind kind, int order, int flags) {
    if (flags & (VEK_InBitRev | VEK_OutBitRev)) fft_rev_schedule(ctx, kind, order);
}

namespace {

template <class C>
void exec(ThreadContext* ctx, const C* src, C* dst, int order, int flags) {
    using R = typename CfftTraits<C>::R;
    constexpr CplxKind kind = CfftTraits<C>::kind;
    if (order == 0) {
        dst[0] = src[0];
        return;
    }
    const auto* plan = static_cast<const FftPlan<C>*>(
        ctx->orderTbl[kind == kKindC ? kTblPlanC : kTblPlanZ][order]);
    C* work = static_cast<C*>(ctx->scratch[kind].buffer[kScratchFft]);
    const std::int32_t* list = ctx->swapList[order];
    const bool inverse = flags & VEK_Inv;
    // 1/N formed in double, applied in the element's precision by the last
    // pass.
    const R scale =
        inverse && !(flags & VEK_NoScale) ? R(1.0 / double(std::uint64_t(1) << order)) : R(1);
    const FftOps& ops = fft_ops();
    auto run = [&](const C* in, C* out) {
        if constexpr (kind == kKindC)
            ops.run_c(plan, in, out, work, inverse, scale);
        else
            ops.run_z(plan, in, out, work, inverse, scale);
    };
    const bool revIn = flags & VEK_InBitRev, revOut = (flags & VEK_OutBitRev) && !revIn;
    const auto* rev = revIn || revOut
                          ? static_cast<const FftSchedule<C>*>(fft_rev_schedule(ctx, kind, order))
                          : nullptr;
    if (rev) {
        // In place between the orders, no permutation.
        if (src != dst) std::memcpy(dst, src, sizeof(C) << order);
        if constexpr (kind == kKindC)
            ops.rev_c(rev, dst, inverse, revIn, scale);
        else
            ops.rev_z(rev, dst, inverse, revIn, scale);
    } else if (revIn) {
        if (src != dst)
            bitrev_copy(src, dst, order, list);
        else
            bitrev_inplace(dst, order, list);
        run(dst, dst);
    } else {
        run(src, dst);
        if (revOut) bitrev_inplace(dst, order, list);
    }
}

template <class R, class C>
void exec_split(ThreadContext* ctx, const R* reIn, const R* imIn, R* reOut, R* imOut, int order,
                int flags) {
    constexpr CplxKind kind = CfftTraits<C>::kind;
    C* buf = static_cast<C*>(ctx->scratch[kind].buffer[kScratchSplit]);
    const std::size_t n = std::size_t(1) << order;
    for (std::size_t i = 0; i < n; ++i) buf[i] = C{reIn[i], imIn[i]};
    exec(ctx, buf, buf, order, flags);
    for (std::size_t i = 0; i < n; ++i) {
        reOut[i] = buf[i].re;
        imOut[i] = buf[i].im;
    }
}

}  // namespace

void fft_exec(ThreadContext* ctx, const CplxFloat* src, CplxFloat* dst, int order, int flags) {
    exec(ctx, src, dst, order, flags);
}
void fft_exec(ThreadContext* ctx, const CplxDouble* src, CplxDouble* dst, int order, int flags) {
    exec(ctx, src, dst, order, flags);
}
void fft_exec_split(ThreadContext* ctx, const float* reIn, const float* imIn, float* reOut,
                    float* imOut, int order, int flags) {
    exec_split<float, CplxFloat>(ctx, reIn, imIn, reOut, imOut, order, flags);
}
void fft_exec_split(ThreadContext* ctx, const double* reIn, const double* imIn, double* reOut,
                    double* imOut, int order, int flags) {
    exec_split<double, CplxDouble>(ctx, reIn, imIn, reOut, imOut, order, flags);
}

}  // namespace vek
