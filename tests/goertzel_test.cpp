// Goertzel detectors against the DFT bin of the same frequency.
#include <cmath>
#include <complex>
#include <cstring>
#include <random>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

using LCplx = std::complex<long double>;

// Bin k of the forward DFT of x, in long double.
template <class T>
LCplx dft_bin(const std::vector<T>& x, int k) {
    const long double pi = 3.141592653589793238462643383279503L;
    const size_t n = x.size();
    LCplx sum = 0;
    for (size_t i = 0; i < n; ++i) {
        const long double a = -2 * pi * (long double)((k * i) % n) / n;
        sum += LCplx(std::cos(a), std::sin(a)) * LCplx(x[i]);
    }
    return sum;
}

template <class T>
std::vector<T> noise(int n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1, 1);
    std::vector<T> x(n);
    for (auto& v : x) v = T(u(gen));
    return x;
}

template <class T>
std::vector<std::complex<T>> cnoise(int n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1, 1);
    std::vector<std::complex<T>> x(n);
    for (auto& v : x) v = {T(u(gen)), T(u(gen))};
    return x;
}

template <class C>
LCplx as_l(C c) {
    return {c.re, c.im};
}

TEST(Goertz, AfterNSamplesEqualsTheDftBin) {
    for (int n : {1, 7, 64, 250}) {
        for (int k : {0, 1, n / 3, n - 1}) {
            if (k >= n) continue;
            const double rfreq = double(k) / n;
            const auto xs = noise<float>(n, 10 + n + k);
            const auto xd = noise<double>(n, 20 + n + k);
            const auto xc = cnoise<float>(n, 30 + n + k);
            const auto xz = cnoise<double>(n, 40 + n + k);
            const LCplx ws = dft_bin(xs, k), wd = dft_bin(xd, k), wc = dft_bin(xc, k),
                        wz = dft_bin(xz, k);
            const double scale = std::sqrt(double(n));
            GoertzState st;

            // Block forms.
            ASSERT_EQ(veksGoertzInit(float(rfreq), &st), VEK_StatusOk);
            EXPECT_LT(std::abs(as_l(veksbGoertz(&st, xs.data(), n)) - ws), 2e-5 * n * scale);
            ASSERT_EQ(vekdGoertzInit(rfreq, &st), VEK_StatusOk);
            EXPECT_LT(std::abs(as_l(vekdbGoertz(&st, xd.data(), n)) - wd), 1e-13 * n * scale);
            ASSERT_EQ(vekcGoertzInit(float(rfreq), &st), VEK_StatusOk);
            EXPECT_LT(std::abs(as_l(vekcbGoertz(&st, reinterpret_cast<const CplxFloat*>(xc.data()),
                                                n)) - wc), 2e-5 * n * scale);
            ASSERT_EQ(vekzGoertzInit(rfreq, &st), VEK_StatusOk);
            EXPECT_LT(std::abs(as_l(vekzbGoertz(&st, reinterpret_cast<const CplxDouble*>(xz.data()),
                                                n)) - wz), 1e-13 * n * scale);

            // Sample by sample.
            CplxFloat ys{}, yc{};
            CplxDouble yd{}, yz{};
            veksGoertzInit(float(rfreq), &st);
            for (float v : xs) ys = veksGoertz(&st, v);
            EXPECT_LT(std::abs(as_l(ys) - ws), 2e-5 * n * scale) << n << " " << k;
            vekdGoertzInit(rfreq, &st);
            for (double v : xd) yd = vekdGoertz(&st, v);
            EXPECT_LT(std::abs(as_l(yd) - wd), 1e-13 * n * scale);
            vekcGoertzInit(float(rfreq), &st);
            for (auto v : xc) yc = vekcGoertz(&st, CplxFloat{v.real(), v.imag()});
            EXPECT_LT(std::abs(as_l(yc) - wc), 2e-5 * n * scale);
            vekzGoertzInit(rfreq, &st);
            for (auto v : xz) yz = vekzGoertz(&st, CplxDouble{v.real(), v.imag()});
            EXPECT_LT(std::abs(as_l(yz) - wz), 1e-13 * n * scale);
        }
    }
}

TEST(Goertz, ConstantInputAtZeroFrequency) {
    GoertzState st;
    ASSERT_EQ(vekdGoertzInit(0.0, &st), VEK_StatusOk);
    CplxDouble y{};
    for (int m = 1; m <= 100; ++m) {
        y = vekdGoertz(&st, 3.0);
        ASSERT_EQ(y.re, 3.0 * m);
        ASSERT_EQ(y.im, 0.0);
    }
    // The delay values grow as c*m*(m+1)/2.
    EXPECT_EQ(st.d.s1, 3.0 * 100 * 101 / 2);
}

