// Complex FFT: accuracy against long-double references, orderings, round
// trips, the r and Nip forms, flags and their reports.
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include "fft_ref.hpp"
#include "test_util.hpp"

using vektest::cld;
using vektest::ReportRecorder;

namespace {

template <class C>
struct Api;

template <>
struct Api<CplxFloat> {
    using R = float;
    static constexpr const char* module = "vekffts";
    static constexpr double tol = 2.5e-8;  // per bit of order, relative RMS
    static constexpr int large = 20;       // an order of the row-column split
    static void fft(CplxFloat* x, int o, int f) { vekcFft(x, o, f); }
    static void nip(const CplxFloat* x, CplxFloat* y, int o, int f) { vekcFftNip(x, y, o, f); }
    static void rfft(float* re, float* im, int o, int f) { vekcrFft(re, im, o, f); }
    static void rnip(const float* a, const float* b, float* c, float* d, int o, int f) {
        vekcrFftNip(a, b, c, d, o, f);
    }
    static void bitrev(CplxFloat* x, int o) { vekcbBitRev1(x, o); }
    static constexpr const char* fftName = "vekcFft";
    static constexpr const char* nipName = "vekcFftNip";
    static constexpr const char* rName = "vekcrFft";
    static constexpr const char* rnipName = "vekcrFftNip";
};

template <>
struct Api<CplxDouble> {
    using R = double;
    static constexpr const char* module = "vekfftd";
    static constexpr double tol = 5e-17;
    static constexpr int large = 17;
    static void fft(CplxDouble* x, int o, int f) { vekzFft(x, o, f); }
    static void nip(const CplxDouble* x, CplxDouble* y, int o, int f) { vekzFftNip(x, y, o, f); }
    static void rfft(double* re, double* im, int o, int f) { vekzrFft(re, im, o, f); }
    static void rnip(const double* a, const double* b, double* c, double* d, int o, int f) {
        vekzrFftNip(a, b, c, d, o, f);
    }
    static void bitrev(CplxDouble* x, int o) { vekzbBitRev1(x, o); }
    static constexpr const char* fftName = "vekzFft";
    static constexpr const char* nipName = "vekzFftNip";
    static constexpr const char* rName = "vekzrFft";
    static constexpr const char* rnipName = "vekzrFftNip";
};

template <class C>
std::vector<C> to_vec(const std::vector<cld>& x) {
    using R = typename Api<C>::R;
    std::vector<C> v(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) v[i] = C{R(x[i].real()), R(x[i].imag())};
    return v;
}

// The input as the library sees it (rounded to the element type), widened.
template <class C>
std::vector<cld> widen(const std::vector<C>& v) {
    std::vector<cld> x(v.size());
    for (std::size_t i = 0; i < v.size(); ++i) x[i] = cld(v[i].re, v[i].im);
    return x;
}

template <class C>
double bound(int order) {
    return Api<C>::tol * (order + 2);
}

template <class C>
class Fft : public ::testing::Test {};
using Types = ::testing::Types<CplxFloat, CplxDouble>;
TYPED_TEST_SUITE(Fft, Types);

// Every order from 0 to 17, both directions, in place and not, against the
// references.
TYPED_TEST(Fft, MatchesReferenceForEveryOrder) {
    using C = TypeParam;
    for (int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 100 + order));
        const std::vector<cld> x = widen(in);
        for (int dir : {int(VEK_Forw), int(VEK_Inv)}) {
            const std::vector<cld> ref = vektest::reference(x, dir == VEK_Forw ? -1 : 1);
            const long double scale = dir == VEK_Inv ? 1.0L / n : 1.0L;
            std::vector<C> y = in;
            Api<C>::fft(y.data(), order, dir);
            EXPECT_LT(vektest::rel_rms(y.data(), ref, scale), bound<C>(order))
                << "order " << order << " dir " << dir;
            std::vector<C> z(n, C{7, 7});
            const std::vector<C> keep = in;
            Api<C>::nip(in.data(), z.data(), order, dir | VEK_NoScale);
            EXPECT_LT(vektest::rel_rms(z.data(), ref), bound<C>(order)) << "Nip order " << order;
            EXPECT_EQ(0, std::memcmp(in.data(), keep.data(), n * sizeof(C)));
        }
    }
}

// The large orders, where the transform is split in rows and columns (the
// inverse there is checked by the round trips).
TYPED_TEST(Fft, LargeOrdersMatchReference) {
    using C = TypeParam;
    const int order = Api<C>::large;
    const std::size_t n = std::size_t(1) << order;
    const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 3 + order));
    const std::vector<cld> ref = vektest::fft(widen(in), -1);
    std::vector<C> y = in;
    Api<C>::fft(y.data(), order, VEK_Forw);
    EXPECT_LT(vektest::rel_rms(y.data(), ref), bound<C>(order)) << order;
}

