// DCT: both paths against the long-double sum, round trips, orthonormality,
// the table cache across lengths, checks and reports.
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <thread>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

template <class R>
struct Api;
template <>
struct Api<float> {
    static constexpr double tol = 4e-8;  // relative RMS per bit of length
    static void dct(const float* s, float* d, int n, int f) { veksDct(s, d, n, f); }
    static constexpr const char* func = "veksDct";
};
template <>
struct Api<double> {
    static constexpr double tol = 8e-17;
    static void dct(const double* s, double* d, int n, int f) { vekdDct(s, d, n, f); }
    static constexpr const char* func = "vekdDct";
};

// The orthonormal DCT-II (or, transposed, DCT-III) by its sum.
std::vector<long double> reference(const std::vector<long double>& x, bool inverse) {
    const std::size_t n = x.size();
    const long double pi = 3.141592653589793238462643383279502884L;
    std::vector<long double> cs(4 * n);
    for (std::size_t i = 0; i < 4 * n; ++i) cs[i] = std::cos(pi * (long double)(i) / (2 * n));
    auto c = [n](std::size_t k) { return std::sqrt((k ? 2.0L : 1.0L) / (long double)(n)); };
    std::vector<long double> y(n, 0);
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t i = 0; i < n; ++i) {
            const long double m = c(k) * cs[((2 * i + 1) * k) % (4 * n)];
            if (inverse)
                y[i] += m * x[k];
            else
                y[k] += m * x[i];
        }
    return y;
}

template <class R>
std::vector<R> random_vec(std::size_t n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<R> x(n);
    for (auto& v : x) v = R(u(gen));
    return x;
}

template <class R>
double rel_rms(const std::vector<R>& y, const std::vector<long double>& ref) {
    long double num = 0, den = 0;
    for (std::size_t i = 0; i < ref.size(); ++i) {
        num += (y[i] - ref[i]) * (y[i] - ref[i]);
        den += ref[i] * ref[i];
    }
    return double(std::sqrt(num / den));
}

template <class R>
double bound(int n) {
    return Api<R>::tol * (std::log2(double(n)) + 2);
}

template <class R>
class Dct : public ::testing::Test {};
using Types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(Dct, Types);

// Powers of two (matrix and FFT paths) and other lengths (direct sums up
// to 32, the DFT above: mixed radix, and Bluestein for 97 and 1009), both
// directions, in place and not.
TYPED_TEST(Dct, MatchesTheSum) {
    using R = TypeParam;
    for (int n : {1,  2,  3,  4,  5,  6,   7,   8,   9,   10,   15,   16,   17,
                  31, 32, 33, 64, 97, 100, 128, 256, 999, 1000, 1009, 1024, 2048}) {
        const std::vector<R> x = random_vec<R>(std::size_t(n), unsigned(n));
        const std::vector<long double> xl(x.begin(), x.end());
        for (int dir : {int(VEK_Forw), int(VEK_Inv)}) {
            const std::vector<long double> ref = reference(xl, dir == VEK_Inv);
            std::vector<R> y(std::size_t(n) + 1, R(5));
            Api<R>::dct(x.data(), y.data(), n, dir);
            EXPECT_LT(rel_rms(y, ref), bound<R>(n)) << n << " " << dir;
            EXPECT_EQ(y[std::size_t(n)], R(5)) << n;
            std::vector<R> z = x;
            Api<R>::dct(z.data(), z.data(), n, dir);
            EXPECT_EQ(z, std::vector<R>(y.begin(), y.end() - 1)) << n << " in place";
        }
    }
}

// Inverse after forward restores the input; a constant gives c sqrt(N) and
// zeros; length 1 is the identity.
TYPED_TEST(Dct, RoundTripsAndSpecialInputs) {
    using R = TypeParam;
    for (int n : {2, 12, 16, 60, 512, 4096, 1 << 14}) {
        const std::size_t m = std::size_t(n);
        const std::vector<R> x = random_vec<R>(m, 7);
        std::vector<R> y(m), z(m);
        Api<R>::dct(x.data(), y.data(), n, VEK_Forw);
        Api<R>::dct(y.data(), z.data(), n, VEK_Inv);
        EXPECT_LT(rel_rms(z, std::vector<long double>(x.begin(), x.end())), 2 * bound<R>(n)) << n;
    }
    for (int n : {3, 8, 10, 64}) {
        const std::size_t m = std::size_t(n);
        std::vector<R> c(m, R(0.5)), y(m);
        Api<R>::dct(c.data(), y.data(), n, VEK_Forw);
        EXPECT_NEAR(y[0], 0.5 * std::sqrt(double(n)), 1e-6) << n;
        for (int k = 1; k < n; ++k) EXPECT_NEAR(y[std::size_t(k)], 0, 1e-6) << n << " " << k;
    }
    for (int dir : {int(VEK_Forw), int(VEK_Inv)}) {
        R one = R(-2.75), out = 0;
        Api<R>::dct(&one, &out, 1, dir);
        EXPECT_EQ(out, R(-2.75));
    }
}