TEST(Goertz, InitStoresTheRecurrenceAndResetKeepsTheFrequency) {
    GoertzState st;
    std::memset(&st, 0x55, sizeof st);
    ASSERT_EQ(vekdGoertzInit(0.125, &st), VEK_StatusOk);
    EXPECT_EQ(st.d.rfreq, 0.125);
    EXPECT_NEAR(st.d.cos, std::sqrt(0.5), 3e-16);
    EXPECT_NEAR(st.d.sin, std::sqrt(0.5), 3e-16);
    EXPECT_NEAR(st.d.twoCos, std::sqrt(2.0), 1e-15);
    EXPECT_EQ(st.d.s1, 0.0);
    EXPECT_EQ(st.d.s2, 0.0);

    // Reset, then the same block: the same output as a fresh state.
    const auto x = noise<double>(40, 5);
    const CplxDouble first = vekdbGoertz(&st, x.data(), 40);
    vekdbGoertz(&st, x.data(), 17);
    vekdGoertzReset(&st);
    EXPECT_EQ(st.d.rfreq, 0.125);
    const CplxDouble again = vekdbGoertz(&st, x.data(), 40);
    EXPECT_EQ(first.re, again.re);
    EXPECT_EQ(first.im, again.im);

    // Two blocks run on as one (double state: bit for bit).
    vekzGoertzInit(0.3, &st);
    const auto xz = cnoise<double>(30, 6);
    const auto* p = reinterpret_cast<const CplxDouble*>(xz.data());
    vekzbGoertz(&st, p, 11);
    const CplxDouble split = vekzbGoertz(&st, p + 11, 19);
    vekzGoertzReset(&st);
    const CplxDouble whole = vekzbGoertz(&st, p, 30);
    EXPECT_EQ(split.re, whole.re);
    EXPECT_EQ(split.im, whole.im);
}

TEST(Goertz, ChecksAndTheirMessages) {
    ReportRecorder rec;
    GoertzState st;
    for (double f : {-0.01, 1.0, 1.5, std::nan("")}) {
        rec.clear();
        EXPECT_EQ(vekdGoertzInit(f, &st), VEK_StatusBadArgument);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekdGoertzInit", "Invalid frequency value",
                      "vekgrtzl");
    }
    rec.clear();
    EXPECT_EQ(vekcGoertzInit(0.5f, nullptr), VEK_StatusBadArgument);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekcGoertzInit", "Null state pointer", "vekgrtzl");
    rec.clear();
    EXPECT_EQ(veksGoertzInit(0.0f, &st), VEK_StatusOk);
    EXPECT_EQ(rec.size(), 0u);

    rec.clear();
    veksGoertzReset(nullptr);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "veksGoertzReset", "Null state pointer", "vekgrtzl");

    // The block checks, in order; zero returned and the state untouched.
    veksGoertzInit(0.25f, &st);
    veksGoertz(&st, 1.0f);
    const GoertzState before = st;
    const float x[2] = {1, 2};
    const struct {
        GoertzState* st;
        const float* x;
        int len;
        const char* message;
    } cases[] = {{nullptr, nullptr, 0, "Null state pointer"},
                 {&st, nullptr, 0, "Null buffer pointer"},
                 {&st, x, 0, "Invalid array length"},
                 {&st, x, -3, "Invalid array length"}};
    for (const auto& c : cases) {
        rec.clear();
        const CplxFloat y = veksbGoertz(c.st, c.x, c.len);
        EXPECT_EQ(y.re, 0.0f);
        EXPECT_EQ(y.im, 0.0f);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "veksbGoertz", c.message, "vekgrtzl");
        EXPECT_EQ(std::memcmp(&st, &before, sizeof st), 0);
    }
    rec.clear();
    const CplxDouble z = vekzGoertz(nullptr, CplxDouble{1, 1});
    EXPECT_EQ(z.re, 0.0);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekzGoertz", "Null state pointer", "vekgrtzl");
}

