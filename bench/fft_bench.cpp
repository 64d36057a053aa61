// Complex FFT beside FFTW (FFTW_MEASURE plans), in place, forward, one
// thread. Each iteration times a batch of vek transforms and a batch of
// FFTW transforms on the same data, so both see the same machine state.
// The time column is per batch of both; the counters are per transform:
// us, mflops = 5 N log2 N / us, ratio = vek / FFTW.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "vek.h"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"

namespace {

using Clock = std::chrono::steady_clock;

template <class C>
struct Side;

template <>
struct Side<CplxFloat> {
    using R = float;
    static void vek(CplxFloat* x, int order, int flags) { vekcFft(x, order, flags); }
};

template <>
struct Side<CplxDouble> {
    using R = double;
    static void vek(CplxDouble* x, int order, int flags) { vekzFft(x, order, flags); }
};

// pair: vek forward to bit-reversed order then inverse from it, against
// FFTW forward then backward.
template <class C>
void compare(benchmark::State& state, bool pair) {
    using S = Side<C>;
    using F = fftw::Api<typename S::R>;
    const int order = int(state.range(0));
    const int n = 1 << order;
    const int batch = std::max(1, (1 << 17) >> order);
    std::vector<C> src(static_cast<std::size_t>(n));
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> u(-1, 1);
    for (auto& v : src) v = C{decltype(v.re)(u(gen)), decltype(v.re)(u(gen))};

    C* x = static_cast<C*>(vekMalloc(int(sizeof(C)) * n));
    void* f = F::alloc(sizeof(C) * std::size_t(n));
    auto fw = F::dft(n, f, f, FFTW_FORWARD);
    auto bw = F::dft(n, f, f, FFTW_BACKWARD);
    S::vek(nullptr, order, VEK_Init);
    double tv = 0, tf = 0;
    std::size_t count = 0;
    for (auto _ : state) {
        std::memcpy(x, src.data(), sizeof(C) * std::size_t(n));
        std::memcpy(f, src.data(), sizeof(C) * std::size_t(n));
        auto t0 = Clock::now();
        for (int i = 0; i < batch; ++i) {
            if (pair) {
                S::vek(x, order, VEK_Forw | VEK_OutBitRev);
                S::vek(x, order, VEK_Inv | VEK_InBitRev);
            } else {
                S::vek(x, order, VEK_Forw);
            }
        }
        auto t1 = Clock::now();
        for (int i = 0; i < batch; ++i) {
            F::exec(fw);
            if (pair) F::exec(bw);
        }
        auto t2 = Clock::now();
        benchmark::ClobberMemory();
        tv += std::chrono::duration<double>(t1 - t0).count();
        tf += std::chrono::duration<double>(t2 - t1).count();
        count += std::size_t(batch);
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
    }
    const double perV = tv / double(count) * 1e6, perF = tf / double(count) * 1e6;  // us
    const double flops = 5.0 * n * order * (pair ? 2 : 1);
    state.counters["vek_us"] = perV;
    state.counters["fftw_us"] = perF;
    state.counters["vek_mflops"] = flops / perV;
    state.counters["fftw_mflops"] = flops / perF;
    state.counters["ratio"] = perV / perF;
    F::destroy(fw);
    F::destroy(bw);
    F::free(f);
    vekFree(x);
}

void BM_cFft_vs_fftwf(benchmark::State& s) { compare<CplxFloat>(s, false); }
void BM_zFft_vs_fftw(benchmark::State& s) { compare<CplxDouble>(s, false); }
void BM_cFftPair_vs_fftwf(benchmark::State& s) { compare<CplxFloat>(s, true); }
void BM_zFftPair_vs_fftw(benchmark::State& s) { compare<CplxDouble>(s, true); }

}  // namespace

BENCHMARK(BM_cFft_vs_fftwf)->DenseRange(4, 20)->UseManualTime();
BENCHMARK(BM_zFft_vs_fftw)->DenseRange(4, 20)->UseManualTime();
BENCHMARK(BM_cFftPair_vs_fftwf)->DenseRange(4, 20, 2)->UseManualTime();
BENCHMARK(BM_zFftPair_vs_fftw)->DenseRange(4, 20, 2)->UseManualTime();

#endif  // VEK_BENCH_FFTW
