// Float and integer conversions (modules vekcvrts and vekcvrtd).
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

constexpr unsigned char kUntouched = 0x5A;
const int kRoundings[] = {VEK_RndNear, VEK_RndZero, VEK_RndFloor, VEK_RndCeil};

// Calls veksbFloatToInt or vekdbFloatToInt by element type.
void to_int(const float* src, void* dst, int len, int bits, int flags) {
    veksbFloatToInt(src, dst, len, bits, flags);
}
void to_int(const double* src, void* dst, int len, int bits, int flags) {
    vekdbFloatToInt(src, dst, len, bits, flags);
}
void from_int(const void* src, float* dst, int len, int bits, int flags) {
    veksbIntToFloat(src, dst, len, bits, flags);
}
void from_int(const void* src, double* dst, int len, int bits, int flags) {
    vekdbIntToFloat(src, dst, len, bits, flags);
}
template <class Real>
const char* module_of() {
    return sizeof(Real) == 4 ? "vekcvrts" : "vekcvrtd";
}
template <class Real>
const char* to_int_name() {
    return sizeof(Real) == 4 ? "veksbFloatToInt" : "vekdbFloatToInt";
}

// The integer range of a width and signedness.
struct Range {
    long double lo, hi;
};
Range range_of(int bits, bool isUnsigned) {
    if (isUnsigned) return {0.0L, std::ldexp(1.0L, bits) - 1};
    return {-std::ldexp(1.0L, bits - 1), std::ldexp(1.0L, bits - 1) - 1};
}

// Exact rounding to an integer by the rounding bit, in long double.
long double round_ref(long double x, int rounding) {
    const long double fl = std::floor(x);
    switch (rounding) {
        case VEK_RndZero:
            return x < 0 ? std::ceil(x) : fl;
        case VEK_RndFloor:
            return fl;
        case VEK_RndCeil:
            return std::ceil(x);
        default: {
            const long double d = x - fl;
            if (d > 0.5L) return fl + 1;
            if (d < 0.5L) return fl;
            return std::fmod(fl, 2.0L) == 0 ? fl : fl + 1;
        }
    }
}

void put(std::vector<unsigned char>& bytes, int i, int bits, long double v) {
    const std::uint32_t u = std::uint32_t(std::int64_t(v));  // two's complement low bits
    std::memcpy(&bytes[size_t(i) * (bits / 8)], &u, size_t(bits / 8));
}

// What a float-to-integer call must leave in dst (starting as kUntouched
// bytes), and how many elements it must report.
template <class Real>
std::vector<unsigned char> expected_ints(const std::vector<Real>& src, int bits, int flags,
                                         int* reports) {
    const Range r = range_of(bits, flags & VEK_CvtUnsigned);
    const int rounding = flags & (VEK_RndNear | VEK_RndZero | VEK_RndFloor | VEK_RndCeil);
    std::vector<unsigned char> out(src.size() * size_t(bits / 8), kUntouched);
    *reports = 0;
    for (size_t i = 0; i < src.size(); ++i) {
        const long double x = src[i];
        if (x >= r.lo && x <= r.hi) {
            put(out, int(i), bits, round_ref(x, rounding));
            continue;
        }
        if (flags & VEK_CvtSaturate) put(out, int(i), bits, x > r.hi ? r.hi : x < r.lo ? r.lo : 0);
        if (flags & VEK_CvtReport) ++*reports;
    }
    return out;
}

