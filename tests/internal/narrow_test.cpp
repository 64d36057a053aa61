// Block narrowing to 16 bits (vek::narrow_block) on every instruction set,
// against the rules written out in narrow_ref.hpp. Most of its uses pass a
// handful of values, so no export reaches its vector loops for every
// element type; this test calls it directly (it links the static archive).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "frame/cpu.hpp"
#include "narrow_ref.hpp"
#include "vector/scale.hpp"

namespace {

using vektest::narrowed;
using vektest::Shorts;

std::int32_t random_int(std::mt19937& gen) {
    const int bits = std::uniform_int_distribution<int>(0, 31)(gen);
    const std::int64_t span = std::int64_t(1) << bits;
    return std::int32_t(std::uniform_int_distribution<std::int64_t>(-span, span - 1)(gen));
}

// Magnitudes 2^lo..2^hi, either sign.
template <class Real>
Real random_real(std::mt19937& gen, double lo = -12, double hi = 40) {
    const double e = std::uniform_real_distribution<double>(lo, hi)(gen);
    const double s = std::uniform_int_distribution<int>(0, 1)(gen) ? 1 : -1;
    return Real(s * std::exp2(e));
}

// Data sets of n values: random magnitudes, with the named values spread
// over random places (so that some vector steps hold one and others not).
template <class T, class Draw>
std::vector<T> with_specials(int n, unsigned seed, Draw draw, const std::vector<T>& specials) {
    std::mt19937 gen(seed);
    std::vector<T> v(static_cast<std::size_t>(n));
    for (T& x : v) x = draw(gen);
    for (std::size_t k = 0; k < specials.size() && n > 0; ++k)
        if (gen() % 3 == 0) v[gen() % std::size_t(n)] = specials[k];
    return v;
}

// Around the limits of 16 bits, of 32 bits (where the vector truncation
// ends) and of 64 bits.
template <class T>
std::vector<T> real_specials() {
    using L = std::numeric_limits<T>;
    return {T(0),           -T(0),          L::quiet_NaN(),  L::infinity(),    -L::infinity(),
            L::max(),       -L::max(),      L::denorm_min(), T(32767),         T(32767.5),
            T(-32768),      T(-32768.5),    T(-32767.5),     T(2147483648.0),  T(-2147483648.0),
            T(2147483520),  T(-2147483520), T(2147483649.0), T(-2147483649.0), T(2147483904.0),
            T(-2147483904), T(1e19),        T(-1e19),        T(0.75)};
}

// Sets 0 and 1: random magnitudes; set 2: so small that the automatic
// factor lies beyond the range of Real (and of double for double).
template <class Real>
std::vector<Real> real_data(int n, unsigned seed, int set) {
    const double lo = set < 2 ? -12 : sizeof(Real) == 4 ? -149 : -1074;
    const double hi = set < 2 ? 40 : sizeof(Real) == 4 ? -130 : -1030;
    return with_specials<Real>(
        n, seed, [&](std::mt19937& gen) { return random_real<Real>(gen, lo, hi); },
        set < 2 ? real_specials<Real>() : std::vector<Real>{Real(0), -Real(0)});
}

const std::vector<std::int32_t> kIntSpecials = {INT32_MIN, INT32_MAX, -32768, 32767, -32769, 32768,
                                                65535,     65536,     -65536, -1,    0,      1};

const int kLengths[] = {0, 1, 2, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 257};
const int kModes[] = {0, 1, 2, 3, 4, 5, 6, 7};

constexpr int kFar = std::numeric_limits<int>::max();

// Every mode, factor and length on every instruction set this CPU runs;
// set 1 with source and destination one element off their alignment.
template <class T>
void check_all(const char* type, const std::vector<int>& factors,
               std::vector<T> (*data)(int, unsigned, int)) {
    const int active = vek::active_isa();
    for (int isa = 0; isa < vek::kIsaCount; ++isa) {
        if (!vek::force_isa(isa)) continue;
        for (int n : kLengths) {
            for (int set = 0; set < 3; ++set) {
                const std::size_t off = set == 1 ? 1 : 0;
                std::vector<T> src = data(n, unsigned(17 * n + set), set);
                src.insert(src.begin(), off, T(0));
                const std::vector<T> v(src.begin() + std::ptrdiff_t(off), src.end());
                for (int mode : kModes) {
                    for (int f : factors) {
                        int want = f, got = f;
                        const Shorts w = narrowed(v, mode, &want);
                        Shorts d(std::size_t(n) + 2, 0x5A5A);
                        vek::narrow_block(src.data() + off, d.data() + off, n, mode, &got);
                        const std::string at =
                            std::string(type) + " " + vek::isa_name(isa) +
                            " n=" + std::to_string(n) + " set " + std::to_string(set) + " mode " +
                            std::to_string(mode) + " factor " + std::to_string(f);
                        ASSERT_EQ(Shorts(d.begin() + std::ptrdiff_t(off),
                                         d.begin() + std::ptrdiff_t(off) + n),
                                  w)
                            << at;
                        ASSERT_EQ(d[off + std::size_t(n)], 0x5A5A)
                            << at << ": written past the end";
                        if (off) {
                            ASSERT_EQ(d[0], 0x5A5A) << at << ": written before the start";
                        }
                        ASSERT_EQ(got, want) << at;
                    }
                }
            }
        }
    }
    vek::force_isa(active);
}

std::vector<std::int32_t> int_data(int n, unsigned seed, int set) {
    // Set 2 fits 16 bits: no automatic shift.
    return with_specials<std::int32_t>(
        n, seed,
        [set](std::mt19937& gen) { return set < 2 ? random_int(gen) : random_int(gen) >> 16; },
        set < 2 ? kIntSpecials : std::vector<std::int32_t>{-32768, 32767});
}

TEST(NarrowBlock, IntegersByEveryRule) {
    check_all<std::int32_t>("int32", {0, 1, 3, 15, 16, 31, 40, kFar, -1, -7, -15, -20, -kFar},
                            int_data);
}

TEST(NarrowBlock, FloatsByEveryRule) {
    check_all<float>(
        "float",
        {0, 1, 2, 14, -3, -20, -40, 126, 127, -127, -128, 300, -300, 1100, -1100, kFar, -kFar},
        real_data<float>);
}

TEST(NarrowBlock, DoublesByEveryRule) {
    check_all<double>("double",
                      {0, 1, 14, -3, -20, -40, 126, -128, 1000, -1000, 1075, -1030, kFar, -kFar},
                      real_data<double>);
}

// No factor pointer: the fixed rules read 0, auto writes nothing.
TEST(NarrowBlock, NullFactor) {
    const std::vector<float> v = {70000.5f, -3.5f, 40000.0f};
    for (int mode : {2, 3, 4}) {
        int zero = 0, unused = 0;
        const Shorts w = narrowed(v, mode, mode == 4 ? &unused : &zero);
        Shorts d(3);
        vek::narrow_block(v.data(), d.data(), 3, mode, nullptr);
        EXPECT_EQ(d, w) << mode;
    }
}

// The destination may be the source reinterpreted.
TEST(NarrowBlock, InPlace) {
    const int active = vek::active_isa();
    for (int isa = 0; isa < vek::kIsaCount; ++isa) {
        if (!vek::force_isa(isa)) continue;
        for (int mode : {0, 1, 3, 4}) {
            std::mt19937 gen(5);
            std::vector<std::int32_t> iv(200);
            std::vector<float> fv(200);
            for (auto& x : iv) x = random_int(gen);
            for (auto& x : fv) x = random_real<float>(gen);
            int fi = 2, ff = 2;
            const Shorts wi = narrowed(iv, mode, &fi), wf = narrowed(fv, mode, &ff);
            fi = ff = 2;
            vek::narrow_block(iv.data(), reinterpret_cast<std::int16_t*>(iv.data()), 200, mode,
                              &fi);
            vek::narrow_block(fv.data(), reinterpret_cast<std::int16_t*>(fv.data()), 200, mode,
                              &ff);
            Shorts gi(200), gf(200);
            std::memcpy(gi.data(), iv.data(), 400);
            std::memcpy(gf.data(), fv.data(), 400);
            EXPECT_EQ(gi, wi) << vek::isa_name(isa) << " " << mode;
            EXPECT_EQ(gf, wf) << vek::isa_name(isa) << " " << mode;
        }
    }
    vek::force_isa(active);
}

}  // namespace
