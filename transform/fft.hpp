// The complex FFT kernels: per-order plans and the per-ISA entry points.
//
// Every transform runs natural order in, natural order out, as Stockham
// autosort passes between the data and a work area (so no permutation
// pass): a radix-8 or radix-4 first pass that reads contiguous points and
// interleaves its outputs, radix-8 (and at most one radix-4) passes whose vector loop
// runs across independent sub-transforms with broadcast twiddles, and a
// last radix-4 or radix-8 pass that needs no twiddles. Each pass reads its
// twiddles from its own table, in the order the loop uses them.
//
// Large orders (four_step_order) are split as N = R x C (R rows of C
// points): FFTs down the columns, a block of columns at a time in a small
// buffer, times a twiddle W_N^(row*col) composed from two tables and
// stored transposed; then FFTs along the rows (columns of that copy), a
// block at a time, whose last pass writes the output in its final place.
// Every sub-transform works in cache, and the data crosses memory twice.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/cpu.hpp"
#include "vek.h"

namespace vek {

// The four-step starts where the data and the work area outgrow the L2
// cache by far; below, streaming passes are faster. The orders are measured
// on the reference machine (1 MiB L2, 32 MiB L3): complex double from 2^17
// points (2 MiB), complex float from 2^20 (8 MiB: from 2^18 to 2^19 the
// streaming passes still win for float).
template <class C>
constexpr int four_step_order() {
    return sizeof(C) == 8 ? 20 : 17;
}

// Columns per column-FFT block: 256 bytes of each row.
template <class C>
constexpr int lanes_of() {
    return int(256 / sizeof(C));
}

// One pass of a schedule. A pass of size n = radix*m reads point p + j*m of
// each sub-transform and writes point radix*p + r, multiplied by W_n^(r*p).
enum FftPassKind : int {
    kPassFirst4,  // radix 4, vector loop over p; twiddles as three arrays of m
    kPassFirst8,  // radix 8, the same with seven arrays
    kPassTw4,     // radix 4, vector loop over lanes; per p: W^p, W^2p, W^3p
    kPassTw8,     // radix 8, the same with W^p .. W^7p
    kPassLast2,   // the last pass (m = 1): no twiddles
    kPassLast4,
    kPassLast8,
    // In place, for bit-reversed order: blocks of radix*h points, span h
    // (kept in m); twiddles W^(r*j), j < h, as radix-1 arrays of h.
    kPassRev4,
    kPassRev8,
    kPassRevEnd4  // blocks of 4 contiguous points, no twiddles
};

struct FftPass {
    int kind;
    std::size_t m;   // sub-transforms of this pass
    std::size_t tw;  // offset of its twiddles in the schedule's table
};

constexpr int kMaxPasses = 16;

// The passes of one transform of 2^order points and their twiddles (those of
// the forward transform; the inverse uses their conjugates).
template <class C>
struct FftSchedule {
    int order;
    int passes;
    FftPass pass[kMaxPasses];
    const C* tw;
};

// The tables of one order, in one block.
template <class C>
struct FftPlan {
    int order;
    int rowsLog;           // four-step: log2 R (0 for a direct transform)
    int colsLog;           // four-step: log2 C
    int lanes;             // four-step: columns per block
    FftSchedule<C> whole;  // direct
    // Four-step: the column FFTs (lanes interleaved), the row FFTs,
    FftSchedule<C> rows;
    FftSchedule<C> cols;
    // and the inter-step twiddle W_N^(k1*n2) = lane[k1][b] * block[cb][k1]
    // with n2 = cb*lanes + b.
    const C* lane;   // R x lanes: W_N^(k1*b)
    const C* block;  // (C/lanes) x R: W_N^(k1*cb*lanes)
};

// Elements of work area a transform of this order needs: the whole
// intermediate of the four-step and two blocks of lanes.
template <class C>
inline std::uint64_t fft_work(int order) {
    const std::uint64_t n = std::uint64_t(1) << order;
    if (order < four_step_order<C>()) return n;
    const std::uint64_t rows = std::uint64_t(1) << (order / 2), cols = n / rows;
    return n + 2 * cols * lanes_of<C>();
}

struct FftOps {
    // dst = FFT(src) times scale (src may equal dst; work holds fft_work
    // elements).
    void (*run_c)(const FftPlan<CplxFloat>* plan, const CplxFloat* src, CplxFloat* dst,
                  CplxFloat* work, bool inverse, float scale);
    void (*run_z)(const FftPlan<CplxDouble>* plan, const CplxDouble* src, CplxDouble* dst,
                  CplxDouble* work, bool inverse, double scale);
    // In place between natural and bit-reversed order, times scale: the
    // passes of `rev` (fft_rev_schedule) from natural to bit-reversed
    // order, or with `fromRev` backwards from bit-reversed to natural.
    void (*rev_c)(const FftSchedule<CplxFloat>* rev, CplxFloat* x, bool inverse, bool fromRev,
                  float scale);
    void (*rev_z)(const FftSchedule<CplxDouble>* rev, CplxDouble* x, bool inverse, bool fromRev,
                  double scale);
};

namespace sse2 {
extern const FftOps fft_ops;
}
namespace avx2 {
extern const FftOps fft_ops;
}
namespace avx512 {
extern const FftOps fft_ops;
}

const FftOps& fft_ops();

}  // namespace vek
