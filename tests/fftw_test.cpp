// The 16-bit FFT forms against the float transform narrowed by hand.
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

std::vector<CplxShort> random_shorts(std::size_t n, int amp, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> u(-amp, amp);
    std::vector<CplxShort> v(n);
    for (auto& x : v) x = CplxShort{short(u(gen)), short(u(gen))};
    return v;
}

// The float transform of the same data, as 2N values.
std::vector<float> float_fft(const std::vector<CplxShort>& in, int order, int flags) {
    std::vector<CplxFloat> x(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) x[i] = CplxFloat{float(in[i].re), float(in[i].im)};
    if (order > 0) vekcFft(x.data(), order, flags);
    std::vector<float> out;
    for (const auto& c : x) {
        out.push_back(c.re);
        out.push_back(c.im);
    }
    return out;
}

// Narrowing written out: modes 0 and 1 round to nearest (ties to even) and
// saturate; fixed scales by 2^-f and truncates, saturating with bit 1 and
// wrapping without; auto picks f from the largest magnitude's exponent.
std::vector<short> narrow(const std::vector<float>& v, int mode, int* factor) {
    int f = 0;
    if (mode == 4) {
        float m = 0;
        for (float x : v) m = std::max(m, std::fabs(x));
        f = std::ilogb(m) - 14;
        *factor = f;
    } else if (mode & 2) {
        f = *factor;
    }
    std::vector<short> out;
    for (float x : v) {
        if (mode == 0 || mode == 1) {
            const double r = std::nearbyint(double(x));
            out.push_back(short(std::min(32767.0, std::max(-32768.0, r))));
            continue;
        }
        const double y = std::trunc(double(x) * std::ldexp(1.0, -f));
        if (mode & 1)
            out.push_back(short(std::min(32767.0, std::max(-32768.0, y))));
        else
            out.push_back(short(std::uint16_t(std::int64_t(y) & 0xffff)));
    }
    return out;
}

TEST(Fft16, EveryScaleModeAgainstTheFloatTransform) {
    for (int order : {0, 1, 3, 6, 10}) {
        const std::size_t n = std::size_t(1) << order;
        for (int amp : {100, 30000}) {
            const auto in = random_shorts(n, amp, unsigned(order * 7 + amp));
            for (int flags :
                 {int(VEK_Forw), int(VEK_Inv), VEK_Inv | VEK_NoScale, VEK_Forw | VEK_OutBitRev}) {
                const std::vector<float> ref = float_fft(in, order, flags);
                for (int mode : {0, 1, 2, 3, 4}) {
                    int wantF = 3, gotF = 3, gotR = 3;
                    const std::vector<short> want = narrow(ref, mode, &wantF);
                    std::vector<CplxShort> y = in;
                    vekvFft(y.data(), order, flags, mode, &gotF);
                    std::vector<short> re(n), im(n);
                    for (std::size_t i = 0; i < n; ++i) {
                        re[i] = in[i].re;
                        im[i] = in[i].im;
                    }
                    vekvrFft(re.data(), im.data(), order, flags | VEK_DoFloatCore, mode, &gotR);
                    for (std::size_t i = 0; i < n; ++i) {
                        ASSERT_EQ(y[i].re, want[2 * i])
                            << order << " " << flags << " " << mode << " " << i;
                        ASSERT_EQ(y[i].im, want[2 * i + 1]) << order << " " << flags << " " << mode;
                        ASSERT_EQ(re[i], want[2 * i]) << order << " " << flags << " " << mode;
                        ASSERT_EQ(im[i], want[2 * i + 1]) << order << " " << flags << " " << mode;
                    }
                    EXPECT_EQ(gotF, wantF) << order << " " << mode;
                    EXPECT_EQ(gotR, wantF) << order << " " << mode;
                }
            }
        }
    }
}

TEST(Fft16, NipFormsLeaveTheirInput) {
    const int order = 5;
    const std::size_t n = 32;
    const auto in = random_shorts(n, 2000, 9);
    const auto keep = in;
    std::vector<CplxShort> want = in, out(n);
    int f1 = 0, f2 = 0, f3 = 0;
    vekvFft(want.data(), order, VEK_Forw, VEK_AUTO_SCALE, &f1);
    vekvFftNip(in.data(), out.data(), order, VEK_Forw, VEK_AUTO_SCALE, &f2);
    std::vector<short> re(n), im(n), ro(n), io(n);
    for (std::size_t i = 0; i < n; ++i) {
        re[i] = in[i].re;
        im[i] = in[i].im;
    }
    const auto re0 = re, im0 = im;
    vekvrFftNip(re.data(), im.data(), ro.data(), io.data(), order, VEK_Forw, VEK_AUTO_SCALE, &f3);
    EXPECT_EQ(re, re0);
    EXPECT_EQ(im, im0);
    for (std::size_t i = 0; i < n; ++i) {
        EXPECT_EQ(in[i].re, keep[i].re);
        EXPECT_EQ(out[i].re, want[i].re);
        EXPECT_EQ(out[i].im, want[i].im);
        EXPECT_EQ(ro[i], want[i].re);
        EXPECT_EQ(io[i], want[i].im);
    }
    EXPECT_EQ(f1, f2);
    EXPECT_EQ(f1, f3);
}

