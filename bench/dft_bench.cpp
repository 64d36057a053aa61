// DFT of non-power-of-two lengths beside FFTW's plan of the same length.
#include <benchmark/benchmark.h>

#include <vector>

#include "vek.h"

#ifdef VEK_BENCH_FFTW
#include <fftw3.h>
#endif

namespace {

void BM_vekcDft(benchmark::State& state) {
    const int n = int(state.range(0));
    std::vector<CplxFloat> x(static_cast<size_t>(n), CplxFloat{1, 0});
    std::vector<CplxFloat> y(static_cast<size_t>(n));
    vekcDft(x.data(), y.data(), n, VEK_Forw | VEK_Init);
    for (auto _ : state) {
        vekcDft(x.data(), y.data(), n, VEK_Forw);
        benchmark::DoNotOptimize(y.data());
    }
}
BENCHMARK(BM_vekcDft)->Arg(60)->Arg(1000)->Arg(4099);

#ifdef VEK_BENCH_FFTW
void BM_fftwf_dft(benchmark::State& state) {
    const int n = int(state.range(0));
    auto* in = fftwf_alloc_complex(size_t(n));
    auto* out = fftwf_alloc_complex(size_t(n));
    fftwf_plan p = fftwf_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_MEASURE);
    for (int i = 0; i < n; ++i) in[i][0] = 1, in[i][1] = 0;
    for (auto _ : state) {
        fftwf_execute(p);
        benchmark::DoNotOptimize(out);
    }
    fftwf_destroy_plan(p);
    fftwf_free(in);
    fftwf_free(out);
}
BENCHMARK(BM_fftwf_dft)->Arg(60)->Arg(1000)->Arg(4099);
#endif

}  // namespace
