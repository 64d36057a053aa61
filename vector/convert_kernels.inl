// Conversion loops, compiled once per instruction set (VEK_ISA names it).
//
// Float to integer: an element x inside the destination's range [lo, hi] is
// rounded exactly under the call's rounding, whatever the processor's
// rounding mode. An element outside it (NaN included) is saturated (NaN
// to 0), reported, or left unwritten, as the flags say. The vector loops
// take a block of lanes at a time; a reporting call hands any block with an
// out-of-range element to the element loop, so that reports come in index
// order.
#include <cstdint>
#include <limits>
#include <type_traits>

#include "vector/convert.hpp"
#include "vector/lanes.inl"

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
    if constexpr (sizeof(V) == 64 && sizeof(Real) == 4)
        return reinterpret_cast<V>(_mm512_roundscale_ps(reinterpret_cast<__m512>(x), kImm));
    if constexpr (sizeof(V) == 64 && sizeof(Real) == 8)
        return reinterpret_cast<V>(_mm512_roundscale_pd(reinterpret_cast<__m512d>(x), kImm));
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
    using In = Vec<Int, N>;
    auto widen_lanes = [](In v) {
        if constexpr (sizeof(Int) <= 2)
            return __builtin_convertvector(extend32<Int, N>(v), Vec<Real, N>);
        else
            return __builtin_convertvector(v, Vec<Real, N>);
    };
    int i = 0;
    for (; i <= len - 2 * N; i += 2 * N) {
        store(dst + i, widen_lanes(load<In>(src + std::size_t(i) * sizeof(Int))));
        store(dst + i + N, widen_lanes(load<In>(src + std::size_t(i + N) * sizeof(Int))));
    }
    if (i <= len - N) {
        store(dst + i, widen_lanes(load<In>(src + std::size_t(i) * sizeof(Int))));
        i += N;
    }
    if constexpr (kMaskedEnds) {
        if (i < len)
            store_first(dst + i,
                        widen_lanes(load_first<In>(src + std::size_t(i) * sizeof(Int), len - i)),
                        len - i);
    } else {
        for (; i < len; ++i) {
            Int v;
            std::memcpy(&v, src + i * sizeof(Int), sizeof v);
            dst[i] = Real(v);
        }
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

// 32-bit lanes narrowed to Int lanes, keeping the low bits.
template <class Int, int N, class W>
VEK_ELEMENT Vec<Int, N> narrow_lanes(W w) {
    if constexpr (sizeof(Int) == 4) {
        return w;
    } else {
#if defined(__AVX512F__)
        if constexpr (N == 16) {
            const __m512i x = reinterpret_cast<__m512i>(w);
            if constexpr (sizeof(Int) == 2)
                return reinterpret_cast<Vec<Int, N>>(_mm512_cvtepi32_epi16(x));
            else
                return reinterpret_cast<Vec<Int, N>>(_mm512_cvtepi32_epi8(x));
        }
        if constexpr (N == 8) {
            const __m256i x = reinterpret_cast<__m256i>(w);
            const __m128i r = sizeof(Int) == 2 ? _mm256_cvtepi32_epi16(x) : _mm256_cvtepi32_epi8(x);
            Vec<Int, N> v;
            std::memcpy(&v, &r, sizeof v);
            return v;
        }
#endif
        return __builtin_convertvector(w, Vec<Int, N>);
    }
}

// N lanes within Int's range, rounded under Mode, as 32-bit integers.
template <class Int, int Mode, int N, class V>
VEK_ELEMENT Vec<Wide<Int>, N> rounded_lanes(V x) {
#if defined(__AVX512F__)
    using Real = std::remove_reference_t<decltype(x[0])>;
    // The conversion rounds by its own rounding field, not the mode.
    constexpr int kRc = (Mode == kNear    ? _MM_FROUND_TO_NEAREST_INT
                         : Mode == kFloor ? _MM_FROUND_TO_NEG_INF
                         : Mode == kCeil  ? _MM_FROUND_TO_POS_INF
                                          : _MM_FROUND_TO_ZERO) |
                        _MM_FROUND_NO_EXC;
    constexpr bool kU32 = std::is_same_v<Int, std::uint32_t>;
    using Out = Vec<Wide<Int>, N>;
    if constexpr (sizeof(Real) == 4 && N == 16) {
        const __m512 v = reinterpret_cast<__m512>(x);
        return reinterpret_cast<Out>(kU32 ? _mm512_cvt_roundps_epu32(v, kRc)
                                          : _mm512_cvt_roundps_epi32(v, kRc));
    }
    if constexpr (sizeof(Real) == 8 && N == 8) {
        const __m512d v = reinterpret_cast<__m512d>(x);
        return reinterpret_cast<Out>(kU32 ? _mm512_cvt_roundpd_epu32(v, kRc)
                                          : _mm512_cvt_roundpd_epi32(v, kRc));
    }
#endif
    return __builtin_convertvector(round_exact_v<Mode>(x), Vec<Wide<Int>, N>);
}

// N lanes converted as a saturating call does: NaN to 0, the rest clamped
// to Int's range and rounded. For 32-bit integers from float the upper
// limit is not a float: lanes above it take the maximum after conversion.
template <class Int, int Mode, int N, class V>
VEK_ELEMENT Vec<Int, N> saturated(V x, V lo, V hi) {
    using Real = std::remove_reference_t<decltype(x[0])>;
    if constexpr (std::is_same_v<Real, float> && std::is_same_v<Int, std::int16_t> &&
                  Mode == kNear) {
        // The path of every 16-bit transform. The minimum passes NaN on
        // (it returns its second operand then); the conversion takes NaN and
        // everything below -2^31 to INT32_MIN, which the saturating narrow
        // takes to -32768, and NaN lanes are zeroed by mask.
#if defined(__AVX512F__)
        if constexpr (N == 16) {
            const __m512 v = reinterpret_cast<__m512>(x);
            const __mmask16 number = _mm512_cmp_ps_mask(v, v, _CMP_ORD_Q);
            const __m512 top = _mm512_min_ps(reinterpret_cast<__m512>(hi), v);
            const __m512i w =
                _mm512_cvt_roundps_epi32(top, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
            return reinterpret_cast<Vec<Int, N>>(_mm512_maskz_cvtsepi32_epi16(number, w));
        }
#elif defined(__AVX2__)
        if constexpr (N == 8) {
            __m256 v = reinterpret_cast<__m256>(x);
            v = _mm256_and_ps(v, _mm256_cmp_ps(v, v, _CMP_ORD_Q));  // NaN to +0
            v = _mm256_min_ps(reinterpret_cast<__m256>(hi), v);
            const __m256i w = _mm256_cvttps_epi32(
                _mm256_round_ps(v, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
            const __m128i r =
                _mm_packs_epi32(_mm256_castsi256_si128(w), _mm256_extracti128_si256(w, 1));
            return reinterpret_cast<Vec<Int, N>>(r);
        }
#endif
    }
    x = x == x ? x : V{};
    const auto above = x > hi;
    x = above ? hi : x;
    x = x < lo ? lo : x;
    auto w = rounded_lanes<Int, Mode, N>(x);
    if constexpr (upper_bound<Real, Int>() != Real(std::numeric_limits<Int>::max()))
        w = above ? splat<decltype(w)>(std::numeric_limits<Int>::max()) : w;
    return narrow_lanes<Int, N>(w);
}

template <class Real, class Int, int Mode>
void to_int(const Real* src, void* dstv, int len, int flags, const Site& site) {
    Int* dst = static_cast<Int*>(dstv);
    constexpr int N = kVecBytes / int(sizeof(Real));
    using V = Vec<Real, N>;
    const V lo = splat<V>(lower_bound<Real, Int>()), hi = splat<V>(upper_bound<Real, Int>());
    constexpr unsigned long long kAll = (2ull << (N - 1)) - 1;
    auto exact = [](V x) { return narrow_lanes<Int, N>(rounded_lanes<Int, Mode, N>(x)); };
    int i = 0;
    if (flags & VEK_CvtReport) {
        // Reports come in index order from the element loop.
        for (; i <= len - N; i += N) {
            const V x = load<V>(src + i);
            if (in_range_bits(x, lo, hi) == kAll)
                store(dst + i, exact(x));
            else
                to_int_elements<Real, Int, Mode>(src, dst, i, i + N, flags, site);
        }
        to_int_elements<Real, Int, Mode>(src, dst, i, len, flags, site);
        return;
    }
    if (flags & VEK_CvtSaturate) {
        for (; i <= len - N; i += N)
            store(dst + i, saturated<Int, Mode, N>(load<V>(src + i), lo, hi));
        if constexpr (kMaskedEnds) {
            if (i < len)
                store_first(dst + i,
                            saturated<Int, Mode, N>(load_first<V>(src + i, len - i), lo, hi),
                            len - i);
            return;
        }
    } else {
        // Out-of-range lanes stay unwritten. Lanes past `count` (zeros from
        // a masked load) are in range.
        auto block = [&](V x, int at, int count) {
            const unsigned long long inside = in_range_bits(x, lo, hi);
            if (inside == kAll) {
                if (count == N)
                    store(dst + at, exact(x));
                else
                    store_first(dst + at, exact(x), count);
                return;
            }
            const Vec<Int, N> v = saturated<Int, Mode, N>(x, lo, hi);
            if constexpr (kMaskedEnds) {
                store_masked(dst + at, v, inside & ((2ull << (count - 1)) - 1));
            } else {
                for (int j = 0; j < count; ++j)
                    if (inside >> j & 1) dst[at + j] = v[j];
            }
        };
        for (; i <= len - N; i += N) block(load<V>(src + i), i, N);
        if constexpr (kMaskedEnds) {
            if (i < len) block(load_first<V>(src + i, len - i), i, len - i);
            return;
        }
    }
    to_int_elements<Real, Int, Mode>(src, dst, i, len, flags, site);
}

// ----------------------------------------------------------------- tables

}  // namespace

// The six loops of one rounding, in loop_index order.
#define VEK_TO_INT(Real, Mode)                                              \
    to_int<Real, std::int8_t, Mode>, to_int<Real, std::int16_t, Mode>,      \
        to_int<Real, std::int32_t, Mode>, to_int<Real, std::uint8_t, Mode>, \
        to_int<Real, std::uint16_t, Mode>, to_int<Real, std::uint32_t, Mode>

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