// Hand-computed small cases.
TYPED_TEST(Fft, SmallOrdersByHand) {
    using C = TypeParam;
    C one[1] = {{3, -2}};
    for (int f : {int(VEK_Forw), int(VEK_Inv), VEK_Inv | VEK_NoScale}) {
        Api<C>::fft(one, 0, f);
        EXPECT_EQ(one[0].re, 3);
        EXPECT_EQ(one[0].im, -2);
    }
    C two[2] = {{1, 2}, {3, 5}};
    Api<C>::fft(two, 1, VEK_Forw);
    EXPECT_EQ(two[0].re, 4);
    EXPECT_EQ(two[0].im, 7);
    EXPECT_EQ(two[1].re, -2);
    EXPECT_EQ(two[1].im, -3);
    Api<C>::fft(two, 1, VEK_Inv);  // halves both
    EXPECT_EQ(two[0].re, 1);
    EXPECT_EQ(two[0].im, 2);
    EXPECT_EQ(two[1].re, 3);
    EXPECT_EQ(two[1].im, 5);
    // An impulse at 1 of 4 points: X[k] = (-i)^k.
    C four[4] = {{0, 0}, {1, 0}, {0, 0}, {0, 0}};
    Api<C>::fft(four, 2, VEK_Forw);
    const double want[4][2] = {{1, 0}, {0, -1}, {-1, 0}, {0, 1}};
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(four[k].re, want[k][0], 1e-15) << k;
        EXPECT_NEAR(four[k].im, want[k][1], 1e-15) << k;
    }
}

// Round trips: the inverse scales by 1/N, or leaves N times the input.
TYPED_TEST(Fft, RoundTrips) {
    using C = TypeParam;
    for (int order : {3, 6, 11, 12, 15, Api<C>::large}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<C> in = to_vec<C>(vektest::random_signal(n, order));
        const std::vector<cld> x = widen(in);
        std::vector<C> y = in;
        Api<C>::fft(y.data(), order, VEK_Forw);
        Api<C>::fft(y.data(), order, VEK_Inv);
        EXPECT_LT(vektest::rel_rms(y.data(), x), 2 * bound<C>(order)) << order;
        y = in;
        Api<C>::fft(y.data(), order, VEK_Forw | VEK_NoBitRev);
        Api<C>::fft(y.data(), order, VEK_Inv | VEK_NoScale);
        EXPECT_LT(vektest::rel_rms(y.data(), x, n), 2 * bound<C>(order)) << order;
    }
}

// VEK_OutBitRev leaves the spectrum in bit-reversed order, VEK_InBitRev
// takes it so, and the pair restores the input without a permutation.
TYPED_TEST(Fft, BitReversedOrders) {
    using C = TypeParam;
    for (int order : {1, 2, 3, 4, 5, 6, 7, 8, 10, 13}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 7 * order));
        const std::vector<cld> x = widen(in);
        std::vector<cld> ref = vektest::reference(x, -1);
        std::vector<cld> rev(n);
        for (std::size_t i = 0; i < n; ++i) rev[std::size_t(vekBitRev(int(i), order))] = ref[i];

        // The other two pairings of direction and ordering.
        std::vector<C> p(n);
        for (std::size_t i = 0; i < n; ++i) p[std::size_t(vekBitRev(int(i), order))] = in[i];
        Api<C>::fft(p.data(), order, VEK_Forw | VEK_InBitRev);
        EXPECT_LT(vektest::rel_rms(p.data(), ref), bound<C>(order)) << order;
        const std::vector<cld> inv = vektest::reference(x, 1);
        std::vector<cld> invRev(n);
        for (std::size_t i = 0; i < n; ++i) invRev[std::size_t(vekBitRev(int(i), order))] = inv[i];
        p = in;
        Api<C>::fft(p.data(), order, VEK_Inv | VEK_OutBitRev | VEK_NoScale);
        EXPECT_LT(vektest::rel_rms(p.data(), invRev), bound<C>(order)) << order;

        std::vector<C> y = in;
        Api<C>::fft(y.data(), order, VEK_Forw | VEK_OutBitRev);
        EXPECT_LT(vektest::rel_rms(y.data(), rev), bound<C>(order)) << order;
        std::vector<C> z(n);
        Api<C>::nip(in.data(), z.data(), order, VEK_Forw | VEK_OutBitRev);
        EXPECT_LT(vektest::rel_rms(z.data(), rev), bound<C>(order)) << order;

        // Back from bit-reversed order to the input.
        Api<C>::fft(y.data(), order, VEK_Inv | VEK_InBitRev);
        EXPECT_LT(vektest::rel_rms(y.data(), x), 2 * bound<C>(order)) << order;
        const std::vector<C> keep = z;
        std::vector<C> w(n);
        Api<C>::nip(z.data(), w.data(), order, VEK_Inv | VEK_InBitRev);
        EXPECT_LT(vektest::rel_rms(w.data(), x), 2 * bound<C>(order)) << order;
        EXPECT_EQ(0, std::memcmp(z.data(), keep.data(), n * sizeof(C)));
    }
}

