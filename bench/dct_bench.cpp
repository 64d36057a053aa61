// Forward DCT beside FFTW's REDFT10 (FFTW_MEASURE), single precision, one
// thread, not in place, vek and FFTW taking turns (twin.hpp). FFTW's
// output is unnormalised (2 sum x cos); the scaling to the orthonormal
// transform is applied once after the timing, to check that both agree.
// Counters per transform: vek_us, fftw_us, ratio = vek / FFTW, maxdiff =
// largest difference of the scaled outputs.
#include "twin.hpp"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"

namespace {

void BM_sDct_vs_fftwf_redft10(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto x = twin::uniform<float>(n, -1, 1);
    twin::Buf<float> y(n);
    fftw::Buf<float> fin(n), fout(n);
    fftwf_plan plan = fftwf_plan_r2r_1d(n, fin.data(), fout.data(), FFTW_REDFT10, FFTW_MEASURE);
    std::memcpy(fin.data(), x.data(), sizeof(float) * std::size_t(n));
    veksDct(x.data(), y.data(), n, VEK_Forw);  // tables built ahead
    const auto t = twin::race(
        state, twin::Batch{std::max(1, (1 << 17) / n)},
        [&] { veksDct(x.data(), y.data(), n, VEK_Forw); }, [&] { fftwf_execute(plan); });
    double maxdiff = 0;
    for (int i = 0; i < n; ++i) {
        const double s = std::sqrt((i ? 0.5 : 0.25) / n);
        maxdiff = std::max(maxdiff, std::fabs(fout[i] * s - y[i]));
    }
    state.counters["vek_us"] = 1e6 * t[0];
    state.counters["fftw_us"] = 1e6 * t[1];
    state.counters["ratio"] = t[0] / t[1];
    state.counters["maxdiff"] = maxdiff;
    fftwf_destroy_plan(plan);
}

}  // namespace

BENCHMARK(BM_sDct_vs_fftwf_redft10)
    ->RangeMultiplier(2)
    ->Range(8, 1 << 16)
    ->Arg(1000)
    ->UseManualTime();

#endif  // VEK_BENCH_FFTW
