// DFT of any length against long-double references and the FFT.
#include <cstring>
#include <vector>

#include "fft_ref.hpp"
#include "test_util.hpp"

using vektest::cld;
using vektest::ReportRecorder;

namespace {

template <class C>
std::vector<C> to(const std::vector<cld>& x) {
    std::vector<C> y(x.size());
    for (size_t i = 0; i < x.size(); ++i)
        y[i] = C{decltype(C::re)(x[i].real()), decltype(C::re)(x[i].imag())};
    return y;
}

TEST(Dft, MatchesTheLongDoubleDftForwardAndInverse) {
    const int lengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 15, 16, 31, 60, 97, 128, 243, 500, 1000};
    for (int n : lengths) {
        const auto x = vektest::random_signal(size_t(n), unsigned(n));
        const auto fwd = vektest::dft(x, -1);
        const auto inv = vektest::dft(x, +1);
        const auto xc = to<CplxFloat>(x);
        const auto xz = to<CplxDouble>(x);
        std::vector<CplxFloat> yc(static_cast<size_t>(n));
        std::vector<CplxDouble> yz(static_cast<size_t>(n));

        vekcDft(xc.data(), yc.data(), n, VEK_Forw);
        EXPECT_LT(vektest::rel_rms(yc.data(), fwd), 1e-6) << n;
        vekzDft(xz.data(), yz.data(), n, VEK_Forw);
        EXPECT_LT(vektest::rel_rms(yz.data(), fwd), 1e-14) << n;
        vekcDft(xc.data(), yc.data(), n, VEK_Inv);
        EXPECT_LT(vektest::rel_rms(yc.data(), inv, 1.0L / n), 1e-6) << n;
        vekzDft(xz.data(), yz.data(), n, VEK_Inv | VEK_NoScale);
        EXPECT_LT(vektest::rel_rms(yz.data(), inv), 1e-14) << n;
    }
}

TEST(Dft, RoundTripInPlaceAndAgreementWithTheFft) {
    for (int order = 0; order <= 10; ++order) {
        const int n = 1 << order;
        const auto x = to<CplxDouble>(vektest::random_signal(size_t(n), 77u + unsigned(order)));
        std::vector<CplxDouble> y = x, f = x;
        vekzDft(y.data(), y.data(), n, VEK_Forw);  // in place
        vekzFft(f.data(), order, VEK_Forw);
        for (int i = 0; i < n; ++i) {
            ASSERT_NEAR(y[size_t(i)].re, f[size_t(i)].re, 1e-12 * n) << order << " " << i;
            ASSERT_NEAR(y[size_t(i)].im, f[size_t(i)].im, 1e-12 * n);
        }
        vekzDft(y.data(), y.data(), n, VEK_Inv);
        for (int i = 0; i < n; ++i) {
            ASSERT_NEAR(y[size_t(i)].re, x[size_t(i)].re, 1e-14 * n);
            ASSERT_NEAR(y[size_t(i)].im, x[size_t(i)].im, 1e-14 * n);
        }
    }
}

TEST(Dft, ShortFormIsTheFloatFormNarrowed) {
    const int n = 45;
    std::vector<CplxShort> x(n);
    std::vector<CplxFloat> xf(n), yf(n);
    for (int i = 0; i < n; ++i) {
        x[size_t(i)] = {short(1000 * ((i * 7) % 13) - 6000), short(500 * ((i * 5) % 11) - 2500)};
        xf[size_t(i)] = {float(x[size_t(i)].re), float(x[size_t(i)].im)};
    }
    vekcDft(xf.data(), yf.data(), n, VEK_Forw);
    const struct {
        int mode, factor;
    } modes[] = {{0, 0}, {1, 0}, {2, 3}, {3, 2}, {4, 0}};
    for (const auto& m : modes) {
        std::vector<CplxShort> y(n);
        int factor = m.factor;
        vekvDft(x.data(), y.data(), n, VEK_Forw, m.mode, &factor);
        std::vector<short> want(2 * size_t(n));
        int f2 = m.factor;
        // The reference narrowing: the rules written out for these cases.
        float peak = 0;
        for (const auto& v : yf) peak = std::max({peak, std::fabs(v.re), std::fabs(v.im)});
        if (m.mode == 4) f2 = std::ilogb(peak) - 14;
        for (int i = 0; i < 2 * n; ++i) {
            const float v = (&yf[0].re)[i] * std::ldexp(1.0f, -f2);
            const bool sat = m.mode == 1 || m.mode == 3 || m.mode == 4;
            want[size_t(i)] = sat ? short(std::max(-32768.0f, std::min(32767.0f, v)))
                                  : short(std::int64_t(v));
        }
        EXPECT_EQ(factor, f2) << m.mode;
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(y[size_t(i)].re, want[2 * size_t(i)]) << m.mode << " " << i;
            EXPECT_EQ(y[size_t(i)].im, want[2 * size_t(i) + 1]) << m.mode << " " << i;
        }
    }
    // Length 1 passes the element through the scale conversion.
    const CplxShort one[1] = {{-300, 7}};
    CplxShort out[1];
    int factor = 2;
    vekvDft(one, out, 1, VEK_Inv, VEK_FIXED_SCALE, &factor);
    EXPECT_EQ(out[0].re, -75);
    EXPECT_EQ(out[0].im, 1);
}

