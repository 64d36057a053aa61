// Element-wise arithmetic beside plain loops compiled with -O3
// -march=native (arith_native.cpp) and a memcpy of the destination's bytes.
//
// Each iteration runs vek and the plain loop (taking turns at going first)
// and the memcpy, each batch long enough to time, so that all three see the
// same machine state. vek and the plain loop share inputs and destination:
// where a destination lies relative to the inputs (4K aliasing) moves
// in-cache timings by 10% and more, and must not favour either side. The reported time is vek's per
// call; the counters give the plain loop's and memcpy's per call and the ratio vek / plain.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <random>

#include "arith_plain.hpp"
#include "vek.h"

namespace {

using Clock = std::chrono::steady_clock;

// A buffer from vekMalloc (32-byte aligned, as callers get them).
template <class T>
struct Buf {
    T* p;
    explicit Buf(int n) : p(static_cast<T*>(vekMalloc(int(sizeof(T)) * n))) {}
    ~Buf() { vekFree(p); }
    Buf(const Buf&) = delete;
    Buf& operator=(const Buf&) = delete;
};

template <class Vek, class Plain>
void side_by_side(benchmark::State& state, int n, size_t bytes, Vek vek, Plain plain) {
    // Enough calls per batch that each batch takes some 20 microseconds.
    const int batch = n >= 20000 ? 1 : 20000 / n;
    Buf<char> from{static_cast<int>(bytes)}, to{static_cast<int>(bytes)};
    std::memset(from.p, 1, bytes);
    auto timed = [batch](auto&& f) {
        const auto t0 = Clock::now();
        for (int k = 0; k < batch; ++k) f();
        return std::chrono::duration<double>(Clock::now() - t0).count() / batch;
    };
    double t_vek = 0, t_plain = 0, t_copy = 0;
    bool vek_first = true;
    for (auto _ : state) {
        // Whoever runs second finds the shared inputs in cache: take turns.
        double v, p;
        if (vek_first) {
            v = timed(vek);
            p = timed(plain);
        } else {
            p = timed(plain);
            v = timed(vek);
        }
        vek_first = !vek_first;
        t_copy += timed([&] {
            std::memcpy(to.p, from.p, bytes);
            benchmark::ClobberMemory();
        });
        t_vek += v;
        t_plain += p;
        state.SetIterationTime(v);
    }
    const double iters = double(state.iterations());
    state.counters["plain_ns"] = 1e9 * t_plain / iters;
    state.counters["memcpy_ns"] = 1e9 * t_copy / iters;
    state.counters["vek/plain"] = t_vek / t_plain;
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
}

template <class T>
void fill(T* p, int n, unsigned seed, double lo, double hi) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(lo, hi);
    for (int i = 0; i < n; ++i) p[i] = T(u(gen));
}

void fill_short(short* p, int n, unsigned seed, int span) {
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> u(-span, span);
    for (int i = 0; i < n; ++i) p[i] = short(u(gen));
}

void BM_veksbAdd3(benchmark::State& state) {
    const int n = int(state.range(0));
    Buf<float> a(n), b(n), d(n);
    fill(a.p, n, 1, -1, 1);
    fill(b.p, n, 2, -1, 1);
    side_by_side(
        state, n, sizeof(float) * size_t(n), [&] { veksbAdd3(a.p, b.p, d.p, n); },
        [&] { plain::s_add3(a.p, b.p, d.p, n); });
}

// dst *= src with src = +-1, so that repeated calls keep the values.
void BM_veksbMpy2(benchmark::State& state) {
    const int n = int(state.range(0));
    Buf<float> s(n), d(n);
    fill(s.p, n, 3, -1, 1);
    for (int i = 0; i < n; ++i) s.p[i] = s.p[i] < 0 ? -1.0f : 1.0f;
    fill(d.p, n, 4, -1, 1);
    side_by_side(
        state, n, sizeof(float) * size_t(n), [&] { veksbMpy2(s.p, d.p, n); },
        [&] { plain::s_mpy2(s.p, d.p, n); });
}

