// Dot products (modules vekdotp and vekdotpw).
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <vector>

#include "sum_layout.hpp"
#include "test_util.hpp"

using vektest::layout_sum;
using vektest::ReportRecorder;

namespace {

const int kLengths[] = {0, 1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 1000, 1037};

template <class T>
std::vector<T> random_reals(std::mt19937& gen, int n) {
    // Mixed magnitudes and signs, so that sums cancel.
    std::uniform_real_distribution<double> mant(-1, 1);
    std::uniform_int_distribution<int> expo(-8, 8);
    std::vector<T> v(static_cast<size_t>(n) + 1);  // never empty: data() is not null
    for (auto& x : v) x = T(std::ldexp(mant(gen), expo(gen)));
    return v;
}

// |computed - exact| allowed for n double-precision additions of terms
// whose magnitudes add up to `mass`, plus a final rounding to T.
template <class T>
double bound(int n, long double mass, long double exact) {
    const double eps = std::ldexp(1.0, -52);
    const double out = sizeof(T) == 4 ? std::ldexp(1.0, -24) : eps;
    return double((n + 2) * eps * mass + out * std::fabs(exact)) + 1e-300;
}

TEST(DotProd, RealAgainstLongDoubleAndTheFixedLayout) {
    std::mt19937 gen(11);
    for (int n : kLengths) {
        const auto fa = random_reals<float>(gen, n), fb = random_reals<float>(gen, n);
        const auto da = random_reals<double>(gen, n), db = random_reals<double>(gen, n);
        long double fs = 0, fm = 0, ds = 0, dm = 0;
        for (int i = 0; i < n; ++i) {
            fs += (long double)fa[size_t(i)] * fb[size_t(i)];
            fm += std::fabs((long double)fa[size_t(i)] * fb[size_t(i)]);
            ds += (long double)da[size_t(i)] * db[size_t(i)];
            dm += std::fabs((long double)da[size_t(i)] * db[size_t(i)]);
        }
        const float gs = veksDotProd(fa.data(), fb.data(), n);
        const double gd = vekdDotProd(da.data(), db.data(), n);
        EXPECT_NEAR(gs, double(fs), bound<float>(n, fm, fs)) << n;
        EXPECT_NEAR(gd, double(ds), bound<double>(n, dm, ds)) << n;
        // Bit for bit the documented order, whatever the instruction set.
        EXPECT_EQ(gs, float(layout_sum(
                          n, 1, [&](int i) { return double(fa[size_t(i)]) * fb[size_t(i)]; })[0]))
            << n;
        EXPECT_EQ(gd, layout_sum(n, 1, [&](int i) { return da[size_t(i)] * db[size_t(i)]; })[0])
            << n;
    }
}

// Complex and mixed forms as 2n interleaved reals.
template <class C, class R>
void check_complex(std::mt19937& gen, int n) {
    const auto a = random_reals<R>(gen, 2 * n), b = random_reals<R>(gen, 2 * n);
    const auto r = random_reals<R>(gen, n);
    // References in long double, with the mass of each part's terms.
    long double re = 0, im = 0, mre = 0, mim = 0, mre2 = 0, mim2 = 0, re2 = 0, im2 = 0;
    for (int k = 0; k < n; ++k) {
        const long double ar = a[size_t(2 * k)], ai = a[size_t(2 * k + 1)];
        const long double br = b[size_t(2 * k)], bi = b[size_t(2 * k + 1)], x = r[size_t(k)];
        re += ar * br - ai * bi;
        im += ar * bi + ai * br;
        mre += std::fabs(ar * br) + std::fabs(ai * bi);
        mim += std::fabs(ar * bi) + std::fabs(ai * br);
        re2 += ar * x;
        im2 += ai * x;
        mre2 += std::fabs(ar * x);
        mim2 += std::fabs(ai * x);
    }
    const C* ca = reinterpret_cast<const C*>(a.data());
    const C* cb = reinterpret_cast<const C*>(b.data());
    C full, mixed, swapped;
    if constexpr (sizeof(R) == 4) {
        full = vekcDotProd(ca, cb, n);
        mixed = vekcsDotProd(ca, r.data(), n);
        swapped = vekscDotProd(r.data(), ca, n);
    } else {
        full = vekzDotProd(ca, cb, n);
        mixed = vekzdDotProd(ca, r.data(), n);
        swapped = vekdzDotProd(r.data(), ca, n);
    }
    EXPECT_NEAR(full.re, double(re), bound<R>(2 * n, mre, re)) << n;
    EXPECT_NEAR(full.im, double(im), bound<R>(2 * n, mim, im)) << n;
    EXPECT_NEAR(mixed.re, double(re2), bound<R>(n, mre2, re2)) << n;
    EXPECT_NEAR(mixed.im, double(im2), bound<R>(n, mim2, im2)) << n;
    EXPECT_EQ(std::memcmp(&mixed, &swapped, sizeof mixed), 0) << n;

    // The documented layout, bit for bit.
    auto prod = [](R x, R y) { return double(x) * double(y); };
    const auto s0 = layout_sum(2 * n, 2, [&](int i) { return prod(a[size_t(i)], b[size_t(i)]); });
    const auto s1 =
        layout_sum(2 * n, 2, [&](int i) { return prod(a[size_t(i)], b[size_t(i ^ 1)]); });
    const auto s2 =
        layout_sum(2 * n, 2, [&](int i) { return prod(a[size_t(i)], r[size_t(i / 2)]); });
    EXPECT_EQ(full.re, R(s0[0] - s0[1])) << n;
    EXPECT_EQ(full.im, R(s1[0] + s1[1])) << n;
    EXPECT_EQ(mixed.re, R(s2[0])) << n;
    EXPECT_EQ(mixed.im, R(s2[1])) << n;
}

TEST(DotProd, ComplexAgainstLongDoubleAndTheFixedLayout) {
    std::mt19937 gen(12);
    for (int n : kLengths) {
        check_complex<CplxFloat, float>(gen, n);
        check_complex<CplxDouble, double>(gen, n);
    }
}

TEST(DotProd, ComplexHandCases) {
    const CplxFloat a = {1, 2}, b = {3, 4};
    const CplxFloat p = vekcDotProd(&a, &b, 1);  // no conjugation
    EXPECT_EQ(p.re, -5.0f);
    EXPECT_EQ(p.im, 10.0f);
    const float three = 3;
    const CplxFloat q = vekscDotProd(&three, &a, 1);
    EXPECT_EQ(q.re, 3.0f);
    EXPECT_EQ(q.im, 6.0f);
}

// 16-bit forms: exact sums modulo 2^32, through the Ext forms in mode 0.
TEST(DotProd, SixteenBitSumsWrapAt32Bits) {
    std::mt19937 gen(13);
    std::uniform_int_distribution<int> any(-32768, 32767);
    auto wrap = [](std::int64_t x) { return std::int32_t(std::uint32_t(std::uint64_t(x))); };
    for (int n : {0, 1, 2, 3, 5, 8, 15, 16, 17, 31, 33, 64, 65, 129, 1000, 70000}) {
        std::vector<short> a(static_cast<size_t>(2 * n) + 1), b(static_cast<size_t>(2 * n) + 1);
        for (size_t i = 0; i < a.size(); ++i) {
            // Runs of the extremes make the 32-bit sums overflow, many times over.
            const bool extreme = (i / 50) % 2 == 0;
            a[i] = short(extreme ? -32768 : any(gen));
            b[i] = short(extreme ? (i % 3 ? -32768 : 32767) : any(gen));
        }
        std::int64_t w = 0, vre = 0, vim = 0, mre = 0, mim = 0;
        for (int k = 0; k < n; ++k) {
            const std::int64_t ar = a[size_t(2 * k)], ai = a[size_t(2 * k + 1)];
            const std::int64_t br = b[size_t(2 * k)], bi = b[size_t(2 * k + 1)];
            w += std::int64_t(a[size_t(k)]) * b[size_t(k)];
            vre += ar * br - ai * bi;
            vim += ar * bi + ai * br;
            mre += ar * b[size_t(k)];
            mim += ai * b[size_t(k)];
        }
        const CplxShort* va = reinterpret_cast<const CplxShort*>(a.data());
        const CplxShort* vb = reinterpret_cast<const CplxShort*>(b.data());
        EXPECT_EQ(vekwDotProdExt(a.data(), b.data(), n, 0, nullptr), wrap(w)) << n;
        const CplxInt v = vekvDotProdExt(va, vb, n, 0, nullptr);
        EXPECT_EQ(v.re, wrap(vre)) << n;
        EXPECT_EQ(v.im, wrap(vim)) << n;
        const CplxInt vw = vekvwDotProdExt(va, b.data(), n, 0, nullptr);
        const CplxInt wv = vekwvDotProdExt(b.data(), va, n, 0, nullptr);
        EXPECT_EQ(vw.re, wrap(mre)) << n;
        EXPECT_EQ(vw.im, wrap(mim)) << n;
        EXPECT_EQ(wv.re, vw.re);
        EXPECT_EQ(wv.im, vw.im);
        // The narrowed forms keep the low 16 bits in mode 0.
        EXPECT_EQ(vekwDotProd(a.data(), b.data(), n, 0, nullptr), short(wrap(w))) << n;
        const CplxShort s = vekvDotProd(va, vb, n, 0, nullptr);
        EXPECT_EQ(s.re, short(wrap(vre)));
        EXPECT_EQ(s.im, short(wrap(vim)));
    }
}

TEST(DotProd, SixteenBitScaleModes) {
    const short x[2] = {300, 300};  // 180000 with itself
    const struct {
        int mode, factorIn;
        short narrow;
        int whole, factorOut;
    } cases[] = {
        {VEK_NO_SCALE, 7, short(180000 - 196608), 180000, 7},
        {VEK_SATURATE, 7, 32767, 180000, 7},
        {VEK_AUTO_SCALE, 7, 22500, 180000, 0},  // 180000 >> 3; Ext writes 0
        {VEK_FIXED_SCALE, 2, short(45000 - 65536), 45000, 2},
        {VEK_FIXED_SCALE, -1, short(360000 - 393216), 360000, -1},
        {VEK_FIXED_SCALE | VEK_SATURATE, 2, 32767, 180000, 2},  // Ext: unchanged
        {VEK_FIXED_SCALE | VEK_SATURATE, 3, 22500, 180000, 3},
    };
    for (const auto& c : cases) {
        int f = c.factorIn;
        EXPECT_EQ(vekwDotProd(x, x, 2, c.mode, &f), c.narrow) << c.mode << " " << c.factorIn;
        if (c.mode == VEK_AUTO_SCALE) {
            EXPECT_EQ(f, 3);
        }
        f = c.factorIn;
        EXPECT_EQ(vekwDotProdExt(x, x, 2, c.mode, &f), c.whole) << c.mode << " " << c.factorIn;
        EXPECT_EQ(f, c.factorOut);
    }
    // One factor for both parts: the larger decides.
    const CplxShort a[2] = {{300, 1}, {300, 0}}, one[2] = {{1, 0}, {1, 0}};
    const CplxShort big = {300, 10}, amp[1] = {{600, 2}};
    int f = -9;
    CplxShort r = vekvDotProd(amp, &big, 1, VEK_AUTO_SCALE, &f);  // 179980 + 6600i
    EXPECT_EQ(f, 3);
    EXPECT_EQ(r.re, short(179980 >> 3));
    EXPECT_EQ(r.im, short(6600 >> 3));
    r = vekvDotProd(a, one, 2, VEK_AUTO_SCALE, &f);  // 600 + 1i: fits
    EXPECT_EQ(f, 0);
    EXPECT_EQ(r.re, 600);
    EXPECT_EQ(r.im, 1);
    // len 0: zero through the narrowing, factor 0 written.
    f = 5;
    EXPECT_EQ(vekwDotProd(x, x, 0, VEK_AUTO_SCALE, &f), 0);
    EXPECT_EQ(f, 0);
}

TEST(DotProd, ArgumentChecks) {
    const CplxFloat c[1] = {{1, 2}};
    const CplxShort v[1] = {{1, 2}};
    const float s[1] = {1};
    const short w[1] = {1};
    int factor = 0;
    struct Case {
        bool nullA, nullB;
        int len, mode;
        bool nullFactor;
        const char* message;  // nullptr: no report
        bool floatReports;    // the floating forms have no factor check
    };
    const Case cases[] = {
        {true, false, 1, 0, false, "Null buffer pointer", true},
        {false, true, 1, 0, false, "Null buffer pointer", true},
        {true, true, -1, 4, true, "Null buffer pointer", true},
        {false, false, -1, 4, true, "Invalid value", true},
        {false, false, 1, VEK_AUTO_SCALE, true, "Null scale factor pointer", false},
        {false, false, 0, 0, false, nullptr, false},
        {false, false, 1, VEK_AUTO_SCALE | VEK_SATURATE, true, nullptr, false},  // not exactly 4
    };
    std::set<int> floatLines, shortLines;
    for (const Case& k : cases) {
        int* f = k.nullFactor ? nullptr : &factor;
        ReportRecorder rec;
        // Floating forms: a failed check returns zero.
        const float rs = veksDotProd(k.nullA ? nullptr : s, k.nullB ? nullptr : s, k.len);
        const CplxFloat rc = vekcDotProd(k.nullA ? nullptr : c, k.nullB ? nullptr : c, k.len);
        if (k.floatReports) {
            ASSERT_EQ(rec.size(), 2u);
            for (size_t i = 0; i < 2; ++i) {
                EXPECT_EQ(rec[i].context, k.message);
                EXPECT_EQ(rec[i].file, "vekdotp");
            }
            EXPECT_EQ(rec[0].func, "veksDotProd");
            EXPECT_EQ(rec[1].func, "vekcDotProd");
            floatLines.insert(rec[0].line);
            EXPECT_EQ(rs, 0.0f);
            EXPECT_EQ(rc.re, 0.0f);
            EXPECT_EQ(rc.im, 0.0f);
        } else {
            EXPECT_EQ(rec.size(), 0u);
        }
        rec.clear();
        // 16-bit forms.
        const short rw =
            vekwDotProd(k.nullA ? nullptr : w, k.nullB ? nullptr : w, k.len, k.mode, f);
        const CplxInt rv =
            vekvDotProdExt(k.nullA ? nullptr : v, k.nullB ? nullptr : v, k.len, k.mode, f);
        if (k.message) {
            ASSERT_EQ(rec.size(), 2u);
            EXPECT_EQ(rec[0].func, "vekwDotProd");
            EXPECT_EQ(rec[1].func, "vekvDotProdExt");
            for (size_t i = 0; i < 2; ++i) {
                EXPECT_EQ(rec[i].status, VEK_StatusBadArgument);
                EXPECT_EQ(rec[i].context, k.message);
                EXPECT_EQ(rec[i].file, "vekdotpw");
            }
            EXPECT_EQ(rec[0].line, rec[1].line);
            shortLines.insert(rec[0].line);
            EXPECT_EQ(rw, 0);
            EXPECT_EQ(rv.re, 0);
            EXPECT_EQ(rv.im, 0);
        } else {
            EXPECT_EQ(rec.size(), 0u);
            EXPECT_EQ(rw, k.len);
        }
    }
    EXPECT_EQ(floatLines.size(), 1u);  // one line for all checks of a floating export
    EXPECT_EQ(shortLines.size(), 4u);  // a line of its own for each 16-bit check
}

}  // namespace
