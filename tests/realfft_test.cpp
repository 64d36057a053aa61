// Real FFTs and packed spectra: every order and layout against a long-double
// DFT, round trips, products, the two-signal forms, checks and reports.
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "fft_ref.hpp"
#include "test_util.hpp"

using vektest::cld;
using vektest::ReportRecorder;

namespace {

enum Layout { kCcs, kPack, kPerm };

template <class R>
struct Api;

#define VEK_REAL_API(L)                                      \
    static constexpr auto realFft = vek##L##RealFft;         \
    static constexpr auto realFftNip = vek##L##RealFftNip;   \
    static constexpr auto ccsFft = vek##L##CcsFft;           \
    static constexpr auto ccsFftNip = vek##L##CcsFftNip;     \
    static constexpr auto realFftl = vek##L##RealFftl;       \
    static constexpr auto realFftlNip = vek##L##RealFftlNip; \
    static constexpr auto ccsFftl = vek##L##CcsFftl;         \
    static constexpr auto ccsFftlNip = vek##L##CcsFftlNip;   \
    static constexpr auto real2 = vek##L##Real2Fft;          \
    static constexpr auto real2Nip = vek##L##Real2FftNip;    \
    static constexpr auto ccs2 = vek##L##Ccs2Fft;            \
    static constexpr auto ccs2Nip = vek##L##Ccs2FftNip;      \
    static constexpr auto pack2 = vek##L##MpyRCPack2;        \
    static constexpr auto pack3 = vek##L##MpyRCPack3;        \
    static constexpr auto perm2 = vek##L##MpyRCPerm2;        \
    static constexpr auto perm3 = vek##L##MpyRCPerm3;

template <>
struct Api<float> {
    static constexpr const char* module = "vekffts";
    static constexpr double tol = 3e-8;  // relative RMS per bit of order
    static constexpr char letter = 's';
    VEK_REAL_API(s)
};

template <>
struct Api<double> {
    static constexpr const char* module = "vekfftd";
    static constexpr double tol = 6e-17;
    static constexpr char letter = 'd';
    VEK_REAL_API(d)
};

// The name of an export of this type: name("RealFft") = "veksRealFft".
template <class R>
std::string name(const char* op) {
    return std::string("vek") + Api<R>::letter + op;
}

template <class R>
std::vector<R> random_real(std::size_t n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<R> x(n);
    for (auto& v : x) v = R(u(gen));
    return x;
}

// X[0..N/2] of a full spectrum, laid out.
std::vector<long double> laid_out(const std::vector<cld>& X, Layout layout) {
    const std::size_t n = X.size();
    std::vector<long double> v{X[0].real()};
    if (layout == kCcs) v.push_back(0);
    if (n == 1) return v;
    if (layout == kPerm) v.push_back(X[n / 2].real());
    for (std::size_t k = 1; k < n / 2; ++k) v.insert(v.end(), {X[k].real(), X[k].imag()});
    if (layout != kPerm) v.push_back(X[n / 2].real());
    if (layout == kCcs) v.push_back(0);
    return v;
}

// sqrt(sum (y - ref)^2 / sum ref^2) over ref.size() values.
template <class R>
double rel_rms(const R* y, const std::vector<long double>& ref) {
    long double num = 0, den = 0;
    for (std::size_t i = 0; i < ref.size(); ++i) {
        const long double d = y[i] - ref[i];
        num += d * d;
        den += ref[i] * ref[i];
    }
    return den > 0 ? double(std::sqrt(num / den)) : double(std::sqrt(num));
}

template <class R>
double bound(int order) {
    return Api<R>::tol * (order + 2);
}

template <class R>
class RealFft : public ::testing::Test {};
using Types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(RealFft, Types);

// Every order 0..16, every layout, both directions of both transforms, in
// place and not, against the long-double DFT: the forward spectrum, the
// spectrum with the inverse sign (VEK_Inv, scaled by 1/N), the real signal
// back from the spectrum (VEK_Inv), and the unscaled forward-sign sum over
// the spectrum (VEK_Forw), which is N x[-n].
TYPED_TEST(RealFft, EveryOrderAndLayoutMatchesReference) {
    using R = TypeParam;
    for (int order = 0; order <= 16; ++order) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<R> x = random_real<R>(n, 11 + unsigned(order));
        std::vector<cld> xc(n);
        for (std::size_t i = 0; i < n; ++i) xc[i] = cld(x[i], 0);
        const std::vector<cld> X = vektest::reference(xc, -1);
        std::vector<cld> Xi(n);
        for (std::size_t k = 0; k < n; ++k) Xi[k] = std::conj(X[k]) / (long double)(n);
        std::vector<long double> back(n), mirror(n);
        for (std::size_t i = 0; i < n; ++i) {
            back[i] = x[i];
            mirror[i] = (long double)(n)*x[(n - i) % n];
        }
        const double tol = bound<R>(order);
        for (Layout layout : {kCcs, kPack, kPerm}) {
            const bool ccs = layout == kCcs;
            const int out = ccs ? 0 : layout == kPack ? VEK_OutRCPack : VEK_OutRCPerm;
            const int in = ccs ? 0 : layout == kPack ? VEK_InRCPack : VEK_InRCPerm;
            const auto fwd = ccs ? Api<R>::realFft : Api<R>::realFftl;
            const auto fwdNip = ccs ? Api<R>::realFftNip : Api<R>::realFftlNip;
            const auto inv = ccs ? Api<R>::ccsFft : Api<R>::ccsFftl;
            const auto invNip = ccs ? Api<R>::ccsFftNip : Api<R>::ccsFftlNip;
            const std::vector<long double> wantFwd = laid_out(X, layout),
                                           wantInv = laid_out(Xi, layout);
            const std::size_t size = layout == kCcs ? n + 2 : n;
            SCOPED_TRACE(testing::Message() << "order " << order << " layout " << layout);

            std::vector<R> a(size + 1, R(9));
            std::copy(x.begin(), x.end(), a.begin());
            fwd(a.data(), order, VEK_Forw | out);
            EXPECT_LT(rel_rms(a.data(), wantFwd), tol);
            EXPECT_EQ(a[size], R(9));  // nothing beyond the layout's size
            std::vector<R> b(size + 1, R(9));
            fwdNip(x.data(), b.data(), order, VEK_Inv | out);
            EXPECT_LT(rel_rms(b.data(), wantInv), tol);
            EXPECT_EQ(b[size], R(9));

            // Back from the spectrum just computed.
            const std::vector<R> sa = a;
            std::vector<R> c(n + 1, R(9));
            invNip(sa.data(), c.data(), order, VEK_Inv | in);
            EXPECT_LT(rel_rms(c.data(), back), 2 * tol);
            EXPECT_EQ(c[n], R(9));
            EXPECT_EQ(sa, a);  // the input is only read
            inv(a.data(), order, VEK_Forw | in);
            EXPECT_LT(rel_rms(a.data(), mirror), 2 * tol);
            fwd(a.data(), order, VEK_Inv | VEK_NoScale | out);  // round trip through N^2 x
            inv(a.data(), order, VEK_Forw | VEK_NoScale | in);
            for (auto& v : mirror) v *= (long double)(n);
            EXPECT_LT(rel_rms(a.data(), mirror), 4 * tol);
            for (auto& v : mirror) v /= (long double)(n);
        }
    }
}

