// The 16-bit real FFTs, packed products and DCT: the float transforms of
// the same data narrowed by hand, exact products under every scale mode,
// checks and reports.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

std::vector<short> random_shorts(std::size_t n, int amp, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> u(-amp, amp);
    std::vector<short> v(n);
    for (auto& x : v) x = short(u(gen));
    return v;
}

// The factor of automatic scaling: the largest magnitude's exponent - 14.
int auto_factor(const std::vector<float>& v) {
    double m = 0;
    for (float x : v) m = std::max(m, std::fabs(double(x)));
    if (m == 0) return 0;
    int e;
    std::frexp(m, &e);
    return e - 1 - 14;
}

// Narrowing written out: modes 0 and 1 round to nearest (ties to even) and
// saturate; the others scale by 2^-f and truncate, saturating with bit 1,
// wrapping without; auto takes its own f.
std::vector<short> narrow(const std::vector<float>& v, int mode, int f) {
    std::vector<short> out;
    for (float x : v) {
        double y;
        if (mode == 0 || mode == 1)
            y = std::nearbyint(double(x));
        else
            y = std::trunc(double(x) * std::ldexp(1.0, -f));
        if (mode <= 1 || (mode & 1) || mode == 4)
            out.push_back(short(std::min(32767.0, std::max(-32768.0, y))));
        else
            out.push_back(short(std::uint16_t(std::int64_t(y) & 0xffff)));
    }
    return out;
}

// One 16-bit form beside its float twin.
struct Form {
    const char* name;
    bool toSpectrum;
    bool ccs;  // CCS spectrum (else packed, with the layout bit in `bit`)
    int bit;
    bool nip;
    std::function<void(const short*, short*, int, int, int, int*)> w;
    std::function<void(float*, int, int)> s;
};

std::vector<Form> forms() {
    return {
        {"RealFft", true, true, 0, false,
         [](const short*, short* o, int r, int f, int m, int* k) { vekwRealFft(o, r, f, m, k); },
         veksRealFft},
        {"RealFftNip", true, true, 0, true,
         [](const short* i, short* o, int r, int f, int m, int* k) {
             vekwRealFftNip(i, o, r, f, m, k);
         },
         veksRealFft},
        {"CcsFft", false, true, 0, false,
         [](const short*, short* o, int r, int f, int m, int* k) { vekwCcsFft(o, r, f, m, k); },
         veksCcsFft},
        {"CcsFftNip", false, true, 0, true,
         [](const short* i, short* o, int r, int f, int m, int* k) {
             vekwCcsFftNip(i, o, r, f, m, k);
         },
         veksCcsFft},
        {"RealFftl", true, false, VEK_OutRCPack, false,
         [](const short*, short* o, int r, int f, int m, int* k) { vekwRealFftl(o, r, f, m, k); },
         veksRealFftl},
        {"RealFftlNip", true, false, VEK_OutRCPerm, true,
         [](const short* i, short* o, int r, int f, int m, int* k) {
             vekwRealFftlNip(i, o, r, f, m, k);
         },
         veksRealFftl},
        {"CcsFftl", false, false, VEK_InRCPerm, false,
         [](const short*, short* o, int r, int f, int m, int* k) { vekwCcsFftl(o, r, f, m, k); },
         veksCcsFftl},
        {"CcsFftlNip", false, false, VEK_InRCPack, true,
         [](const short* i, short* o, int r, int f, int m, int* k) {
             vekwCcsFftlNip(i, o, r, f, m, k);
         },
         veksCcsFftl},
    };
}

// Each form, order and scale mode against the float form on the converted
// input, narrowed by hand; the Nip forms leave their input.
TEST(RealFft16, EveryScaleModeAgainstTheFloatTransform) {
    for (const Form& form : forms()) {
        for (int order : {0, 1, 2, 5, 8}) {
            const std::size_t n = std::size_t(1) << order;
            const std::size_t inCount = form.toSpectrum ? n : form.ccs ? n + 2 : n;
            const std::size_t outCount = form.toSpectrum && form.ccs ? (order ? n + 2 : 2) : n;
            std::vector<short> in = random_shorts(inCount, 3000, unsigned(order) + 1);
            if (form.ccs && !form.toSpectrum) in[1] = in[n] = in[n + 1] = 0;
            for (int flags : {int(VEK_Forw), int(VEK_Inv), VEK_Inv | VEK_NoScale}) {
                const int f = flags | form.bit;
                std::vector<float> ref(n + 2);
                std::copy(in.begin(), in.end(), ref.begin());
                form.s(ref.data(), order, f);
                ref.resize(outCount);
                for (int mode : {0, 1, 2, 3, 4, 5}) {
                    SCOPED_TRACE(testing::Message() << form.name << " order " << order << " flags "
                                                    << flags << " mode " << mode);
                    // 5 has the AUTO bit without FIXED: automatic, saturating.
                    const bool automatic = mode == 4 || mode == 5;
                    int factor = mode == 2 ? 3 : mode == 3 ? -2 : 77;
                    const int want = automatic ? auto_factor(ref) : factor;
                    std::vector<short> buf(n + 3, short(-7)), keep = in;
                    if (!form.nip) std::copy(in.begin(), in.end(), buf.begin());
                    form.w(in.data(), buf.data(), order, f, mode, &factor);
                    EXPECT_EQ(
                        std::vector<short>(buf.begin(), buf.begin() + std::ptrdiff_t(outCount)),
                        narrow(ref, automatic ? 4 : mode, want));
                    if (form.nip) {
                        EXPECT_EQ(in, keep);
                        EXPECT_EQ(buf[outCount], short(-7));  // nothing beyond the output
                    }
                    EXPECT_EQ(factor, want);
                }
            }
        }
    }
}

