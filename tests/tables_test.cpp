// Bit reversal and twiddle tables: values, permutations, per-thread caches
// and their reports.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

// Reversal by the obvious loop, for comparison.
unsigned reverse(unsigned a, int order) {
    unsigned r = 0;
    for (int i = 0; i < order; ++i) r |= ((a >> i) & 1u) << (order - 1 - i);
    return r;
}

TEST(BitRev, IndexFunction) {
    const struct {
        int a, order, want;
    } cases[] = {
        {5, 0, 0},
        {1, 3, 4},
        {6, 3, 3},
        {0xF1, 3, 4},
        {1, 1, 1},
        {-1, 4, 15},
        {0x40000000, 31, 1},
        {1, 31, 0x40000000},
        {0x1234, 16, 0x2C48},
        {-2, 31, 0x3FFFFFFF},
    };
    for (const auto& c : cases) EXPECT_EQ(vekBitRev(c.a, c.order), c.want) << c.a << "," << c.order;
}

// The table and every in-place and out-of-place permutation, orders 0..20.
TEST(BitRev, TablesAndPermutationsEveryOrder) {
    for (int order = 0; order <= 20; ++order) {
        const std::size_t n = std::size_t(1) << order;
        std::vector<int> tbl(n, -1);
        vekCalcBitRevTbl(tbl.data(), order);
        const int* cached = vekGetBitRevTbl(order);
        ASSERT_NE(cached, nullptr);
        EXPECT_EQ(cached, vekGetBitRevTbl(order));
        for (std::size_t i = 0; i < n; ++i) {
            ASSERT_EQ(unsigned(tbl[i]), reverse(unsigned(i), order)) << order << " " << i;
            ASSERT_EQ(cached[i], tbl[i]);
        }
        // Doubles carry their own index, so every element's place is checked.
        std::vector<double> d(n), d2(n, -1);
        std::iota(d.begin(), d.end(), 0.0);
        const std::vector<double> orig = d;
        vekdbBitRev2(d.data(), d2.data(), order);
        vekdbBitRev1(d.data(), order);
        EXPECT_EQ(d, d2);
        for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(d[i], double(tbl[i])) << order << " " << i;
        vekdbBitRev1(d.data(), order);
        EXPECT_EQ(d, orig);
    }
}

// Every element width moves its elements whole.
TEST(BitRev, EveryElementType) {
    for (int order : {0, 1, 2, 3, 4, 7, 10}) {
        const std::size_t n = std::size_t(1) << order;
        std::vector<short> w(n), w2(n);
        std::vector<CplxShort> v(n), v2(n);
        std::vector<float> s(n), s2(n);
        std::vector<CplxFloat> c(n), c2(n);
        std::vector<CplxDouble> z(n), z2(n);
        for (std::size_t i = 0; i < n; ++i) {
            w[i] = short(i);
            v[i] = CplxShort{short(i), short(-int(i))};
            s[i] = float(i);
            c[i] = CplxFloat{float(i), -float(i)};
            z[i] = CplxDouble{double(i), -double(i)};
        }
        vekwbBitRev2(w.data(), w2.data(), order);
        vekvbBitRev2(v.data(), v2.data(), order);
        veksbBitRev2(s.data(), s2.data(), order);
        vekcbBitRev2(c.data(), c2.data(), order);
        vekzbBitRev2(z.data(), z2.data(), order);
        vekwbBitRev1(w.data(), order);
        vekvbBitRev1(v.data(), order);
        veksbBitRev1(s.data(), order);
        vekcbBitRev1(c.data(), order);
        vekzbBitRev1(z.data(), order);
        for (std::size_t i = 0; i < n; ++i) {
            const int r = int(reverse(unsigned(i), order));
            ASSERT_EQ(w[i], r);
            ASSERT_EQ(w2[i], r);
            ASSERT_EQ(v[i].re, r);
            ASSERT_EQ(v[i].im, -r);
            ASSERT_EQ(v2[i].im, -r);
            ASSERT_EQ(s[i], r);
            ASSERT_EQ(s2[i], r);
            ASSERT_EQ(c[i].re, r);
            ASSERT_EQ(c[i].im, -r);
            ASSERT_EQ(c2[i].im, -r);
            ASSERT_EQ(z[i].re, r);
            ASSERT_EQ(z2[i].im, -r);
        }
    }
}

