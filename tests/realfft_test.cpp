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

template <>
struct Api<float> {
    static constexpr const char* module = "vekffts";
    static constexpr double tol = 3e-8;  // relative RMS per bit of order
    static constexpr char letter = 's';
    static void realFft(float* x, int o, int f) { veksRealFft(x, o, f); }
    static void realFftNip(const float* x, float* y, int o, int f) { veksRealFftNip(x, y, o, f); }
    static void ccsFft(float* x, int o, int f) { veksCcsFft(x, o, f); }
    static void ccsFftNip(const float* x, float* y, int o, int f) { veksCcsFftNip(x, y, o, f); }
    static void realFftl(float* x, int o, int f) { veksRealFftl(x, o, f); }
    static void realFftlNip(const float* x, float* y, int o, int f) { veksRealFftlNip(x, y, o, f); }
    static void ccsFftl(float* x, int o, int f) { veksCcsFftl(x, o, f); }
    static void ccsFftlNip(const float* x, float* y, int o, int f) { veksCcsFftlNip(x, y, o, f); }
    static void real2(float* x, float* y, int o, int f) { veksReal2Fft(x, y, o, f); }
    static void real2Nip(const float* a, float* b, const float* c, float* d, int o, int f) {
        veksReal2FftNip(a, b, c, d, o, f);
    }
    static void ccs2(float* x, float* y, int o, int f) { veksCcs2Fft(x, y, o, f); }
    static void ccs2Nip(const float* a, float* b, const float* c, float* d, int o, int f) {
        veksCcs2FftNip(a, b, c, d, o, f);
    }
    static void pack2(const float* s, float* d, int o) { veksMpyRCPack2(s, d, o); }
    static void pack3(const float* a, const float* b, float* d, int o) {
        veksMpyRCPack3(a, b, d, o);
    }
    static void perm2(const float* s, float* d, int o) { veksMpyRCPerm2(s, d, o); }
    static void perm3(const float* a, const float* b, float* d, int o) {
        veksMpyRCPerm3(a, b, d, o);
    }
};

template <>
struct Api<double> {
    static constexpr const char* module = "vekfftd";
    static constexpr double tol = 6e-17;
    static constexpr char letter = 'd';
    static void realFft(double* x, int o, int f) { vekdRealFft(x, o, f); }
    static void realFftNip(const double* x, double* y, int o, int f) { vekdRealFftNip(x, y, o, f); }
    static void ccsFft(double* x, int o, int f) { vekdCcsFft(x, o, f); }
    static void ccsFftNip(const double* x, double* y, int o, int f) { vekdCcsFftNip(x, y, o, f); }
    static void realFftl(double* x, int o, int f) { vekdRealFftl(x, o, f); }
    static void realFftlNip(const double* x, double* y, int o, int f) {
        vekdRealFftlNip(x, y, o, f);
    }
    static void ccsFftl(double* x, int o, int f) { vekdCcsFftl(x, o, f); }
    static void ccsFftlNip(const double* x, double* y, int o, int f) { vekdCcsFftlNip(x, y, o, f); }
    static void real2(double* x, double* y, int o, int f) { vekdReal2Fft(x, y, o, f); }
    static void real2Nip(const double* a, double* b, const double* c, double* d, int o, int f) {
        vekdReal2FftNip(a, b, c, d, o, f);
    }
    static void ccs2(double* x, double* y, int o, int f) { vekdCcs2Fft(x, y, o, f); }
    static void ccs2Nip(const double* a, double* b, const double* c, double* d, int o, int f) {
        vekdCcs2FftNip(a, b, c, d, o, f);
    }
    static void pack2(const double* s, double* d, int o) { vekdMpyRCPack2(s, d, o); }
    static void pack3(const double* a, const double* b, double* d, int o) {
        vekdMpyRCPack3(a, b, d, o);
    }
    static void perm2(const double* s, double* d, int o) { vekdMpyRCPerm2(s, d, o); }
    static void perm3(const double* a, const double* b, double* d, int o) {
        vekdMpyRCPerm3(a, b, d, o);
    }
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
    std::vector<long double> v;
    if (n == 1) {
        v = {X[0].real()};
        if (layout == kCcs) v.push_back(0);
        return v;
    }
    v.push_back(X[0].real());
    if (layout == kCcs) v.push_back(0);
    if (layout == kPerm) v.push_back(X[n / 2].real());
    for (std::size_t k = 1; k < n / 2; ++k) {
        v.push_back(X[k].real());
        v.push_back(X[k].imag());
    }
    if (layout == kCcs) {
        v.push_back(X[n / 2].real());
        v.push_back(0);
    }
    if (layout == kPack) v.push_back(X[n / 2].real());
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
            const int out = layout == kPack ? VEK_OutRCPack : VEK_OutRCPerm;
            const int in = layout == kPack ? VEK_InRCPack : VEK_InRCPerm;
            auto fwd = [&](R* v, int f) {
                if (layout == kCcs)
                    Api<R>::realFft(v, order, f);
                else
                    Api<R>::realFftl(v, order, f | out);
            };
            auto fwdNip = [&](const R* a, R* b, int f) {
                if (layout == kCcs)
                    Api<R>::realFftNip(a, b, order, f);
                else
                    Api<R>::realFftlNip(a, b, order, f | out);
            };
            auto inv = [&](R* v, int f) {
                if (layout == kCcs)
                    Api<R>::ccsFft(v, order, f);
                else
                    Api<R>::ccsFftl(v, order, f | in);
            };
            auto invNip = [&](const R* a, R* b, int f) {
                if (layout == kCcs)
                    Api<R>::ccsFftNip(a, b, order, f);
                else
                    Api<R>::ccsFftlNip(a, b, order, f | in);
            };
            const std::vector<long double> spec = laid_out(X, layout), speci = laid_out(Xi, layout);
            const std::size_t size = layout == kCcs ? n + 2 : n;
            SCOPED_TRACE(testing::Message() << "order " << order << " layout " << layout);

