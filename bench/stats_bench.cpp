// Statistics beside plain loops.
#include "native.hpp"
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
            benchmark::DoNotOptimize(native::max_ext_float(x.data(), n, &at));
            benchmark::DoNotOptimize(at);
        });
}
TWIN_SIZES(BM_veksMaxExt);

void BM_veksMean(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto x = twin::uniform<float>(n, -1, 1);
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(veksMean(x.data(), n)); },
        [&] { benchmark::DoNotOptimize(native::mean_float(x.data(), n)); });
}
TWIN_SIZES(BM_veksMean);

}  // namespace