TEST(Fft16, InitAndFreeWithNullData) {
    for (int order : {0, 4, 11}) {
        vekvFft(nullptr, order, VEK_Init, 0, nullptr);
        vekvrFft(nullptr, nullptr, order, VEK_Init | VEK_Inv, 4, nullptr);
        vekvFftNip(nullptr, nullptr, order, VEK_Init, 0, nullptr);
        vekvrFftNip(nullptr, nullptr, nullptr, nullptr, order, VEK_Free, 0, nullptr);
        vekvFft(nullptr, order, VEK_Free, 0, nullptr);
    }
    EXPECT_EQ(vekGetErrStatus(), 0);
}

TEST(Fft16, ChecksAndReports) {
    CplxShort x[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    CplxShort y[4] = {};
    short a[4] = {5, 5, 5, 5}, b[4] = {6, 6, 6, 6};
    int f = 0;
    const struct {
        std::function<void()> call;
        const char* func;
        const char* msg;
    } cases[] = {
        {[&] { vekvFft(x, -1, VEK_Forw, 0, &f); }, "vekvFft", "order<0"},
        {[&] { vekvFft(x, 32, VEK_Forw, 0, &f); }, "vekvFft", "order>31"},
        {[&] { vekvFft(x, 2, VEK_Forw | VEK_DoIntCore | VEK_DoFloatCore, 0, &f); }, "vekvFft",
         "(flags & 8192) && (flags & 16384)"},
        {[&] { vekvFft(nullptr, 2, VEK_Forw, 0, &f); }, "vekvFft", "samps==0"},
        {[&] { vekvFft(x, 2, VEK_Forw | VEK_Inv, 0, &f); }, "vekvFft",
         "(flags & 1) && (flags & 2)"},
        {[&] { vekvFft(x, 2, VEK_Forw | VEK_InBitRev | VEK_NoBitRev, 0, &f); }, "vekvFft",
         "(flags & 64) && (flags & 32)"},
        {[&] { vekvFft(x, 2, VEK_Forw, 6, &f); }, "vekvFft",
         "(scaleMode & 0x0002) && (scaleMode & 0x0004)"},
        {[&] { vekvFft(x, 2, VEK_Inv, 4, nullptr); }, "vekvFft", "scaleFactor==0"},
        {[&] { vekvFftNip(nullptr, y, 2, VEK_Forw, 0, &f); }, "vekvFftNip", "inSamps==0"},
        {[&] { vekvFftNip(x, nullptr, 2, VEK_Forw, 0, &f); }, "vekvFftNip", "outSamps==0"},
        {[&] { vekvFftNip(x, y, 2, 0, 0, &f); }, "vekvFftNip", "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { vekvFftNip(x, y, 2, VEK_Forw, 4, nullptr); }, "vekvFftNip", "scaleFactor==0"},
        {[&] { vekvrFft(nullptr, b, 2, VEK_Forw, 0, &f); }, "vekvrFft", "reSamps==0"},
        {[&] { vekvrFft(a, nullptr, 2, VEK_Forw, 0, &f); }, "vekvrFft", "imSamps==0"},
        {[&] { vekvrFft(a, b, 2, VEK_Forw, 7, &f); }, "vekvrFft",
         "(scaleMode & 0x0002) && (scaleMode & 0x0004)"},
        {[&] { vekvrFftNip(nullptr, b, a, b, 2, VEK_Forw, 0, &f); }, "vekvrFftNip", "reInSamps==0"},
        {[&] { vekvrFftNip(a, nullptr, a, b, 2, VEK_Forw, 0, &f); }, "vekvrFftNip", "imInSamps==0"},
        {[&] { vekvrFftNip(a, b, nullptr, b, 2, VEK_Forw, 0, &f); }, "vekvrFftNip",
         "reOutSamps==0"},
        {[&] { vekvrFftNip(a, b, a, nullptr, 2, VEK_Forw, 0, &f); }, "vekvrFftNip",
         "imOutSamps==0"},
        {[&] { vekvrFftNip(a, b, a, b, 2, VEK_Forw | VEK_InBitRev | VEK_OutBitRev, 0, &f); },
         "vekvrFftNip", "(flags & 64) && (flags & 128)"},
    };
    for (const auto& c : cases) {
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, c.func, c.msg, "vekfftw");
    }
    EXPECT_EQ(x[1].re, 2);
    EXPECT_EQ(y[1].re, 0);
    EXPECT_EQ(a[0], 5);
    EXPECT_EQ(b[0], 6);
}

// A shortage ends in the no-memory report of the float transform and its
// trace, with the data untouched.
TEST(Fft16, OrderTooLargeForMemory) {
    ReportRecorder rec;
    vekvFft(nullptr, 30, VEK_Init, 0, nullptr);
    ASSERT_GE(rec.size(), 1u);
    EXPECT_EQ(rec[0].status, VEK_StatusNoMemory);
    EXPECT_EQ(rec[0].func, "vekvFft");
    EXPECT_EQ(rec[0].context, "No working memory");
}

}  // namespace
