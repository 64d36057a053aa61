// DFT of any length against long-double references and the FFT.
#include <cstring>
#include <thread>
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

// Each test starts with empty DFT table lists (room for 32 lengths).
class Dft : public ::testing::Test {
protected:
    void SetUp() override {
        vekcFreeTwdTbls();
        vekzFreeTwdTbls();
    }
};

// The forward DFT in long double, twiddle index stepped without a division
// per term. The inverse of the same input is this reversed: X[-k].
std::vector<cld> forward_ref(const std::vector<cld>& x) {
    const std::size_t n = x.size();
    std::vector<cld> w(n), y(n);
    for (std::size_t k = 0; k < n; ++k) w[k] = vektest::root(std::int64_t(k), std::int64_t(n), -1);
    for (std::size_t k = 0; k < n; ++k) {
        cld s(0, 0);
        for (std::size_t j = 0, idx = 0; j < n; ++j, idx = idx + k >= n ? idx + k - n : idx + k)
            s += x[j] * w[idx];
        y[k] = s;
    }
    return y;
}

std::vector<cld> reversed(const std::vector<cld>& y) {
    std::vector<cld> r(y.size());
    for (std::size_t k = 0; k < y.size(); ++k) r[k] = y[(y.size() - k) % y.size()];
    return r;
}

// Forward, inverse and inverse without scaling, c and z, against the
// reference; float to 1e-6 and double to 1e-14 relative rms.
void expect_matches(int n, const std::vector<cld>& x, const std::vector<cld>& fwd) {
    const auto inv = reversed(fwd);
    const auto xc = to<CplxFloat>(x);
    const auto xz = to<CplxDouble>(x);
    std::vector<CplxFloat> yc(x.size());
    std::vector<CplxDouble> yz(x.size());
    vekcDft(xc.data(), yc.data(), n, VEK_Forw);
    EXPECT_LT(vektest::rel_rms(yc.data(), fwd), 1e-6) << n;
    vekzDft(xz.data(), yz.data(), n, VEK_Forw);
    EXPECT_LT(vektest::rel_rms(yz.data(), fwd), 1e-14) << n;
    vekcDft(xc.data(), yc.data(), n, VEK_Inv);
    EXPECT_LT(vektest::rel_rms(yc.data(), inv, 1.0L / n), 1e-6) << n;
    vekzDft(xz.data(), yz.data(), n, VEK_Inv);
    EXPECT_LT(vektest::rel_rms(yz.data(), inv, 1.0L / n), 1e-14) << n;
    vekcDft(xc.data(), yc.data(), n, VEK_Inv | VEK_NoScale);
    EXPECT_LT(vektest::rel_rms(yc.data(), inv), 1e-6) << n;
    vekzDft(xz.data(), yz.data(), n, VEK_Inv | VEK_NoScale);
    EXPECT_LT(vektest::rel_rms(yz.data(), inv), 1e-14) << n;
}

// Every length up to 130: each radix alone and as the first pass (8, 4, 2,
// 3, 5, 7, the generic odd radix up to 61), their products, and the primes
// from 67 on, which take the chirp-z path.
TEST_F(Dft, MatchesTheLongDoubleDftAtEveryShortLength) {
    for (int n = 1; n <= 130; ++n) {
        const auto x = vektest::random_signal(std::size_t(n), unsigned(n));
        expect_matches(n, x, forward_ref(x));
        if (n % 32 == 0) SetUp();
    }
}

TEST_F(Dft, MatchesTheLongDoubleDftAtLongerLengths) {
    const int lengths[] = {
        243,   // 3^5: lane counts 3, 9, 27, 81 leave vector tails
        343,   // 7^3
        625,   // 5^4
        1000,  // 8 * 5^3
        1331,  // 11^3: the generic radix three times
        1536,  // 2^9 * 3
        488,   // 8 * 61: the largest generic radix
        286,   // 2 * 11 * 13: the generic radix column by column, twiddled
        363,   // 3 * 11 * 11
        2 * 67 * 3,
        4099,  // prime: chirp-z
    };
    for (int n : lengths) {
        const auto x = vektest::random_signal(std::size_t(n), unsigned(n));
        expect_matches(n, x, forward_ref(x));
    }
}

