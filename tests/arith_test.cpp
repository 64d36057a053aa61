// Floating-point vector arithmetic (s, d, c, z): every form against long
// double references, at lengths that end inside and outside whole vectors,
// with guard elements behind each destination; checks and their order.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "test_util.hpp"

using vektest::ReportRecorder;

namespace {

using LD = long double;
using LC = std::complex<long double>;

// Lengths below, at and past every vector width, odd and even.
const int kLengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 65, 100, 1001};

// ------------------------------------------------------------ element types

template <class T>
struct Type;
template <>
struct Type<float> {
    using R = float;
    static constexpr bool kComplex = false;
};
template <>
struct Type<double> {
    using R = double;
    static constexpr bool kComplex = false;
};
template <>
struct Type<CplxFloat> {
    using R = float;
    static constexpr bool kComplex = true;
};
template <>
struct Type<CplxDouble> {
    using R = double;
    static constexpr bool kComplex = true;
};

LC lc(float x) { return LC(x, 0); }
LC lc(double x) { return LC(x, 0); }
LC lc(CplxFloat x) { return LC(x.re, x.im); }
LC lc(CplxDouble x) { return LC(x.re, x.im); }

template <class T>
T from(LC v) {
    using R = typename Type<T>::R;
    if constexpr (Type<T>::kComplex)
        return T{R(v.real()), R(v.imag())};
    else
        return T(R(v.real()));
}

template <class T>
bool same_bits(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

template <class T>
std::vector<T> random_vec(int n, unsigned seed, double lo = -100, double hi = 100) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(lo, hi);
    std::vector<T> v(static_cast<size_t>(n));
    for (T& x : v) {
        if constexpr (Type<T>::kComplex)
            x = from<T>(LC(u(gen), u(gen)));
        else
            x = from<T>(LC(u(gen), 0));
    }
    return v;
}

// A destination with guard elements behind it that must survive.
template <class T>
struct Dest {
    static constexpr int kGuard = 9;
    std::vector<T> v;
    explicit Dest(int n, const std::vector<T>* init = nullptr) : v(size_t(n + kGuard)) {
        std::memset(v.data(), 0x5A, v.size() * sizeof(T));
        if (init) std::memcpy(v.data(), init->data(), init->size() * sizeof(T));
    }
    T* data() { return v.data(); }
    T& operator[](int i) { return v[size_t(i)]; }
    bool guards_intact(int n) const {
        std::vector<unsigned char> pattern(kGuard * sizeof(T), 0x5A);
        return std::memcmp(v.data() + n, pattern.data(), pattern.size()) == 0;
    }
};

// Distance in units of the last place of the result, allowing an absolute
// slack for cancellation (scale: the size of the terms that cancelled).
template <class R>
bool close(LD got, LD want, LD scale, LD ulps) {
    const LD eps = std::numeric_limits<R>::epsilon();
    return std::fabs(got - want) <= ulps * eps * (std::fabs(want) + scale);
}

template <class T>
::testing::AssertionResult near(T got, LC want, LD scale, LD ulps) {
    using R = typename Type<T>::R;
    const LC g = lc(got);
    if (close<R>(g.real(), want.real(), scale, ulps) &&
        close<R>(g.imag(), want.imag(), scale, ulps))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "got (" << double(g.real()) << ", " << double(g.imag()) << "), want ("
           << double(want.real()) << ", " << double(want.imag()) << ")";
}

// ------------------------------------------------------------ the exports by type

template <class T>
struct Api;