TEST(BitRev, ChecksAndReports) {
    int tbl[4] = {9, 9, 9, 9};
    float f[4] = {1, 2, 3, 4};
    float g[4] = {0, 0, 0, 0};
    const struct {
        std::function<void()> call;
        const char* func;
        const char* msg;
    } cases[] = {
        {[&] { vekCalcBitRevTbl(tbl, -1); }, "vekCalcBitRevTbl", "order<0"},
        {[&] { vekCalcBitRevTbl(tbl, 32); }, "vekCalcBitRevTbl", "order>31"},
        {[&] { vekCalcBitRevTbl(nullptr, 2); }, "vekCalcBitRevTbl", "tbl==0"},
        {[&] { vekGetBitRevTbl(-5); }, "vekGetBitRevTbl", "order<0"},
        {[&] { vekGetBitRevTbl(31); }, "vekGetBitRevTbl", "NULL Pointer"},
        {[&] { EXPECT_EQ(vekBitRev(3, 33), 0); }, "vekBitRev", "order>31"},
        {[&] { veksbBitRev1(f, -1); }, "veksbBitRev1", "order<0"},
        {[&] { veksbBitRev1(nullptr, 2); }, "veksbBitRev1", "vec==0"},
        {[&] { vekzbBitRev1(nullptr, 40); }, "vekzbBitRev1", "order>31"},
        {[&] { veksbBitRev2(nullptr, g, 2); }, "veksbBitRev2", "src==0"},
        {[&] { veksbBitRev2(f, nullptr, 2); }, "veksbBitRev2", "dst==0"},
        {[&] { vekwbBitRev2(nullptr, nullptr, 32); }, "vekwbBitRev2", "order>31"},
    };
    for (const auto& c : cases) {
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(
            rec,
            c.func == std::string("vekGetBitRevTbl") && std::string(c.msg) == "NULL Pointer"
                ? VEK_StatusNoMemory
                : VEK_StatusBadArgument,
            c.func, c.msg, "vekmisc");
    }
    EXPECT_EQ(tbl[0], 9);
    EXPECT_EQ(f[1], 2);
    EXPECT_EQ(g[1], 0);
    // A failed status makes the getters return null without a report.
    ReportRecorder rec;
    vekSetErrStatus(VEK_StatusBadArgument);
    EXPECT_EQ(vekGetBitRevTbl(3), nullptr);
    EXPECT_EQ(vekBitRev(1, 3), 0);
    EXPECT_EQ(vekcGetFftTwdTbl(3), nullptr);
    EXPECT_EQ(vekzGetDftTwdTbl(5), nullptr);
    EXPECT_EQ(rec.size(), 0u);
}

// Each entry against exp(-2*pi*i*k/N) from the long-double library.
TEST(Twiddles, FftTablesHoldTheRoots) {
    for (int order : {0, 1, 2, 3, 5, 10, 13}) {
        const std::size_t n = std::size_t(1) << order;
        std::vector<CplxFloat> c(n);
        std::vector<CplxDouble> z(n);
        std::vector<CplxShort> v(n);
        vekcCalcFftTwdTbl(c.data(), order);
        vekzCalcFftTwdTbl(z.data(), order);
        vekvCalcFftTwdTbl(v.data(), order);
        const CplxFloat* cc = vekcGetFftTwdTbl(order);
        const CplxDouble* zc = vekzGetFftTwdTbl(order);
        const CplxShort* vc = vekvGetFftTwdTbl(order);
        ASSERT_TRUE(cc && zc && vc);
        EXPECT_EQ(cc, vekcGetFftTwdTbl(order));
        EXPECT_EQ(0, std::memcmp(cc, c.data(), n * sizeof(CplxFloat)));
        EXPECT_EQ(0, std::memcmp(zc, z.data(), n * sizeof(CplxDouble)));
        EXPECT_EQ(0, std::memcmp(vc, v.data(), n * sizeof(CplxShort)));
        for (std::size_t k = 0; k < n; ++k) {
            const long double a = 2 * 3.14159265358979323846264338327950288L * k / n;
            EXPECT_NEAR(c[k].re, std::cos(a), 6e-8) << order << " " << k;
            EXPECT_NEAR(c[k].im, -std::sin(a), 6e-8);
            EXPECT_NEAR(z[k].re, double(std::cos(a)), 2e-15);
            EXPECT_NEAR(z[k].im, double(-std::sin(a)), 2e-15);
            EXPECT_LE(std::fabs(v[k].re - 16384 * std::cos(a)), 1.0L);
            EXPECT_LE(std::fabs(v[k].im + 16384 * std::sin(a)), 1.0L);
            EXPECT_LE(std::abs(v[k].re), std::fabs(16384 * std::cos(a)) + 1e-9L);  // toward zero
        }
        EXPECT_EQ(v[0].re, 16384);
        EXPECT_EQ(v[0].im, 0);
    }
    CplxShort q[4];
    vekvCalcFftTwdTbl(q, 2);
    const int want[4][2] = {{16384, 0}, {0, -16384}, {-16384, 0}, {0, 16384}};
    for (int k = 0; k < 4; ++k) {
        EXPECT_LE(std::abs(q[k].re - want[k][0]), 1) << k;
        EXPECT_LE(std::abs(q[k].im - want[k][1]), 1) << k;
    }
}