// The transform matrix is orthogonal: its columns, the transforms of unit
// vectors, have unit length and are mutually orthogonal.
TYPED_TEST(Dct, Orthonormality) {
    using R = TypeParam;
    for (int n : {5, 6, 8, 12, 32, 64}) {
        std::vector<std::vector<R>> cols;
        for (int j = 0; j < n; ++j) {
            const std::size_t m = std::size_t(n);
            std::vector<R> e(m, R(0)), y(m);
            e[std::size_t(j)] = 1;
            Api<R>::dct(e.data(), y.data(), n, VEK_Forw);
            cols.push_back(y);
        }
        for (int a = 0; a < n; ++a)
            for (int b = 0; b < n; ++b) {
                double dot = 0;
                for (int i = 0; i < n; ++i)
                    dot += double(cols[std::size_t(a)][std::size_t(i)]) *
                           cols[std::size_t(b)][std::size_t(i)];
                EXPECT_NEAR(dot, a == b ? 1.0 : 0.0, 1e-6) << n << " " << a << " " << b;
            }
    }
}

// Alternating lengths rebuild the direct path's table (and the DFT's plan
// above 32 points), powers of two in between keep theirs, and a release in
// the middle changes nothing.
TYPED_TEST(Dct, AlternatingLengthsAndRelease) {
    using R = TypeParam;
    std::vector<std::vector<R>> first;
    const int lengths[] = {6, 10, 6, 8, 10, 16, 6, 7, 60, 97, 60, 100, 7, 97};
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t i = 0; i < std::size(lengths); ++i) {
            const int n = lengths[i];
            const std::vector<R> x = random_vec<R>(std::size_t(n), 40 + unsigned(n));
            std::vector<R> y(x.size());
            Api<R>::dct(x.data(), y.data(), n, i % 2 ? VEK_Inv : VEK_Forw);
            if (pass == 0)
                first.push_back(y);
            else
                EXPECT_EQ(y, first[i]) << n;
            if (i == 3) Api<R>::dct(nullptr, nullptr, 0, VEK_Free);
        }
        Api<R>::dct(nullptr, nullptr, -1, VEK_Free);
    }
    // Flags 9 is a forward transform, not a release.
    R x[4] = {1, 2, 3, 4}, y[4], z[4];
    Api<R>::dct(x, y, 4, VEK_Forw);
    Api<R>::dct(x, z, 4, VEK_Forw | VEK_Free);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(y[i], z[i]);
}

// Each check in its order; dst stays unwritten.
TYPED_TEST(Dct, ChecksAndMessages) {
    using R = TypeParam;
    R src[4] = {1, 2, 3, 4}, dst[4] = {7, 7, 7, 7};
    const struct {
        std::function<void()> call;
        const char* msg;
    } cases[] = {
        {[&] { Api<R>::dct(nullptr, dst, 4, VEK_Forw); }, "\nNull pointer to data buffer\n"},
        {[&] { Api<R>::dct(src, nullptr, 0, 0); }, "\nNull pointer to data buffer\n"},
        {[&] { Api<R>::dct(src, dst, 0, VEK_Forw); }, "\nBad value of data buffer size\n"},
        {[&] { Api<R>::dct(src, dst, -4, 3); }, "\nBad value of data buffer size\n"},
        {[&] { Api<R>::dct(src, dst, 4, 3); }, "\nBad value of the transform flag\n"},
        {[&] { Api<R>::dct(src, dst, 4, 0); }, "\nBad value of the transform flag\n"},
        {[&] { Api<R>::dct(src, dst, 4, VEK_Free | VEK_NoScale); },
         "\nBad value of the transform flag\n"},
    };
    for (const auto& c : cases) {
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, Api<R>::func, c.msg, "vekdct");
        for (R v : dst) EXPECT_EQ(v, R(7));
    }
    // Lengths whose work array or tables cannot be had (the sizes are
    // refused before any data is read).
    for (int n : {1 << 29, (1 << 28) + 1}) {
        ReportRecorder rec;
        Api<R>::dct(src, dst, n, VEK_Inv);
        EXPECT_REPORT(rec, VEK_StatusNoMemory, Api<R>::func, "\nMemory allocation problem\n",
                      "vekdct");
    }
    for (R v : dst) EXPECT_EQ(v, R(7));
}

// Tables built on another thread are released when it ends.
TYPED_TEST(Dct, ThreadExit) {
    using R = TypeParam;
    std::vector<R> out(64);
    std::thread t([&] {
        std::vector<R> x(64, R(1)), y(6, R(1));
        Api<R>::dct(x.data(), out.data(), 64, VEK_Forw);
        Api<R>::dct(y.data(), y.data(), 6, VEK_Forw);
    });
    t.join();
    EXPECT_NEAR(out[0], 8.0, 1e-6);
}

}  // namespace