#define VEK_TEST_API(T, x, R)                                                             \
    template <>                                                                           \
    struct Api<T> {                                                                       \
        static constexpr void (*add1)(T, T*, int) = vek##x##bAdd1;                        \
        static constexpr void (*add2)(const T*, T*, int) = vek##x##bAdd2;                 \
        static constexpr void (*add3)(const T*, const T*, T*, int) = vek##x##bAdd3;       \
        static constexpr void (*sub1)(T, T*, int) = vek##x##bSub1;                        \
        static constexpr void (*sub2)(const T*, T*, int) = vek##x##bSub2;                 \
        static constexpr void (*sub3)(const T*, const T*, T*, int) = vek##x##bSub3;       \
        static constexpr void (*mpy1)(T, T*, int) = vek##x##bMpy1;                        \
        static constexpr void (*mpy2)(const T*, T*, int) = vek##x##bMpy2;                 \
        static constexpr void (*mpy3)(const T*, const T*, T*, int) = vek##x##bMpy3;       \
        static constexpr void (*zero)(T*, int) = vek##x##bZero;                           \
        static constexpr void (*set)(T, T*, int) = vek##x##bSet;                          \
        static constexpr void (*copy)(const T*, T*, int) = vek##x##bCopy;                 \
        static constexpr void (*sqr1)(T*, int) = vek##x##bSqr1;                           \
        static constexpr void (*sqr2)(const T*, T*, int) = vek##x##bSqr2;                 \
        static constexpr void (*sqrt1)(T*, int) = vek##x##bSqrt1;                         \
        static constexpr void (*sqrt2)(const T*, T*, int) = vek##x##bSqrt2;               \
        static constexpr void (*thresh1)(T*, int, R, int) = vek##x##bThresh1;             \
        static constexpr void (*thresh2)(const T*, T*, int, R, int) = vek##x##bThresh2;   \
        static constexpr void (*inv1)(T*, int, R) = vek##x##bInvThresh1;                  \
        static constexpr void (*inv2)(const T*, T*, int, R) = vek##x##bInvThresh2;        \
        static constexpr void (*normalize)(const T*, T*, int, T, R) = vek##x##bNormalize; \
        static constexpr const char* kSqrt1 = "vek" #x "bSqrt1";                          \
        static constexpr const char* kInv1 = "vek" #x "bInvThresh1";                      \
        static constexpr const char* kInv2 = "vek" #x "bInvThresh2";                      \
    };
VEK_TEST_API(float, s, float)
VEK_TEST_API(double, d, double)
VEK_TEST_API(CplxFloat, c, float)
VEK_TEST_API(CplxDouble, z, double)

template <class T>
class FloatArith : public ::testing::Test {};
using FloatTypes = ::testing::Types<float, double, CplxFloat, CplxDouble>;
TYPED_TEST_SUITE(FloatArith, FloatTypes);

// ------------------------------------------------------------ pairwise forms

enum Op { kAdd, kSub, kMpy };

LC apply(Op op, LC a, LC b) { return op == kAdd ? a + b : op == kSub ? a - b : a * b; }

// Exact for real data and for complex sums (one rounding of an exact long
// double value); complex products round twice and may cancel.
template <class T>
::testing::AssertionResult check_result(Op op, T a, T b, T got) {
    const LC want = apply(op, lc(a), lc(b));
    if (!Type<T>::kComplex || op != kMpy) {
        if (same_bits(got, from<T>(want))) return ::testing::AssertionSuccess();
        // A double product rounds twice on its way through long double.
        if (sizeof(typename Type<T>::R) == 8 && op == kMpy) return near(got, want, 0, 1);
        return ::testing::AssertionFailure() << "not the correctly rounded result";
    }
    const LC x = lc(a), y = lc(b);
    const LD scale = std::fabs(x.real() * y.real()) + std::fabs(x.imag() * y.imag()) +
                     std::fabs(x.real() * y.imag()) + std::fabs(x.imag() * y.real());
    return near(got, want, scale, 2);
}

TYPED_TEST(FloatArith, PairwiseFormsMatchLongDouble) {
    using T = TypeParam;
    using A = Api<T>;
    const struct {
        Op op;
        void (*f1)(T, T*, int);
        void (*f2)(const T*, T*, int);
        void (*f3)(const T*, const T*, T*, int);
    } ops[] = {{kAdd, A::add1, A::add2, A::add3},
               {kSub, A::sub1, A::sub2, A::sub3},
               {kMpy, A::mpy1, A::mpy2, A::mpy3}};
    unsigned seed = 1;
    for (const auto& o : ops) {
        for (int n : kLengths) {
            SCOPED_TRACE(::testing::Message() << "op " << o.op << " n " << n);
            const std::vector<T> a = random_vec<T>(n, ++seed), b = random_vec<T>(n, ++seed);
            const T val = random_vec<T>(1, ++seed)[0];

            Dest<T> d1(n, &a);  // dst op val
            o.f1(val, d1.data(), n);
            Dest<T> d2(n, &a);  // dst op src
            o.f2(b.data(), d2.data(), n);
            Dest<T> d3(n);  // srcA op srcB
            o.f3(a.data(), b.data(), d3.data(), n);
            std::vector<T> d4 = a;  // dst aliasing srcA
            o.f3(d4.data(), b.data(), d4.data(), n);

            for (int i = 0; i < n; ++i) {
                ASSERT_TRUE(check_result(o.op, a[i], val, d1[i])) << i;
                ASSERT_TRUE(check_result(o.op, a[i], b[i], d2[i])) << i;
                ASSERT_TRUE(check_result(o.op, a[i], b[i], d3[i])) << i;
                ASSERT_TRUE(same_bits(d3[i], d4[i])) << i;
                ASSERT_TRUE(same_bits(d2[i], d3[i])) << i;
            }
            EXPECT_TRUE(d1.guards_intact(n) && d2.guards_intact(n) && d3.guards_intact(n));
        }
    }
}

