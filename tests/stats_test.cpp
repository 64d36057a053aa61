// Statistics (modules vekvec and vekvece).
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "sum_layout.hpp"
#include "test_util.hpp"

using vektest::layout_sum;
using vektest::ReportRecorder;

namespace {

const int kLengths[] = {1, 2, 3, 15, 16, 17, 31, 33, 63, 64, 65, 127, 128, 129, 200, 1000, 1031};

TEST(Mean, FloatingAgainstLongDoubleAndTheFixedLayout) {
    std::mt19937 gen(21);
    std::uniform_real_distribution<double> d(-100, 100);
    for (int n : kLengths) {
        std::vector<float> f(static_cast<size_t>(n));
        std::vector<double> g(static_cast<size_t>(n));
        long double fs = 0, fq = 0, gs = 0, gq = 0, fm = 0, gm = 0;
        for (int i = 0; i < n; ++i) {
            f[size_t(i)] = float(d(gen));
            g[size_t(i)] = d(gen);
            fs += f[size_t(i)];
            fq += (long double)f[size_t(i)] * f[size_t(i)];
            fm += std::fabs((long double)f[size_t(i)]);
            gs += g[size_t(i)];
            gq += (long double)g[size_t(i)] * g[size_t(i)];
            gm += std::fabs((long double)g[size_t(i)]);
        }
        const double eps = std::ldexp(1.0, -52) * (n + 2);
        EXPECT_NEAR(veksMean(f.data(), n), double(fs / n),
                    double(eps * fm / n) + 1e-7 * std::fabs(double(fs / n)))
            << n;
        EXPECT_NEAR(vekdMean(g.data(), n), double(gs / n), double(eps * gm / n)) << n;
        EXPECT_NEAR(veksStdDev(f.data(), n), double(fq / n), double(fq / n) * 1.2e-7) << n;
        EXPECT_NEAR(vekdStdDev(g.data(), n), double(gq / n), double(gq / n) * eps) << n;
        // Bit for bit the documented order.
        auto fx = [&](int i) { return double(f[size_t(i)]); };
        auto gx = [&](int i) { return g[size_t(i)]; };
        EXPECT_EQ(veksMean(f.data(), n), float(layout_sum(n, 1, fx)[0] / n));
        EXPECT_EQ(vekdMean(g.data(), n), layout_sum(n, 1, gx)[0] / n);
        EXPECT_EQ(veksStdDev(f.data(), n),
                  float(layout_sum(n, 1, [&](int i) { return fx(i) * fx(i); })[0] / n));
        EXPECT_EQ(vekdStdDev(g.data(), n),
                  layout_sum(n, 1, [&](int i) { return gx(i) * gx(i); })[0] / n);
    }
    const float f34[2] = {3, 4};
    EXPECT_EQ(veksStdDev(f34, 2), 12.5f);  // the mean square, not a deviation
    EXPECT_EQ(veksMean(f34, 2), 3.5f);
}

TEST(Mean, SixteenBitWrapsAndTruncates) {
    const short a[2] = {-3, -4};
    EXPECT_EQ(vekwMean(a, 2), -3);  // -7 / 2 toward zero
    // Sums past 32 bits wrap before the division.
    for (int n : {1, 5, 31, 32, 33, 100, 70000}) {
        std::vector<short> v(static_cast<size_t>(n));
        std::mt19937 gen(static_cast<unsigned>(n));
        std::int64_t sum = 0;
        for (int i = 0; i < n; ++i) {
            v[size_t(i)] = short(i % 7 == 3 ? -32768 : 32767 - int(gen() % 3));
            sum += v[size_t(i)];
        }
        const std::int32_t wrapped = std::int32_t(std::uint32_t(std::uint64_t(sum)));
        EXPECT_EQ(vekwMean(v.data(), n), short(wrapped / n)) << n;
    }
}

TEST(StdDev, SixteenBitScaleModes) {
    const short a[2] = {3, 4};  // 12.5
    std::vector<short> big(1000, 32767);
    big[7] = -32768;  // mean square 1073676289 + (2^30 - 1073676289) / 1000
    const double bigMs = (999.0 * 32767 * 32767 + 32768.0 * 32768) / 1000;
    const std::vector<short> lowest(1000, -32768);  // pairs of squares reach 2^31
    const struct {
        const short* vec;
        int len, mode, factorIn;
        short want;
        int factorOut;
    } cases[] = {
        {a, 2, VEK_NO_SCALE, 9, 12, 9},
        {a, 2, VEK_SATURATE, 9, 12, 9},
        {a, 2, VEK_AUTO_SCALE, 9, 25600, -11},  // 12.5 * 2^11
        {a, 2, VEK_FIXED_SCALE, 1, 6, 1},
        {big.data(), 1000, VEK_SATURATE, 0, 32767, 0},
        {lowest.data(), 1000, VEK_AUTO_SCALE, 0, 16384, 16},  // 2^30 * 2^-16
        {big.data(), 1000, VEK_NO_SCALE, 0, short(std::int64_t(bigMs)), 0},
        {big.data(), 1000, VEK_AUTO_SCALE, 0, short(std::int64_t(std::ldexp(bigMs, -15))), 15},
        {big.data(), 1000, VEK_FIXED_SCALE | VEK_SATURATE, 14, 32767, 14},  // 65532 clamps
        {big.data(), 1000, VEK_FIXED_SCALE | VEK_SATURATE, 15,
         short(std::int64_t(std::ldexp(bigMs, -15))), 15},
    };
    for (const auto& c : cases) {
        int f = c.factorIn;
        EXPECT_EQ(vekwStdDev(c.vec, c.len, c.mode, &f), c.want) << c.mode << " " << c.len;
        EXPECT_EQ(f, c.factorOut) << c.mode << " " << c.len;
    }
}

// The first occurrence of the extreme, NaN passed over, by a plain scan.
template <class T>
int extreme_ref(const std::vector<T>& x, bool max) {
    int at = -1;
    for (int i = 0; i < int(x.size()); ++i) {
        const T v = x[size_t(i)];
        if (v != v) continue;
        if (at < 0 || (max ? v > x[size_t(at)] : v < x[size_t(at)])) at = i;
    }
    return at < 0 ? 0 : at;
}

template <class T>
bool same_bits(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

template <class T>
void check_extremes(const std::vector<T>& x, const char* what) {
    const int n = int(x.size());
    for (bool max : {true, false}) {
        const int want = extreme_ref(x, max);
        int at = -7;
        T got, plain;
        if constexpr (std::is_same_v<T, float>) {
            got = max ? veksMaxExt(x.data(), n, &at) : veksMinExt(x.data(), n, &at);
            plain = max ? veksMax(x.data(), n) : veksMin(x.data(), n);
        } else if constexpr (std::is_same_v<T, double>) {
            got = max ? vekdMaxExt(x.data(), n, &at) : vekdMinExt(x.data(), n, &at);
            plain = max ? vekdMax(x.data(), n) : vekdMin(x.data(), n);
        } else {
            got = max ? vekwMaxExt(x.data(), n, &at) : vekwMinExt(x.data(), n, &at);
            plain = max ? vekwMax(x.data(), n) : vekwMin(x.data(), n);
        }
        ASSERT_EQ(at, want) << what << " n " << n << (max ? " max" : " min");
        EXPECT_TRUE(same_bits(got, x[size_t(want)])) << what << " n " << n;
        EXPECT_TRUE(same_bits(plain, got)) << what << " n " << n;
    }
}

template <class T>
void check_extremes_family() {
    std::mt19937 gen(22);
    const T big = std::is_floating_point_v<T> ? T(1e30) : T(32767);
    const T small = std::is_floating_point_v<T> ? T(-1e30) : T(-32768);
    for (int n : kLengths) {
        std::vector<T> x(static_cast<size_t>(n));
        std::uniform_int_distribution<int> d(-1000, 1000);
        for (auto& v : x) v = T(d(gen));
        check_extremes(x, "random");
        // The extremes repeated, first at every position in turn (lanes,
        // accumulators and the tail each hold the first one somewhere).
        for (int first = 0; first < n; first += (n > 64 ? 7 : 1)) {
            auto y = x;
            for (int k = first; k < n; k += 5) y[size_t(k)] = big;
            for (int k = n - 1 - first; k >= 0; k -= 3) y[size_t(k)] = small;
            check_extremes(y, "repeated");
            if (::testing::Test::HasFatalFailure()) return;
        }
        std::vector<T> flat(static_cast<size_t>(n), small);
        check_extremes(flat, "all equal");
    }
}

TEST(Extremes, FirstOccurrenceByPlainScan) {
    check_extremes_family<float>();
    check_extremes_family<double>();
    check_extremes_family<short>();
}

template <class T>
void check_special_values() {
    const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
    const std::vector<std::vector<T>> cases = {
        {nan},
        {nan, nan, nan},
        {nan, 1, 2, nan},
        {T(-0.0), T(0.0), T(-0.0)},
        {T(0.0), T(-0.0)},
        {-inf, nan, -inf, inf, inf},
        {nan, -inf},
        {inf, nan},
        {-std::numeric_limits<T>::max(), -inf},
        {-inf, -std::numeric_limits<T>::max()},
    };
    for (const auto& c : cases) {
        // Also spread over a vector long enough for every lane and accumulator.
        check_extremes(c, "special");
        std::vector<T> longer;
        for (int k = 0; k < 300; ++k) longer.push_back(c[size_t(k) % c.size()]);
        check_extremes(longer, "special, repeated");
        std::vector<T> nans(300, nan);
        nans[250] = c[0];
        check_extremes(nans, "special after NaN");
    }
}

TEST(Extremes, NaNSignedZerosAndInfinities) {
    check_special_values<float>();
    check_special_values<double>();
}

TEST(Extremes, NullIndexPointer) {
    const short w[4] = {1, 5, 5, 2};
    const float s[4] = {1, 5, 5, 2};
    int at = -1;
    EXPECT_EQ(veksMaxExt(s, 4, &at), 5.0f);
    EXPECT_EQ(at, 1);
    EXPECT_EQ(vekwMaxExt(w, 4, nullptr), 5);
    EXPECT_EQ(vekwMinExt(w, 4, nullptr), 1);
    EXPECT_EQ(vekdMinExt(std::vector<double>{3, 1}.data(), 2, nullptr), 1.0);
    at = -1;
    EXPECT_EQ(vekwMinExt(w, 1, &at), 1);
    EXPECT_EQ(at, 0);
}

TEST(Statistics, ArgumentChecks) {
    const short w[1] = {5};
    const float s[1] = {5};
    int factor = 0, at = -3;
    struct Case {
        const char* func;
        const char* module;
        std::function<double(const void*, int)> call;
    };
    const Case calls[] = {
        {"veksMean", "vekvec", [](const void* v, int n) { return veksMean((const float*)v, n); }},
        {"vekwMean", "vekvec", [](const void* v, int n) { return vekwMean((const short*)v, n); }},
        {"vekdStdDev", "vekvec",
         [](const void* v, int n) { return vekdStdDev((const double*)v, n); }},
        {"vekwStdDev", "vekvec",
         [&](const void* v, int n) { return vekwStdDev((const short*)v, n, 0, &factor); }},
        {"vekwMax", "vekvec", [](const void* v, int n) { return vekwMax((const short*)v, n); }},
        {"veksMin", "vekvec", [](const void* v, int n) { return veksMin((const float*)v, n); }},
        {"veksMaxExt", "vekvece",
         [&](const void* v, int n) { return veksMaxExt((const float*)v, n, &at); }},
        {"vekwMinExt", "vekvece",
         [&](const void* v, int n) { return vekwMinExt((const short*)v, n, &at); }},
    };
    for (const Case& c : calls) {
        const struct {
            bool null;
            int len;
            const char* message;
        } cases[] = {{true, 0, "len<=0"}, {false, -1, "len<=0"}, {true, 1, "vec==0"}};
        for (const auto& k : cases) {
            ReportRecorder rec;
            const void* vec = k.null ? nullptr : (c.func[3] == 'w' ? (const void*)w : s);
            EXPECT_EQ(c.call(vec, k.len), 0.0) << c.func;
            EXPECT_REPORT(rec, VEK_StatusBadArgument, c.func, k.message, c.module);
        }
    }
    EXPECT_EQ(at, -3);  // no index written
    // The 16-bit mean square also checks its scale arguments.
    const struct {
        int mode;
        int* factor;
        const char* message;
    } modes[] = {
        {VEK_FIXED_SCALE | VEK_AUTO_SCALE, &factor,
         "scaleMode & VEK_FIXED_SCALE && scaleMode & VEK_AUTO_SCALE"},
        {VEK_FIXED_SCALE, nullptr,
         "scaleMode & VEK_FIXED_SCALE && (scaleFactor==NULL || *scaleFactor<0)"},
        {VEK_AUTO_SCALE, nullptr, "scaleMode & VEK_AUTO_SCALE && scaleFactor==NULL"},
    };
    for (const auto& m : modes) {
        ReportRecorder rec;
        EXPECT_EQ(vekwStdDev(w, 1, m.mode, m.factor), 0);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekwStdDev", m.message, "vekvec");
    }
    factor = -1;
    ReportRecorder rec;
    EXPECT_EQ(vekwStdDev(w, 1, VEK_FIXED_SCALE, &factor), 0);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekwStdDev",
                  "scaleMode & VEK_FIXED_SCALE && (scaleFactor==NULL || *scaleFactor<0)", "vekvec");
}

}  // namespace