TEST(Goertz16, OutputIsTheFloatOutputNarrowed) {
    const int n = 48;
    std::vector<short> w(n);
    std::vector<CplxShort> v(n);
    std::vector<float> wf(n);
    std::vector<CplxFloat> vf(n);
    std::mt19937 gen(3);
    std::uniform_int_distribution<int> u(-1000, 1000);
    for (int i = 0; i < n; ++i) {
        // Noise on a tone at the detector's frequency.
        const double a = 6.283185307179586 * i / 8;
        w[i] = short(u(gen) + 3000 * std::cos(a));
        wf[i] = w[i];
        v[i] = {short(u(gen) + 3000 * std::cos(a)), short(u(gen) + 3000 * std::sin(a))};
        vf[i] = {float(v[i].re), float(v[i].im)};
    }
    GoertzState st, ref;
    veksGoertzInit(0.125f, &ref);
    const CplxFloat yw = veksbGoertz(&ref, wf.data(), n);
    vekcGoertzInit(0.125f, &ref);
    const CplxFloat yv = vekcbGoertz(&ref, vf.data(), n);
    // The outputs exceed 16 bits: the modes differ visibly.
    ASSERT_GT(std::fabs(yw.re) + std::fabs(yw.im), 32768.0f);

    auto trunc_wrap = [](float x) { return short(std::int64_t(x)); };
    auto trunc_sat = [](float x) {
        return short(x >= 32767 ? 32767 : x <= -32768 ? -32768 : int(x));
    };
    int factor = 0;
    vekwGoertzInit(0.125f, &st);
    CplxShort r = vekwbGoertz(&st, w.data(), n, VEK_NO_SCALE, &factor);
    EXPECT_EQ(r.re, trunc_wrap(yw.re));
    EXPECT_EQ(r.im, trunc_wrap(yw.im));
    vekwGoertzReset(&st);
    r = vekwbGoertz(&st, w.data(), n, VEK_SATURATE, &factor);
    EXPECT_EQ(r.re, trunc_sat(yw.re));
    EXPECT_EQ(r.im, trunc_sat(yw.im));
    vekwGoertzReset(&st);
    factor = 3;
    r = vekwbGoertz(&st, w.data(), n, VEK_FIXED_SCALE, &factor);
    EXPECT_EQ(r.re, short(int(yw.re / 8)));
    EXPECT_EQ(r.im, short(int(yw.im / 8)));

    // Auto: one factor for both parts, from the larger magnitude.
    vekvGoertzInit(0.125f, &st);
    factor = 0;  // read and range-checked even in auto mode
    r = vekvbGoertz(&st, v.data(), n, VEK_AUTO_SCALE, &factor);
    const int e = std::ilogb(std::max(std::fabs(yv.re), std::fabs(yv.im)));
    EXPECT_EQ(factor, e - 14);
    EXPECT_EQ(r.re, short(int(std::ldexp(yv.re, -factor))));
    EXPECT_EQ(r.im, short(int(std::ldexp(yv.im, -factor))));

    // Sample by sample gives the same as the block.
    vekvGoertzInit(0.125f, &st);
    int f2 = 0;
    for (int i = 0; i < n; ++i) r = vekvGoertz(&st, v[i], VEK_AUTO_SCALE, &f2);
    EXPECT_EQ(f2, factor);
    EXPECT_NEAR(r.re, std::ldexp(yv.re, -factor), 1.0);
}

TEST(Goertz16, ScaleChecksComeRightAfterTheState) {
    ReportRecorder rec;
    GoertzState st;
    vekwGoertzInit(0.1f, &st);
    const short x[1] = {5};
    int f = 0, big = 15, small = -15;
    const struct {
        GoertzState* st;
        const short* x;
        int len;
        int mode;
        int* factor;
        const char* message;
    } cases[] = {
        {nullptr, x, 1, 0, &f, "Null state pointer"},
        {&st, nullptr, 0, 0, nullptr, "Zero scale factor pointer"},
        {&st, nullptr, 0, 0, &big, "Too large scale factor"},
        {&st, nullptr, 0, 0, &small, "Too large scale factor"},
        {&st, nullptr, 0, 5, &f, "Erroneus scale mode"},
        {&st, nullptr, 1, 4, &f, "Null buffer pointer"},
        {&st, x, 0, 4, &f, "Invalid array length"},
    };
    for (const auto& c : cases) {
        rec.clear();
        const CplxShort y = vekwbGoertz(c.st, c.x, c.len, c.mode, c.factor);
        EXPECT_EQ(y.re, 0);
        EXPECT_EQ(y.im, 0);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekwbGoertz", c.message, "vekgrtzw");
    }
    rec.clear();
    vekvGoertz(&st, CplxShort{1, 1}, 0, nullptr);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekvGoertz", "Zero scale factor pointer",
                  "vekgrtzw");
    rec.clear();
    EXPECT_EQ(vekvGoertzInit(2.0f, &st), VEK_StatusBadArgument);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekvGoertzInit", "Invalid frequency value",
                  "vekgrtzw");
}

}  // namespace
