// 16-bit arithmetic (w, v): every form under every scale mode against a
// reference that applies the mode rules to exact results with integer
// division and multiplication; conjugates; single values; checks.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

using i64 = std::int64_t;

// ------------------------------------------------------------ the reference

// floor(r / 2^f) and r * 2^s without shifts.
i64 floor_div_pow2(i64 r, int f) {
    if (f >= 62) return r < 0 ? -1 : 0;
    const i64 d = i64(1) << f;
    return r >= 0 ? r / d : -((-r + d - 1) / d);
}
short low16(i64 r) {  // r modulo 2^16, as a signed value
    i64 m = r % 65536;
    if (m < 0) m += 65536;
    return short(m >= 32768 ? m - 65536 : m);
}
short clamp16(i64 r) { return short(r > 32767 ? 32767 : r < -32768 ? -32768 : r); }
bool fits(i64 r) { return r >= -32768 && r <= 32767; }

// Narrows exact results (lanes in memory order) the way the element-wise
// exports must. Writes the factor in mode 4; returns the lanes.
std::vector<short> narrow(const std::vector<i64>& r, bool product, int mode, int* factor) {
    std::vector<short> out(r.size());
    const int f = factor ? *factor : 0;
    for (size_t i = 0; i < r.size(); ++i) {
        if (mode == 0) {
            out[i] = low16(r[i]);
        } else if (mode == 1) {
            out[i] = clamp16(r[i]);
        } else if (mode == 4) {
            continue;
        } else if (mode == 3) {
            if (f >= 0) {
                const i64 q = floor_div_pow2(r[i], f);
                out[i] = product || f == 0 ? clamp16(q) : low16(q);
            } else {
                const int s = -f;
                const i64 upper = s >= 16 ? 0 : floor_div_pow2(32767, s);
                const i64 lower = s >= 16 ? 0 : floor_div_pow2(-32768, s);
                out[i] = r[i] > upper ? 32767 : r[i] < lower ? -32768 : low16(r[i] * (i64(1) << s));
            }
        } else {
            out[i] = f >= 0     ? low16(floor_div_pow2(r[i], f))
                     : -f >= 16 ? 0
                                : low16(r[i] * (i64(1) << -f));
        }
    }
    if (mode == 4) {
        size_t k = 0;
        while (k < r.size() && fits(r[k])) ++k;
        int s = 0;
        if (k < r.size()) {
            s = 1;
            for (size_t j = k; product && j < r.size(); ++j)
                while (!fits(floor_div_pow2(r[j], s))) ++s;
        }
        for (size_t i = 0; i < r.size(); ++i) out[i] = short(floor_div_pow2(r[i], s));
        *factor = s;
    }
    return out;
}

enum Op { kAdd, kSub, kMpy };

// Exact lane results of a op b; complex data are (re, im) lane pairs.
std::vector<i64> exact(Op op, bool cplx, const std::vector<short>& a, const std::vector<short>& b) {
    std::vector<i64> r(a.size());
    for (size_t i = 0; i < a.size(); ++i) {
        if (op == kAdd) r[i] = i64(a[i]) + b[i];
        if (op == kSub) r[i] = i64(a[i]) - b[i];
        if (op == kMpy && !cplx) r[i] = i64(a[i]) * b[i];
    }
    if (op == kMpy && cplx) {
        for (size_t i = 0; i < a.size(); i += 2) {
            r[i] = i64(a[i]) * b[i] - i64(a[i + 1]) * b[i + 1];
            r[i + 1] = i64(a[i + 1]) * b[i] + i64(a[i]) * b[i + 1];
        }
    }
    return r;
}

// ------------------------------------------------------------ the exports

struct Forms {
    bool cplx;
    Op op;
    void (*f1)(const short* val, short* dst, int n, int mode, int* sf);
    void (*f2)(const short* src, short* dst, int n, int mode, int* sf);
    void (*f3)(const short* a, const short* b, short* dst, int n, int mode, int* sf);
};