// The two-signal forms: in modes 0 and 1 what two single calls give; in
// automatic mode one factor for both, the larger of the two single ones.
TEST(RealFft16, TwoSignalForms) {
    for (int order : {0, 3, 6})
        for (int mode : {1, 4})
            for (bool ccs : {false, true}) {
                SCOPED_TRACE(testing::Message() << order << " " << mode << " " << ccs);
                const std::size_t n = std::size_t(1) << order, m = n + 2;
                std::vector<short> x = random_shorts(m, 500, 3), y = random_shorts(m, 9000, 4);
                x[1] = x[n] = x[n + 1] = y[1] = y[n] = y[n + 1] = 0;
                const int flags = ccs ? VEK_Inv : VEK_Forw;
                const auto one = ccs ? vekwCcsFft : vekwRealFft;
                const auto two = ccs ? vekwCcs2Fft : vekwReal2Fft;
                const auto twoNip = ccs ? vekwCcs2FftNip : vekwReal2FftNip;
                std::vector<short> wx = x, wy = y, vx = x, vy = y, ox(m), oy(m);
                int fx = 0, fy = 0, fv = 99, fo = 99;
                one(wx.data(), order, flags, mode, &fx);
                one(wy.data(), order, flags, mode, &fy);
                int f = std::max(fx, fy);
                if (mode == 4) {  // again with the common factor
                    wx = x, wy = y;
                    one(wx.data(), order, flags, 3, &f);
                    one(wy.data(), order, flags, 3, &f);
                }
                two(vx.data(), vy.data(), order, flags, mode, &fv);
                twoNip(x.data(), ox.data(), y.data(), oy.data(), order, flags, mode, &fo);
                const std::ptrdiff_t out = ccs ? n : order ? m : 2;
                for (const auto* v : {&vx, &ox})
                    EXPECT_TRUE(std::equal(v->begin(), v->begin() + out, wx.begin()));
                for (const auto* v : {&vy, &oy})
                    EXPECT_TRUE(std::equal(v->begin(), v->begin() + out, wy.begin()));
                EXPECT_TRUE(mode != 4 || (fv == f && fo == f));
            }
}

// Exact products and their narrowing, written out.
std::int64_t shifted(std::int64_t r, int f) {
    return f >= 0 ? r >> f : r * (std::int64_t(1) << -f);
}
short wrap(std::int64_t r) { return short(std::uint16_t(std::uint64_t(r) & 0xffff)); }
short sat(std::int64_t r) {
    return short(std::min<std::int64_t>(32767, std::max<std::int64_t>(-32768, r)));
}

