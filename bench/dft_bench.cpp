// DFT of any length beside FFTW's plan of the same length (FFTW_MEASURE,
// out of place, forward) and, up to a few thousand points, beside the
// direct sum with symmetric pairing (a plain loop, dft_native.cpp).
//
// Each iteration times a batch of vek transforms, a batch of FFTW's and a
// batch of direct sums on the same data, so all see the same machine
// state. The counters are per transform: vek_us, fftw_us, direct_us;
// ratio = vek / FFTW, vs_direct = vek / direct sum.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>

#include "plain.hpp"
#include "vek.h"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"
#endif

namespace {

using Clock = std::chrono::steady_clock;

// Direct sums beyond this many points take too long to be worth timing.
constexpr int kDirectMax = 4099;

template <class C>
struct Side;

template <>
struct Side<CplxFloat> {
    static void vek(const CplxFloat* x, CplxFloat* y, int n, int flags) { vekcDft(x, y, n, flags); }
    static const CplxFloat* table(int n) { return vekcGetDftTwdTbl(n); }
};

template <>
struct Side<CplxDouble> {
    static void vek(const CplxDouble* x, CplxDouble* y, int n, int flags) {
        vekzDft(x, y, n, flags);
    }
    static const CplxDouble* table(int n) { return vekzGetDftTwdTbl(n); }
};

template <class C>
void compare(benchmark::State& state) {
    using S = Side<C>;
    const int n = int(state.range(0));
    const std::size_t size = std::size_t(n);
    const int batch = std::max(1, (1 << 16) / n);
    // Every side gets buffers of the same alignment: the timings of long
    // transforms depend on it.
    auto alloc = [size] { return static_cast<C*>(vekMalloc(int(size * sizeof(C)))); };
    C *x = alloc(), *y = alloc(), *work = alloc();
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> u(-1, 1);
    for (std::size_t i = 0; i < size; ++i)
        x[i] = C{decltype(x->re)(u(gen)), decltype(x->re)(u(gen))};
    S::vek(nullptr, nullptr, n, VEK_Forw | VEK_Init);
    const C* tbl = S::table(n);
    const bool direct = n <= kDirectMax;
#ifdef VEK_BENCH_FFTW
    using F = fftw::Api<decltype(C::re)>;
    C *fin = alloc(), *fout = alloc();
    auto plan = F::dft(n, fin, fout, FFTW_FORWARD);
    std::memcpy(fin, x, size * sizeof(C));
#endif
    double tv = 0, tf = 0, td = 0;
    std::size_t count = 0;
    for (auto _ : state) {
        const auto t0 = Clock::now();
        for (int i = 0; i < batch; ++i) S::vek(x, y, n, VEK_Forw);
        const auto t1 = Clock::now();
#ifdef VEK_BENCH_FFTW
        for (int i = 0; i < batch; ++i) F::exec(plan);
#endif
        const auto t2 = Clock::now();
        if (direct)
            for (int i = 0; i < batch; ++i) plain::dft_direct(x, y, work, tbl, n);
        const auto t3 = Clock::now();
        benchmark::ClobberMemory();
        tv += std::chrono::duration<double>(t1 - t0).count();
        tf += std::chrono::duration<double>(t2 - t1).count();
        td += std::chrono::duration<double>(t3 - t2).count();
        count += std::size_t(batch);
        state.SetIterationTime(std::chrono::duration<double>(t3 - t0).count());
    }
    const double perV = tv / double(count) * 1e6;
    state.counters["vek_us"] = perV;
#ifdef VEK_BENCH_FFTW
    const double perF = tf / double(count) * 1e6;
    state.counters["fftw_us"] = perF;
    state.counters["ratio"] = perV / perF;
    F::destroy(plan);
    vekFree(fin);
    vekFree(fout);
#endif
    if (direct) {
        const double perD = td / double(count) * 1e6;
        state.counters["direct_us"] = perD;
        state.counters["vs_direct"] = perV / perD;
    }
    vekFree(x);
    vekFree(y);
    vekFree(work);
}

void BM_cDft(benchmark::State& s) { compare<CplxFloat>(s); }
void BM_zDft(benchmark::State& s) { compare<CplxDouble>(s); }

// The lengths of the targets (60, 1000, 4099), smooth ones, powers of two,
// primes handled by a generic radix and by Bluestein, and long ones.
void lengths(benchmark::internal::Benchmark* b) {
    for (int n : {12, 60, 100, 480, 1000, 1024, 1536, 3000, 4099, 10007, 65536, 65537}) b->Arg(n);
}

}  // namespace

BENCHMARK(BM_cDft)->Apply(lengths)->UseManualTime();
BENCHMARK(BM_zDft)->Apply(lengths)->UseManualTime();