// Long lengths, checked at a few bins of the long-double sum and by the
// round trip.
TEST_F(Dft, LongLengthsAtSampledBinsAndByRoundTrip) {
    const int lengths[] = {
        10007,  // prime: chirp-z
        65537,  // prime: chirp-z over a length that is not a power of two
        30030,  // 2*3*5*7*11*13: every radix
        59049,  // 3^10
        46189,  // 11*13*17*19: generic radices only
        16168,  // 8*43*47: generic radices over many lanes
        65536,
    };
    for (int n : lengths) {
        const std::size_t size = std::size_t(n);
        const auto x = vektest::random_signal(size, unsigned(n));
        std::vector<cld> w(size);
        for (std::size_t k = 0; k < size; ++k)
            w[k] = vektest::root(std::int64_t(k), std::int64_t(n), -1);
        const auto xc = to<CplxFloat>(x);
        const auto xz = to<CplxDouble>(x);
        std::vector<CplxFloat> yc(size), bc(size);
        std::vector<CplxDouble> yz(size), bz(size);
        vekcDft(xc.data(), yc.data(), n, VEK_Forw);
        vekzDft(xz.data(), yz.data(), n, VEK_Forw);
        // |X[k]| is about sqrt(n) for this signal.
        const long double unit = std::sqrt(static_cast<long double>(n));
        const std::size_t bins[] = {0, 1, 2, size / 2, size / 3, size - 1, size * 5 / 7};
        for (std::size_t k : bins) {
            cld s(0, 0);
            for (std::size_t j = 0, idx = 0; j < size;
                 ++j, idx = idx + k >= size ? idx + k - size : idx + k)
                s += x[j] * w[idx];
            EXPECT_LT(std::abs(cld(yc[k].re, yc[k].im) - s) / unit, 2e-6) << n << " " << k;
            EXPECT_LT(std::abs(cld(yz[k].re, yz[k].im) - s) / unit, 1e-14) << n << " " << k;
        }
        vekcDft(yc.data(), bc.data(), n, VEK_Inv);
        vekzDft(yz.data(), bz.data(), n, VEK_Inv);
        EXPECT_LT(vektest::rel_rms(bc.data(), x), 1e-6) << n;
        EXPECT_LT(vektest::rel_rms(bz.data(), x), 1e-14) << n;
    }
}

// In place gives the same values as out of place, whatever the number of
// passes (the buffers alternate differently), and for the chirp-z path.
TEST_F(Dft, InPlaceEqualsOutOfPlace) {
    for (int n : {7, 12, 60, 1000, 97, 4099, 2 * 3 * 5 * 7 * 11}) {
        const auto x = vektest::random_signal(std::size_t(n), 5u);
        for (int flags : {VEK_Forw, VEK_Inv}) {
            auto c = to<CplxFloat>(x);
            auto z = to<CplxDouble>(x);
            std::vector<CplxFloat> yc(c.size());
            std::vector<CplxDouble> yz(z.size());
            vekcDft(c.data(), yc.data(), n, flags);
            vekzDft(z.data(), yz.data(), n, flags);
            vekcDft(c.data(), c.data(), n, flags);
            vekzDft(z.data(), z.data(), n, flags);
            EXPECT_EQ(std::memcmp(c.data(), yc.data(), c.size() * sizeof(CplxFloat)), 0) << n;
            EXPECT_EQ(std::memcmp(z.data(), yz.data(), z.size() * sizeof(CplxDouble)), 0) << n;
        }
    }
}

TEST_F(Dft, AgreesWithTheFftForPowersOfTwo) {
    for (int order = 0; order <= 16; order += order < 12 ? 1 : 4) {
        const int n = 1 << order;
        const auto x = vektest::random_signal(std::size_t(n), 77u + unsigned(order));
        auto c = to<CplxFloat>(x), fc = c;
        auto z = to<CplxDouble>(x), fz = z;
        vekcDft(c.data(), c.data(), n, VEK_Forw);
        vekzDft(z.data(), z.data(), n, VEK_Forw);
        vekcFft(fc.data(), order, VEK_Forw);
        vekzFft(fz.data(), order, VEK_Forw);
        const long double unit = std::sqrt(static_cast<long double>(n));
        for (std::size_t i = 0; i < c.size(); ++i) {
            ASSERT_LT(std::hypot(c[i].re - fc[i].re, c[i].im - fc[i].im) / unit, 1e-6)
                << n << " " << i;
            ASSERT_LT(std::hypot(z[i].re - fz[i].re, z[i].im - fz[i].im) / unit, 1e-15)
                << n << " " << i;
        }
    }
}