// Parts m * 2^e with e in -40..40, some of them zeros of either sign: the
// two products of a complex product then differ in size by up to 2^160,
// where rounding in double and then in float differs from rounding once.
template <class T>
std::vector<T> wide_vec(int n, unsigned seed) {
    using R = typename Type<T>::R;
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> m(-2, 2);
    std::uniform_int_distribution<int> e(-40, 40), zero(0, 15);
    auto part = [&] {
        return zero(gen) == 0 ? R(zero(gen) & 1 ? -0.0 : 0.0) : R(std::ldexp(m(gen), e(gen)));
    };
    std::vector<T> v(static_cast<size_t>(n));
    for (T& x : v) x = T{part(), part()};
    return v;
}

// Every instruction-set path rounds a complex product exactly like the
// scalar export, element by element, for vector and constant operands.
TEST(ComplexProducts, VectorsAgreeBitForBitWithTheScalarExports) {
    const int n = 1001;
    for (int wide = 0; wide < 2; ++wide) {
        SCOPED_TRACE(wide ? "wide exponents" : "uniform");
        const auto a = wide ? wide_vec<CplxFloat>(n, 7) : random_vec<CplxFloat>(n, 7, -1e6, 1e6);
        const auto b = wide ? wide_vec<CplxFloat>(n, 8) : random_vec<CplxFloat>(n, 8);
        const auto x = wide ? wide_vec<CplxDouble>(n, 9) : random_vec<CplxDouble>(n, 9, -1e6, 1e6);
        const auto y = wide ? wide_vec<CplxDouble>(n, 10) : random_vec<CplxDouble>(n, 10);
        std::vector<CplxFloat> c(n), cv = a;
        std::vector<CplxDouble> z(n), zv = x;
        vekcbMpy3(a.data(), b.data(), c.data(), n);
        vekzbMpy3(x.data(), y.data(), z.data(), n);
        vekcbMpy1(b[3], cv.data(), n);
        vekzbMpy1(y[3], zv.data(), n);
        for (int i = 0; i < n; ++i) {
            ASSERT_TRUE(same_bits(c[i], vekcMpy(a[i], b[i]))) << i;
            ASSERT_TRUE(same_bits(z[i], vekzMpy(x[i], y[i]))) << i;
            ASSERT_TRUE(same_bits(cv[i], vekcMpy(a[i], b[3]))) << i;
            ASSERT_TRUE(same_bits(zv[i], vekzMpy(x[i], y[3]))) << i;
        }
    }
    // Cancellation: in double the real part keeps the -2^-26 that float
    // arithmetic would round away; the vector forms agree.
    const CplxFloat p{1.0f + 0x1p-13f, 1.0f}, q{1.0f - 0x1p-13f, 1.0f};
    const CplxFloat r = vekcMpy(p, q);
    EXPECT_EQ(r.re, -0x1p-26f);
    EXPECT_EQ(r.im, 2.0f);
    CplxFloat rv[1];
    vekcbMpy3(&p, &q, rv, 1);
    EXPECT_TRUE(same_bits(rv[0], r));
}

TEST(ComplexScalars, AddSubMpyDivConjSet) {
    const CplxFloat a{3, -4}, b{1, 2};
    const CplxFloat s = vekcAdd(a, b), d = vekcSub(a, b), m = vekcMpy(a, b), q = vekcDiv(a, b);
    EXPECT_TRUE(s.re == 4 && s.im == -2);
    EXPECT_TRUE(d.re == 2 && d.im == -6);
    EXPECT_TRUE(m.re == 11 && m.im == 2);   // (3-4i)(1+2i) = 3+6i-4i+8
    EXPECT_TRUE(q.re == -1 && q.im == -2);  // (3-4i)/(1+2i) = -1-2i
    const CplxFloat c = vekcConj(a), e = vekcSet(5, -6);
    EXPECT_TRUE(c.re == 3 && c.im == 4 && e.re == 5 && e.im == -6);

    const CplxDouble x{1, 1}, y{0, 3};
    const CplxDouble zq = vekzDiv(x, y);  // (1+i)/(3i) = 1/3 - i/3
    EXPECT_DOUBLE_EQ(zq.re, 1.0 / 3);
    EXPECT_DOUBLE_EQ(zq.im, -1.0 / 3);
    const CplxDouble zm = vekzMpy(x, y), zc = vekzConj(y), zs = vekzSet(-1, 2);
    EXPECT_TRUE(zm.re == -3 && zm.im == 3 && zc.re == 0 && zc.im == -3);
    EXPECT_TRUE(zs.re == -1 && zs.im == 2 && vekzAdd(x, y).im == 4 && vekzSub(x, y).im == -2);
}

