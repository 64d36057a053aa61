// The complex FFT behind the exports of every precision: flag checks, table
// acquisition, ordering, scaling.
#pragma once

#include <cstdint>

#include "frame/report.hpp"
#include "tables.hpp"

namespace vek {

template <class C>
struct CfftTraits;
template <>
struct CfftTraits<CplxFloat> {
    using R = float;
    static constexpr CplxKind kind = kKindC;
};
template <>
struct CfftTraits<CplxDouble> {
    using R = double;
    static constexpr CplxKind kind = kKindZ;
};

// The direction and ordering conflicts, in their order.
bool fft_flags_ok(const Site& site, int flags);

// Plan, swap list and work area of this order ("No working Twd memory"),
// and for the split forms the interleaved copy ("No working memory").
// Returns the thread's context, or null after the report.
ThreadContext* fft_tables(const Site& site, CplxKind kind, int order, bool split);

// VEK_Init with an ordering bit also builds the passes to and from
// bit-reversed order (without them the transform permutes).
void fft_init_orderings(ThreadContext* ctx, CplxKind kind, int order, int flags);

// VEK_Free: this order's plan and swap list, and the FFT work area.
void fft_free(CplxKind kind, int order);

// The transform after its checks, with the tables acquired in ctx. src may
// equal dst; src is only read.
void fft_exec(ThreadContext* ctx, const CplxFloat* src, CplxFloat* dst, int order, int flags);
void fft_exec(ThreadContext* ctx, const CplxDouble* src, CplxDouble* dst, int order, int flags);
void fft_exec_split(ThreadContext* ctx, const float* reIn, const float* imIn, float* reOut,
                    float* imOut, int order, int flags);
void fft_exec_split(ThreadContext* ctx, const double* reIn, const double* imIn, double* reOut,
                    double* imOut, int order, int flags);

// The export bodies. VEK_Free (the order unchecked), the order, the tables,
// VEK_Init, the data pointers as (pointer, message) pairs in argument
// order, the flags, the transform.
template <class C, class... Pointers>
void complex_fft(const Site& site, const C* in, C* out, int order, int flags,
                 Pointers... pointers) {
    constexpr CplxKind kind = CfftTraits<C>::kind;
    if (flags & VEK_Free) return fft_free(kind, order);
    if (!order_ok(site, order)) return;
    ThreadContext* ctx = fft_tables(site, kind, order, false);
    if (!ctx) return;
    if (flags & VEK_Init) return fft_init_orderings(ctx, kind, order, flags);
    if (!pointers_set(site, pointers...) || !fft_flags_ok(site, flags)) return;
    fft_exec(ctx, in, out, order, flags);
}

// The same on separate real and imaginary arrays.
template <class R, class... Pointers>
void complex_fft_split(const Site& site, const R* reIn, const R* imIn, R* reOut, R* imOut,
                       int order, int flags, Pointers... pointers) {
    constexpr CplxKind kind = sizeof(R) == sizeof(float) ? kKindC : kKindZ;
    if (flags & VEK_Free) return fft_free(kind, order);
    if (!order_ok(site, order)) return;
    ThreadContext* ctx = fft_tables(site, kind, order, true);
    if (!ctx) return;
    if (flags & VEK_Init) return fft_init_orderings(ctx, kind, order, flags);
    if (!pointers_set(site, pointers...) || !fft_flags_ok(site, flags)) return;
    fft_exec_split(ctx, reIn, imIn, reOut, imOut, order, flags);
}

}  // namespace vek