// Order 0, and the constant signal: N c and exact zeros.
TYPED_TEST(RealFft, OrderZeroAndConstantSignal) {
    using R = TypeParam;
    R one[3] = {R(5), R(7), R(9)};
    Api<R>::realFft(one, 0, VEK_Forw);  // order 0: samps[1] becomes 0
    EXPECT_EQ(one[0], R(5));
    EXPECT_EQ(one[1], R(0));
    EXPECT_EQ(one[2], R(9));
    for (int order : {2, 3, 5, 9, 12}) {
        const std::size_t n = std::size_t(1) << order;
        std::vector<R> x(n + 2, R(0.75));
        Api<R>::realFft(x.data(), order, VEK_Forw);
        EXPECT_EQ(x[0], R(0.75) * R(n)) << order;
        for (std::size_t i = 1; i < n + 2; ++i) ASSERT_EQ(x[i], R(0)) << order << " " << i;
    }
}

// The packed products against complex products done by hand.
TYPED_TEST(RealFft, PackedProducts) {
    using R = TypeParam;
    for (int order : {0, 1, 2, 3, 6, 9}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<R> a = random_real<R>(n + 1, 5), b = random_real<R>(n + 1, 6);
        for (Layout layout : {kPack, kPerm}) {
            std::vector<R> want(a.begin(), a.end());
            want[0] = a[0] * b[0];
            if (n > 1) {
                const std::size_t last = layout == kPack ? n - 1 : 1;
                want[last] = a[last] * b[last];
                for (std::size_t p = layout == kPack ? 1 : 2; p + 1 < n; p += 2) {
                    want[p] = a[p] * b[p] - a[p + 1] * b[p + 1];
                    want[p + 1] = a[p] * b[p + 1] + a[p + 1] * b[p];
                }
            }
            want[n] = R(-4);  // beyond the spectrum: untouched
            std::vector<R> d3(n + 1, R(-4)), d2 = a;
            d2[n] = R(-4);
            if (layout == kPack) {
                Api<R>::pack3(a.data(), b.data(), d3.data(), order);
                Api<R>::pack2(b.data(), d2.data(), order);
            } else {
                Api<R>::perm3(a.data(), b.data(), d3.data(), order);
                Api<R>::perm2(b.data(), d2.data(), order);
            }
            EXPECT_EQ(d3, want) << order << " " << layout;
            EXPECT_EQ(d2, want) << order << " " << layout;
        }
    }
}