TEST(Twiddles, DftTablesAndTheirList) {
    vekcFreeTwdTbls();
    for (int len : {1, 3, 7, 100}) {
        std::vector<CplxDouble> z(std::size_t(len), CplxDouble{9, 9});
        vekzCalcDftTwdTbl(z.data(), len);
        const CplxDouble* zc = vekzGetDftTwdTbl(len);
        ASSERT_NE(zc, nullptr);
        for (int k = 0; k < len; ++k) {
            const long double a = 2 * 3.14159265358979323846264338327950288L * k / len;
            EXPECT_NEAR(z[std::size_t(k)].re, double(std::cos(a)), 2e-15);
            EXPECT_NEAR(z[std::size_t(k)].im, double(-std::sin(a)), 2e-15);
            EXPECT_EQ(zc[k].re, z[std::size_t(k)].re);
        }
    }
    // 32 lengths fit; the 33rd is refused until the list is freed; a length
    // already there is found again.
    std::vector<const CplxFloat*> got;
    for (int len = 1; len <= 32; ++len) got.push_back(vekcGetDftTwdTbl(len));
    for (int len = 1; len <= 32; ++len) EXPECT_EQ(vekcGetDftTwdTbl(len), got[std::size_t(len - 1)]);
    {
        ReportRecorder rec;
        EXPECT_EQ(vekcGetDftTwdTbl(33), nullptr);
        EXPECT_REPORT(rec, VEK_StatusNoMemory, "vekcGetDftTwdTbl", "Full Table", "vektwd");
    }
    EXPECT_NE(vekvGetDftTwdTbl(33), nullptr);  // the lists are per type
    vekcFreeTwdTbls();
    const CplxFloat* t = vekcGetDftTwdTbl(33);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0].re, 1.0f);
    vekcFreeTwdTbls();
    vekvFreeTwdTbls();
}

TEST(Twiddles, ChecksAndReports) {
    CplxFloat c[2] = {{5, 5}, {5, 5}};
    const struct {
        std::function<void()> call;
        const char* func;
        const char* msg;
        int status;
    } cases[] = {
        {[&] { vekcCalcFftTwdTbl(c, -1); }, "vekcCalcFftTwdTbl", "order<0", VEK_StatusBadArgument},
        {[&] { vekzCalcFftTwdTbl(nullptr, 32); }, "vekzCalcFftTwdTbl", "order>31",
         VEK_StatusBadArgument},
        {[&] { vekvCalcFftTwdTbl(nullptr, 1); }, "vekvCalcFftTwdTbl", "tbl==0",
         VEK_StatusBadArgument},
        {[&] { vekcGetFftTwdTbl(32); }, "vekcGetFftTwdTbl", "order>31", VEK_StatusBadArgument},
        {[&] { vekzGetFftTwdTbl(31); }, "vekzGetFftTwdTbl", "NULL Pointer", VEK_StatusNoMemory},
        {[&] { vekcCalcDftTwdTbl(nullptr, 4); }, "vekcCalcDftTwdTbl", "tbl==0",
         VEK_StatusBadArgument},
        {[&] { vekcCalcDftTwdTbl(c, 0); }, "vekcCalcDftTwdTbl", "length<=0", VEK_StatusBadArgument},
        {[&] { vekvGetDftTwdTbl(-3); }, "vekvGetDftTwdTbl", "length<=0", VEK_StatusBadArgument},
        {[&] { vekzGetDftTwdTbl(0x7fffffff); }, "vekzGetDftTwdTbl", "NULL Pointer",
         VEK_StatusNoMemory},
    };
    for (const auto& k : cases) {
        ReportRecorder rec;
        k.call();
        EXPECT_REPORT(rec, k.status, k.func, k.msg, "vektwd");
    }
    EXPECT_EQ(c[0].re, 5);
    EXPECT_EQ(c[1].im, 5);
}

// Tables are per thread: another thread builds its own, and its exit frees
// them (the sanitizer build checks for the leak).
TEST(Twiddles, EachThreadBuildsItsOwn) {
    const CplxFloat* mine = vekcGetFftTwdTbl(6);
    const int* myRev = vekGetBitRevTbl(6);
    const CplxFloat* theirs = nullptr;
    const int* theirRev = nullptr;
    std::thread t([&] {
        theirs = vekcGetFftTwdTbl(6);
        theirRev = vekGetBitRevTbl(6);
        vekzGetDftTwdTbl(12);
        CplxDouble x[64] = {};
        vekzFft(x, 6, VEK_Forw);
    });
    t.join();
    ASSERT_NE(theirs, nullptr);
    EXPECT_NE(theirs, mine);
    EXPECT_NE(theirRev, myRev);
    EXPECT_EQ(mine, vekcGetFftTwdTbl(6));
}

}  // namespace