            std::vector<R> a(size + 1, R(9));
            std::copy(x.begin(), x.end(), a.begin());
            fwd(a.data(), VEK_Forw);
            EXPECT_LT(rel_rms(a.data(), spec), tol);
            EXPECT_EQ(a[size], R(9));  // nothing beyond the layout's size
            std::vector<R> b(size + 1, R(9));
            fwdNip(x.data(), b.data(), VEK_Inv);
            EXPECT_LT(rel_rms(b.data(), speci), tol);
            EXPECT_EQ(b[size], R(9));

            // Back from the spectrum just computed.
            const std::vector<R> sa = a;
            std::vector<R> c(n + 1, R(9));
            invNip(sa.data(), c.data(), VEK_Inv);
            EXPECT_LT(rel_rms(c.data(), back), 2 * tol);
            EXPECT_EQ(c[n], R(9));
            EXPECT_EQ(sa, a);  // the input is only read
            inv(a.data(), VEK_Forw);
            EXPECT_LT(rel_rms(a.data(), mirror), 2 * tol);
            fwd(a.data(), VEK_Inv | VEK_NoScale);  // round trip through N^2 x
            inv(a.data(), VEK_Forw | VEK_NoScale);
            for (auto& v : mirror) v *= (long double)(n);
            EXPECT_LT(rel_rms(a.data(), mirror), 4 * tol);
            for (auto& v : mirror) v /= (long double)(n);
        }
    }
}

// Hand-computed small cases and the constant signal.
TYPED_TEST(RealFft, SmallOrdersAndConstantSignal) {
    using R = TypeParam;
    R one[3] = {R(5), R(7), R(9)};
    Api<R>::realFft(one, 0, VEK_Forw);  // order 0: samps[1] becomes 0
    EXPECT_EQ(one[0], R(5));
    EXPECT_EQ(one[1], R(0));
    EXPECT_EQ(one[2], R(9));
    for (int f : {VEK_OutRCPack, VEK_OutRCPerm}) {
        R two[2] = {R(3), R(5)};
        Api<R>::realFftl(two, 1, VEK_Forw | f);
        EXPECT_EQ(two[0], R(8));
        EXPECT_EQ(two[1], R(-2));
        Api<R>::ccsFftl(two, 1, VEK_Inv | (f == VEK_OutRCPack ? VEK_InRCPack : VEK_InRCPerm));
        EXPECT_EQ(two[0], R(3));
        EXPECT_EQ(two[1], R(5));
    }
    // x = (1, 2, 3, 4): X = (10, -2+2i, -2).
    R four[6] = {R(1), R(2), R(3), R(4), R(0), R(0)};
    Api<R>::realFft(four, 2, VEK_Forw);
    const R want[6] = {10, 0, -2, 2, -2, 0};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(four[i], want[i]) << i;

    for (int order : {2, 3, 5, 9, 12}) {
        const std::size_t n = std::size_t(1) << order;
        std::vector<R> x(n + 2, R(0.75));
        Api<R>::realFft(x.data(), order, VEK_Forw);
        EXPECT_EQ(x[0], R(0.75) * R(n)) << order;
        for (std::size_t i = 1; i < n + 2; ++i) ASSERT_EQ(x[i], R(0)) << order << " " << i;
    }
}