// The two-signal forms give exactly what two single calls give.
TYPED_TEST(RealFft, TwoSignalFormsEqualTwoCalls) {
    using R = TypeParam;
    for (int order : {0, 1, 2, 5, 10}) {
        const std::size_t n = std::size_t(1) << order, m = n + 2;
        std::vector<R> x = random_real<R>(m, 21), y = random_real<R>(m, 22);
        x[1] = x[n + 1] = y[1] = y[n + 1] = 0;  // a valid CCS spectrum too
        for (int flags : {int(VEK_Forw), int(VEK_Inv), VEK_Inv | VEK_NoScale})
            for (bool toSpectrum : {true, false}) {
                const auto one = toSpectrum ? Api<R>::realFft : Api<R>::ccsFft;
                const auto two = toSpectrum ? Api<R>::real2 : Api<R>::ccs2;
                const auto twoNip = toSpectrum ? Api<R>::real2Nip : Api<R>::ccs2Nip;
                const std::ptrdiff_t out = toSpectrum ? (order ? m : 2) : n;
                std::vector<R> wx = x, wy = y, vx = x, vy = y, ox(m), oy(m);
                one(wx.data(), order, flags);
                one(wy.data(), order, flags);
                two(vx.data(), vy.data(), order, flags);
                twoNip(x.data(), ox.data(), y.data(), oy.data(), order, flags);
                EXPECT_EQ(vx, wx);
                EXPECT_EQ(vy, wy);
                EXPECT_TRUE(std::equal(ox.begin(), ox.begin() + out, wx.begin()));
                EXPECT_TRUE(std::equal(oy.begin(), oy.begin() + out, wy.begin()));
            }
    }
}

// Every check in its order with its message; the data stays unwritten.
TYPED_TEST(RealFft, ChecksAndMessages) {
    using R = TypeParam;
    R a[16], b[16];
    const R* null = nullptr;
    auto fill = [&] {
        for (int i = 0; i < 16; ++i) a[i] = b[i] = R(i + 1);
    };
    const int F = VEK_Forw, I = VEK_Inv;
    const struct {
        std::function<void()> call;
        const char* op;
        const char* msg;
    } cases[] = {
        {[&] { Api<R>::realFft(a, -1, F); }, "RealFft", "order<0"},
        {[&] { Api<R>::ccsFftNip(b, a, 32, F); }, "CcsFftNip", "order>31"},
        {[&] { Api<R>::ccsFft(nullptr, 2, F | I); }, "CcsFft", "samps==0"},
        {[&] { Api<R>::realFftNip(null, a, 3, F); }, "RealFftNip", "inSamps==0"},
        {[&] { Api<R>::ccsFftlNip(b, nullptr, 3, F); }, "CcsFftlNip", "outSamps==0"},
        {[&] { Api<R>::realFftl(a, 3, F | I | 256 | 512); }, "RealFftl",
         "(flags & 1) && (flags & 2)"},
        {[&] { Api<R>::ccsFft(a, 2, VEK_NoScale); }, "CcsFft", "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { Api<R>::realFftlNip(b, a, 3, F | 256 | 512); }, "RealFftlNip",
         "(flags & 256) && (flags & 512)"},
        {[&] { Api<R>::realFftl(a, 3, I | VEK_InRCPack); }, "RealFftl",
         "(flags & 256)==0 && (flags & 512)==0"},
        {[&] { Api<R>::ccsFftl(a, 3, I | 1024 | 4096); }, "CcsFftl",
         "(flags & 1024) && (flags & 4096)"},
        {[&] { Api<R>::ccsFftlNip(b, a, 3, F | 256); }, "CcsFftlNip",
         "(flags & 1024)==0 && (flags & 4096)==0"},
        {[&] { Api<R>::pack2(nullptr, a, 2); }, "MpyRCPack2", "src==0"},
        {[&] { Api<R>::perm2(b, nullptr, 2); }, "MpyRCPerm2", "dst==0"},
        {[&] { Api<R>::pack3(nullptr, b, a, 2); }, "MpyRCPack3", "srcA==0"},
        {[&] { Api<R>::perm3(b, nullptr, a, 3); }, "MpyRCPerm3", "srcB==0"},
        {[&] { Api<R>::perm3(b, b, nullptr, 33); }, "MpyRCPerm3", "order>31"},
    };
    for (const auto& c : cases) {
        fill();
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, name<R>(c.op).c_str(), c.msg, Api<R>::module);
        for (int i = 0; i < 16; ++i) ASSERT_EQ(a[i], R(i + 1)) << c.op << " " << c.msg;
    }
}

