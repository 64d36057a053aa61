// Statistics beside plain loops.
#include "plain.hpp"
#include "twin.hpp"

namespace {

void BM_veksMaxExt(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto x = twin::uniform<float>(n, -1, 1);
    twin::run(
        state, n,
        [&] {
            int at;
            benchmark::DoNotOptimize(veksMaxExt(x.data(), n, &at));
            benchmark::DoNotOptimize(at);
        },
        [&] {
            int at;
            benchmark::DoNotOptimize(plain::max_ext_float(x.data(), n, &at));
            benchmark::DoNotOptimize(at);
        });
}
TWIN_BENCHMARK(BM_veksMaxExt, {1000, 1000000});

void BM_veksMean(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto x = twin::uniform<float>(n, -1, 1);
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(veksMean(x.data(), n)); },
        [&] { benchmark::DoNotOptimize(plain::mean_float(x.data(), n)); });
}
TWIN_BENCHMARK(BM_veksMean, {1000, 1000000});

}  // namespace
