// The 16-bit narrowing under the scale modes, through the 16-bit complex
// FFT: beside it, the same steps with plain loops around the float FFT.
#include "plain.hpp"
#include "twin.hpp"

namespace {

constexpr int kFixedFactor = 2;

// Order and scale mode (fixed, fixed saturating, auto: the block
// narrowing) in the arguments. Random samples of amplitude 1000. Both
// sides run vek's float FFT; they differ in the conversions around it.
void BM_vekvFftNip(benchmark::State& state) {
    const int order = int(state.range(0));
    const int mode = int(state.range(1));
    const int n = 1 << order;
    const auto in = twin::uniform<CplxShort>(n, -1000, 1000);
    twin::Buf<CplxShort> out(n);
    twin::Buf<float> work(2 * n);
    vekvFft(nullptr, order, VEK_Init, 0, nullptr);
    int factor = kFixedFactor;
    twin::run(
        state, n,
        [&] {
            factor = kFixedFactor;
            vekvFftNip(in.data(), out.data(), order, VEK_Forw, mode, &factor);
        },
        [&] {
            plain::short_to_float(&in.data()->re, work.data(), 2 * n);
            vekcFft(reinterpret_cast<CplxFloat*>(work.data()), order, VEK_Forw);
            if (mode == VEK_AUTO_SCALE)
                benchmark::DoNotOptimize(plain::narrow_auto(work.data(), &out[0].re, 2 * n));
            else
                plain::narrow_fixed(work.data(), &out[0].re, 2 * n, kFixedFactor,
                                    (mode & VEK_SATURATE) != 0);
        });
}
TWIN_BENCHMARK(BM_vekvFftNip, {10, 20}, {2, 3, 4});

}  // namespace