// Plans sit beside the table list by position: after the tables are freed
// and the lengths come back in another order, each still gets its own.
// Init and Free (work buffers) change nothing either.
TEST_F(Dft, PlansFollowTheirLengthsThroughReleases) {
    const int lengths[] = {60, 4099, 1000};
    std::vector<std::vector<CplxDouble>> x, first;
    for (int n : lengths) {
        x.push_back(to<CplxDouble>(vektest::random_signal(std::size_t(n), 3u)));
        first.emplace_back(std::size_t(n));
        vekzDft(x.back().data(), first.back().data(), n, VEK_Forw);
    }
    vekzFreeTwdTbls();
    for (int i = 2; i >= 0; --i) {
        const int n = lengths[i];
        std::vector<CplxDouble> y(x[std::size_t(i)].size());
        vekzDft(nullptr, nullptr, n, VEK_Init);
        vekzDft(x[std::size_t(i)].data(), y.data(), n, VEK_Forw);
        EXPECT_EQ(std::memcmp(y.data(), first[std::size_t(i)].data(), y.size() * sizeof y[0]), 0)
            << n;
        vekzDft(nullptr, nullptr, n, VEK_Free);
        vekzDft(x[std::size_t(i)].data(), y.data(), n, VEK_Forw);
        EXPECT_EQ(std::memcmp(y.data(), first[std::size_t(i)].data(), y.size() * sizeof y[0]), 0)
            << n;
    }
    vekzFreeTwdTbls();
}

// Each thread builds its own plans, and its exit frees them (the sanitizer
// build checks for the leak).
TEST_F(Dft, EachThreadHasItsOwnPlans) {
    const auto x = to<CplxFloat>(vektest::random_signal(4099, 9u));
    std::vector<CplxFloat> mine(x.size()), theirs(x.size());
    vekcDft(x.data(), mine.data(), 4099, VEK_Forw);
    std::thread t([&] {
        vekcDft(x.data(), theirs.data(), 4099, VEK_Forw);
        CplxDouble z[60] = {};
        vekzDft(z, z, 60, VEK_Inv);
    });
    t.join();
    EXPECT_EQ(std::memcmp(mine.data(), theirs.data(), mine.size() * sizeof mine[0]), 0);
}

TEST_F(Dft, ShortFormIsTheFloatFormNarrowed) {
    const int n = 45;
    std::vector<CplxShort> x(n);
    std::vector<CplxFloat> xf(n), yf(n);
    for (int i = 0; i < n; ++i) {
        x[size_t(i)] = {short(1000 * ((i * 7) % 13) - 6000), short(500 * ((i * 5) % 11) - 2500)};
        xf[size_t(i)] = {float(x[size_t(i)].re), float(x[size_t(i)].im)};
    }
    vekcDft(xf.data(), yf.data(), n, VEK_Forw);
    const struct { int mode, factor; } modes[] = {{0, 0}, {1, 0}, {2, 3}, {3, 2}, {4, 0}};
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
            want[size_t(i)] =
                sat ? short(std::max(-32768.0f, std::min(32767.0f, v))) : short(std::int64_t(v));
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

TEST_F(Dft, ChecksAndTheirMessages) {
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
    } vcases[] = {
        {0, VEK_Forw, 0, &factor, "length<=0"},
        {2, 0, 0, &factor, "VEK_Forw or VEK_Inv must be as a flag"},
        {2, VEK_Forw, 6, &factor, "scaleMode & VEK_FIXED_SCALE && scaleMode & VEK_AUTO_SCALE"},
        {2, VEK_Forw, 4, nullptr, "scaleMode & VEK_AUTO_SCALE && scaleFactor==NULL"}};
    for (const auto& c : vcases) {
        rec.clear();
        vekvDft(s, d, c.length, c.flags, c.mode, c.factor);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekvDft", c.message, "vekdft");
    }
}

TEST_F(Dft, AThirtyThirdLengthFailsUntilTheTablesAreFreed) {
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