// The r forms against the interleaved form on the same data.
TYPED_TEST(Fft, SplitFormsMatchInterleaved) {
    using C = TypeParam;
    using R = typename Api<C>::R;
    for (int order : {0, 1, 2, 5, 8, 12, 13}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 31 * order + 1));
        for (int flags :
             {int(VEK_Forw), int(VEK_Inv), VEK_Forw | VEK_OutBitRev, VEK_Inv | VEK_InBitRev}) {
            std::vector<C> want = in;
            Api<C>::fft(want.data(), order, flags);
            std::vector<R> re(n), im(n);
            for (std::size_t i = 0; i < n; ++i) {
                re[i] = in[i].re;
                im[i] = in[i].im;
            }
            const std::vector<R> re0 = re, im0 = im;
            std::vector<R> ro(n, 9), io(n, 9);
            Api<C>::rnip(re.data(), im.data(), ro.data(), io.data(), order, flags);
            EXPECT_EQ(re, re0);
            EXPECT_EQ(im, im0);
            Api<C>::rfft(re.data(), im.data(), order, flags);
            for (std::size_t i = 0; i < n; ++i) {
                ASSERT_EQ(re[i], want[i].re) << order << " " << flags << " " << i;
                ASSERT_EQ(im[i], want[i].im) << order << " " << flags << " " << i;
                ASSERT_EQ(ro[i], want[i].re);
                ASSERT_EQ(io[i], want[i].im);
            }
        }
    }
}

// Linearity and the shift theorem on a four-step size: catches a wrong
// inter-step twiddle that a round trip would undo.
TYPED_TEST(Fft, ShiftTheorem) {
    using C = TypeParam;
    const int order = Api<C>::large;
    const std::size_t n = std::size_t(1) << order;
    const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 5));
    std::vector<C> shifted(n);
    for (std::size_t i = 0; i < n; ++i) shifted[(i + 3) % n] = in[i];
    std::vector<C> a = in, b = shifted;
    Api<C>::fft(a.data(), order, VEK_Forw);
    Api<C>::fft(b.data(), order, VEK_Forw);
    std::vector<cld> want(n);
    for (std::size_t k = 0; k < n; ++k)
        want[k] = cld(a[k].re, a[k].im) * vektest::root(std::int64_t(3 * k), std::int64_t(n), -1);
    EXPECT_LT(vektest::rel_rms(b.data(), want), 4 * bound<C>(order));
}

// Each conflict in its order, with its message; the data stays unwritten.
TYPED_TEST(Fft, FlagChecksInOrder) {
    using C = TypeParam;
    const struct {
        int flags;
        const char* msg;
    } cases[] = {
        {VEK_Forw | VEK_Inv, "(flags & 1) && (flags & 2)"},
        {VEK_Forw | VEK_Inv | VEK_InBitRev | VEK_OutBitRev, "(flags & 1) && (flags & 2)"},
        {0, "(flags & 1)==0 && (flags & 2)==0"},
        {VEK_NoScale | VEK_InBitRev | VEK_OutBitRev, "(flags & 1)==0 && (flags & 2)==0"},
        {VEK_Forw | VEK_InBitRev | VEK_OutBitRev, "(flags & 64) && (flags & 128)"},
        {VEK_Inv | VEK_InBitRev | VEK_OutBitRev | VEK_NoBitRev, "(flags & 64) && (flags & 128)"},
        {VEK_Forw | VEK_InBitRev | VEK_NoBitRev, "(flags & 64) && (flags & 32)"},
        {VEK_Inv | VEK_NoBitRev | VEK_OutBitRev, "(flags & 32) && (flags & 128)"},
    };
    for (const auto& c : cases) {
        C x[8];
        for (int i = 0; i < 8; ++i) x[i] = C{typename Api<C>::R(i), 1};
        C y[8] = {};
        {
            ReportRecorder rec;
            Api<C>::fft(x, 3, c.flags);
            EXPECT_REPORT(rec, VEK_StatusBadArgument, Api<C>::fftName, c.msg, Api<C>::module);
        }
        {
            ReportRecorder rec;
            Api<C>::nip(x, y, 3, c.flags);
            EXPECT_REPORT(rec, VEK_StatusBadArgument, Api<C>::nipName, c.msg, Api<C>::module);
        }
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(x[i].re, i);
            EXPECT_EQ(y[i].re, 0);
        }
    }
}