TEST(ComplexScalars, DivisionByZeroReportsAndGivesZero) {
    ReportRecorder rec;
    const CplxFloat c = vekcDiv(CplxFloat{1, 2}, CplxFloat{0, 0});
    EXPECT_TRUE(c.re == 0 && c.im == 0);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekcDiv", "(b.re==0.0)&&(b.im==0.0)", "vekarith");
    rec.clear();
    const CplxDouble z = vekzDiv(CplxDouble{1, 2}, CplxDouble{-0.0, 0});
    EXPECT_TRUE(z.re == 0 && z.im == 0);
    EXPECT_REPORT(rec, VEK_StatusBadArgument, "vekzDiv", "(b.re==0.0)&&(b.im==0.0)", "vekarith");
}

// Any placement of the destination gives the same results and touches
// nothing outside it (the kernels may split off a first partial vector to
// reach an aligned address).
TYPED_TEST(FloatArith, EveryDestinationPlacement) {
    using T = TypeParam;
    const int n = 45;
    const std::vector<T> a = random_vec<T>(n, 21), b = random_vec<T>(n, 22);
    std::vector<T> want(n), want_sqr(n);
    Api<T>::mpy3(a.data(), b.data(), want.data(), n);
    Api<T>::sqr2(a.data(), want_sqr.data(), n);
    const size_t bytes = sizeof(T) * n;
    alignas(64) unsigned char buf[64 * 3 + sizeof(T) * n];
    for (size_t off = 0; off <= 64; off += alignof(T)) {
        std::memset(buf, 0x77, sizeof buf);
        T* d = reinterpret_cast<T*>(buf + off);
        Api<T>::mpy3(a.data(), b.data(), d, n);
        EXPECT_EQ(std::memcmp(d, want.data(), bytes), 0) << off;
        Api<T>::sqr1(d, n);  // in place, on the misplaced data
        std::vector<T> twice(n);
        Api<T>::sqr2(want.data(), twice.data(), n);
        EXPECT_EQ(std::memcmp(d, twice.data(), bytes), 0) << off;
        Api<T>::set(a[0], d, n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(d[i], a[0])) << off;
        for (size_t i = 0; i < sizeof buf; ++i) {
            if (i < off || i >= off + bytes) {
                ASSERT_EQ(buf[i], 0x77) << off << " " << i;
            }
        }
    }
}

// ------------------------------------------------------------ set, zero, copy

TYPED_TEST(FloatArith, SetZeroAndCopy) {
    using T = TypeParam;
    for (int n : kLengths) {
        // Negative zeros keep their sign.
        const T val = n == 3 ? from<T>(LC(-0.0, -0.0)) : random_vec<T>(1, unsigned(n))[0];
        Dest<T> d(n);
        Api<T>::set(val, d.data(), n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(d[i], val));
        Api<T>::zero(d.data(), n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(d[i], from<T>(0)));
        EXPECT_TRUE(d.guards_intact(n));
    }
    // Overlapping copies in both directions move the old values.
    for (int shift : {1, 3, -1, -3}) {
        const int n = 40;
        std::vector<T> buf = random_vec<T>(n + 3, 77);
        const std::vector<T> old = buf;
        const int from_at = shift > 0 ? 0 : -shift, to_at = shift > 0 ? shift : 0;
        Api<T>::copy(buf.data() + from_at, buf.data() + to_at, n);
        for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(buf[to_at + i], old[from_at + i])) << i;
    }
}

// ------------------------------------------------------------ square and root

