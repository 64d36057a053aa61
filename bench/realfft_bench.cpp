// Real FFT beside FFTW's r2c (FFTW_MEASURE plans), in place, forward, one
// thread, vek and FFTW taking turns (twin.hpp): veksRealFftl /
// vekdRealFftl with VEK_Forw | VEK_OutRCPack against fftwf_plan_dft_r2c_1d
// / fftw_plan_dft_r2c_1d. The input is restored before every batch, and a
// batch stays short enough that no value comes near overflow. Counters per
// transform: vek_us, fftw_us, vek_mflops = 2.5 N log2 N / us, ratio = vek /
// FFTW.
#include "twin.hpp"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"

namespace {

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
    const std::size_t bytes = sizeof(R) * std::size_t(n);
    const auto src = twin::uniform<R>(n, -1, 1);

    twin::Buf<R> x(n);
    fftw::Buf<R> f(n + 2);
    auto plan = F::r2c(n, f.data());
    const int flags = VEK_Forw | VEK_OutRCPack;
    S::vek(nullptr, order, VEK_Init);
    const auto t = twin::race(
        state, twin::bounded<R>(order, std::max(1, (1 << 18) >> order)),
        twin::prepared([&] { std::memcpy(x.data(), src.data(), bytes); },
                       [&] { S::vek(x.data(), order, flags); }),
        twin::prepared([&] { std::memcpy(f.data(), src.data(), bytes); }, [&] { F::exec(plan); }));
    if (!twin::finite(x.data(), std::size_t(n)) || !twin::finite(f.data(), std::size_t(n) + 2))
        state.SkipWithError("values beyond the range");
    const double flops = 2.5 * n * order;
    state.counters["vek_us"] = 1e6 * t[0];
    state.counters["fftw_us"] = 1e6 * t[1];
    state.counters["vek_mflops"] = 1e-6 * flops / t[0];
    state.counters["ratio"] = t[0] / t[1];
    F::destroy(plan);
}

void BM_sRealFftl_vs_fftwf_r2c(benchmark::State& s) { compare<float>(s); }
void BM_dRealFftl_vs_fftw_r2c(benchmark::State& s) { compare<double>(s); }

}  // namespace

BENCHMARK(BM_sRealFftl_vs_fftwf_r2c)->DenseRange(4, 20)->UseManualTime();
BENCHMARK(BM_dRealFftl_vs_fftw_r2c)->DenseRange(4, 20)->UseManualTime();

#endif  // VEK_BENCH_FFTW
