// The 16-bit conversions that every 16-bit transform goes through.
#include "native.hpp"
#include "twin.hpp"

namespace {

// Samples of a loud 16-bit signal: a tenth of them beyond the range.
void BM_veksbFloatToInt16_Near_Saturate(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<float>(n, -36000, 36000);
    std::vector<short> dst(static_cast<size_t>(n));
    twin::run(
        state, n,
        [&] { veksbFloatToInt(src.data(), dst.data(), n, 16, VEK_RndNear | VEK_CvtSaturate); },
        [&] { native::float_to_short_sat(src.data(), dst.data(), n); });
}
TWIN_SIZES(BM_veksbFloatToInt16_Near_Saturate);

// In-range samples.
void BM_veksbFloatToInt16_Near(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<float>(n, -32768, 32767);
    std::vector<short> dst(static_cast<size_t>(n));
    twin::run(
        state, n, [&] { veksbFloatToInt(src.data(), dst.data(), n, 16, VEK_RndNear); },
        [&] { native::float_to_short(src.data(), dst.data(), n); });
}
TWIN_SIZES(BM_veksbFloatToInt16_Near);

void BM_veksbIntToFloat16(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto src = twin::uniform<short>(n, -32768, 32767);
    std::vector<float> dst(static_cast<size_t>(n));
    twin::run(
        state, n, [&] { veksbIntToFloat(src.data(), dst.data(), n, 16, 0); },
        [&] { native::short_to_float(src.data(), dst.data(), n); });
}
TWIN_SIZES(BM_veksbIntToFloat16);

}  // namespace