TYPED_TEST(FloatArith, SquareMatchesLongDouble) {
    using T = TypeParam;
    for (int n : kLengths) {
        const std::vector<T> a = random_vec<T>(n, unsigned(100 + n));
        Dest<T> d(n), in_place(n, &a);
        Api<T>::sqr2(a.data(), d.data(), n);
        Api<T>::sqr1(in_place.data(), n);
        for (int i = 0; i < n; ++i) {
            const LC x = lc(a[i]);
            ASSERT_TRUE(near(d[i], x * x, std::norm(x), 2)) << i;
            ASSERT_TRUE(same_bits(d[i], in_place[i]));
        }
        EXPECT_TRUE(d.guards_intact(n));
    }
}

// A report function that sees what the destination holds when it is called.
std::vector<unsigned char> g_at_report;
const void* g_watch = nullptr;
size_t g_watch_bytes = 0;
int g_report_count = 0;
int snapshot(int status, const char*, const char*, const char*, int) {
    ++g_report_count;
    const auto* p = static_cast<const unsigned char*>(g_watch);
    g_at_report.assign(p, p + g_watch_bytes);
    return status;
}

TEST(RealSqrt, NegativeElementsAreKeptAndReportedOnceAfterThePass) {
    // In place: (4, -1, 9) gives (2, -1, 3).
    {
        ReportRecorder rec;
        float v[3] = {4, -1, 9};
        veksbSqrt1(v, 3);
        EXPECT_TRUE(v[0] == 2 && v[1] == -1 && v[2] == 3);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, "veksbSqrt1",
                      "Element of input vector is negative", "vekvec");
    }
    // Two operands, long vectors with negatives scattered, the last one last.
    for (int n : {5, 17, 64, 1001}) {
        std::vector<double> src = random_vec<double>(n, unsigned(n), 0, 1e6);
        for (int i = 1; i < n; i += 7) src[size_t(i)] = -src[size_t(i)];
        src[size_t(n - 1)] = -2;
        std::vector<double> dst(size_t(n), 123.0);
        g_watch = dst.data();
        g_watch_bytes = dst.size() * sizeof(double);
        g_report_count = 0;
        ErrorReportFunc before = vekRedirectError(snapshot);
        vekdbSqrt2(src.data(), dst.data(), n);
        vekRedirectError(before);
        vekSetErrStatus(0);
        EXPECT_EQ(g_report_count, 1);
        ASSERT_EQ(g_at_report.size(), dst.size() * sizeof(double));
        EXPECT_EQ(std::memcmp(g_at_report.data(), dst.data(), g_at_report.size()), 0)
            << "the report came before the pass ended";
        for (int i = 0; i < n; ++i) ASSERT_EQ(dst[i], src[i] < 0 ? 123.0 : std::sqrt(src[i])) << i;
    }
    // No negative element (zero and -0 included): no report.
    float z[4] = {0.0f, -0.0f, 2.25f, 1e30f};
    veksbSqrt1(z, 4);
    EXPECT_TRUE(z[0] == 0 && z[1] == 0 && std::signbit(z[1]) && z[2] == 1.5f && z[3] == 1e15f);
}

TYPED_TEST(FloatArith, ComplexSqrtIsThePrincipalRoot) {
    using T = TypeParam;
    if constexpr (Type<T>::kComplex) {
        using R = typename Type<T>::R;
        std::vector<T> a = random_vec<T>(1001, 5);
        const T edges[] = {T{0, 0},  T{-4, 0}, T{-4, R(-0.0)}, T{4, 0},      T{0, 2},
                           T{0, -2}, T{-1, 1}, T{-3, -4},      T{1e-30f, 0}, T{R(-0.0), 0}};
        std::copy(std::begin(edges), std::end(edges), a.begin());
        Dest<T> d(int(a.size()));
        Api<T>::sqrt2(a.data(), d.data(), int(a.size()));
        for (size_t i = 0; i < a.size(); ++i) {
            const LC x = lc(a[i]);
            LC want = std::sqrt(x);
            ASSERT_TRUE(near(d[int(i)], want, 0, 4)) << i;
            ASSERT_GE(d[int(i)].re, 0) << i;
        }
        EXPECT_TRUE(d[1].re == 0 && d[1].im == 2);   // sqrt(-4) = 2i
        EXPECT_TRUE(d[2].re == 0 && d[2].im == -2);  // below the cut
        EXPECT_TRUE(d.guards_intact(int(a.size())));
        // Far from 1 the magnitude neither overflows nor vanishes.
        if constexpr (sizeof(R) == 8) {
            T big[2] = {T{1e300, 1e300}, T{0, 1e-300}};
            Api<T>::sqrt1(big, 2);
            EXPECT_TRUE(near(big[0], std::sqrt(LC(1e300L, 1e300L)), 0, 4));
            EXPECT_TRUE(near(big[1], std::sqrt(LC(0, 1e-300L)), 0, 4));
        }
    }
}

