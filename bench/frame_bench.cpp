// Allocation beside the standard allocator (taking turns, twin.hpp), and
// per-thread state access.
#include <cstdlib>

#include "twin.hpp"

namespace {

void BM_vekMalloc(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto t = twin::race(
        state, twin::Batch{1000},
        [n] {
            void* p = vekMalloc(n);
            benchmark::DoNotOptimize(p);
            vekFree(p);
        },
        [n] {
            void* p = std::malloc(std::size_t(n));
            benchmark::DoNotOptimize(p);
            std::free(p);
        });
    state.counters["vek_ns"] = 1e9 * t[0];
    state.counters["malloc_ns"] = 1e9 * t[1];
    state.counters["vek/malloc"] = t[0] / t[1];
}
BENCHMARK(BM_vekMalloc)->Arg(64)->Arg(4096)->Arg(1 << 20)->UseManualTime();

// Every export that touches per-thread state pays this lookup.
void BM_vekGetErrStatus(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(vekGetErrStatus());
}
BENCHMARK(BM_vekGetErrStatus);

}  // namespace
