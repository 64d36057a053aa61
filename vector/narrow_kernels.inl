// Block narrowing loops, compiled once per instruction set (VEK_ISA names it).
//
// A step makes two registers of 32-bit results and packs them into one
// register of 16-bit lanes. The last few elements, and the rare step that
// 32-bit lanes cannot take exactly, go element by element through the
// rules of scale.hpp.
#include <cmath>
#include <cstdint>
#include <limits>

#include "vector/narrow.hpp"
#include "vector/scale.hpp"
#include "vector/simd.inl"

namespace vek {
namespace VEK_ISA {
namespace {

constexpr int kHalf = lanes<std::int32_t>();
constexpr int kStep = 2 * kHalf;  // results a step

template <bool kSat>
VEK_ELEMENT VS pack16(VI a, VI b) {
    if constexpr (kSat)
        return pack_sat16(a, b);
    else
        return pack_wrap16(a, b);
}

// ----------------------------------------------------------------- 32-bit integers

template <bool kSat>
void shift_right(const std::int32_t* src, std::int16_t* dst, int n, int f) {
    int i = 0;
    for (; i <= n - kStep; i += kStep)
        store(dst + i, pack16<kSat>(load<VI>(src + i) >> f, load<VI>(src + i + kHalf) >> f));
    for (; i < n; ++i) dst[i] = shift16(src[i], f, kSat);
}

// Left by s (1..15): x << s saturates exactly where x lies beyond the limits
// shifted right by s.
template <bool kSat>
void shift_left(const std::int32_t* src, std::int16_t* dst, int n, int s) {
    const VI upper = splat<VI>(kShortMax >> s), lower = splat<VI>(kShortMin >> s);
    const VI top = splat<VI>(kShortMax), bottom = splat<VI>(kShortMin);
    auto lift = [&](VI x) {
        const VI y = (VI)((VU)x << s);
        if constexpr (kSat)
            return x > upper ? top : x < lower ? bottom : y;
        else
            return y;
    };
    int i = 0;
    for (; i <= n - kStep; i += kStep)
        store(dst + i, pack16<kSat>(lift(load<VI>(src + i)), lift(load<VI>(src + i + kHalf))));
    for (; i < n; ++i) dst[i] = shift16(src[i], -s, kSat);
}

void shift(const std::int32_t* src, std::int16_t* dst, int n, int f, bool saturate) {
    if (f >= 0)
        saturate ? shift_right<true>(src, dst, n, f) : shift_right<false>(src, dst, n, f);
    else
        saturate ? shift_left<true>(src, dst, n, -f) : shift_left<false>(src, dst, n, -f);
}

void range(const std::int32_t* src, int n, std::int32_t* lo, std::int32_t* hi) {
    VI vlo{}, vhi{};
    int i = 0;
    for (; i <= n - kHalf; i += kHalf) {
        const VI x = load<VI>(src + i);
        vlo = x < vlo ? x : vlo;
        vhi = x > vhi ? x : vhi;
    }
    std::int32_t l = 0, h = 0;
    for (int j = 0; j < kHalf; ++j) {
        l = vlo[j] < l ? vlo[j] : l;
        h = vhi[j] > h ? vhi[j] : h;
    }
    for (; i < n; ++i) {
        l = src[i] < l ? src[i] : l;
        h = src[i] > h ? src[i] : h;
    }
    *lo = l;
    *hi = h;
}

// ----------------------------------------------------------------- floating point

// Registers of Real a step.
template <class Real>
constexpr int kRegs = kStep / lanes<Real>();

// The first or the second half of a step's registers, truncated to 32-bit lanes.
VEK_ELEMENT VI truncated(const VF* x) { return trunc_i32(x[0]); }
VEK_ELEMENT VI truncated(const VD* x) { return join(trunc_i32(x[0]), trunc_i32(x[1])); }

// NaN to 0, then clamped to -32768..32767.
template <class V>
VEK_ELEMENT V clamp_short(V x) {
    return clamp_or_zero(x, splat<V>(LaneOf<V>(kShortMin)), splat<V>(LaneOf<V>(kShortMax)));
}

// src * k (kMul) or src narrowed by the rule of real16. k is 2^-f, exact in
// Real, so that Real products equal the double products of the rule
// wherever the result can differ: a float product that overflows saturates
// or leaves the int32 range like the double one, and one that underflows
// truncates to 0 like it.
template <class Real, bool kSat, bool kMul>
void scale_lanes(const Real* src, std::int16_t* dst, int n, double k) {
    using V = Vec<Real>;
    constexpr int R = kRegs<Real>;
    const V vk = splat<V>(Real(k));
    // The int32 range as Real values: truncation is exact from lo to hi.
    const V lo = splat<V>(Real(-2147483648.0));
    const V hi = splat<V>(sizeof(Real) == 4 ? Real(2147483520.0) : Real(2147483647.0));
    constexpr unsigned long long kAll = (2ull << (lanes<Real>() - 1)) - 1;
    auto element = [&](int j) {
        dst[j] = real16(kMul ? double(src[j]) * k : double(src[j]), kSat);
    };
    int i = 0;
    for (; i <= n - kStep; i += kStep) {
        V x[R];
        for (int r = 0; r < R; ++r) {
            x[r] = load<V>(src + i + r * lanes<Real>());
            if constexpr (kMul) x[r] *= vk;
        }
        if constexpr (kSat) {
            for (int r = 0; r < R; ++r) x[r] = clamp_short(x[r]);
        } else {
            unsigned long long inside = kAll;
            for (int r = 0; r < R; ++r) inside &= in_range_bits(x[r], lo, hi);
            if (inside != kAll) {
                for (int j = i; j < i + kStep; ++j) element(j);
                continue;
            }
        }
        store(dst + i, pack16<kSat>(truncated(x), truncated(x + R / 2)));
    }
    for (; i < n; ++i) element(i);
}

template <class Real>
void scale(const Real* src, std::int16_t* dst, int n, int f, bool saturate) {
    const double k = std::ldexp(1.0, -f);
    if (f == 0) {
        saturate ? scale_lanes<Real, true, false>(src, dst, n, k)
                 : scale_lanes<Real, false, false>(src, dst, n, k);
    } else if (sizeof(Real) == 8 ? (f >= -1022 && f <= 1022) : (f >= -127 && f <= 126)) {
        // k a normal Real
        saturate ? scale_lanes<Real, true, true>(src, dst, n, k)
                 : scale_lanes<Real, false, true>(src, dst, n, k);
    } else {
        // 2^-f beyond double: scaled one step at a time, so that the tiny
        // values of an automatic factor still reach the 16-bit range.
        for (int i = 0; i < n; ++i) dst[i] = real16(std::ldexp(double(src[i]), -f), saturate);
    }
}

template <class Real>
double peak(const Real* src, int n) {
    using V = Vec<Real>;
    constexpr int L = lanes<Real>();
    const V finite = splat<V>(std::numeric_limits<Real>::max());
    V m0{}, m1{};
    auto gather = [&](V& m, V x) {
        const V a = vabs(x);
        const V b = a <= finite ? a : V{};  // infinities and NaN count as 0
        m = b > m ? b : m;
    };
    int i = 0;
    for (; i <= n - 2 * L; i += 2 * L) {
        gather(m0, load<V>(src + i));
        gather(m1, load<V>(src + i + L));
    }
    gather(m0, m1);
    double p = 0;
    for (int j = 0; j < L; ++j) p = double(m0[j]) > p ? double(m0[j]) : p;
    for (; i < n; ++i) {
        const double a = std::fabs(double(src[i]));
        if (a > p && a <= std::numeric_limits<double>::max()) p = a;
    }
    return p;
}

}  // namespace

const NarrowOps narrow_ops = {shift, range, scale<float>, scale<double>, peak<float>, peak<double>};

}  // namespace VEK_ISA
}  // namespace vek
