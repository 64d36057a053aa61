// Benchmarks of a vek export beside a plain loop that computes the same
// thing (the loops live in *_native.cpp files, built -O3 -march=native, and
// are declared in plain.hpp).
//
// Each iteration times a batch of vek calls and a batch of plain calls,
// long enough to time, taking turns at going first: whoever runs second
// finds the shared inputs in cache. Both sides share inputs and destination
// (buffers from vekMalloc, as callers get them): where a destination lies
// relative to the inputs (4K aliasing) moves in-cache timings by 10% and
// more, and must not favour either side.
//
// The time column is vek's time per batch (so that a short call does not
// need millions of iterations of both sides); the counters are per call:
// vek's time (vek_ns), the plain loop's (plain_ns) and their ratio
// vek/plain (below 1: vek is faster). Given a byte count, it also times a
// memcpy of that many bytes (memcpy_ns) and reports vek's throughput over
// them.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>
#include <type_traits>

#include "vek.h"

namespace twin {

// n elements from vekMalloc (32-byte aligned), zero-filled.
template <class T>
class Buf {
public:
    explicit Buf(int n) : n_(n), p_(static_cast<T*>(vekMalloc(int(sizeof(T)) * n))) {
        std::memset(static_cast<void*>(p_), 0, sizeof(T) * std::size_t(n));
    }
    ~Buf() { vekFree(p_); }
    Buf(Buf&& o) noexcept : n_(o.n_), p_(o.p_) { o.p_ = nullptr; }
    Buf(const Buf&) = delete;
    Buf& operator=(const Buf&) = delete;
    Buf& operator=(Buf&&) = delete;

    T* data() const { return p_; }
    int size() const { return n_; }
    T& operator[](int i) const { return p_[i]; }

private:
    int n_;
    T* p_;
};

// The real type whose values make up a T (the part type of complex types).
template <class T>
struct Parts {
    using type = T;
    static constexpr int count = 1;
};
#define TWIN_COMPLEX(C, R)              \
    template <>                         \
    struct Parts<C> {                   \
        using type = R;                 \
        static constexpr int count = 2; \
    };
TWIN_COMPLEX(CplxFloat, float)
TWIN_COMPLEX(CplxDouble, double)
TWIN_COMPLEX(CplxShort, short)
#undef TWIN_COMPLEX

// n elements whose parts are drawn uniformly from [lo, hi] (integer types:
// truncated toward zero).
template <class T>
Buf<T> uniform(int n, double lo, double hi, unsigned seed = 1) {
    using R = typename Parts<T>::type;
    Buf<T> b(n);
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> d(lo, hi);
    R* p = reinterpret_cast<R*>(b.data());
    for (int i = 0; i < n * Parts<T>::count; ++i) p[i] = R(d(gen));
    return b;
}

template <class Vek, class Plain>
void run(benchmark::State& state, int n, Vek vek, Plain plain, std::size_t copyBytes = 0) {
    using Clock = std::chrono::steady_clock;
    const int reps = std::max(1, 20000 / n);  // batches of at least ~10 microseconds
    Buf<char> from(copyBytes ? int(copyBytes) : 1), to(copyBytes ? int(copyBytes) : 1);
    auto timed = [reps](auto&& f) {
        const auto start = Clock::now();
        for (int r = 0; r < reps; ++r) {
            f();
            benchmark::ClobberMemory();
        }
        return std::chrono::duration<double>(Clock::now() - start).count() / reps;
    };
    double vekSeconds = 0, plainSeconds = 0, copySeconds = 0;
    bool vekFirst = true;
    for (auto _ : state) {
        double v, p;
        if (vekFirst) {
            v = timed(vek);
            p = timed(plain);
        } else {
            p = timed(plain);
            v = timed(vek);
        }
        vekFirst = !vekFirst;
        if (copyBytes)
            copySeconds += timed([&] { std::memcpy(to.data(), from.data(), copyBytes); });
        vekSeconds += v;
        plainSeconds += p;
        state.SetIterationTime(v * reps);
    }
    const double iters = double(state.iterations());
    state.counters["vek_ns"] = 1e9 * vekSeconds / iters;
    state.counters["plain_ns"] = 1e9 * plainSeconds / iters;
    state.counters["vek/plain"] = vekSeconds / plainSeconds;
    if (copyBytes) {
        state.counters["memcpy_ns"] = 1e9 * copySeconds / iters;
        state.SetBytesProcessed(std::int64_t(state.iterations()) * reps * std::int64_t(copyBytes));
    }
}

// Registers a benchmark at each size, and at each mode (a second argument)
// when modes are given.
inline void args(benchmark::internal::Benchmark* b, std::initializer_list<int> sizes,
                 std::initializer_list<int> modes = {}) {
    if (modes.size() == 0)
        for (int n : sizes) b->Arg(n);
    for (int mode : modes)
        for (int n : sizes) b->Args({n, mode});
}

}  // namespace twin

// TWIN_BENCHMARK(BM_x, {sizes}) or TWIN_BENCHMARK(BM_x, {sizes}, {modes}).
#define TWIN_BENCHMARK(name, ...)                                                      \
    BENCHMARK(name)                                                                    \
        ->Apply([](benchmark::internal::Benchmark* b) { twin::args(b, __VA_ARGS__); }) \
        ->UseManualTime()
