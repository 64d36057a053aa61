// Complex FFT beside FFTW (FFTW_MEASURE plans), in place, one thread, vek
// and FFTW taking turns (twin.hpp). Single: forward transforms. Pair: vek
// forward to bit-reversed order and back, against FFTW forward and
// backward. Counters per transform (pair: per pair): vek_us, fftw_us,
// ratio = vek / FFTW, and mflops = 5 N log2 N / us for each.
//
// Repeated forward transforms of one buffer grow its values up to N-fold
// each, so the input is restored before every batch (untimed) and a batch
// stays short enough that no value comes near overflow.
#include "twin.hpp"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"

namespace {

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

template <class C>
void compare(benchmark::State& state, bool pair) {
    using S = Side<C>;
    using R = typename S::R;
    using F = fftw::Api<R>;
    const int order = int(state.range(0));
    const int n = 1 << order;
    const std::size_t bytes = sizeof(C) * std::size_t(n);
    const auto src = twin::uniform<C>(n, -1, 1);

    twin::Buf<C> x(n);
    fftw::Buf<C> f(n);
    auto fw = F::dft(n, f.data(), f.data(), FFTW_FORWARD);
    auto bw = F::dft(n, f.data(), f.data(), FFTW_BACKWARD);
    S::vek(nullptr, order, VEK_Init);
    // vek's pair restores its input; FFTW's grows it N-fold.
    const twin::Batch b = twin::bounded<R>(order, std::max(1, (1 << 17) >> order));
    const auto t =
        twin::race(state, b,
                   twin::prepared([&] { std::memcpy(x.data(), src.data(), bytes); },
                                  [&] {
                                      if (pair) {
                                          S::vek(x.data(), order, VEK_Forw | VEK_OutBitRev);
                                          S::vek(x.data(), order, VEK_Inv | VEK_InBitRev);
                                      } else {
                                          S::vek(x.data(), order, VEK_Forw);
                                      }
                                  }),
                   twin::prepared([&] { std::memcpy(f.data(), src.data(), bytes); },
                                  [&] {
                                      F::exec(fw);
                                      if (pair) F::exec(bw);
                                  }));
    if (!twin::finite(&x[0].re, 2 * std::size_t(n)) || !twin::finite(&f[0].re, 2 * std::size_t(n)))
        state.SkipWithError("values beyond the range");
    const double flops = 5.0 * n * order * (pair ? 2 : 1);
    state.counters["vek_us"] = 1e6 * t[0];
    state.counters["fftw_us"] = 1e6 * t[1];
    state.counters["vek_mflops"] = 1e-6 * flops / t[0];
    state.counters["fftw_mflops"] = 1e-6 * flops / t[1];
    state.counters["ratio"] = t[0] / t[1];
    F::destroy(fw);
    F::destroy(bw);
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
