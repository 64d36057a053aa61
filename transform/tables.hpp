// Per-thread transform tables: bit reversal, swap lists, twiddles, FFT plans
// and work buffers, all kept in the calling thread's context.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/context.hpp"
#include "frame/report.hpp"

namespace vek {

// Rows of ThreadContext::orderTbl, each indexed by order.
enum OrderTable : int {
    kTblPlanC = 0,    // complex-float FFT plans (FftPlan<CplxFloat>)
    kTblPlanZ = 1,    // complex-double FFT plans
    kTblRecombC = 2,  // real-transform recombination tables, float
    kTblRecombZ = 3,  // the same, double
    kTblRevC = 4,     // complex-float passes to and from bit-reversed order
    kTblRevZ = 5,     // the same, double
    kTblDftC = 6,     // DFT plans (DftPlan<CplxFloat>), by position in the
                      // thread's DFT table list rather than by order
    kTblDftZ = 7,     // the same, double
    kTblSpareV = 8,   // free for later 16-bit-kind tables
    kOrderTables = 11
};

// The kind that owns each row, for the per-kind release.
constexpr CplxKind kOrderTableKind[kOrderTables] = {kKindC, kKindZ, kKindC, kKindZ, kKindC, kKindZ,
                                                    kKindC, kKindZ, kKindV, kKindV, kKindV};

// Scratch slots of ThreadContext::scratch[kind].
enum ScratchSlot : int {
    kScratchSplit = 0,  // r forms: the interleaved copy of re/im arrays
    kScratchWork1 = 1,  // 16-bit forms: float copy of the data; c, z: the
                        // DFT's work copy
    kScratchWork2 = 2,  // 16-bit r forms: second float array; c, z: the
                        // DFT's convolution buffer
    kScratchFft = 3     // the FFT's own work area
};

// Largest block the tables and buffers may take: the exported allocators
// count in 32 bits, and a table beyond that could not be handed out anyway.
constexpr std::uint64_t kMaxTableBytes = 0x7fffff00u;

// Aligned (64 bytes) allocation for tables; null beyond kMaxTableBytes or
// when memory is short. Released with table_free (null is fine).
void* table_alloc(std::uint64_t bytes);
void table_free(void* p);

// exp(-2*pi*i*k/n) with an exact value of pi in extended precision and
// exact symmetries (results at multiples of n/8 are exact).
void unit_root(std::uint64_t k, std::uint64_t n, long double* re, long double* im);

// The same root in the precision of the complex type C.
template <class C>
C root_as(std::uint64_t k, std::uint64_t n) {
    long double re, im;
    unit_root(k, n, &re, &im);
    using R = decltype(C::re);
    return C{R(re), R(im)};
}

// Bytes rounded up to whole cache lines, for carving one block into
// tables (64 bits, so that oversized plans fail to allocate, not wrap).
constexpr std::uint64_t round64(std::uint64_t bytes) { return (bytes + 63) & ~std::uint64_t(63); }

// Cached tables of the calling thread, built on first use. Null (and no
// report) for an order outside 0..31 or when memory is short.
std::int32_t* bitrev_table(ThreadContext* ctx, int order);
std::int32_t* swap_list(ThreadContext* ctx, int order);
void* fft_twiddles(ThreadContext* ctx, CplxKind kind, int order);

// The plan of one order (see fft.hpp), built on first use; kind c or z.
const void* fft_plan(ThreadContext* ctx, CplxKind kind, int order);

// The in-place passes between natural and bit-reversed order of one order
// (an FftSchedule with its twiddles), built on first use; null below order
// 4 or when memory is short (the transform then permutes instead).
const void* fft_rev_schedule(ThreadContext* ctx, CplxKind kind, int order);

// A work buffer of at least `bytes`, kept in scratch slot `slot` of `kind`
// and grown when too small. Null when memory is short.
void* scratch(ThreadContext* ctx, CplxKind kind, int slot, std::uint64_t bytes);
void scratch_release(ThreadContext* ctx, CplxKind kind, int slot);

// Everything a transform of one order and kind needs before it runs: the
// plan, the swap list and the FFT work area. One retry after releasing the
// kind's kernel tables and swap lists. False when memory is short.
bool fft_acquire(ThreadContext* ctx, CplxKind kind, int order);

// VEK_Free of one order: its plan, its swap list and the FFT work area.
void fft_release(ThreadContext* ctx, CplxKind kind, int order);

// Releases of whole families, as run at thread exit.
void release_twiddles(ThreadContext* ctx, CplxKind kind);
void release_bitrev(ThreadContext* ctx);
// Kernel tables (plans and every other order table of the kind) and the
// shared swap lists.
void release_kernel_tables(ThreadContext* ctx, CplxKind kind);
// Every transform cache of the thread (the last resort before a
// no-memory report).
void release_all(ThreadContext* ctx);

// Builders of the exported tables.
void calc_bitrev(std::int32_t* tbl, int order);
void calc_fft_twiddles(CplxKind kind, void* tbl, int order);
void calc_dft_twiddles(CplxKind kind, void* tbl, int length);

// The order check of every order-taking export: "order<0", "order>31".
bool order_ok(const Site& site, int order);

}  // namespace vek