template <class T>
const T* as(const short* p) {
    return reinterpret_cast<const T*>(p);
}
template <class T>
T* as(short* p) {
    return reinterpret_cast<T*>(p);
}

#define VEK_W_FORMS(op, Name)                                                                      \
    Forms {                                                                                        \
        false, op,                                                                                 \
            [](const short* v, short* d, int n, int m, int* f) {                                   \
                vekwb##Name##1(*v, d, n, m, f);                                                    \
            },                                                                                     \
            [](const short* s, short* d, int n, int m, int* f) { vekwb##Name##2(s, d, n, m, f); }, \
            [](const short* a, const short* b, short* d, int n, int m, int* f) {                   \
                vekwb##Name##3(a, b, d, n, m, f);                                                  \
            }                                                                                      \
    }
#define VEK_V_FORMS(op, Name)                                                                  \
    Forms {                                                                                    \
        true, op,                                                                              \
            [](const short* v, short* d, int n, int m, int* f) {                               \
                vekvb##Name##1(*as<CplxShort>(v), as<CplxShort>(d), n, m, f);                  \
            },                                                                                 \
            [](const short* s, short* d, int n, int m, int* f) {                               \
                vekvb##Name##2(as<CplxShort>(s), as<CplxShort>(d), n, m, f);                   \
            },                                                                                 \
            [](const short* a, const short* b, short* d, int n, int m, int* f) {               \
                vekvb##Name##3(as<CplxShort>(a), as<CplxShort>(b), as<CplxShort>(d), n, m, f); \
            }                                                                                  \
    }

const Forms kForms[] = {VEK_W_FORMS(kAdd, Add), VEK_W_FORMS(kSub, Sub), VEK_W_FORMS(kMpy, Mpy),
                        VEK_V_FORMS(kAdd, Add), VEK_V_FORMS(kSub, Sub), VEK_V_FORMS(kMpy, Mpy)};

// Element counts across every vector width, odd and even.
const int kLengths[] = {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 257};

// Lanes of one data set: small values that never overflow, with optional
// large values planted so that the first overflow of a op b falls at `at`.
std::vector<short> data(size_t lanes, unsigned seed, int span) {
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> u(-span, span);
    std::vector<short> v(lanes);
    for (short& x : v) x = short(u(gen));
    return v;
}

struct Case {
    const char* what;
    int span;      // magnitude of the ordinary lanes
    int plant_at;  // -1: nowhere; else lane index (as a fraction of 1000 of the length)
};

// Makes the first overflow of a op b fall at `lane` (and at the lane after
// it, for complex data). Products overflow modestly first and by up to 2^31
// in the last lanes, so that the automatic factor has to grow.
void plant(std::vector<short>& a, std::vector<short>& b, size_t lane, Op op, bool cplx) {
    const size_t last = a.size() - 1;
    for (size_t i = lane; i <= lane + (cplx ? 1 : 0); ++i) {
        if (op == kMpy) {
            a[i] = b[i] = 300;
        } else {
            a[i] = -32768;
            b[i] = op == kSub ? 32767 : -32768;
        }
    }
    if (op == kMpy && last >= lane + 6) a[last] = b[last] = a[last - 1] = b[last - 1] = -32768;
}

TEST(ScaleModes, EveryFormModeAndFactorMatchesTheRules) {
    const Case cases[] = {
        {"random full range", 32767, -1}, {"no overflow", 100, -1},    {"overflow first", 100, 0},
        {"overflow middle", 100, 500},    {"overflow last", 100, 999},
    };
    const int modes[] = {0, 1, 2, 3, 4, 5, 6, 7};
    const int factors[] = {0, 1, 3, 16, 40, -1, -3, -15, -16, -20};
    unsigned seed = 11;
    for (const Forms& fm : kForms) {
        for (const Case& c : cases) {
            for (int n : kLengths) {
                const size_t lanes = size_t(n) * (fm.cplx ? 2 : 1);
                std::vector<short> a = data(lanes, ++seed, c.span), b = data(lanes, ++seed, c.span);
                if (c.plant_at >= 0) {
                    size_t at = lanes * size_t(c.plant_at) / 1000;
                    if (fm.cplx) at &= ~size_t(1);
                    plant(a, b, at, fm.op, fm.cplx);
                }
                std::vector<short> val(b.begin(), b.begin() + (fm.cplx ? 2 : 1));
                std::vector<short> vals(lanes);
                for (size_t i = 0; i < lanes; ++i) vals[i] = val[i % val.size()];

                for (int mode : modes) {
                    const bool fixed = mode != 0 && mode != 1 && mode != 4;
                    for (int fi = 0; fi < (fixed ? 11 : 1); ++fi) {
                        // fi == 10: a null factor pointer (reads as 0 in fixed modes)
                        const bool null_factor = fixed && fi == 10;
                        int f0 = fixed ? factors[fi % 10] : 99;
                        SCOPED_TRACE(::testing::Message()
                                     << c.what << ", cplx " << fm.cplx << ", op " << fm.op << ", n "
                                     << n << ", mode " << mode << ", factor "
                                     << (null_factor ? "null" : std::to_string(f0)));
                        int want_f = f0;
                        const auto want1 = narrow(exact(fm.op, fm.cplx, a, vals), fm.op == kMpy,
                                                  mode, null_factor ? nullptr : &want_f);
                        int want_f3 = f0;
                        const auto want3 = narrow(exact(fm.op, fm.cplx, a, b), fm.op == kMpy, mode,
                                                  null_factor ? nullptr : &want_f3);
                        // Guard lanes behind each destination.
                        std::vector<short> d1 = a, d2 = a, d3(lanes + 8, 0x1234);
                        d1.resize(lanes + 8, 0x1234);
                        d2.resize(lanes + 8, 0x1234);
                        int f1 = f0, f2 = f0, f3 = f0;
                        fm.f1(val.data(), d1.data(), n, mode, null_factor ? nullptr : &f1);
                        fm.f2(b.data(), d2.data(), n, mode, null_factor ? nullptr : &f2);
                        fm.f3(a.data(), b.data(), d3.data(), n, mode, null_factor ? nullptr : &f3);
                        ASSERT_TRUE(std::equal(want1.begin(), want1.end(), d1.begin()));
                        ASSERT_TRUE(std::equal(want3.begin(), want3.end(), d2.begin()));
                        ASSERT_TRUE(std::equal(want3.begin(), want3.end(), d3.begin()));
                        ASSERT_EQ(f1, want_f);
                        ASSERT_EQ(f2, want_f3);
                        ASSERT_EQ(f3, want_f3);
                        for (size_t i = lanes; i < lanes + 8; ++i)
                            ASSERT_TRUE(d1[i] == 0x1234 && d2[i] == 0x1234 && d3[i] == 0x1234);
                    }
                }
            }
        }
    }
}

TEST(ScaleModes, SmallHandComputedCases) {
    int f = 7;
    short x[3] = {100, -7, 32767};
    vekwbAdd1(1, x, 3, VEK_AUTO_SCALE, &f);  // the last sum overflows: all halved
    EXPECT_TRUE(x[0] == 50 && x[1] == -3 && x[2] == 16384 && f == 1);

    short y[1] = {32767};
    vekwbAdd1(1, y, 1, VEK_NO_SCALE, nullptr);
    EXPECT_EQ(y[0], -32768);
    y[0] = 32767;
    vekwbAdd1(1, y, 1, VEK_SATURATE, nullptr);
    EXPECT_EQ(y[0], 32767);

    f = 7;
    short z[2] = {1, 2};
    vekwbMpy1(3, z, 2, VEK_AUTO_SCALE, &f);  // nothing overflows: factor 0
    EXPECT_TRUE(z[0] == 3 && z[1] == 6 && f == 0);

    short w[1] = {30000};
    vekwbAdd1(10000, w, 1, VEK_FIXED_SCALE, nullptr);  // null factor: plain wrap
    EXPECT_EQ(w[0], short(40000 - 65536));
    w[0] = 30000;
    f = 1;
    vekwbAdd1(10000, w, 1, 6, &f);  // FIXED|AUTO takes the fixed, wrapping path
    EXPECT_TRUE(w[0] == 20000 && f == 1);

    short s[1] = {5000};
    f = -3;
    vekwbMpy1(1, s, 1, VEK_FIXED_SCALE | VEK_SATURATE, &f);  // 5000 > 32767 >> 3
    EXPECT_EQ(s[0], 32767);

    // The largest complex product: im = 2^31 needs a factor of 17.
    const CplxShort m{-32768, -32768};
    CplxShort p[1] = {m};
    vekvbMpy1(m, p, 1, VEK_AUTO_SCALE, &f);
    EXPECT_TRUE(p[0].re == 0 && p[0].im == 16384 && f == 17);
    p[0] = m;
    vekvbMpy1(m, p, 1, VEK_SATURATE, nullptr);
    EXPECT_TRUE(p[0].re == 0 && p[0].im == 32767);
}

// Any placement of the destination gives the same lanes and touches
// nothing outside it, in every vectorised mode.
TEST(ScaleModes, EveryDestinationPlacement) {
    const int n = 77;
    std::vector<short> a = data(2 * n, 31, 32767), b = data(2 * n, 32, 100);
    for (const Forms& fm : kForms) {
        for (int mode : {0, 1, 4}) {
            const size_t lanes = size_t(n) * (fm.cplx ? 2 : 1);
            std::vector<short> want(lanes);
            int wf = 0;
            fm.f3(a.data(), b.data(), want.data(), n, mode, &wf);
            alignas(64) short buf[64 + 2 * n + 64];
            for (size_t off = 0; off <= 32; ++off) {
                std::fill(std::begin(buf), std::end(buf), short(0x7777));
                int f = 0;
                fm.f3(a.data(), b.data(), buf + off, n, mode, &f);
                ASSERT_TRUE(std::equal(want.begin(), want.end(), buf + off)) << off;
                ASSERT_EQ(f, wf);
                for (size_t i = 0; i < sizeof buf / sizeof buf[0]; ++i) {
                    if (i < off || i >= off + lanes) {
                        ASSERT_EQ(buf[i], 0x7777) << off << " " << i;
                    }
                }
            }
        }
    }
}

// ------------------------------------------------------------ set, zero, copy, conjugates

TEST(ShortVectors, SetZeroCopy) {
    for (int n : kLengths) {
        std::vector<short> w(size_t(n) + 4, 9);
        vekwbSet(-5, w.data(), n);
        for (int i = 0; i < n; ++i) ASSERT_EQ(w[size_t(i)], -5);
        EXPECT_EQ(w[size_t(n)], 9);
        std::vector<CplxShort> v(size_t(n) + 4, CplxShort{9, 9});
        vekvbSet(CplxShort{3, -4}, v.data(), n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(v[size_t(i)].re == 3 && v[size_t(i)].im == -4);
        EXPECT_EQ(v[size_t(n)].re, 9);
        vekvbZero(v.data(), n);
        vekwbZero(w.data(), n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(w[size_t(i)] == 0 && v[size_t(i)].im == 0);
        EXPECT_EQ(w[size_t(n)], 9);
    }
    short buf[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    vekwbCopy(buf, buf + 2, 8);  // overlapping, destination above
    const short want[10] = {0, 1, 0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(std::memcmp(buf, want, sizeof buf), 0);
    CplxShort cb[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    vekvbCopy(cb + 1, cb, 3);  // destination below
    EXPECT_TRUE(cb[0].re == 2 && cb[2].im == 4 && cb[3].re == 4);
}

TEST(Conjugates, PlainFlippedAndExtended) {
    for (int n : kLengths) {
        std::vector<CplxShort> src(static_cast<size_t>(n)),
            dst(static_cast<size_t>(n) + 1, CplxShort{7, 7});
        for (int i = 0; i < n; ++i)
            src[size_t(i)] = CplxShort{short(i), short(i % 3 ? -i : -32768)};
        auto conj_im = [](short im) { return short(im == -32768 ? 32767 : -im); };

        vekvbConj2(src.data(), dst.data(), n);
        for (int i = 0; i < n; ++i)
            ASSERT_TRUE(dst[size_t(i)].re == src[size_t(i)].re &&
                        dst[size_t(i)].im == conj_im(src[size_t(i)].im));
        EXPECT_EQ(dst[size_t(n)].re, 7);
        std::vector<CplxShort> in_place = src;
        vekvbConj1(in_place.data(), n);
        EXPECT_EQ(std::memcmp(in_place.data(), dst.data(), sizeof(CplxShort) * size_t(n)), 0);

        vekvbConjFlip2(src.data(), dst.data(), n);
        for (int i = 0; i < n; ++i)
            ASSERT_TRUE(dst[size_t(i)].re == src[size_t(n - 1 - i)].re &&
                        dst[size_t(i)].im == conj_im(src[size_t(n - 1 - i)].im));
        in_place = src;
        vekvbConjFlip2(in_place.data(), in_place.data(), n);
        EXPECT_EQ(std::memcmp(in_place.data(), dst.data(), sizeof(CplxShort) * size_t(n)), 0);

        // Half spectrum X[0..n/2] to n points.
        std::vector<CplxShort> half(src.begin(), src.begin() + n / 2 + 1);
        std::vector<CplxShort> full(size_t(n) + 1, CplxShort{7, 7});
        vekvbConjExtend2(half.data(), full.data(), n);
        for (int k = 0; k <= n / 2; ++k)
            ASSERT_TRUE(full[size_t(k)].re == half[size_t(k)].re &&
                        full[size_t(k)].im == half[size_t(k)].im);
        for (int k = 1; k <= (n - 1) / 2; ++k)
            ASSERT_TRUE(full[size_t(n - k)].re == half[size_t(k)].re &&
                        full[size_t(n - k)].im == conj_im(half[size_t(k)].im));
        EXPECT_EQ(full[size_t(n)].re, 7);
        in_place = src;
        vekvbConjExtend1(in_place.data(), n);
        EXPECT_EQ(std::memcmp(in_place.data(), full.data(), sizeof(CplxShort) * size_t(n)), 0);
    }
}

TEST(ShortScalars, SaturatingValuesAndTruncatingDivision) {
    const CplxShort a{30000, -30000}, b{10000, 10000};
    CplxShort r = vekvAdd(a, b);
    EXPECT_TRUE(r.re == 32767 && r.im == -20000);
    r = vekvSub(a, b);
    EXPECT_TRUE(r.re == 20000 && r.im == -32768);
    r = vekvMpy(CplxShort{3, 4}, CplxShort{-2, 5});  // (3+4i)(-2+5i) = -26 + 7i
    EXPECT_TRUE(r.re == -26 && r.im == 7);
    r = vekvMpy(CplxShort{200, 0}, CplxShort{200, 1});
    EXPECT_TRUE(r.re == 32767 && r.im == 200);
    r = vekvDiv(CplxShort{-26, 7}, CplxShort{-2, 5});  // exact quotient 3 + 4i
    EXPECT_TRUE(r.re == 3 && r.im == 4);
    r = vekvDiv(CplxShort{7, -7}, CplxShort{2, 0});  // 3.5 - 3.5i truncated toward zero
    EXPECT_TRUE(r.re == 3 && r.im == -3);
    r = vekvDiv(CplxShort{-32768, 0}, CplxShort{-1, 0});
    EXPECT_EQ(r.re, 32767);
    r = vekvConj(CplxShort{1, -32768});
    EXPECT_TRUE(r.re == 1 && r.im == 32767);
    r = vekvSet(-1, 2);
    EXPECT_TRUE(r.re == -1 && r.im == 2);
    ReportRecorder rec;
    r = vekvDiv(a, CplxShort{0, 0});
    EXPECT_TRUE(r.re == 0 && r.im == 0);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekvDiv", "(b.re==0)&&(b.im==0)", "vekaritw");
}

// ------------------------------------------------------------ checks

TEST(ShortChecks, MessagesInOrderAndNothingWritten) {
    short w[4] = {1, 2, 3, 4};
    CplxShort v[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    short* wn = nullptr;
    CplxShort* vn = nullptr;
    int f = 5;
    const struct {
        const char* func;
        const char* message;
        std::function<void()> call;
    } cases[] = {
        {"vekwbAdd1", "n<=0", [&] { vekwbAdd1(1, wn, 0, 4, nullptr); }},
        {"vekwbAdd1", "dst==0", [&] { vekwbAdd1(1, wn, 4, 4, nullptr); }},
        {"vekwbAdd1", "scalefactor==0", [&] { vekwbAdd1(1, w, 4, 4, nullptr); }},
        {"vekwbSub2", "src==0", [&] { vekwbSub2(wn, wn, 4, 0, &f); }},
        {"vekwbSub2", "dst==0", [&] { vekwbSub2(w, wn, 4, 0, &f); }},
        {"vekwbMpy3", "srcA==0", [&] { vekwbMpy3(wn, wn, wn, 4, 4, nullptr); }},
        {"vekwbMpy3", "srcB==0", [&] { vekwbMpy3(w, wn, wn, 4, 4, nullptr); }},
        {"vekwbMpy3", "dst==0", [&] { vekwbMpy3(w, w, wn, 4, 4, nullptr); }},
        {"vekwbMpy3", "scalefactor==0", [&] { vekwbMpy3(w, w, w, 4, 4, nullptr); }},
        {"vekvbAdd3", "n<=0", [&] { vekvbAdd3(vn, vn, vn, -2, 4, nullptr); }},
        {"vekvbSub1", "scalefactor==0", [&] { vekvbSub1(v[0], v, 4, 4, nullptr); }},
        {"vekvbMpy2", "src==0", [&] { vekvbMpy2(vn, v, 4, 1, nullptr); }},
        {"vekwbZero", "dst==0", [&] { vekwbZero(wn, 4); }},
        {"vekwbSet", "n<=0", [&] { vekwbSet(1, w, 0); }},
        {"vekwbCopy", "src==0", [&] { vekwbCopy(wn, w, 4); }},
        {"vekvbZero", "n<=0", [&] { vekvbZero(v, 0); }},
        {"vekvbSet", "dst==0", [&] { vekvbSet(v[0], vn, 4); }},
        {"vekvbCopy", "dst==0", [&] { vekvbCopy(v, vn, 4); }},
        {"vekvbConj1", "vec==0", [&] { vekvbConj1(vn, 4); }},
        {"vekvbConj2", "n<=0", [&] { vekvbConj2(v, v, 0); }},
        {"vekvbConjFlip2", "dst==0", [&] { vekvbConjFlip2(v, vn, 4); }},
        {"vekvbConjExtend1", "n<=0", [&] { vekvbConjExtend1(vn, -1); }},
        {"vekvbConjExtend2", "src==0", [&] { vekvbConjExtend2(vn, v, 4); }},
    };
    for (const auto& k : cases) {
        ReportRecorder rec;
        k.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, k.func, k.message, "vekaritw");
    }
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(w[i] == i + 1 && v[i].re == i + 1 && v[i].im == i + 1);
    EXPECT_EQ(f, 5);
    // Only exactly VEK_AUTO_SCALE needs the factor pointer.
    for (int mode : {0, 1, 2, 3, 5, 6, 7}) vekwbAdd2(w, w, 4, mode, nullptr);
}

}  // namespace