// A failing first signal is reported by the one-signal export, then passed
// up once with the pair's message; the status stays the first failure's.
TYPED_TEST(RealFft, TwoSignalBacktrace) {
    using R = TypeParam;
    R x[10] = {}, y[10] = {};
    const struct {
        std::function<void()> call;
        const char* inner;
        const char* outer;
        const char* msg;
    } cases[] = {
        {[&] { Api<R>::real2(nullptr, y, 3, VEK_Forw); }, "RealFft", "Real2Fft", "samps==0"},
        {[&] { Api<R>::ccs2(x, y, 3, 0); }, "CcsFft", "Ccs2Fft",
         "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { Api<R>::real2Nip(x, x, y, nullptr, 3, VEK_Forw); }, "RealFftNip", "Real2FftNip",
         "outSamps==0"},
        {[&] { Api<R>::ccs2Nip(x, nullptr, y, y, 3, VEK_Inv); }, "CcsFftNip", "Ccs2FftNip",
         "outSamps==0"},
    };
    for (const auto& c : cases) {
        ReportRecorder rec;
        c.call();
        ASSERT_GE(rec.size(), 2u);
        const auto& last = rec[rec.size() - 1];
        EXPECT_EQ(rec[0].func, name<R>(c.inner));
        EXPECT_EQ(rec[0].context, c.msg);
        EXPECT_EQ(last.status, VEK_StatusBacktrace);
        EXPECT_EQ(last.func, name<R>(c.outer));
        EXPECT_EQ(last.context, "out " + name<R>(c.inner));
        EXPECT_EQ(last.file, Api<R>::module);
        EXPECT_EQ(vekGetErrStatus(), VEK_StatusBadArgument);
    }
}

// VEK_Init and VEK_Free take null data and skip the data checks; VEK_Free
// takes any order; an order beyond memory is reported and the transform
// still works afterwards.
TYPED_TEST(RealFft, InitFreeAndMemory) {
    using R = TypeParam;
    for (int order : {0, 1, 2, 6, 13}) {
        Api<R>::realFft(nullptr, order, VEK_Init);
        Api<R>::ccsFftlNip(nullptr, nullptr, order, VEK_Init | VEK_Forw | VEK_Inv);
        Api<R>::real2(nullptr, nullptr, order, VEK_Init);
        Api<R>::ccs2Nip(nullptr, nullptr, nullptr, nullptr, order, VEK_Free);
        Api<R>::realFftl(nullptr, order, VEK_Free | 256 | 512);
    }
    Api<R>::ccsFft(nullptr, -3, VEK_Free);
    Api<R>::realFft(nullptr, 99, VEK_Free);
    EXPECT_EQ(vekGetErrStatus(), 0);
    {
        ReportRecorder rec;
        Api<R>::realFftl(nullptr, 31, VEK_Init);
        EXPECT_REPORT(rec, VEK_StatusNoMemory, name<R>("RealFftl").c_str(), "No working Twd memory",
                      Api<R>::module);
    }
    R x[6] = {1, 1, 1, 1, 7, 7};
    Api<R>::realFft(x, 2, VEK_Forw);
    EXPECT_EQ(x[0], R(4));
    EXPECT_EQ(x[4], R(0));
}

}  // namespace