// ------------------------------------------------------------ thresholds

TEST(RealThresh, BothSidesKeepEqualElements) {
    const float in[] = {-3, -1, 0, 1, 2, 5};
    const struct {
        float thresh;
        int relOp;
        float want[6];
    } cases[] = {
        {0, 0, {0, 0, 0, 1, 2, 5}},                                   // below raised
        {1, 0, {1, 1, 1, 1, 2, 5}},    {1, 1, {-3, -1, 0, 1, 1, 1}},  // above lowered
        {1, -7, {-3, -1, 0, 1, 1, 1}},                                // any nonzero relOp lowers
        {-2, 0, {-2, -1, 0, 1, 2, 5}},
    };
    for (const auto& c : cases) {
        float out[6];
        veksbThresh2(in, out, 6, c.thresh, c.relOp);
        double d[6];
        for (int i = 0; i < 6; ++i) d[i] = in[i];
        vekdbThresh1(d, 6, c.thresh, c.relOp);
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(out[i], c.want[i]) << c.thresh << " " << c.relOp << " " << i;
            EXPECT_EQ(d[i], c.want[i]);
        }
    }
    float v[3] = {-1, 0, 2};  // zero raises negatives to 0
    veksbThresh1(v, 3, 0, 0);
    EXPECT_TRUE(v[0] == 0 && v[1] == 0 && v[2] == 2);
}

TYPED_TEST(FloatArith, ComplexThreshByMagnitudeKeepsThePhase) {
    using T = TypeParam;
    if constexpr (Type<T>::kComplex) {
        const T in[] = {T{0, 0}, T{0.6f, 0.8f}, T{3, 4}, T{-6, 8}, T{0, -2}, T{0.3f, -0.4f}};
        for (int relOp : {0, 1}) {
            for (float t : {0.0f, 2.0f, 5.0f}) {
                T out[6];
                Api<T>::thresh2(in, out, 6, t, relOp);
                for (int i = 0; i < 6; ++i) {
                    const LC x = lc(in[i]);
                    const LD m = std::abs(x);
                    LC want = x;
                    if (relOp == 0 && m < t) want = m == 0 ? LC(t, 0) : x * (t / m);
                    if (relOp != 0 && m > t) want = x * (t / m);
                    EXPECT_TRUE(near(out[i], want, 0, 4)) << relOp << " " << t << " " << i;
                }
            }
        }
        T zero[1] = {T{0, 0}};  // zero is raised to (thresh, 0)
        Api<T>::thresh1(zero, 1, 2, 0);
        EXPECT_TRUE(zero[0].re == 2 && zero[0].im == 0);
    }
}

TYPED_TEST(FloatArith, InverseThreshold) {
    using T = TypeParam;
    using R = typename Type<T>::R;
    const bool is_float = sizeof(R) == 4;
    // thresh 1: magnitudes up to 1 give magnitude 1, with the phase of 1/x.
    const T in[] = {from<T>(LC(0.5, 0)),
                    from<T>(LC(-0.5, 0)),
                    from<T>(LC(4, 0)),
                    from<T>(LC(0, 0)),
                    from<T>(LC(-0.0, 0)),
                    from<T>(LC(-1, 0)),
                    from<T>(LC(0.6, 0.8 * Type<T>::kComplex)),
                    from<T>(LC(-8, 6 * Type<T>::kComplex))};
    const int n = 8;
    T out[n];
    Api<T>::inv2(in, out, n, 1);
    for (int i = 0; i < n; ++i) {
        const LC x = lc(in[i]);
        const LD m = std::abs(x);
        const LC want = m == 0 ? LC(1, 0) : m <= 1 ? std::conj(x) / m : LC(1) / x;
        EXPECT_TRUE(near(out[i], want, 0, 2)) << i;
    }
    // thresh 0: 1/x, and each zero element becomes the type's value, with
    // one report after the whole pass.
    const R zero_value = is_float ? R(3.4028235e38f) : R(0);
    T v[] = {from<T>(LC(2, 0)), from<T>(LC(0, 0)), from<T>(LC(-4, Type<T>::kComplex)),
             from<T>(LC(0, 0))};
    {
        ReportRecorder rec;
        Api<T>::inv1(v, 4, 0);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, Api<T>::kInv1, "zero element and zero thresh",
                      "vekvec");
    }
    EXPECT_TRUE(near(v[0], LC(0.5, 0), 0, 1));
    EXPECT_TRUE(same_bits(v[1], from<T>(LC(zero_value, 0))));
    EXPECT_TRUE(near(v[2], LC(1) / LC(-4, Type<T>::kComplex), 0, 2));
    EXPECT_TRUE(same_bits(v[3], v[1]));
    T w[2] = {from<T>(LC(0, 0)), from<T>(LC(8, 0))}, w_out[2];
    {
        ReportRecorder rec;
        Api<T>::inv2(w, w_out, 2, 0);
        EXPECT_REPORT(rec, VEK_StatusBadArgument, Api<T>::kInv2, "zero element and zero thresh",
                      "vekvec");
    }
    EXPECT_TRUE(same_bits(w_out[0], from<T>(LC(zero_value, 0))));
    EXPECT_TRUE(near(w_out[1], LC(0.125, 0), 0, 1));
}