// The packed products against products by hand under every scale mode,
// with the extreme values that need 32 bits and more.
TEST(RealFft16, PackedProducts) {
    for (bool pack : {true, false}) {
        for (int order : {0, 1, 2, 4, 7}) {
            const std::size_t n = std::size_t(1) << order;
            std::vector<short> a = random_shorts(n, 32767, 11), b = random_shorts(n, 32767, 12);
            if (n >= 4) {  // a complex value with both parts at the limit
                const std::size_t p = pack ? 1 : 2;
                a[p] = a[p + 1] = b[p] = b[p + 1] = -32768;
            }
            std::vector<std::int64_t> r(n);
            r[0] = std::int64_t(a[0]) * b[0];
            if (n > 1) {
                const std::size_t last = pack ? n - 1 : 1;
                r[last] = std::int64_t(a[last]) * b[last];
                for (std::size_t p = pack ? 1 : 2; p + 1 < (pack ? n - 1 : n); p += 2) {
                    r[p] = std::int64_t(a[p]) * b[p] - std::int64_t(a[p + 1]) * b[p + 1];
                    r[p + 1] = std::int64_t(a[p]) * b[p + 1] + std::int64_t(a[p + 1]) * b[p];
                }
            }
            for (int mode : {0, 1, 2, 3, 4, 7}) {
                for (int f : {-3, 0, 5, 17}) {
                    SCOPED_TRACE(testing::Message()
                                 << pack << " order " << order << " mode " << mode << " f " << f);
                    int sh = 0;
                    for (std::int64_t v : r)
                        while ((v >> sh) > 32767 || (v >> sh) < -32768) ++sh;
                    std::vector<short> want(n);
                    for (std::size_t i = 0; i < n; ++i) {
                        const std::int64_t v = r[i];
                        want[i] = mode == 0   ? wrap(v)
                                  : mode == 1 ? sat(v)
                                  : mode == 4 ? wrap(v >> sh)
                                  : mode == 3 ? sat(shifted(v, f))
                                              : wrap(shifted(v, f));
                    }
                    int k3 = f, k2 = f;
                    std::vector<short> d3(n + 1, 5), d2 = a;
                    d2.push_back(5);
                    if (pack) {
                        vekwMpyRCPack3(a.data(), b.data(), d3.data(), order, mode, &k3);
                        vekwMpyRCPack2(b.data(), d2.data(), order, mode, &k2);
                    } else {
                        vekwMpyRCPerm3(a.data(), b.data(), d3.data(), order, mode, &k3);
                        vekwMpyRCPerm2(b.data(), d2.data(), order, mode, &k2);
                    }
                    want.push_back(5);
                    EXPECT_EQ(d3, want);
                    EXPECT_EQ(d2, want);
                    EXPECT_EQ(k3, mode == 4 ? sh : f);
                    EXPECT_EQ(k2, mode == 4 ? sh : f);
                }
            }
        }
    }
}

// The 16-bit DCT is the float DCT of the converted input, rounded to
// nearest and saturated.
TEST(RealFft16, Dct) {
    for (int n : {1, 6, 8, 64, 100}) {
        const std::vector<short> x = random_shorts(std::size_t(n), 20000, unsigned(n));
        for (int dir : {int(VEK_Forw), int(VEK_Inv)}) {
            std::vector<float> ref(x.begin(), x.end());
            veksDct(ref.data(), ref.data(), n, dir);
            std::vector<short> y(std::size_t(n) + 1, 3), z = x;
            vekwDct(x.data(), y.data(), n, dir);
            vekwDct(z.data(), z.data(), n, dir);
            const std::vector<short> want = narrow(ref, 0, 0);
            EXPECT_EQ(std::vector<short>(y.begin(), y.end() - 1), want) << n;
            EXPECT_EQ(y.back(), 3);
            EXPECT_EQ(z, want) << n;
        }
    }
    vekwDct(nullptr, nullptr, 0, VEK_Free);
}