TEST(Dft, ChecksAndTheirMessages) {
    ReportRecorder rec;
    CplxFloat x[4] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    CplxFloat y[4] = {};
    const CplxFloat untouched[4] = {};

    // The table getter reports a bad length first.
    vekcDft(x, y, 0, VEK_Forw);
    ASSERT_EQ(rec.size(), 2u);
    EXPECT_EQ(rec[0].func, "vekcGetDftTwdTbl");
    EXPECT_EQ(rec[0].context, "length<=0");
    EXPECT_EQ(rec[1].func, "vekcDft");
    EXPECT_EQ(rec[1].context, "length<=0");
    EXPECT_EQ(rec[1].file, "vekdft");

    const struct {
        const CplxFloat* src;
        CplxFloat* dst;
        int flags;
        const char* message;
    } cases[] = {{nullptr, y, VEK_Forw, "src==0"},
                 {x, nullptr, VEK_Forw, "dst==0"},
                 {x, y, VEK_Forw | VEK_Inv, "VEK_Forw or VEK_Inv must be as a flag"},
                 {x, y, VEK_NoScale, "VEK_Forw or VEK_Inv must be as a flag"}};
    for (const auto& c : cases) {
        rec.clear();
        vekcDft(c.src, c.dst, 4, c.flags);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekcDft", c.message, "vekdft");
        EXPECT_EQ(std::memcmp(y, untouched, sizeof y), 0);
    }

    // Init and Free need no data.
    rec.clear();
    vekzDft(nullptr, nullptr, 17, VEK_Init);
    vekzDft(nullptr, nullptr, 17, VEK_Free);
    vekvDft(nullptr, nullptr, 17, VEK_Init, 0, nullptr);
    EXPECT_EQ(rec.size(), 0u);

    CplxShort s[2] = {}, d[2] = {};
    int factor = 0;
    const struct {
        int length, flags, mode;
        int* factor;
        const char* message;
    } vcases[] = {{0, VEK_Forw, 0, &factor, "length<=0"},
                  {2, 0, 0, &factor, "VEK_Forw or VEK_Inv must be as a flag"},
                  {2, VEK_Forw, 6, &factor, "scaleMode & VEK_FIXED_SCALE && scaleMode & VEK_AUTO_SCALE"},
                  {2, VEK_Forw, 4, nullptr, "scaleMode & VEK_AUTO_SCALE && scaleFactor==NULL"}};
    for (const auto& c : vcases) {
        rec.clear();
        vekvDft(s, d, c.length, c.flags, c.mode, c.factor);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekvDft", c.message, "vekdft");
    }
}

TEST(Dft, AThirtyThirdLengthFailsUntilTheTablesAreFreed) {
    ReportRecorder rec;
    vekcFreeTwdTbls();
    std::vector<CplxFloat> x(200), y(200);
    for (int n = 101; n < 133; ++n) vekcDft(x.data(), y.data(), n, VEK_Forw);
    EXPECT_EQ(rec.size(), 0u);
    vekcDft(x.data(), y.data(), 133, VEK_Forw);
    ASSERT_EQ(rec.size(), 2u);
    EXPECT_EQ(rec[0].status, VEK_StatusNoMemory);
    EXPECT_EQ(rec[0].context, "Full Table");
    EXPECT_EQ(rec[1].context, "TwdTbl==0");
    rec.clear();
    vekcFreeTwdTbls();
    vekcDft(x.data(), y.data(), 133, VEK_Forw);
    EXPECT_EQ(rec.size(), 0u);
    vekcFreeTwdTbls();
}

}  // namespace