// Values around everything a conversion to this width has to get right:
// ties, fractions next to one half, the range ends and what lies just past
// them, signed zeros, infinities, NaN, then random values over the range
// and its surroundings, shuffled so that vector blocks mix the kinds.
template <class Real>
std::vector<Real> probe_values(int bits, bool isUnsigned, std::mt19937& gen) {
    const Range r = range_of(bits, isUnsigned);
    const Real inf = std::numeric_limits<Real>::infinity();
    const Real below_half = std::nextafter(Real(0.5), Real(0));
    std::vector<Real> v = {0,
                           -Real(0),
                           0.5,
                           1.5,
                           2.5,
                           -0.5,
                           -1.5,
                           -2.5,
                           3.5,
                           -3.5,
                           0.25,
                           below_half,
                           -below_half,
                           1 + below_half,
                           0.75,
                           -0.75,
                           1e-30,
                           -1e-30,
                           std::numeric_limits<Real>::denorm_min(),
                           inf,
                           -inf,
                           std::numeric_limits<Real>::quiet_NaN(),
                           1e30f,
                           -1e30f};
    for (long double edge : {r.lo, r.hi}) {
        for (long double d : {-1.0L, -0.5L, -0.25L, 0.0L, 0.25L, 0.5L, 1.0L, 2.0L}) {
            v.push_back(Real(edge + d));
            v.push_back(std::nextafter(Real(edge + d), inf));
            v.push_back(std::nextafter(Real(edge + d), -inf));
        }
    }
    std::uniform_real_distribution<double> any(double(r.lo) - 3, double(r.hi) + 3);
    std::uniform_int_distribution<long long> whole((long long)r.lo, (long long)r.hi);
    for (int k = 0; k < 80; ++k) {
        v.push_back(Real(any(gen)));
        v.push_back(Real(whole(gen)) + Real(0.5));  // ties, where Real has the bits
    }
    std::shuffle(v.begin(), v.end(), gen);
    // A long run of in-range values, for the whole-block path.
    std::uniform_real_distribution<double> inside(double(r.lo), double(r.hi));
    for (int k = 0; k < 100; ++k) v.push_back(Real(inside(gen)));
    return v;
}

template <class Real>
void check_every_loop() {
    std::mt19937 gen(7);
    const int extras[] = {0, VEK_CvtSaturate, VEK_CvtReport, VEK_CvtSaturate | VEK_CvtReport};
    for (int bits : {8, 16, 32}) {
        for (bool isUnsigned : {false, true}) {
            const std::vector<Real> src = probe_values<Real>(bits, isUnsigned, gen);
            for (int rounding : kRoundings) {
                for (int extra : extras) {
                    const int flags = rounding | extra | (isUnsigned ? VEK_CvtUnsigned : 0);
                    // Whole vector, and short ones that only the element loop sees.
                    for (size_t len : {src.size(), size_t(1), size_t(7), size_t(37)}) {
                        const std::vector<Real> in(src.begin(), src.begin() + long(len));
                        int want_reports = 0;
                        const auto want = expected_ints(in, bits, flags, &want_reports);
                        std::vector<unsigned char> got(want.size(), kUntouched);
                        ReportRecorder rec;
                        to_int(in.data(), got.data(), int(len), bits, flags);
                        SCOPED_TRACE(::testing::Message()
                                     << "bits " << bits << " flags " << flags << " len " << len);
                        ASSERT_EQ(got, want);
                        ASSERT_EQ(int(rec.size()), want_reports);
                        for (size_t k = 0; k < rec.size(); ++k) {
                            EXPECT_EQ(rec[k].status, VEK_StatusBadArgument);
                            EXPECT_EQ(rec[k].func, to_int_name<Real>());
                            EXPECT_EQ(rec[k].context, "A float exceeds an integer");
                            EXPECT_EQ(rec[k].file, module_of<Real>());
                        }
                        EXPECT_EQ(vekGetErrStatus(), want_reports ? VEK_StatusBadArgument : 0);
                    }
                }
            }
        }
    }
}

TEST(FloatToInt, EveryLoopAgainstExactRounding) {
    check_every_loop<float>();
    check_every_loop<double>();
}

// The rounding bits are the call's, not the processor's.
TEST(FloatToInt, IgnoresTheProcessorRoundingMode) {
    for (int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        check_every_loop<float>();
        check_every_loop<double>();
        std::fesetround(FE_TONEAREST);
        if (HasFatalFailure()) return;
    }
}