TEST(RealInvThresh, SmallHandComputedCases) {
    float a[3] = {0.5f, -0.5f, 4};
    veksbInvThresh1(a, 3, 1);
    EXPECT_TRUE(a[0] == 1 && a[1] == -1 && a[2] == 0.25f);
    ReportRecorder rec;
    float b[2] = {2, 0};
    veksbInvThresh1(b, 2, 0);
    EXPECT_TRUE(b[0] == 0.5f && b[1] == 3.4028235e38f);
    EXPECT_EQ(rec.size(), 1u);
}

TEST(RealAbs, SignsCleared) {
    const float in[] = {-1.5f, 0.0f, -0.0f, 3.0f, -FLT_MAX, -INFINITY};
    float out[6];
    veksbAbs2(in, out, 6);
    double d[6];
    for (int i = 0; i < 6; ++i) d[i] = in[i];
    vekdbAbs1(d, 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(out[i], std::fabs(in[i]));
        EXPECT_FALSE(std::signbit(out[i]) || std::signbit(d[i]));
        EXPECT_EQ(d[i], std::fabs(double(in[i])));
    }
}

TYPED_TEST(FloatArith, NormalizeSubtractsThenScalesByTheReciprocal) {
    using T = TypeParam;
    using R = typename Type<T>::R;
    for (int n : kLengths) {
        const std::vector<T> a = random_vec<T>(n, unsigned(300 + n));
        const T offset = random_vec<T>(1, unsigned(n))[0];
        const R factor = R(-3.7);
        Dest<T> d(n);
        Api<T>::normalize(a.data(), d.data(), n, offset, factor);
        for (int i = 0; i < n; ++i) {
            const LC want = (lc(a[i]) - lc(offset)) / LD(factor);
            ASSERT_TRUE(near(d[i], want, std::abs(lc(a[i])) + std::abs(lc(offset)), 2)) << i;
        }
        EXPECT_TRUE(d.guards_intact(n));
    }
}

// ------------------------------------------------------------ checks

struct CheckCase {
    const char* func;
    const char* module;
    const char* message;
    std::function<void()> call;
};

