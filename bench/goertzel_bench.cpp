// Goertzel block detectors beside the recurrence as a user writes it (a
// plain loop in the data's precision, goertzel_native.cpp) and beside the
// FFT bin (FFTW's real transform of the block, out of place, for real data;
// its complex transform for complex data), the sides taking turns
// (twin.hpp). Each call runs one block from reset states, at relative
// frequency 0.1 (a whole bin at both lengths). Counters per block: vek_us,
// plain_us, fftbin_us, vs_plain = vek / plain loop, vs_fftbin = vek / FFT
// bin, and bin_reldiff: how far the magnitudes of vek's output and of the
// FFT bin lie apart, relative to the bin.
#include <cmath>

#include "plain.hpp"
#include "twin.hpp"

#ifdef VEK_BENCH_FFTW
#include "fftw.hpp"
#endif

namespace {

constexpr double kFreq = 0.1;

template <class T>
struct Side;

template <>
struct Side<float> {
    using Out = CplxFloat;
    static void init(GoertzState* st) { veksGoertzInit(float(kFreq), st); }
    static Out vek(GoertzState* st, const float* x, int n) {
        veksGoertzReset(st);
        return veksbGoertz(st, x, n);
    }
    static Out plain(const GoertzState& st, const float* x, int n) {
        return plain::goertzel(x, n, st.s.cos, st.s.sin);
    }
};

template <>
struct Side<CplxDouble> {
    using Out = CplxDouble;
    static void init(GoertzState* st) { vekzGoertzInit(kFreq, st); }
    static Out vek(GoertzState* st, const CplxDouble* x, int n) {
        vekzGoertzReset(st);
        return vekzbGoertz(st, x, n);
    }
    static Out plain(const GoertzState& st, const CplxDouble* x, int n) {
        return plain::goertzel(x, n, st.z.cos, st.z.sin);
    }
};

// 16-bit samples with an automatic factor; the plain loop narrows its two
// outputs the same way.
template <>
struct Side<short> {
    using Out = CplxShort;
    static void init(GoertzState* st) { vekwGoertzInit(float(kFreq), st); }
    static Out vek(GoertzState* st, const short* x, int n) {
        int factor = 0;
        vekwGoertzReset(st);
        return vekwbGoertz(st, x, n, VEK_AUTO_SCALE, &factor);
    }
    static Out plain(const GoertzState& st, const short* x, int n) {
        const CplxFloat y = plain::goertzel(x, n, st.s.cos, st.s.sin);
        Out out;
        benchmark::DoNotOptimize(plain::narrow_auto(&y.re, &out.re, 2));
        return out;
    }
};

#ifdef VEK_BENCH_FFTW
double magnitude(CplxFloat v) { return std::hypot(double(v.re), double(v.im)); }
double magnitude(CplxDouble v) { return std::hypot(v.re, v.im); }
#endif

template <class T>
void compare(benchmark::State& state) {
    using S = Side<T>;
    const int n = int(state.range(0));
    const double amplitude = std::is_same_v<T, short> ? 30000 : 1;
    const auto x = twin::uniform<T>(n, -amplitude, amplitude);
    GoertzState st;
    S::init(&st);
    typename S::Out yv{}, yp{};
    auto vek = [&] { yv = S::vek(&st, x.data(), n); };
    auto loop = [&] { yp = S::plain(st, x.data(), n); };
    const twin::Batch b{std::max(1, 100000 / n)};
#ifdef VEK_BENCH_FFTW
    // The bin, for a user who has FFTW at hand: real data through the
    // real transform (16-bit data converted to float first), complex data
    // through the complex one.
    constexpr bool kComplex = std::is_same_v<T, CplxDouble>;
    using R = std::conditional_t<kComplex, double, float>;
    using F = fftw::Api<R>;
    using Bin = std::conditional_t<kComplex, CplxDouble, CplxFloat>;
    fftw::Buf<R> in(kComplex ? 2 * n : n);
    fftw::Buf<Bin> out(kComplex ? n : n / 2 + 1);
    typename F::Plan plan;
    if constexpr (kComplex)
        plan = F::dft(n, in.data(), out.data(), FFTW_FORWARD);
    else
        plan = F::r2c(n, in.data(), out.data());
    if constexpr (!std::is_same_v<T, short>)
        std::memcpy(static_cast<void*>(in.data()), x.data(), sizeof(T) * std::size_t(n));
    const int k = int(std::lround(kFreq * n));
    Bin yf{};
    auto fftbin = [&] {
        if constexpr (std::is_same_v<T, short>) plain::short_to_float(x.data(), in.data(), n);
        F::exec(plan);
        yf = out[k];
    };
    const auto t = twin::race(state, b, vek, loop, fftbin);
    state.counters["fftbin_us"] = 1e6 * t[2];
    state.counters["vs_fftbin"] = t[0] / t[2];
    if constexpr (!std::is_same_v<T, short>)
        state.counters["bin_reldiff"] = std::fabs(magnitude(yv) - magnitude(yf)) / magnitude(yf);
    F::destroy(plan);
#else
    const auto t = twin::race(state, b, vek, loop);
#endif
    benchmark::DoNotOptimize(yv);
    benchmark::DoNotOptimize(yp);
    state.counters["vek_us"] = 1e6 * t[0];
    state.counters["plain_us"] = 1e6 * t[1];
    state.counters["vs_plain"] = t[0] / t[1];
}

void BM_veksbGoertz(benchmark::State& s) { compare<float>(s); }
void BM_vekzbGoertz(benchmark::State& s) { compare<CplxDouble>(s); }
void BM_vekwbGoertz(benchmark::State& s) { compare<short>(s); }

}  // namespace

TWIN_BENCHMARK(BM_veksbGoertz, {1000, 1000000});
TWIN_BENCHMARK(BM_vekzbGoertz, {1000, 1000000});
TWIN_BENCHMARK(BM_vekwbGoertz, {1000, 1000000});
