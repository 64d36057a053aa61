// Forward DCT beside FFTW's REDFT10 (FFTW_MEASURE), single precision, one
// thread, not in place. FFTW's output is unnormalised (2 sum x cos); the
// scaling to the orthonormal transform is applied once after the timing,
// to check that both agree. Counters per transform: us, ratio = vek / FFTW,
// maxdiff = largest difference of the scaled outputs.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

#include "vek.h"

#ifdef VEK_BENCH_FFTW
#include <fftw3.h>

namespace {

using Clock = std::chrono::steady_clock;

void BM_sDct_vs_fftwf_redft10(benchmark::State& state) {
    const int n = int(state.range(0));
    const int batch = std::max(1, (1 << 17) / n);
    float* x = veksMalloc(n);
    float* y = veksMalloc(n);
    float* fin = fftwf_alloc_real(std::size_t(n));
    float* fout = fftwf_alloc_real(std::size_t(n));
    fftwf_plan plan = fftwf_plan_r2r_1d(n, fin, fout, FFTW_REDFT10, FFTW_MEASURE);
    std::mt19937 gen(1);
    std::uniform_real_distribution<float> u(-1, 1);
    for (int i = 0; i < n; ++i) x[i] = fin[i] = u(gen);
    veksDct(x, y, n, VEK_Forw);  // tables built ahead
    double tv = 0, tf = 0;
    std::size_t count = 0;
    for (auto _ : state) {
        auto t0 = Clock::now();
        for (int i = 0; i < batch; ++i) veksDct(x, y, n, VEK_Forw);
        auto t1 = Clock::now();
        for (int i = 0; i < batch; ++i) fftwf_execute(plan);
        auto t2 = Clock::now();
        benchmark::ClobberMemory();
        tv += std::chrono::duration<double>(t1 - t0).count();
        tf += std::chrono::duration<double>(t2 - t1).count();
        count += std::size_t(batch);
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
    }
    double maxdiff = 0;
    for (int i = 0; i < n; ++i) {
        const double s = std::sqrt((i ? 0.5 : 0.25) / n);
        maxdiff = std::max(maxdiff, std::fabs(fout[i] * s - y[i]));
    }
    const double perV = tv / double(count) * 1e6, perF = tf / double(count) * 1e6;
    state.counters["vek_us"] = perV;
    state.counters["fftw_us"] = perF;
    state.counters["ratio"] = perV / perF;
    state.counters["maxdiff"] = maxdiff;
    fftwf_destroy_plan(plan);
    fftwf_free(fin);
    fftwf_free(fout);
    vekFree(x);
    vekFree(y);
}

}  // namespace

BENCHMARK(BM_sDct_vs_fftwf_redft10)
    ->RangeMultiplier(2)
    ->Range(8, 1 << 16)
    ->Arg(1000)
    ->UseManualTime();

#endif  // VEK_BENCH_FFTW
