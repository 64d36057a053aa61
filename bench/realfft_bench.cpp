// Real FFT beside FFTW's r2c (FFTW_MEASURE plans), in place, forward, one
// thread: veksRealFftl / vekdRealFftl with VEK_Forw | VEK_OutRCPack against
// fftwf_plan_dft_r2c_1d / fftw_plan_dft_r2c_1d. Each iteration times a batch
// of vek transforms and a batch of FFTW transforms on the same data, so both
// see the same machine state. Counters per transform: us, mflops =
// 2.5 N log2 N / us, ratio = vek / FFTW.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <vector>

#include "vek.h"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"

namespace {

using Clock = std::chrono::steady_clock;

template <class R>
struct Side;

template <>
struct Side<float> {
    static void vek(float* x, int order, int flags) { veksRealFftl(x, order, flags); }
};

template <>
struct Side<double> {
    static void vek(double* x, int order, int flags) { vekdRealFftl(x, order, flags); }
};

template <class R>
void compare(benchmark::State& state) {
    using S = Side<R>;
    using F = fftw::Api<R>;
    const int order = int(state.range(0));
    const int n = 1 << order;
    const int batch = std::max(1, (1 << 18) >> order);
    std::vector<R> src(static_cast<std::size_t>(n));
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> u(-1, 1);
    for (auto& v : src) v = R(u(gen));

    R* x = static_cast<R*>(vekMalloc(int(sizeof(R)) * n));
    void* f = F::alloc(sizeof(R) * std::size_t(n + 2));
    auto plan = F::r2c(n, f);
    const int flags = VEK_Forw | VEK_OutRCPack;
    S::vek(nullptr, order, VEK_Init);
    double tv = 0, tf = 0;
    std::size_t count = 0;
    for (auto _ : state) {
        std::memcpy(x, src.data(), sizeof(R) * std::size_t(n));
        std::memcpy(f, src.data(), sizeof(R) * std::size_t(n));
        auto t0 = Clock::now();
        for (int i = 0; i < batch; ++i) S::vek(x, order, flags);
        auto t1 = Clock::now();
        for (int i = 0; i < batch; ++i) F::exec(plan);
        auto t2 = Clock::now();
        benchmark::ClobberMemory();
        tv += std::chrono::duration<double>(t1 - t0).count();
        tf += std::chrono::duration<double>(t2 - t1).count();
        count += std::size_t(batch);
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
    }
    const double perV = tv / double(count) * 1e6, perF = tf / double(count) * 1e6;  // us
    const double flops = 2.5 * n * order;
    state.counters["vek_us"] = perV;
    state.counters["fftw_us"] = perF;
    state.counters["vek_mflops"] = flops / perV;
    state.counters["ratio"] = perV / perF;
    F::destroy(plan);
    F::free(f);
    vekFree(x);
}

void BM_sRealFftl_vs_fftwf_r2c(benchmark::State& s) { compare<float>(s); }
void BM_dRealFftl_vs_fftw_r2c(benchmark::State& s) { compare<double>(s); }

}  // namespace

BENCHMARK(BM_sRealFftl_vs_fftwf_r2c)->DenseRange(4, 20)->UseManualTime();
BENCHMARK(BM_dRealFftl_vs_fftw_r2c)->DenseRange(4, 20)->UseManualTime();

#endif  // VEK_BENCH_FFTW