// Odd offsets for every pointer: the kernels make no alignment assumption.
TYPED_TEST(RealFft, UnalignedBuffers) {
    using R = TypeParam;
    for (int order : {4, 7, 10}) {
        const std::size_t n = std::size_t(1) << order;
        const std::vector<R> x = random_real<R>(n, 3);
        std::vector<R> a(n + 3), b(n + 3);
        std::copy(x.begin(), x.end(), a.begin());
        std::copy(x.begin(), x.end(), b.begin() + 1);
        Api<R>::realFftl(a.data(), order, VEK_Forw | VEK_OutRCPack);
        Api<R>::realFftl(b.data() + 1, order, VEK_Forw | VEK_OutRCPack);
        EXPECT_TRUE(std::equal(a.begin(), a.begin() + std::ptrdiff_t(n), b.begin() + 1)) << order;
        Api<R>::ccsFftl(b.data() + 1, order, VEK_Inv | VEK_InRCPack);
        for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(b[i + 1], x[i], 1e-5) << order << " " << i;
    }
}

// The packed products against complex products done by hand, and the
// product of two spectra as a circular convolution.
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
    // Fast convolution: IFFT(FFT(x) * FFT(h)) is the circular convolution.
    const int order = 7;
    const std::size_t n = std::size_t(1) << order;
    const std::vector<R> x = random_real<R>(n, 8), h = random_real<R>(n, 9);
    std::vector<long double> conv(n, 0);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) conv[(i + j) % n] += (long double)(x[i]) * h[j];
    for (Layout layout : {kPack, kPerm}) {
        const int out = layout == kPack ? VEK_OutRCPack : VEK_OutRCPerm;
        const int in = layout == kPack ? VEK_InRCPack : VEK_InRCPerm;
        std::vector<R> fx = x, fh = h, y(n);
        Api<R>::realFftl(fx.data(), order, VEK_Forw | out);
        Api<R>::realFftl(fh.data(), order, VEK_Forw | out);
        if (layout == kPack)
            Api<R>::pack2(fh.data(), fx.data(), order);
        else
            Api<R>::perm2(fh.data(), fx.data(), order);
        Api<R>::ccsFftlNip(fx.data(), y.data(), order, VEK_Inv | in);
        EXPECT_LT(rel_rms(y.data(), conv), 4 * bound<R>(order)) << layout;
    }
}