// Every check with its message and, for the DCT, a line of its own; data
// unwritten.
TEST(RealFft16, ChecksAndMessages) {
    short a[16], b[16];
    int k = 0;
    const short* null = nullptr;
    const int F = VEK_Forw;
    const struct {
        std::function<void()> call;
        const char* func;
        const char* msg;
    } cases[] = {
        {[&] { vekwRealFft(a, -1, F, 0, &k); }, "vekwRealFft", "order<0"},
        {[&] { vekwRealFft(a, 3, F | 8192 | 16384, 0, &k); }, "vekwRealFft",
         "(flags & 8192) && (flags & 16384)"},
        {[&] { vekwRealFft(nullptr, 3, F | 3, 6, nullptr); }, "vekwRealFft", "samps==0"},
        {[&] { vekwRealFft(a, 3, 3, 6, nullptr); }, "vekwRealFft", "(flags & 1) && (flags & 2)"},
        {[&] { vekwRealFft(a, 3, F, 6, nullptr); }, "vekwRealFft",
         "(scaleMode & 0x0002) && (scaleMode & 0x0004)"},
        {[&] { vekwRealFft(a, 3, F, 4, nullptr); }, "vekwRealFft", "scaleFactor==0"},
        {[&] { vekwRealFftNip(null, a, 3, 0, 0, &k); }, "vekwRealFftNip", "inSamps==0"},
        {[&] { vekwRealFftNip(b, nullptr, 3, 0, 0, &k); }, "vekwRealFftNip", "outSamps==0"},
        {[&] { vekwCcsFft(a, 3, 0, 0, &k); }, "vekwCcsFft", "(flags & 1)==0 && (flags & 2)==0"},
        {[&] { vekwCcsFftNip(b, a, 3, F, 2 | 4, &k); }, "vekwCcsFftNip",
         "(scaleMode & 0x0002) && (scaleMode & 0x0004)"},
        {[&] { vekwRealFftl(a, 3, F, 0, &k); }, "vekwRealFftl",
         "(flags & 256)==0 && (flags & 512)==0"},
        {[&] { vekwRealFftlNip(b, a, 3, F | 256 | 512, 0, &k); }, "vekwRealFftlNip",
         "(flags & 256) && (flags & 512)"},
        {[&] { vekwCcsFftl(a, 3, F | 1024 | 4096, 0, &k); }, "vekwCcsFftl",
         "(flags & 1024) && (flags & 4096)"},
        {[&] { vekwCcsFftlNip(b, a, 3, F | 256, 0, &k); }, "vekwCcsFftlNip",
         "(flags & 1024)==0 && (flags & 4096)==0"},
        {[&] { vekwReal2Fft(nullptr, b, 3, F, 0, &k); }, "vekwReal2Fft", "xSamps==0"},
        {[&] { vekwReal2FftNip(null, a, b, a, 3, F, 0, &k); }, "vekwReal2FftNip", "xInSamps==0"},
        {[&] { vekwReal2FftNip(b, nullptr, b, a, 3, F, 0, &k); }, "vekwReal2FftNip",
         "xOutSamps==0"},
        {[&] { vekwCcs2FftNip(b, a, null, a, 3, F, 0, &k); }, "vekwCcs2FftNip", "yInSamps==0"},
        {[&] { vekwCcs2FftNip(b, a, b, nullptr, 3, F, 0, &k); }, "vekwCcs2FftNip", "yOutSamps==0"},
        {[&] { vekwCcs2Fft(a, a, 3, F | 2, 0, &k); }, "vekwCcs2Fft", "(flags & 1) && (flags & 2)"},
        {[&] { vekwMpyRCPack2(nullptr, a, 2, 0, &k); }, "vekwMpyRCPack2", "src==0"},
        {[&] { vekwMpyRCPerm3(b, b, nullptr, 2, 0, &k); }, "vekwMpyRCPerm3", "dst==0"},
        {[&] { vekwMpyRCPerm2(b, a, 2, 4, nullptr); }, "vekwMpyRCPerm2", "scalefactor==0"},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < 16; ++i) a[i] = b[i] = short(i + 1);
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, c.func, c.msg, "vekfftw");
        for (int i = 0; i < 16; ++i) ASSERT_EQ(a[i], short(i + 1)) << c.func << " " << c.msg;
    }

    const struct {
        std::function<void()> call;
        const char* msg;
    } dct[] = {
        {[&] { vekwDct(nullptr, a, 4, F); }, "\nNull pointer to data buffer\n"},
        {[&] { vekwDct(b, a, 0, F); }, "\nBad value of data buffer size\n"},
        {[&] { vekwDct(b, a, 4, F | VEK_Inv); }, "\nBad value of the transform flag\n"},
    };
    std::vector<int> lines;
    for (const auto& c : dct) {
        ReportRecorder rec;
        c.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekwDct", c.msg, "vekdct");
        if (rec.size() == 1) lines.push_back(rec[0].line);
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(std::unique(lines.begin(), lines.end()), lines.end());
    {
        ReportRecorder rec;
        vekwDct(b, a, 1 << 30, VEK_Forw);
        EXPECT_REPORT(rec, VEK_StatusNoMemory, "vekwDct", "\nMemory allocation problem\n",
                      "vekdct");
    }
}

// VEK_Init and VEK_Free with null data; an order beyond memory.
TEST(RealFft16, InitFreeAndMemory) {
    for (int order : {0, 2, 9}) {
        vekwRealFft(nullptr, order, VEK_Init, 6, nullptr);
        vekwCcsFftlNip(nullptr, nullptr, order, VEK_Init, 0, nullptr);
        vekwReal2Fft(nullptr, nullptr, order, VEK_Init, 0, nullptr);
        vekwCcs2FftNip(nullptr, nullptr, nullptr, nullptr, order, VEK_Free, 0, nullptr);
        vekwRealFftl(nullptr, order, VEK_Free, 0, nullptr);
    }
    vekwCcsFft(nullptr, -2, VEK_Free, 0, nullptr);
    EXPECT_EQ(vekGetErrStatus(), 0);
    ReportRecorder rec;
    vekwRealFft(nullptr, 31, VEK_Init, 0, nullptr);
    EXPECT_REPORT(rec, VEK_StatusNoMemory, "vekwRealFft", "No working memory", "vekfftw");
}

}  // namespace