TEST(FloatArithChecks, MessagesInOrderAndNothingWritten) {
    float s[4] = {1, 2, 3, 4};
    double d[4] = {1, 2, 3, 4};
    CplxFloat c[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    CplxDouble z[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    float* sn = nullptr;
    CplxDouble* zn = nullptr;
    const CheckCase cases[] = {
        {"veksbAdd1", "vekarith", "n<=0", [&] { veksbAdd1(1, sn, 0); }},
        {"veksbAdd1", "vekarith", "dst==0", [&] { veksbAdd1(1, sn, 4); }},
        {"veksbAdd3", "vekarith", "n<=0", [&] { veksbAdd3(sn, sn, sn, -1); }},
        {"veksbAdd3", "vekarith", "srcA==0", [&] { veksbAdd3(sn, sn, sn, 4); }},
        {"veksbAdd3", "vekarith", "srcB==0", [&] { veksbAdd3(s, sn, s, 4); }},
        {"veksbAdd3", "vekarith", "dst==0", [&] { veksbAdd3(s, s, sn, 4); }},
        {"vekdbSub2", "vekarith", "src==0", [&] { vekdbSub2(nullptr, nullptr, 4); }},
        {"vekdbSub2", "vekarith", "dst==0", [&] { vekdbSub2(d, nullptr, 4); }},
        {"vekcbMpy3", "vekarith", "dst==0", [&] { vekcbMpy3(c, c, nullptr, 4); }},
        {"vekzbMpy1", "vekarith", "n<=0", [&] { vekzbMpy1(z[0], z, 0); }},
        {"vekzbZero", "vekarith", "dst==0", [&] { vekzbZero(zn, 4); }},
        {"vekcbSet", "vekarith", "n<=0", [&] { vekcbSet(c[0], c, 0); }},
        {"vekdbCopy", "vekarith", "src==0", [&] { vekdbCopy(nullptr, d, 4); }},
        {"veksbSqr1", "vekvec", "len<=0", [&] { veksbSqr1(s, 0); }},
        {"veksbSqr1", "vekvec", "vec==0", [&] { veksbSqr1(sn, 4); }},
        {"vekzbSqr2", "vekvec", "src==0", [&] { vekzbSqr2(zn, zn, 4); }},
        {"vekdbSqrt2", "vekvec", "dst==0", [&] { vekdbSqrt2(d, nullptr, 4); }},
        {"vekcbSqrt1", "vekvec", "len<=0", [&] { vekcbSqrt1(nullptr, -5); }},
        {"veksbThresh1", "vekvec", "vec==0", [&] { veksbThresh1(sn, 4, 1, 0); }},
        {"vekcbThresh1", "vekvec", "thresh<0.0f", [&] { vekcbThresh1(c, 4, -1, 0); }},
        {"vekcbThresh2", "vekvec", "dst==0", [&] { vekcbThresh2(c, nullptr, 4, -1, 0); }},
        {"vekzbThresh2", "vekvec", "thresh<0.0", [&] { vekzbThresh2(z, z, 4, -1, 1); }},
        {"veksbInvThresh1", "vekvec", "thresh<0.0f", [&] { veksbInvThresh1(s, 4, -1); }},
        {"vekdbInvThresh1", "vekvec", "thresh<0.0", [&] { vekdbInvThresh1(d, 4, -1); }},
        {"vekdbInvThresh2", "vekvec", "thresh<0.0", [&] { vekdbInvThresh2(d, d, 4, -1); }},
        {"vekcbInvThresh2", "vekvec", "thresh<0.0f", [&] { vekcbInvThresh2(c, c, 4, -1); }},
        {"vekzbInvThresh1", "vekvec", "thresh<0.0", [&] { vekzbInvThresh1(z, 4, -1); }},
        {"vekzbInvThresh2", "vekvec", "thresh<0.0f", [&] { vekzbInvThresh2(z, z, 4, -1); }},
        {"vekzbInvThresh2", "vekvec", "len<=0", [&] { vekzbInvThresh2(z, z, 0, -1); }},
        {"vekdbAbs2", "vekvec", "src==0", [&] { vekdbAbs2(nullptr, d, 4); }},
        {"veksbAbs1", "vekvec", "len<=0", [&] { veksbAbs1(sn, 0); }},
        {"veksbNormalize", "veknorm", "n<=0", [&] { veksbNormalize(s, s, 0, 1, 0); }},
        {"vekdbNormalize", "veknorm", "dst==0", [&] { vekdbNormalize(d, nullptr, 4, 1, 0); }},
        {"vekcbNormalize", "veknorm", "factor == 0", [&] { vekcbNormalize(c, c, 4, c[0], 0); }},
        {"vekzbNormalize", "veknorm", "src==0", [&] { vekzbNormalize(zn, z, 4, z[0], 1); }},
    };
    for (const CheckCase& k : cases) {
        ReportRecorder rec;
        k.call();
        EXPECT_REPORT(rec, VEK_StatusBadArgument, k.func, k.message, k.module);
        EXPECT_EQ(vekGetErrStatus(), VEK_StatusBadArgument);
    }
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(s[i], i + 1);
        EXPECT_EQ(d[i], i + 1);
        EXPECT_TRUE(c[i].re == i + 1 && c[i].im == i + 1);
        EXPECT_TRUE(z[i].re == i + 1 && z[i].im == i + 1);
    }
}

// The post-pass reports carry a line of their own.
TEST(FloatArithChecks, PassReportsHaveTheirOwnLine) {
    ReportRecorder rec;
    float v[1] = {-1};
    veksbSqrt1(v, 1);
    veksbSqrt1(nullptr, 1);
    float w[1] = {0};
    veksbInvThresh1(w, 1, 0);
    veksbInvThresh1(nullptr, 1, 0);
    ASSERT_EQ(rec.size(), 4u);
    EXPECT_NE(rec[0].line, rec[1].line);
    EXPECT_NE(rec[2].line, rec[3].line);
}

}  // namespace