// The two-signal forms give exactly what two single calls give.
TYPED_TEST(RealFft, TwoSignalFormsEqualTwoCalls) {
    using R = TypeParam;
    for (int order : {0, 1, 2, 5, 10}) {
        const std::size_t n = std::size_t(1) << order, m = n + 2;
        std::vector<R> x = random_real<R>(m, 21), y = random_real<R>(m, 22);
        x[1] = x[n + 1] = y[1] = y[n + 1] = 0;  // a valid CCS spectrum too
        for (int flags : {int(VEK_Forw), int(VEK_Inv), VEK_Inv | VEK_NoScale}) {
            std::vector<R> wx = x, wy = y, ox(m), oy(m), gx(m), gy(m);
            Api<R>::realFft(wx.data(), order, flags);
            Api<R>::realFft(wy.data(), order, flags);
            std::vector<R> vx = x, vy = y;
            Api<R>::real2(vx.data(), vy.data(), order, flags);
            EXPECT_EQ(vx, wx);
            EXPECT_EQ(vy, wy);
            Api<R>::real2Nip(x.data(), gx.data(), y.data(), gy.data(), order, flags);
            EXPECT_EQ(gx, wx);
            EXPECT_EQ(gy, wy);

            wx = x, wy = y, vx = x, vy = y;
            Api<R>::ccsFft(wx.data(), order, flags);
            Api<R>::ccsFft(wy.data(), order, flags);
            Api<R>::ccs2(vx.data(), vy.data(), order, flags);
            EXPECT_EQ(vx, wx);
            EXPECT_EQ(vy, wy);
            Api<R>::ccs2Nip(x.data(), ox.data(), y.data(), oy.data(), order, flags);
            EXPECT_TRUE(std::equal(ox.begin(), ox.begin() + std::ptrdiff_t(n), wx.begin()));
            EXPECT_TRUE(std::equal(oy.begin(), oy.begin() + std::ptrdiff_t(n), wy.begin()));
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
        {[&] { Api<R>::realFft(a, 32, F); }, "RealFft", "order>31"},
        {[&] { Api<R>::realFft(nullptr, 3, F | I); }, "RealFft", "samps==0"},
        {[&] { Api<R>::realFft(a, 3, F | I); }, "RealFft", "(flags & 1) && (flags & 2)"},
        {[&] { Api<R>::realFft(a, 3, VEK_NoScale); }, "RealFft",
         "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { Api<R>::realFftNip(null, a, 3, F); }, "RealFftNip", "inSamps==0"},
        {[&] { Api<R>::realFftNip(a, nullptr, 3, F); }, "RealFftNip", "outSamps==0"},
        {[&] { Api<R>::realFftNip(b, a, -5, F); }, "RealFftNip", "order<0"},
        {[&] { Api<R>::ccsFft(a, 40, F); }, "CcsFft", "order>31"},
        {[&] { Api<R>::ccsFft(nullptr, 2, 0); }, "CcsFft", "samps==0"},
        {[&] { Api<R>::ccsFft(a, 2, 0); }, "CcsFft", "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { Api<R>::ccsFftNip(null, a, 2, F); }, "CcsFftNip", "inSamps==0"},
        {[&] { Api<R>::ccsFftNip(b, nullptr, 2, F); }, "CcsFftNip", "outSamps==0"},
        {[&] { Api<R>::ccsFftNip(b, a, 2, F | I); }, "CcsFftNip", "(flags & 1) && (flags & 2)"},
        {[&] { Api<R>::realFftl(a, 3, F | I | 256 | 512); }, "RealFftl",
         "(flags & 1) && (flags & 2)"},
        {[&] { Api<R>::realFftl(a, 3, F | 256 | 512); }, "RealFftl",
         "(flags & 256) && (flags & 512)"},
        {[&] { Api<R>::realFftl(a, 3, I); }, "RealFftl", "(flags & 256)==0 && (flags & 512)==0"},
        {[&] { Api<R>::realFftl(a, 3, I | VEK_InRCPack); }, "RealFftl",
         "(flags & 256)==0 && (flags & 512)==0"},
        {[&] { Api<R>::realFftlNip(b, a, 3, F | 256 | 512); }, "RealFftlNip",
         "(flags & 256) && (flags & 512)"},
        {[&] { Api<R>::realFftlNip(b, nullptr, 3, F | 256); }, "RealFftlNip", "outSamps==0"},
        {[&] { Api<R>::ccsFftl(a, 3, I | 1024 | 4096); }, "CcsFftl",
         "(flags & 1024) && (flags & 4096)"},
        {[&] { Api<R>::ccsFftl(a, 3, F | VEK_OutRCPack); }, "CcsFftl",
         "(flags & 1024)==0 && (flags & 4096)==0"},
        {[&] { Api<R>::ccsFftl(a, 3, 1024); }, "CcsFftl", "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { Api<R>::ccsFftlNip(null, a, 3, I | 1024); }, "CcsFftlNip", "inSamps==0"},
        {[&] { Api<R>::ccsFftlNip(b, a, 3, I); }, "CcsFftlNip",
         "(flags & 1024)==0 && (flags & 4096)==0"},
        {[&] { Api<R>::pack2(b, a, -1); }, "MpyRCPack2", "order<0"},
        {[&] { Api<R>::pack2(nullptr, a, 2); }, "MpyRCPack2", "src==0"},
        {[&] { Api<R>::pack2(b, nullptr, 2); }, "MpyRCPack2", "dst==0"},
        {[&] { Api<R>::pack3(nullptr, b, a, 2); }, "MpyRCPack3", "srcA==0"},
        {[&] { Api<R>::pack3(b, nullptr, a, 2); }, "MpyRCPack3", "srcB==0"},
        {[&] { Api<R>::pack3(b, b, nullptr, 32); }, "MpyRCPack3", "order>31"},
        {[&] { Api<R>::pack3(b, b, nullptr, 2); }, "MpyRCPack3", "dst==0"},
        {[&] { Api<R>::perm2(nullptr, a, 3); }, "MpyRCPerm2", "src==0"},
        {[&] { Api<R>::perm3(b, nullptr, a, 3); }, "MpyRCPerm3", "srcB==0"},
        {[&] { Api<R>::perm3(b, b, a, 33); }, "MpyRCPerm3", "order>31"},
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