// Hand-computed cases at 16 bits; everything else is in the table above.
TEST(FloatToInt, HandPickedCases) {
    const short kUnwritten = 12345;
    const struct {
        float x;
        int flags;
        short want;
    } cases[] = {
        {2.5f, VEK_RndNear, 2},
        {3.5f, VEK_RndNear, 4},
        {-2.5f, VEK_RndNear, -2},
        {40000.f, VEK_RndNear | VEK_CvtSaturate, 32767},
        {-40000.f, VEK_RndNear | VEK_CvtSaturate, -32768},
        {1.5f, VEK_RndNear | VEK_CvtSaturate, 2},
        {40000.f, VEK_RndNear, kUnwritten},
        {std::nanf(""), VEK_RndNear | VEK_CvtSaturate, 0},
        {std::nanf(""), VEK_RndNear, kUnwritten},
        {-0.5f, VEK_RndCeil | VEK_CvtUnsigned, kUnwritten},  // below 0 before rounding
        {-2.5f, VEK_RndFloor, -3},
        {-2.5f, VEK_RndCeil, -2},
        {-2.5f, VEK_RndZero, -2},
    };
    for (const auto& c : cases) {
        short dst[2] = {kUnwritten, kUnwritten};
        veksbFloatToInt(&c.x, dst, 1, 16, c.flags);
        EXPECT_EQ(dst[0], c.want) << c.x << " flags " << c.flags;
        EXPECT_EQ(dst[1], kUnwritten);
    }
}

// The 16-bit path every 16-bit transform takes, there and back.
TEST(FloatToInt, SixteenBitRoundTrip) {
    std::vector<short> in(65536), out(65536, 0);
    for (int i = 0; i < 65536; ++i) in[size_t(i)] = short(i - 32768);
    std::vector<float> mid(65536);
    veksbIntToFloat(in.data(), mid.data(), 65536, 16, 0);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(mid[size_t(i)], float(i - 32768));
    veksbFloatToInt(mid.data(), out.data(), 65536, 16, VEK_RndNear | VEK_CvtSaturate);
    EXPECT_EQ(out, in);
}

TEST(FloatToInt, EachLoopReportsFromItsOwnLine) {
    ReportRecorder rec;
    for (int isDouble = 0; isDouble < 2; ++isDouble) {
        std::set<int> lines;
        for (int rounding : kRoundings)
            for (int uns : {0, int(VEK_CvtUnsigned)})
                for (int bits : {8, 16, 32}) {
                    rec.clear();
                    std::uint32_t dst[3] = {};
                    const float fs[3] = {1e20f, 0.f, -1e20f};
                    const double ds[3] = {1e20, 0., -1e20};
                    const int flags = rounding | uns | VEK_CvtReport;
                    if (isDouble)
                        vekdbFloatToInt(ds, dst, 3, bits, flags);
                    else
                        veksbFloatToInt(fs, dst, 3, bits, flags);
                    ASSERT_EQ(rec.size(), 2u);  // several reports from one call
                    EXPECT_EQ(rec[0].line, rec[1].line);
                    lines.insert(rec[0].line);
                }
        EXPECT_EQ(lines.size(), 24u);
    }
}

TEST(IntToFloat, EveryWidthAndSignedness) {
    std::mt19937 gen(3);
    std::vector<unsigned char> bytes(4 * 101);
    for (auto& b : bytes) b = (unsigned char)gen();
    // Extremes and values that a float cannot hold exactly.
    const std::uint32_t words[] = {0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 16777217, 16777219, 0};
    std::memcpy(bytes.data(), words, sizeof words);
    for (int bits : {8, 16, 32}) {
        const int n = int(bytes.size()) / (bits / 8);
        for (int uns : {0, int(VEK_CvtUnsigned)}) {
            std::vector<float> fs(static_cast<size_t>(n));
            std::vector<double> ds(static_cast<size_t>(n));
            from_int(bytes.data(), fs.data(), n, bits, uns);
            from_int(bytes.data(), ds.data(), n, bits, uns);
            for (int i = 0; i < n; ++i) {
                std::uint32_t u = 0;
                std::memcpy(&u, &bytes[size_t(i) * size_t(bits / 8)], size_t(bits / 8));
                long long v = u;
                if (!uns && bits < 64 && (u >> (bits - 1)) & 1) v -= 1ll << bits;
                ASSERT_EQ(ds[size_t(i)], double(v)) << bits << " " << i;
                ASSERT_EQ(fs[size_t(i)], float(v)) << bits << " " << i;
            }
        }
    }
    const unsigned char ff = 0xFF;
    float f = 0;
    veksbIntToFloat(&ff, &f, 1, 8, 0);
    EXPECT_EQ(f, -1.0f);
    veksbIntToFloat(&ff, &f, 1, 8, VEK_CvtUnsigned);
    EXPECT_EQ(f, 255.0f);
}

