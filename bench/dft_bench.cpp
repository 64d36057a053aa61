// DFT of any length beside FFTW's plan of the same length (FFTW_MEASURE,
// out of place, forward) and, up to a few thousand points, beside the
// direct sum with symmetric pairing (a plain loop, dft_native.cpp), the
// sides taking turns (twin.hpp). The counters are per transform: vek_us,
// fftw_us, direct_us; ratio = vek / FFTW, vs_direct = vek / direct sum.
#include "plain.hpp"
#include "twin.hpp"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"
#endif

namespace {

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
    const twin::Batch b{std::max(1, (1 << 16) / n)};
    // Every side gets buffers of the same alignment: the timings of long
    // transforms depend on it.
    twin::Buf<C> x = twin::uniform<C>(n, -1, 1), y(n), work(n);
    S::vek(nullptr, nullptr, n, VEK_Forw | VEK_Init);
    const C* tbl = S::table(n);
    auto vek = [&] { S::vek(x.data(), y.data(), n, VEK_Forw); };
    auto direct = [&] { plain::dft_direct(x.data(), y.data(), work.data(), tbl, n); };
    double tv, td = 0;
#ifdef VEK_BENCH_FFTW
    double tf;
    using F = fftw::Api<decltype(C::re)>;
    twin::Buf<C> fin(n), fout(n);
    auto plan = F::dft(n, fin.data(), fout.data(), FFTW_FORWARD);
    std::memcpy(fin.data(), x.data(), sizeof(C) * std::size_t(n));
    auto fftw = [&] { F::exec(plan); };
    if (n <= kDirectMax) {
        const auto t = twin::race(state, b, vek, fftw, direct);
        tv = t[0], tf = t[1], td = t[2];
    } else {
        const auto t = twin::race(state, b, vek, fftw);
        tv = t[0], tf = t[1];
    }
    state.counters["fftw_us"] = 1e6 * tf;
    state.counters["ratio"] = tv / tf;
    F::destroy(plan);
#else
    if (n <= kDirectMax) {
        const auto t = twin::race(state, b, vek, direct);
        tv = t[0], td = t[1];
    } else {
        tv = twin::race(state, b, vek)[0];
    }
#endif
    state.counters["vek_us"] = 1e6 * tv;
    if (n <= kDirectMax) {
        state.counters["direct_us"] = 1e6 * td;
        state.counters["vs_direct"] = tv / td;
    }
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
