// Dot products beside plain loops that sum in index order.
#include "native.hpp"
#include "twin.hpp"

namespace {

void BM_veksDotProd(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<float>(n, -1, 1, 1), b = twin::uniform<float>(n, -1, 1, 2);
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(veksDotProd(a.data(), b.data(), n)); },
        [&] { benchmark::DoNotOptimize(native::dot_float(a.data(), b.data(), n)); });
}
TWIN_SIZES(BM_veksDotProd);

void BM_vekcDotProd(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<float>(2 * n, -1, 1, 1), b = twin::uniform<float>(2 * n, -1, 1, 2);
    const auto* ca = reinterpret_cast<const CplxFloat*>(a.data());
    const auto* cb = reinterpret_cast<const CplxFloat*>(b.data());
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(vekcDotProd(ca, cb, n)); },
        [&] { benchmark::DoNotOptimize(native::dot_cplx(ca, cb, n)); });
}
TWIN_SIZES(BM_vekcDotProd);

// Wrapping 32-bit sum, low 16 bits kept.
void BM_vekwDotProd(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<short>(n, -32768, 32767, 1);
    const auto b = twin::uniform<short>(n, -32768, 32767, 2);
    twin::run(
        state, n,
        [&] {
            benchmark::DoNotOptimize(vekwDotProd(a.data(), b.data(), n, VEK_NO_SCALE, nullptr));
        },
        [&] { benchmark::DoNotOptimize(native::dot_short(a.data(), b.data(), n)); });
}
TWIN_SIZES(BM_vekwDotProd);

}  // namespace
