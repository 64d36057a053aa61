#include "context.hpp"

#include "platform.hpp"

namespace vek {

namespace {

// Constant-initialised, so registration from other modules' static
// constructors works in any order.
CacheRelease g_release[kCacheReleaseRanks];

}  // namespace

void register_cache_release(int rank, CacheRelease fn) {
    if (rank >= 0 && rank < kCacheReleaseRanks) g_release[rank] = fn;
}

ThreadContext* new_context() {
    auto* ctx = static_cast<ThreadContext*>(platform::zero_alloc(sizeof(ThreadContext)));
    if (!ctx) return nullptr;
    ctx->status = VEK_StatusOk;
    ctx->errMode = VEK_ErrorModeLeaf;
    ctx->reportFunc = vekGuiBoxReport;
    ctx->dftCapacity = kDftCapacity;
    return ctx;
}

ThreadContext* context_slow() {
    ThreadContext* ctx = platform::slot_get();
    if (ctx) return ctx;
    ctx = new_context();
    if (!ctx) platform::fatal_exit("VEKlib. Problem to allocate memory for TLS VEK context.");
    if (!platform::slot_set(ctx)) {
        // Without a slot the record could never be found again; an
        // unusable slot is as fatal as a missing record.
        platform::zero_free(ctx);
        platform::fatal_exit("VEKlib. Problem to allocate memory for TLS VEK context.");
    }
    return ctx;
}

void release_context(ThreadContext* ctx) {
    if (!ctx) return;
    for (CacheRelease fn : g_release)
        if (fn) fn(ctx);
    platform::zero_free(ctx);
}

}  // namespace vek
