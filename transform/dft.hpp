// The DFT of any length.
//
// Lengths whose prime factors are small run as self-sorting mixed-radix
// passes (Stockham, natural order in and out) between the destination and
// one work buffer: radix 8 (or 4, 2) passes first, so that the lane count
// of every later pass is a multiple of the vector width, then radices 3, 5,
// 7 and a generic odd radix for the other small primes. Each pass reads its
// twiddles from its own table, in loop order.
//
// Other lengths use Bluestein's chirp-z algorithm: the DFT of n points as a
// cyclic convolution of a smooth length M >= 2n - 1, done by two transforms
// of M points with the same passes, with the chirp and the spectrum of its
// conjugate built once per plan.
//
// A cost estimate (dft.cpp) chooses between the two. The direct sum serves
// the shortest lengths, and any length whose plan or buffer cannot be had.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/cpu.hpp"
#include "tables.hpp"
#include "vek.h"

namespace vek {

// Odd radices up to this run the generic butterfly; a length with a larger
// prime factor goes to Bluestein.
constexpr int kDftMaxRadix = 61;
constexpr int kDftMaxPasses = 40;

// The generic radix runs one column at a time, vectorised over its
// outputs, when a pass has fewer lanes than this.
constexpr std::size_t kDftColumnLanes = 4;

// Rows of the generic radix's matrices: half the radix rounded up to a
// multiple of the widest vector.
static constexpr std::size_t dft_matrix_row(int radix) {
    return std::size_t((radix - 1) / 2 + 7) & ~std::size_t(7);
}

// One pass of size radix * m over L lanes: point p + j*m of lane q is read
// at x[q + L*(p + j*m)]; output r of sub-transform p, times W^(r*p*L) (W of
// the whole length), is written at y[q + L*(r + radix*p)].
struct DftPass {
    int radix;
    int spread;  // first pass (L = 1, m > 1): vector loop over p
    std::size_t L;
    std::size_t m;
    std::size_t tw;  // its twiddles W^(r*p*L), r = 1..radix-1: in the order
                     // of the vector loop, tw[(r-1)*m + p] when spread, else
                     // tw[p*(radix-1) + r-1]
    std::size_t k;   // odd radix: cos and sin of 2*pi*t/radix, t < radix;
                     // generic radix then the matrices (see dft_kernels.inl)
};

template <class C>
struct DftSchedule {
    using R = decltype(C::re);
    std::uint64_t n;
    int passes;
    DftPass pass[kDftMaxPasses];
    const C* tw;
    const R* k;
};

// The plan of one length, in one block.
template <class C>
struct DftPlan {
    int length;
    DftSchedule<C> sched;  // of the length, or of the convolution length
    // Bluestein only (else null): chirp[j] = exp(-i*pi*j^2/length), j <
    // length; spectrum = DFT of the conjugate chirp over the convolution
    // length, divided by it.
    const C* chirp;
    const C* spectrum;
};

struct DftOps {
    // dst = DFT(src) times scale; src may equal dst; work holds the
    // length (passes) or twice the convolution length (Bluestein).
    void (*run_c)(const DftPlan<CplxFloat>* plan, const CplxFloat* src, CplxFloat* dst,
                  CplxFloat* work, bool inverse, float scale);
    void (*run_z)(const DftPlan<CplxDouble>* plan, const CplxDouble* src, CplxDouble* dst,
                  CplxDouble* work, bool inverse, double scale);
    // The forward passes of a schedule, for building plans: in and out may
    // be the same; tmp holds n elements.
    void (*passes_z)(const DftSchedule<CplxDouble>* sched, const CplxDouble* src, CplxDouble* dst,
                     CplxDouble* tmp);
};

namespace sse2 {
extern const DftOps dft_ops;
}
namespace avx2 {
extern const DftOps dft_ops;
}
namespace avx512 {
extern const DftOps dft_ops;
}

const DftOps& dft_ops();

// The plan of the thread's DFT table entry of this length (kind c or z),
// built on first use. Null for lengths the direct sum serves best, when the
// length has no table entry, or when memory is short: the transform then
// sums directly.
const void* dft_plan(ThreadContext* ctx, CplxKind kind, int length);

// Bluestein's work buffer (scratch slot 2): twice the convolution length.
// Null for other plans, or when memory is short.
void* dft_conv_buffer(ThreadContext* ctx, CplxKind kind, const void* plan);

// A double plan outside the DFT table list, for other transforms built on
// the DFT; null when the length is short enough to sum directly or memory
// is short. Released with table_free.
DftPlan<CplxDouble>* dft_plan_double(int length);

// dst = DFT(src) by such a plan, times scale; buff holds the length. False
// (nothing written) when Bluestein's buffer cannot be had.
bool dft_plan_run(ThreadContext* ctx, const DftPlan<CplxDouble>* plan, const CplxDouble* src,
                  CplxDouble* dst, CplxDouble* buff, bool inverse, double scale);

// The direct sum: x (length n, overwritten with pair sums and differences)
// into out, twiddles tbl[k] = exp(-2*pi*i*k/n), every output times scale.
// Accumulates in double.
void dft_direct(CplxFloat* x, CplxFloat* out, const CplxFloat* tbl, int n, bool inverse,
                double scale);
void dft_direct(CplxDouble* x, CplxDouble* out, const CplxDouble* tbl, int n, bool inverse,
                double scale);

// Up to this length the direct sum beats the passes' fixed costs.
template <class C>
constexpr int dft_direct_max() {
    return sizeof(C) == sizeof(CplxFloat) ? 6 : 10;
}

// The transform by its plan; false (nothing written) when the plan or its
// buffer cannot be had.
bool dft_fast(ThreadContext* ctx, const CplxFloat* src, CplxFloat* dst, CplxFloat* buff, int length,
              bool inverse, double scale);
bool dft_fast(ThreadContext* ctx, const CplxDouble* src, CplxDouble* dst, CplxDouble* buff,
              int length, bool inverse, double scale);

// The transform after the export's checks: buff is the work copy of
// `length` elements, tbl the length's twiddle table; src may equal dst.
template <class C>
inline void dft_exec(ThreadContext* ctx, const C* src, C* dst, C* buff, const C* tbl, int length,
                     bool inverse, double scale) {
    if (length > dft_direct_max<C>() && dft_fast(ctx, src, dst, buff, length, inverse, scale))
        return;
    std::memcpy(buff, src, std::size_t(length) * sizeof(C));
    dft_direct(buff, dst, tbl, length, inverse, scale);
}

}  // namespace vek
