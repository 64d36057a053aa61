// Allocation and per-thread state access, beside the standard allocator.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "vek.h"

static void BM_vekMalloc(benchmark::State& state) {
    const int n = int(state.range(0));
    for (auto _ : state) {
        void* p = vekMalloc(n);
        benchmark::DoNotOptimize(p);
        vekFree(p);
    }
}
BENCHMARK(BM_vekMalloc)->Arg(64)->Arg(4096)->Arg(1 << 20);

static void BM_malloc(benchmark::State& state) {
    const size_t n = size_t(state.range(0));
    for (auto _ : state) {
        void* p = std::malloc(n);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}
BENCHMARK(BM_malloc)->Arg(64)->Arg(4096)->Arg(1 << 20);

// Every export that touches per-thread state pays this lookup.
static void BM_vekGetErrStatus(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(vekGetErrStatus());
}
BENCHMARK(BM_vekGetErrStatus);
