// Element-wise arithmetic beside plain loops, and a memcpy of the
// destination's bytes.
#include "plain.hpp"
#include "twin.hpp"

namespace {

template <class T>
std::size_t bytes(int n) {
    return sizeof(T) * std::size_t(n);
}

void BM_veksbAdd3(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<float>(n, -1, 1, 1), b = twin::uniform<float>(n, -1, 1, 2);
    twin::Buf<float> d(n);
    twin::run(
        state, n, [&] { veksbAdd3(a.data(), b.data(), d.data(), n); },
        [&] { plain::s_add3(a.data(), b.data(), d.data(), n); }, bytes<float>(n));
}
TWIN_BENCHMARK(BM_veksbAdd3, {1000, 64000, 4000000});

// dst *= src with src = +-1, so that repeated calls keep the values.
void BM_veksbMpy2(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto s = twin::uniform<float>(n, -1, 1, 3);
    for (int i = 0; i < n; ++i) s[i] = s[i] < 0 ? -1.0f : 1.0f;
    const auto d = twin::uniform<float>(n, -1, 1, 4);
    twin::run(
        state, n, [&] { veksbMpy2(s.data(), d.data(), n); },
        [&] { plain::s_mpy2(s.data(), d.data(), n); }, bytes<float>(n));
}
TWIN_BENCHMARK(BM_veksbMpy2, {1000, 64000, 4000000});

void BM_vekcbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<CplxFloat>(n, -1, 1, 5);
    const auto b = twin::uniform<CplxFloat>(n, -1, 1, 6);
    twin::Buf<CplxFloat> d(n);
    twin::run(
        state, n, [&] { vekcbMpy3(a.data(), b.data(), d.data(), n); },
        [&] { plain::c_mpy3(a.data(), b.data(), d.data(), n); }, bytes<CplxFloat>(n));
}
TWIN_BENCHMARK(BM_vekcbMpy3, {1000, 64000, 4000000});

// dst *= val with |val| = 1, so that repeated calls keep the magnitudes.
void BM_vekcbMpy1(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto d = twin::uniform<CplxFloat>(n, -1, 1, 14);
    const CplxFloat v{0.6f, 0.8f};
    twin::run(
        state, n, [&] { vekcbMpy1(v, d.data(), n); }, [&] { plain::c_mpy1(v, d.data(), n); },
        bytes<CplxFloat>(n));
}
TWIN_BENCHMARK(BM_vekcbMpy1, {1000, 64000, 4000000});

void BM_vekzbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<CplxDouble>(n, -1, 1, 7);
    const auto b = twin::uniform<CplxDouble>(n, -1, 1, 8);
    twin::Buf<CplxDouble> d(n);
    twin::run(
        state, n, [&] { vekzbMpy3(a.data(), b.data(), d.data(), n); },
        [&] { plain::z_mpy3(a.data(), b.data(), d.data(), n); }, bytes<CplxDouble>(n));
}
TWIN_BENCHMARK(BM_vekzbMpy3, {1000, 64000, 4000000});

void BM_vekdbSqrt2(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto s = twin::uniform<double>(n, 0, 1000, 9);
    twin::Buf<double> d(n);
    twin::run(
        state, n, [&] { vekdbSqrt2(s.data(), d.data(), n); },
        [&] { benchmark::DoNotOptimize(plain::d_sqrt2(s.data(), d.data(), n)); }, bytes<double>(n));
}
TWIN_BENCHMARK(BM_vekdbSqrt2, {1000, 64000, 4000000});

// Sums that never overflow: mode 4 takes its single pass.
void BM_vekwbAdd3(benchmark::State& state) {
    const int n = int(state.range(0));
    const int mode = int(state.range(1));
    const auto a = twin::uniform<short>(n, -16000, 16000, 10);
    const auto b = twin::uniform<short>(n, -16000, 16000, 11);
    twin::Buf<short> d(n);
    int factor = 0;
    twin::run(
        state, n, [&] { vekwbAdd3(a.data(), b.data(), d.data(), n, mode, &factor); },
        [&] {
            if (mode == VEK_NO_SCALE)
                plain::w_add3_wrap(a.data(), b.data(), d.data(), n);
            else if (mode == VEK_SATURATE)
                plain::w_add3_sat(a.data(), b.data(), d.data(), n);
            else
                benchmark::DoNotOptimize(plain::w_add3_auto(a.data(), b.data(), d.data(), n));
        },
        bytes<short>(n));
}
TWIN_BENCHMARK(BM_vekwbAdd3, {1000, 64000, 4000000}, {0, 1, 4});

// Full-range data: the saturating form clamps often.
void BM_vekvbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    const int mode = int(state.range(1));
    const auto a = twin::uniform<CplxShort>(n, -32767, 32767, 12);
    const auto b = twin::uniform<CplxShort>(n, -32767, 32767, 13);
    twin::Buf<CplxShort> d(n);
    int factor = 0;
    twin::run(
        state, n, [&] { vekvbMpy3(a.data(), b.data(), d.data(), n, mode, &factor); },
        [&] {
            if (mode == VEK_NO_SCALE)
                plain::v_mpy3_wrap(a.data(), b.data(), d.data(), n);
            else
                plain::v_mpy3_sat(a.data(), b.data(), d.data(), n);
        },
        bytes<CplxShort>(n));
}
TWIN_BENCHMARK(BM_vekvbMpy3, {1000, 64000, 4000000}, {0, 1});

}  // namespace
