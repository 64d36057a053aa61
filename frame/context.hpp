// The per-thread context record and its lifecycle.
#pragma once

#include <cstdint>

#include "platform.hpp"
#include "vek.h"

namespace vek {

constexpr int kOrders = 32;       // transform orders 0..31
constexpr int kDftCapacity = 32;  // DFT twiddle tables kept per type

// Complex element kinds that own per-thread caches, in release order.
enum CplxKind { kKindC = 0, kKindZ = 1, kKindV = 2, kKinds = 3 };

// Work buffers kept between calls, per complex kind: slot lengths in
// elements and the buffers.
struct ScratchSet {
    std::int32_t length[4];
    void* buffer[4];
};

struct ThreadContext {
    std::int32_t status;
    std::int32_t errMode;
    ErrorReportFunc reportFunc;
    std::int32_t dftCapacity;
    std::int32_t dftCount[kKinds];
    std::int32_t vWorkCount;
    std::int32_t dctLength;
    double* dctCosTbl;
    std::int32_t dctTblCount;
    void** dctTbls;
    double dctNorm;
    // Cache area; the transforms define what each slot holds.
    std::int32_t dftLength[kKinds][kDftCapacity];
    void* dftTbl[kKinds][kDftCapacity];
    void* fftTwdTbl[kKinds][kOrders];
    std::int32_t* bitRevTbl[kOrders];
    std::int32_t* swapList[kOrders];
    void* orderTbl[11][kOrders];
    ScratchSet scratch[kKinds];
};

// The calling thread's context, created on first use. Ends the process
// when no record can be made.
ThreadContext* context_slow();
inline ThreadContext* context() {
    if (ThreadContext* ctx = platform::slot_peek()) return ctx;
    return context_slow();
}

// A fresh record (status 0, Leaf, box report); null when memory is short.
ThreadContext* new_context();

// Releases the thread's caches through the registered functions in rank
// order, then the record itself.
void release_context(ThreadContext* ctx);

// Functions that release one family's caches of a context. Transform
// modules register theirs at load time; rank fixes the release order.
using CacheRelease = void (*)(ThreadContext*);
constexpr int kCacheReleaseRanks = 8;
void register_cache_release(int rank, CacheRelease fn);

}  // namespace vek