void BM_vekcbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    Buf<CplxFloat> a(n), b(n), d(n);
    fill(reinterpret_cast<float*>(a.p), 2 * n, 5, -1, 1);
    fill(reinterpret_cast<float*>(b.p), 2 * n, 6, -1, 1);
    side_by_side(
        state, n, sizeof(CplxFloat) * size_t(n), [&] { vekcbMpy3(a.p, b.p, d.p, n); },
        [&] { plain::c_mpy3(a.p, b.p, d.p, n); });
}

void BM_vekzbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    Buf<CplxDouble> a(n), b(n), d(n);
    fill(reinterpret_cast<double*>(a.p), 2 * n, 7, -1, 1);
    fill(reinterpret_cast<double*>(b.p), 2 * n, 8, -1, 1);
    side_by_side(
        state, n, sizeof(CplxDouble) * size_t(n), [&] { vekzbMpy3(a.p, b.p, d.p, n); },
        [&] { plain::z_mpy3(a.p, b.p, d.p, n); });
}

void BM_vekdbSqrt2(benchmark::State& state) {
    const int n = int(state.range(0));
    Buf<double> s(n), d(n);
    fill(s.p, n, 9, 0, 1000);
    side_by_side(
        state, n, sizeof(double) * size_t(n), [&] { vekdbSqrt2(s.p, d.p, n); },
        [&] { benchmark::DoNotOptimize(plain::d_sqrt2(s.p, d.p, n)); });
}

// Sums that never overflow: mode 4 takes its single pass.
void BM_vekwbAdd3(benchmark::State& state) {
    const int n = int(state.range(0));
    const int mode = int(state.range(1));
    Buf<short> a(n), b(n), d(n);
    fill_short(a.p, n, 10, 16000);
    fill_short(b.p, n, 11, 16000);
    int factor = 0;
    side_by_side(
        state, n, sizeof(short) * size_t(n), [&] { vekwbAdd3(a.p, b.p, d.p, n, mode, &factor); },
        [&] {
            if (mode == VEK_NO_SCALE)
                plain::w_add3_wrap(a.p, b.p, d.p, n);
            else if (mode == VEK_SATURATE)
                plain::w_add3_sat(a.p, b.p, d.p, n);
            else
                benchmark::DoNotOptimize(plain::w_add3_auto(a.p, b.p, d.p, n));
        });
}

// Full-range data: the saturating form clamps often.
void BM_vekvbMpy3(benchmark::State& state) {
    const int n = int(state.range(0));
    const int mode = int(state.range(1));
    Buf<CplxShort> a(n), b(n), d(n);
    fill_short(reinterpret_cast<short*>(a.p), 2 * n, 12, 32767);
    fill_short(reinterpret_cast<short*>(b.p), 2 * n, 13, 32767);
    int factor = 0;
    side_by_side(
        state, n, sizeof(CplxShort) * size_t(n),
        [&] { vekvbMpy3(a.p, b.p, d.p, n, mode, &factor); },
        [&] {
            if (mode == VEK_NO_SCALE)
                plain::v_mpy3_wrap(a.p, b.p, d.p, n);
            else
                plain::v_mpy3_sat(a.p, b.p, d.p, n);
        });
}

void sizes(benchmark::internal::Benchmark* b) {
    for (int n : {1000, 64000, 4000000}) b->Arg(n);
}
void sizes_and_modes(benchmark::internal::Benchmark* b, std::initializer_list<int> modes) {
    for (int mode : modes)
        for (int n : {1000, 64000, 4000000}) b->Args({n, mode});
}

BENCHMARK(BM_veksbAdd3)->Apply(sizes)->UseManualTime();
BENCHMARK(BM_veksbMpy2)->Apply(sizes)->UseManualTime();
BENCHMARK(BM_vekcbMpy3)->Apply(sizes)->UseManualTime();
BENCHMARK(BM_vekzbMpy3)->Apply(sizes)->UseManualTime();
BENCHMARK(BM_vekdbSqrt2)->Apply(sizes)->UseManualTime();
BENCHMARK(BM_vekwbAdd3)
    ->Apply([](benchmark::internal::Benchmark* b) {
        sizes_and_modes(b, {0, 1, 4});
    })
    ->UseManualTime();
BENCHMARK(BM_vekvbMpy3)
    ->Apply([](benchmark::internal::Benchmark* b) {
        sizes_and_modes(b, {0, 1});
    })
    ->UseManualTime();

}  // namespace
