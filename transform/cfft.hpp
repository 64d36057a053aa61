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

// "order<0", "order>31".
bool fft_order_ok(const Site& site, int order);

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

}  // namespace vek
