// Benchmarks of a vek export beside what a user would otherwise write or
// link: a plain loop (the loops live in *_native.cpp files, built -O3
// -march=native, and are declared in plain.hpp) or a peer library.
//
// Each iteration times a batch of calls of every side, the sides taking
// turns at going first: whoever runs second finds the shared inputs in
// cache. Sides share inputs and destinations where they can (buffers from
// vekMalloc, as callers get them): where a destination lies relative to the
// inputs (4K aliasing) moves in-cache timings by 10% and more, and must not
// favour either side. A side may have an untimed step before each batch
// (restoring data that the calls change in place).
//
// Reported times are medians over the iterations, per call, less the cost
// of reading the clock: the machines are shared, and a batch that loses the
// processor halfway would otherwise weigh on the mean. Batches of a
// millisecond and more, which lose it nearly always, are timed in the
// thread's processor time instead of on the wall clock. The time column is
// that of one iteration, a batch of every side: the benchmark's minimum
// time then bounds the whole run, even beside a slow side.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include <time.h>

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

// Seconds on the wall clock, or (cpu) in this thread's processor time,
// which leaves out the time the thread waits for a processor: batches of
// milliseconds are mostly interrupted on a busy machine.
inline double now(bool cpu) {
#ifdef CLOCK_THREAD_CPUTIME_ID
    if (cpu) {
        timespec t;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
    }
#endif
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// What reading the clock twice costs, in seconds (a median).
inline double clock_cost(bool cpu) {
    auto measure = [](bool c) {
        std::vector<double> d(1001);
        for (auto& x : d) {
            const double t0 = now(c);
            x = now(c) - t0;
        }
        std::nth_element(d.begin(), d.begin() + 500, d.end());
        return d[500];
    };
    static const double wall = measure(false), thread = measure(true);
    return cpu ? thread : wall;
}

inline double median(std::vector<double> v) {
    if (v.empty()) return 0;
    const auto mid = v.begin() + std::ptrdiff_t(v.size() / 2);
    std::nth_element(v.begin(), mid, v.end());
    return *mid;
}

// A side whose calls need an untimed step before each batch.
template <class Prep, class Run>
struct Prepared {
    Prep prep;
    Run run;
};
template <class Prep, class Run>
Prepared<Prep, Run> prepared(Prep prep, Run run) {
    return {std::move(prep), std::move(run)};
}

template <class F>
struct IsPrepared : std::false_type {};
template <class P, class R>
struct IsPrepared<Prepared<P, R>> : std::true_type {};

// How many calls a batch makes, and how many batches (each after its side's
// untimed step) make up one side's turn in an iteration.
struct Batch {
    int calls;
    int batches = 1;
};

// Seconds per call of one side's turn.
template <class F>
double turn(const Batch& b, bool cpu, F& side) {
    double total = 0;
    for (int k = 0; k < b.batches; ++k) {
        if constexpr (IsPrepared<F>::value) side.prep();
        benchmark::ClobberMemory();
        const double t0 = now(cpu);
        for (int r = 0; r < b.calls; ++r) {
            if constexpr (IsPrepared<F>::value)
                side.run();
            else
                side();
            benchmark::ClobberMemory();
        }
        total += now(cpu) - t0 - clock_cost(cpu);
    }
    return std::max(total, 0.0) / (double(b.calls) * b.batches);
}

// Batches longer than this are timed in processor time.
constexpr double kLongBatch = 1e-3;

// The batches of a transform that grows values by up to 2^bits a call,
// from data of magnitude at most 1: as many calls as keep every value far
// from overflow, and enough batches for a turn of about `calls` calls.
template <class R>
Batch bounded(int bits, int calls) {
    const int budget = std::numeric_limits<R>::max_exponent - 20;
    const int perBatch = bits > 0 ? std::max(1, std::min(calls, budget / bits)) : calls;
    return Batch{perBatch, std::max(1, calls / perBatch)};
}

template <class R>
bool finite(const R* p, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (!std::isfinite(p[i])) return false;
    return true;
}

// Times the sides (vek first in the argument list) in turns, each
// iteration starting with the next side, and returns each side's median
// seconds per call. A side is a callable, or prepared(step, callable).
template <class... Sides>
std::array<double, sizeof...(Sides)> race(benchmark::State& state, Batch b, Sides... sides) {
    constexpr std::size_t kSides = sizeof...(Sides);
    // One call of each side first, untimed but for choosing the clock:
    // tables that a call builds on first use, pages of fresh buffers.
    double longest = 0;
    (..., [&sides, &longest] {
        if constexpr (IsPrepared<Sides>::value) sides.prep();
        const double t0 = now(false);
        if constexpr (IsPrepared<Sides>::value)
            sides.run();
        else
            sides();
        longest = std::max(longest, now(false) - t0);
    }());
    const bool cpu = longest * b.calls > kLongBatch;
    const std::array<std::function<double()>, kSides> turns{
        std::function<double()>([&b, cpu, &sides] { return turn(b, cpu, sides); })...};
    std::array<std::vector<double>, kSides> times;
    std::size_t first = 0;
    for (auto _ : state) {
        for (std::size_t k = 0; k < kSides; ++k) {
            const std::size_t s = (first + k) % kSides;
            times[s].push_back(turns[s]());
        }
        first = (first + 1) % kSides;
        double all = 0;
        for (const auto& t : times) all += t.back();
        state.SetIterationTime(std::max(all * b.calls * b.batches, 1e-9));
    }
    std::array<double, kSides> medians{};
    for (std::size_t s = 0; s < kSides; ++s) medians[s] = median(times[s]);
    return medians;
}

// vek beside a plain loop: counters vek_ns and plain_ns per call and their
// ratio vek/plain (below 1: vek is faster). Given a byte count, also a
// memcpy of that many bytes (memcpy_ns) and vek's throughput over them.
template <class Vek, class Plain>
void run(benchmark::State& state, int n, Vek vek, Plain plain, std::size_t copyBytes = 0) {
    const Batch b{std::max(1, 20000 / n)};  // batches of at least ~10 microseconds
    double v, p, c = 0;
    if (copyBytes) {
        Buf<char> from{int(copyBytes)}, to{int(copyBytes)};
        const auto t =
            race(state, b, vek, plain, [&] { std::memcpy(to.data(), from.data(), copyBytes); });
        v = t[0], p = t[1], c = t[2];
        state.counters["memcpy_ns"] = 1e9 * c;
        state.counters["bytes_per_second"] = double(copyBytes) / v;
    } else {
        const auto t = race(state, b, vek, plain);
        v = t[0], p = t[1];
    }
    state.counters["vek_ns"] = 1e9 * v;
    state.counters["plain_ns"] = 1e9 * p;
    state.counters["vek/plain"] = v / p;
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
