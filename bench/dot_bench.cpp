// Dot products beside plain loops that sum in index order.
#include "plain.hpp"
#include "twin.hpp"

namespace {

void BM_veksDotProd(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<float>(n, -1, 1, 1), b = twin::uniform<float>(n, -1, 1, 2);
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(veksDotProd(a.data(), b.data(), n)); },
        [&] { benchmark::DoNotOptimize(plain::dot_float(a.data(), b.data(), n)); });
}
TWIN_BENCHMARK(BM_veksDotProd, {1000, 1000000});

void BM_vekcDotProd(benchmark::State& state) {
    const int n = int(state.range(0));
    const auto a = twin::uniform<CplxFloat>(n, -1, 1, 1);
    const auto b = twin::uniform<CplxFloat>(n, -1, 1, 2);
    twin::run(
        state, n, [&] { benchmark::DoNotOptimize(vekcDotProd(a.data(), b.data(), n)); },
        [&] { benchmark::DoNotOptimize(plain::dot_cplx(a.data(), b.data(), n)); });
}
TWIN_BENCHMARK(BM_vekcDotProd, {1000, 1000000});

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
        [&] { benchmark::DoNotOptimize(plain::dot_short(a.data(), b.data(), n)); });
}
TWIN_BENCHMARK(BM_vekwDotProd, {1000, 1000000});

}  // namespace
