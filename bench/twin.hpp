// Benchmarks of a vek export beside a plain loop that computes the same
// thing (the loops live in *_native.cpp files, built -O3 -march=native).
//
// Each benchmark times batches of vek calls and of the twin alternately, so
// both see the same machine state. The time column is the pair's per call;
// `vek_ns` and `loop_ns` split it, and `ratio` is vek / twin (below 1: vek
// is faster).
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

namespace twin {

template <class Vek, class Loop>
void run(benchmark::State& state, int n, Vek vek, Loop loop) {
    using Clock = std::chrono::steady_clock;
    const int reps = std::max(1, 20000 / n);  // batches of at least ~10 microseconds
    double vekSeconds = 0, loopSeconds = 0;
    bool vekFirst = true;
    for (auto _ : state) {
        double t[2];
        for (int k = 0; k < 2; ++k) {
            const bool runVek = (k == 0) == vekFirst;
            const auto start = Clock::now();
            for (int r = 0; r < reps; ++r) {
                if (runVek)
                    vek();
                else
                    loop();
                benchmark::ClobberMemory();
            }
            t[runVek ? 0 : 1] = std::chrono::duration<double>(Clock::now() - start).count();
        }
        vekFirst = !vekFirst;
        vekSeconds += t[0];
        loopSeconds += t[1];
        state.SetIterationTime((t[0] + t[1]) / reps);
    }
    const double calls = double(state.iterations()) * reps;
    state.counters["vek_ns"] = vekSeconds / calls * 1e9;
    state.counters["loop_ns"] = loopSeconds / calls * 1e9;
    state.counters["ratio"] = vekSeconds / loopSeconds;
}

template <class T>
std::vector<T> uniform(int n, double lo, double hi, unsigned seed = 1) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> d(lo, hi);
    std::vector<T> v(static_cast<size_t>(n));
    for (auto& x : v) x = T(d(gen));
    return v;
}

}  // namespace twin

// The sizes every twin benchmark runs at.
#define TWIN_SIZES(name) BENCHMARK(name)->Arg(1000)->Arg(1000000)->UseManualTime()
