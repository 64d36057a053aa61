// The 16-bit conversions that every 16-bit transform goes through.
#include "plain.hpp"
#include "twin.hpp"

namespace {

// Samples of a loud 16-bit signal: a tenth of them beyond the range.
void BM_veksbFloatToInt16_Near_Saturate(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<float>(n, -36000, 36000);
    twin::Buf<short> dst(n);
    twin::run(
        state, n,
        [&] { veksbFloatToInt(src.data(), dst.data(), n, 16, VEK_RndNear | VEK_CvtSaturate); },
        [&] { plain::float_to_short_sat(src.data(), dst.data(), n); });
}
TWIN_BENCHMARK(BM_veksbFloatToInt16_Near_Saturate, {1000, 1000000});

// In-range samples.
void BM_veksbFloatToInt16_Near(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<float>(n, -32768, 32767);
    twin::Buf<short> dst(n);
    twin::run(
        state, n, [&] { veksbFloatToInt(src.data(), dst.data(), n, 16, VEK_RndNear); },
        [&] { plain::float_to_short(src.data(), dst.data(), n); });
}
TWIN_BENCHMARK(BM_veksbFloatToInt16_Near, {1000, 1000000});

void BM_veksbIntToFloat16(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<short>(n, -32768, 32767);
    twin::Buf<float> dst(n);
    twin::run(
        state, n, [&] { veksbIntToFloat(src.data(), dst.data(), n, 16, 0); },
        [&] { plain::short_to_float(src.data(), dst.data(), n); });
}
TWIN_BENCHMARK(BM_veksbIntToFloat16, {1000, 1000000});

}  // namespace