// Every check runs and reports before the call gives up; nothing is written.
TEST(Conversions, ArgumentChecks) {
    float fsrc[2] = {1, 2};
    short sdst[2] = {7, 7};
    float fdst[2] = {7, 7};
    const struct {
        int which;  // 0 FloatToInt, 1 IntToFloat
        bool nullSrc, nullDst;
        int len, intSize, flags;
        std::vector<std::string> messages;
    } cases[] = {
        {0, false, false, 0, 24, VEK_RndNear, {"len<=0", "Invalid size of an integer"}},
        {0, true, true, -1, 16, 0, {"len<=0", "src==0", "dst==0", "Invalid conversion flag"}},
        {0, false, false, 2, 16, 0, {"Invalid conversion flag"}},
        {0, false, false, 2, 16, VEK_RndNear | VEK_RndZero, {"Invalid conversion flag"}},
        {0, false, false, 2, 16, VEK_RndFloor | 1, {"Invalid conversion flag"}},
        {0, false, false, 2, 16, VEK_CvtUnsigned | VEK_CvtSaturate, {"Invalid conversion flag"}},
        {0,
         false,
         false,
         2,
         64,
         VEK_RndCeil | 16384,
         {"Invalid size of an integer", "Invalid conversion flag"}},
        {1, false, false, 2, 16, VEK_RndNear, {"Invalid conversion flag"}},
        {1, false, false, 2, 16, VEK_CvtSaturate, {"Invalid conversion flag"}},
        {1, false, true, 2, 0, 0, {"dst==0", "Invalid size of an integer"}},
    };
    for (const auto& c : cases) {
        for (int isDouble = 0; isDouble < 2; ++isDouble) {
            ReportRecorder rec;
            const double dsrc[2] = {1, 2};
            double ddst[2] = {7, 7};
            std::string name;
            if (c.which == 0) {
                const void* src = c.nullSrc ? nullptr : isDouble ? (const void*)dsrc : fsrc;
                void* dst = c.nullDst ? nullptr : sdst;
                if (isDouble)
                    vekdbFloatToInt((const double*)src, dst, c.len, c.intSize, c.flags);
                else
                    veksbFloatToInt((const float*)src, dst, c.len, c.intSize, c.flags);
                name = isDouble ? "vekdbFloatToInt" : "veksbFloatToInt";
            } else {
                const void* src = c.nullSrc ? nullptr : sdst;
                if (isDouble)
                    vekdbIntToFloat(src, c.nullDst ? nullptr : ddst, c.len, c.intSize, c.flags);
                else
                    veksbIntToFloat(src, c.nullDst ? nullptr : fdst, c.len, c.intSize, c.flags);
                name = isDouble ? "vekdbIntToFloat" : "veksbIntToFloat";
            }
            ASSERT_EQ(rec.size(), c.messages.size()) << name << " " << c.flags;
            for (size_t k = 0; k < rec.size(); ++k) {
                EXPECT_EQ(rec[k].status, VEK_StatusBadArgument);
                EXPECT_EQ(rec[k].func, name);
                EXPECT_EQ(rec[k].context, c.messages[k]);
                EXPECT_EQ(rec[k].file, isDouble ? "vekcvrtd" : "vekcvrts");
                EXPECT_EQ(rec[k].line, rec[0].line);
            }
            EXPECT_EQ(vekGetErrStatus(), VEK_StatusBadArgument);
            EXPECT_EQ(sdst[0], 7);
            EXPECT_EQ(fdst[0], 7);
            EXPECT_EQ(ddst[0], 7);
        }
    }
}

// Unlike the rest of the library, a conversion clears an earlier failure.
TEST(Conversions, ClearTheStatusOnEntry) {
    const float x = 1.5f;
    short s = 0;
    float f = 0;
    vekSetErrStatus(VEK_StatusBadArgument);
    veksbFloatToInt(&x, &s, 1, 16, VEK_RndNear);
    EXPECT_EQ(vekGetErrStatus(), 0);
    EXPECT_EQ(s, 2);
    vekSetErrStatus(VEK_StatusNoMemory);
    veksbIntToFloat(&s, &f, 1, 16, 0);
    EXPECT_EQ(vekGetErrStatus(), 0);
    EXPECT_EQ(f, 2.0f);
}

}  // namespace
