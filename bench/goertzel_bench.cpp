// Goertzel block detectors: samples per second (the recurrence is serial).
#include <benchmark/benchmark.h>

#include <vector>

#include "vek.h"

namespace {

template <class T, class Init, class Run>
void run_block(benchmark::State& state, Init init, Run run) {
    const int n = int(state.range(0));
    std::vector<T> x(n, T{});
    GoertzState st;
    init(0.1, &st);
    for (auto _ : state) benchmark::DoNotOptimize(run(&st, x.data(), n));
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_veksbGoertz(benchmark::State& s) {
    run_block<float>(
        s, [](double f, GoertzState* st) { veksGoertzInit(float(f), st); }, veksbGoertz);
}
void BM_vekzbGoertz(benchmark::State& s) { run_block<CplxDouble>(s, vekzGoertzInit, vekzbGoertz); }
void BM_vekwbGoertz(benchmark::State& s) {
    int factor = 0;
    run_block<short>(
        s, [](double f, GoertzState* st) { vekwGoertzInit(float(f), st); },
        [&](GoertzState* st, const short* x, int n) {
            return vekwbGoertz(st, x, n, VEK_AUTO_SCALE, &factor);
        });
}

}  // namespace

BENCHMARK(BM_veksbGoertz)->Arg(1000)->Arg(1000000);
BENCHMARK(BM_vekzbGoertz)->Arg(1000)->Arg(1000000);
BENCHMARK(BM_vekwbGoertz)->Arg(1000)->Arg(1000000);