TYPED_TEST(Fft, OrderAndPointerChecks) {
    using C = TypeParam;
    using R = typename Api<C>::R;
    C x[4] = {};
    R a[4] = {}, b[4] = {};
    const struct {
        std::function<void()> call;
        const char* func;
        const char* msg;
    } cases[] = {
        {[&] { Api<C>::fft(x, -1, VEK_Forw); }, Api<C>::fftName, "order<0"},
        {[&] { Api<C>::fft(x, 32, VEK_Forw); }, Api<C>::fftName, "order>31"},
        {[&] { Api<C>::fft(nullptr, 2, VEK_Forw); }, Api<C>::fftName, "samps==0"},
        {[&] { Api<C>::fft(nullptr, 2, VEK_Forw | VEK_Inv); }, Api<C>::fftName, "samps==0"},
        {[&] { Api<C>::nip(nullptr, x, 2, VEK_Forw); }, Api<C>::nipName, "inSamps==0"},
        {[&] { Api<C>::nip(x, nullptr, 2, VEK_Forw); }, Api<C>::nipName, "outSamps==0"},
        {[&] { Api<C>::nip(x, x, 40, 0); }, Api<C>::nipName, "order>31"},
        {[&] { Api<C>::rfft(nullptr, b, 2, VEK_Forw); }, Api<C>::rName, "reSamps==0"},
        {[&] { Api<C>::rfft(a, nullptr, 2, VEK_Forw); }, Api<C>::rName, "imSamps==0"},
        {[&] { Api<C>::rfft(a, b, -3, VEK_Forw); }, Api<C>::rName, "order<0"},
        {[&] { Api<C>::rnip(nullptr, b, a, b, 2, VEK_Forw); }, Api<C>::rnipName, "reInSamps==0"},
        {[&] { Api<C>::rnip(a, nullptr, a, b, 2, VEK_Forw); }, Api<C>::rnipName, "imInSamps==0"},
        {[&] { Api<C>::rnip(a, b, nullptr, b, 2, VEK_Forw); }, Api<C>::rnipName, "reOutSamps==0"},
        {[&] { Api<C>::rnip(a, b, a, nullptr, 2, VEK_Forw); }, Api<C>::rnipName, "imOutSamps==0"},
        {[&] { Api<C>::rnip(a, b, a, b, 2, 3); }, Api<C>::rnipName, "(flags & 1) && (flags & 2)"},
    };
    for (const auto& c : cases) {
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, c.func, c.msg, Api<C>::module);
    }
}

// VEK_Init builds ahead (any pointer, any direction bits), VEK_Free
// releases (order unchecked); an order too large for memory is reported.
TYPED_TEST(Fft, InitFreeAndMemory) {
    using C = TypeParam;
    for (int order : {0, 5, 12, 20}) {
        Api<C>::fft(nullptr, order, VEK_Init);
        Api<C>::fft(nullptr, order, VEK_Init | VEK_OutBitRev);
        Api<C>::nip(nullptr, nullptr, order, VEK_Init | VEK_Forw | VEK_Inv);
        Api<C>::rfft(nullptr, nullptr, order, VEK_Init);
        Api<C>::fft(nullptr, order, VEK_Free);
        Api<C>::rnip(nullptr, nullptr, nullptr, nullptr, order, VEK_Free | VEK_Forw);
    }
    Api<C>::fft(nullptr, -4, VEK_Free);
    Api<C>::fft(nullptr, 77, VEK_Free | VEK_OutBitRev);
    EXPECT_EQ(vekGetErrStatus(), 0);
    for (int order : {29, 31}) {
        ReportRecorder rec;
        Api<C>::fft(nullptr, order, VEK_Init);
        EXPECT_REPORT(rec, VEK_StatusNoMemory, Api<C>::fftName, "No working Twd memory",
                      Api<C>::module);
    }
    // Still usable afterwards.
    C x[4] = {{1, 0}, {1, 0}, {1, 0}, {1, 0}};
    Api<C>::fft(x, 2, VEK_Forw);
    EXPECT_EQ(x[0].re, 4);
    EXPECT_EQ(x[1].re, 0);
}

}  // namespace

namespace {

// The full accuracy sweep, too slow for every run: relative RMS error of the
// forward transform against the long-double reference for every order to
// 20 (run with --gtest_also_run_disabled_tests).
TYPED_TEST(Fft, DISABLED_AccuracySweep) {
    using C = TypeParam;
    for (int order = 1; order <= 20; ++order) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<C> in = to_vec<C>(vektest::random_signal(n, 11 * order));
        const std::vector<cld> ref = vektest::fft(widen(in), -1);
        std::vector<C> y = in;
        Api<C>::fft(y.data(), order, VEK_Forw);
        const double e = vektest::rel_rms(y.data(), ref);
        std::printf("order %2d  relative rms %.3g\n", order, e);
        EXPECT_LT(e, bound<C>(order));
    }
}

}  // namespace
