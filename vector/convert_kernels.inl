// Conversion loops, compiled once per instruction set (VEK_ISA names it).
//
// Float to integer: an element x inside the destination's range [lo, hi] is
// rounded exactly under the call's rounding, whatever the processor's
// rounding mode. An element outside it (NaN included) is saturated (NaN
// to 0), reported, or left unwritten, as the flags say. The vector loops
// take a block at a time: a saturating call clamps the block; any other
// call converts a block whose elements are all in range and hands any other
// block to the element loop, so out-of-range elements are never written
// and reports come in index order.
#include <cstdint>
#include <limits>
#include <type_traits>

#include "vector/convert.hpp"
#include "vector/simd.inl"

namespace vek {
namespace VEK_ISA {
namespace {

// ----------------------------------------------------------------- ranges

template <class Real>
constexpr Real kIntegralFrom = sizeof(Real) == 4 ? Real(8388608.0) : Real(4503599627370496.0);

// The range [lo, hi] of Int as Real values: lo is exact, hi is the largest
// Real not above Int's maximum (below it for 32-bit integers in float).
template <class Real, class Int>
constexpr Real lower_bound() {
    return Real(std::numeric_limits<Int>::min());
}
template <class Real, class Int>
constexpr Real upper_bound() {
    if constexpr (sizeof(Real) == 4 && sizeof(Int) == 4)
        return std::is_signed_v<Int> ? 2147483520.0f : 4294967040.0f;
    return Real(std::numeric_limits<Int>::max());
}

// The same-width integer lanes that the float lanes convert into exactly.
template <class Int>
using Wide = std::conditional_t<std::is_same_v<Int, std::uint32_t>, std::uint32_t, std::int32_t>;

// ----------------------------------------------------------------- rounding

// x rounded to an integral value, exactly: the sign of a fraction, a tie
// and the parity are read from the value itself, never from the rounding
// mode. NaN and values already integral come back unchanged.
template <int Mode, class Real>
VEK_ELEMENT Real round_exact(Real x) {
    if (!(x < kIntegralFrom<Real> && x > -kIntegralFrom<Real>)) return x;
    const std::int64_t ti = static_cast<std::int64_t>(x);  // toward zero
    const Real t = Real(ti);
    const Real f = x - t;  // exact
    switch (Mode) {
        case kZero:
            return t;
        case kFloor:
            return f < 0 ? t - 1 : t;
        case kCeil:
            return f > 0 ? t + 1 : t;
        default: {
            const Real a = f < 0 ? -f : f;
            if (a > Real(0.5) || (a == Real(0.5) && (ti & 1))) return x < 0 ? t - 1 : t + 1;
            return t;
        }
    }
}

// The same for a vector of float or double lanes.
template <int Mode, class V>
VEK_ELEMENT V round_exact_v(V x) {
    using Real = std::remove_reference_t<decltype(x[0])>;
    constexpr int kImm = (Mode == kNear ? 0 : Mode == kFloor ? 1 : Mode == kCeil ? 2 : 3) | 8;
#if defined(__AVX512F__)
    // The zero-masked forms with every lane selected: the plain ones pass
    // an undefined vector that GCC 12 warns about.
    if constexpr (sizeof(V) == 64 && sizeof(Real) == 4)
        return reinterpret_cast<V>(
            _mm512_maskz_roundscale_ps(0xFFFF, reinterpret_cast<__m512>(x), kImm));
    if constexpr (sizeof(V) == 64 && sizeof(Real) == 8)
        return reinterpret_cast<V>(
            _mm512_maskz_roundscale_pd(0xFF, reinterpret_cast<__m512d>(x), kImm));
#endif
#if defined(__AVX__)
    if constexpr (sizeof(V) == 32 && sizeof(Real) == 4)
        return reinterpret_cast<V>(_mm256_round_ps(reinterpret_cast<__m256>(x), kImm));
    if constexpr (sizeof(V) == 32 && sizeof(Real) == 8)
        return reinterpret_cast<V>(_mm256_round_pd(reinterpret_cast<__m256d>(x), kImm));
#endif
    (void)kImm;
    // Without a rounding instruction: truncate through 32-bit integers (for
    // doubles of 2^31 and more, after taking 2^31 off, which is exact there),
    // then correct by the exact fraction.
    constexpr int N = sizeof(V) / sizeof(Real);
    using M = Vec<MaskLane<Real>, N>;
    const V big = splat<V>(kIntegralFrom<Real>);
    const M integral = !((x < big) & (x > -big));
    const V two31 = splat<V>(Real(2147483648.0));
    const V off = (x >= two31) ? two31 : V{};
    const V xs = x - off;
    const M inRange = ~integral & (xs < two31);  // keeps the conversion defined
    const V safe = inRange ? xs : V{};
    const Vec<std::int32_t, N> ti = __builtin_convertvector(safe, Vec<std::int32_t, N>);
    const V t = __builtin_convertvector(ti, V);
    const V f = safe - t;
    const V one = splat<V>(Real(1));
    V r;
    if constexpr (Mode == kZero) {
        r = t;
    } else if constexpr (Mode == kFloor) {
        r = t - (f < 0 ? one : V{});
    } else if constexpr (Mode == kCeil) {
        r = t + (f > 0 ? one : V{});
    } else {
        const V a = f < 0 ? -f : f;
        const V odd = __builtin_convertvector(ti & 1, V);
        const V half = splat<V>(Real(0.5));
        const M up = (a > half) | ((a == half) & (odd == one));
        r = t + (up ? (x < 0 ? -one : one) : V{});
    }
    return integral ? x : r + off;
}

// ----------------------------------------------------------------- loops

template <class Int, class Real>
void from_int(const void* srcv, Real* dst, int len) {
    const unsigned char* src = static_cast<const unsigned char*>(srcv);
    constexpr int N = kVecBytes / int(sizeof(Real));
    int i = 0;
    for (; i + N <= len; i += N)
        store(dst + i,
              __builtin_convertvector(load<Vec<Int, N>>(src + i * sizeof(Int)), Vec<Real, N>));
    for (; i < len; ++i) {
        Int v;
        std::memcpy(&v, src + i * sizeof(Int), sizeof v);
        dst[i] = Real(v);
    }
}

// One element at a time, for the blocks that hold out-of-range elements.
template <class Real, class Int, int Mode>
void to_int_elements(const Real* src, Int* dst, int from, int to, int flags, const Site& site) {
    constexpr Real lo = lower_bound<Real, Int>(), hi = upper_bound<Real, Int>();
    for (int i = from; i < to; ++i) {
        const Real x = src[i];
        if (x >= lo && x <= hi) {
            dst[i] = static_cast<Int>(round_exact<Mode>(x));
            continue;
        }
        if (flags & VEK_CvtSaturate)
            dst[i] = x > hi   ? std::numeric_limits<Int>::max()
                     : x < lo ? std::numeric_limits<Int>::min()
                              : Int(0);
        if (flags & VEK_CvtReport)
            vekError(VEK_StatusBadArgument, site.func, "A float exceeds an integer", site.module,
                     site.line);
    }
}

// N integral Real lanes within Int's range, stored as Int.
template <class Int, int N, class V>
VEK_ELEMENT void store_ints(Int* dst, V r) {
    const auto w = __builtin_convertvector(r, Vec<Wide<Int>, N>);
    if constexpr (sizeof(Int) == 4)
        store(dst, w);
    else
        store(dst, __builtin_convertvector(w, Vec<Int, N>));
}

template <class Real, class Int, int Mode>
void to_int(const Real* src, void* dstv, int len, int flags, const Site& site) {
    Int* dst = static_cast<Int*>(dstv);
    constexpr int N = kVecBytes / int(sizeof(Real));
    using V = Vec<Real, N>;
    using M = Vec<MaskLane<Real>, N>;
    const V lo = splat<V>(lower_bound<Real, Int>()), hi = splat<V>(upper_bound<Real, Int>());
    int i = 0;
    if ((flags & (VEK_CvtSaturate | VEK_CvtReport)) == VEK_CvtSaturate) {
        // Clamp, NaN to 0. For 32-bit integers from float the upper limit is
        // not a float: lanes above it take the maximum after conversion.
        constexpr bool kInexactTop =
            upper_bound<Real, Int>() != Real(std::numeric_limits<Int>::max());
        for (; i + N <= len; i += N) {
            V x = load<V>(src + i);
            x = x == x ? x : V{};
            const M above = x > hi;
            x = above ? hi : x;
            x = x < lo ? lo : x;
            const V r = round_exact_v<Mode>(x);
            if constexpr (kInexactTop) {
                auto w = __builtin_convertvector(r, Vec<Wide<Int>, N>);
                w = above ? splat<decltype(w)>(std::numeric_limits<Int>::max()) : w;
                store(dst + i, w);
            } else {
                store_ints<Int, N>(dst + i, r);
            }
        }
    } else {
        for (; i + N <= len; i += N) {
            const V x = load<V>(src + i);
            if (all_set((x >= lo) & (x <= hi)))
                store_ints<Int, N>(dst + i, round_exact_v<Mode>(x));
            else
                to_int_elements<Real, Int, Mode>(src, dst, i, i + N, flags, site);
        }
    }
    to_int_elements<Real, Int, Mode>(src, dst, i, len, flags, site);
}

// ----------------------------------------------------------------- tables

template <class Real>
using ToIntLoop = void (*)(const Real*, void*, int, int, const Site&);

template <class Real, int Mode>
struct ToIntRow {
    static constexpr ToIntLoop<Real> loops[2 * kWidths] = {
        to_int<Real, std::int8_t, Mode>,   to_int<Real, std::int16_t, Mode>,
        to_int<Real, std::int32_t, Mode>,  to_int<Real, std::uint8_t, Mode>,
        to_int<Real, std::uint16_t, Mode>, to_int<Real, std::uint32_t, Mode>};
};

}  // namespace

#define VEK_TO_INT(Real, Mode)                                          \
    ToIntRow<Real, Mode>::loops[0], ToIntRow<Real, Mode>::loops[1],     \
        ToIntRow<Real, Mode>::loops[2], ToIntRow<Real, Mode>::loops[3], \
        ToIntRow<Real, Mode>::loops[4], ToIntRow<Real, Mode>::loops[5]

const ConvertOps convert_ops = {
    {from_int<std::int8_t, float>, from_int<std::int16_t, float>, from_int<std::int32_t, float>,
     from_int<std::uint8_t, float>, from_int<std::uint16_t, float>, from_int<std::uint32_t, float>},
    {from_int<std::int8_t, double>, from_int<std::int16_t, double>, from_int<std::int32_t, double>,
     from_int<std::uint8_t, double>, from_int<std::uint16_t, double>,
     from_int<std::uint32_t, double>},
    {VEK_TO_INT(float, kNear), VEK_TO_INT(float, kZero), VEK_TO_INT(float, kFloor),
     VEK_TO_INT(float, kCeil)},
    {VEK_TO_INT(double, kNear), VEK_TO_INT(double, kZero), VEK_TO_INT(double, kFloor),
     VEK_TO_INT(double, kCeil)},
};

#undef VEK_TO_INT

}  // namespace VEK_ISA
}  // namespace vek
