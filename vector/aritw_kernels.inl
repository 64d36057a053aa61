// 16-bit element-wise kernels, compiled once per instruction set
// (aritw_sse2.cpp, aritw_avx2.cpp, aritw_avx512.cpp define VEK_ISA and
// include this file).
//
// Modes 0, 1 and the overflow-free stretch of mode 4 run on vectors; the
// caller's-factor modes and the correction after an overflow in mode 4 go
// element by element through the rules of scale.hpp.
#include <cstddef>
#include <cstdint>

#include "vector/aritw.hpp"
#include "vector/scale.hpp"
#include "vector/simd.inl"

namespace vek {
namespace VEK_ISA {

using W = std::int16_t;
using Index = std::ptrdiff_t;

// ------------------------------------------------------------ second operands

// An array of 16-bit lanes.
struct ArrayB {
    const W* p;
    VS vec(Index i) const { return vload<VS>(p + i); }
    std::int32_t at(Index i) const { return p[i]; }
};

// One value (w) or one (re, im) pair (v) in every lane pair.
struct RepeatB {
    VS v;
    W even, odd;
    RepeatB(W e, W o) : v(pairs<VS, W>(e, o)), even(e), odd(o) {}
    VS vec(Index) const { return v; }
    std::int32_t at(Index i) const { return (i & 1) ? odd : even; }
};

// ------------------------------------------------------------ lane-wise operations

struct AddOp {
    static constexpr bool kProduct = false;
    static std::int64_t exact(std::int32_t a, std::int32_t b) { return a + b; }
    static VS wrap(VS a, VS b) { return (VS)((VUS)a + (VUS)b); }
    static VS sat(VS a, VS b) { return adds16(a, b); }
    // The wrapped results, and a mask of the lanes whose sum did not fit
    // (a wrapped sum has the wrong sign, so it never equals the clamped one).
    static VS overflow(VS a, VS b, VS& wrapped) {
        wrapped = wrap(a, b);
        return wrapped != sat(a, b);
    }
};

struct SubOp {
    static constexpr bool kProduct = false;
    static std::int64_t exact(std::int32_t a, std::int32_t b) { return a - b; }
    static VS wrap(VS a, VS b) { return (VS)((VUS)a - (VUS)b); }
    static VS sat(VS a, VS b) { return subs16(a, b); }
    static VS overflow(VS a, VS b, VS& wrapped) {
        wrapped = wrap(a, b);
        return wrapped != sat(a, b);
    }
};

struct MpyOp {
    static constexpr bool kProduct = true;
    static std::int64_t exact(std::int32_t a, std::int32_t b) { return std::int64_t(a) * b; }
    static VS wrap(VS a, VS b) { return (VS)((VUS)a * (VUS)b); }
    // The product fits when its high half is the sign extension of the low.
    static VS sat(VS a, VS b) {
        const VS lo = wrap(a, b), hi = mulhi16(a, b);
        return hi == (lo >> 15) ? lo : (hi >> 15) ^ W(0x7FFF);
    }
    static VS overflow(VS a, VS b, VS& wrapped) {
        wrapped = wrap(a, b);
        return mulhi16(a, b) != (wrapped >> 15);
    }
};

// Stored results that fitted, shifted right by s once an overflow chose s.
VEK_ELEMENT void shift_stored(W* d, Index count, int s) {
    for (Index j = 0; j < count; ++j) d[j] = W(d[j] >> s);
}

// Mode 4 on lanes: one pass while every result fits; at the first one that
// does not, s is 1 for sums and, for products, grows over the remaining
// results until each of them fits after the shift.
template <class Op, class B>
void auto_lanes(const W* a, B b, W* d, Index n, int* factor) {
    constexpr int L = lanes<W>();
    Index i = 0;
    for (; i + L <= n; i += L) {
        VS w;
        if (any(Op::overflow(vload<VS>(a + i), b.vec(i), w))) break;
        vstore(d + i, w);
    }
    for (; i < n; ++i) {
        const std::int64_t r = Op::exact(a[i], b.at(i));
        if (!fits16(r)) break;
        d[i] = W(r);
    }
    if (i == n) {
        *factor = 0;
        return;
    }
    int s = 1;
    if (Op::kProduct) {
        for (Index j = i; j < n; ++j) {
            const std::int64_t r = Op::exact(a[j], b.at(j));
            while (!fits16(r >> s)) ++s;
        }
    }
    shift_stored(d, i, s);
    for (Index j = i; j < n; ++j) d[j] = W(Op::exact(a[j], b.at(j)) >> s);
    *factor = s;
}

template <class Op, class B>
void lanes16(const W* a, B b, W* d, Index n, int mode, int* factor) {
    constexpr int L = lanes<W>();
    Index i = 0;
    switch (mode) {
        case VEK_NO_SCALE:
            for (; i + 2 * L <= n; i += 2 * L) {
                const VS x0 = vload<VS>(a + i), x1 = vload<VS>(a + i + L);
                const VS y0 = b.vec(i), y1 = b.vec(i + L);
                vstore(d + i, Op::wrap(x0, y0));
                vstore(d + i + L, Op::wrap(x1, y1));
            }
            for (; i + L <= n; i += L) vstore(d + i, Op::wrap(vload<VS>(a + i), b.vec(i)));
            for (; i < n; ++i) d[i] = wrap16(Op::exact(a[i], b.at(i)));
            return;
        case VEK_SATURATE:
            for (; i + 2 * L <= n; i += 2 * L) {
                const VS x0 = vload<VS>(a + i), x1 = vload<VS>(a + i + L);
                const VS y0 = b.vec(i), y1 = b.vec(i + L);
                vstore(d + i, Op::sat(x0, y0));
                vstore(d + i + L, Op::sat(x1, y1));
            }
            for (; i + L <= n; i += L) vstore(d + i, Op::sat(vload<VS>(a + i), b.vec(i)));
            for (; i < n; ++i) d[i] = sat16(Op::exact(a[i], b.at(i)));
            return;
        case VEK_AUTO_SCALE:
            auto_lanes<Op>(a, b, d, n, factor);
            return;
        case VEK_FIXED_SCALE | VEK_SATURATE: {
            const int f = fixed_factor(factor);
            for (; i < n; ++i) {
                const std::int64_t r = Op::exact(a[i], b.at(i));
                d[i] = Op::kProduct ? fixed_sat_product(r, f) : fixed_sat_sum(r, f);
            }
            return;
        }
        default: {  // 2, and every combination not named above
            const int f = fixed_factor(factor);
            for (; i < n; ++i) d[i] = fixed_wrap(Op::exact(a[i], b.at(i)), f);
            return;
        }
    }
}

// ------------------------------------------------------------ complex products

// Every 32-bit lane holds one CplxShort (re low, im high). re = ar br - ai bi
// is exact in 32 bits: madd of (ar, ai) with (br, ~bi) gives ar br - ai bi -
// ai modulo 2^32. im = ar bi + ai br reaches 2^31 only for four -32768s,
// where the 32-bit lane reads INT32_MIN.
VEK_ELEMENT void cmul16(VS a, VS b, VI& re, VI& im) {
    const VS b_not_im = (VS)((VI)b ^ std::int32_t(0xFFFF0000u));
    re = (VI)((VU)madd16(a, b_not_im) + (VU)((VI)a >> 16));
    im = madd16(a, swap16(b));
}

VEK_ELEMENT VS pack_low(VI re, VI im) { return (VS)(((VU)re & 0xFFFFu) | ((VU)im << 16)); }

VEK_ELEMENT VI clamp16(VI x) {
    const VI lo = x < -32768 ? -32768 : x;
    return lo > 32767 ? 32767 : lo;
}

// INT32_MIN in an imaginary lane stands for +2^31.
VEK_ELEMENT VI im_for_clamp(VI im) { return im == INT32_MIN ? INT32_MAX : im; }

struct Cplx64 {
    std::int64_t re, im;
};

template <class B>
VEK_ELEMENT Cplx64 cmul_exact(const W* a, B b, Index k) {
    const std::int64_t ar = a[2 * k], ai = a[2 * k + 1], br = b.at(2 * k), bi = b.at(2 * k + 1);
    return Cplx64{ar * br - ai * bi, ai * br + ar * bi};
}

template <class B>
void auto_cmul(const W* a, B b, W* d, Index n, int* factor) {
    constexpr int C = lanes<std::int32_t>();  // complex values per vector
    Index k = 0;
    for (; k + C <= n; k += C) {
        VI re, im;
        cmul16(vload<VS>(a + 2 * k), b.vec(2 * k), re, im);
        if (any((re != clamp16(re)) | (im != clamp16(im)))) break;
        vstore(d + 2 * k, pack_low(re, im));
    }
    for (; k < n; ++k) {
        const Cplx64 r = cmul_exact(a, b, k);
        if (!fits16(r.re) || !fits16(r.im)) break;
        d[2 * k] = W(r.re);
        d[2 * k + 1] = W(r.im);
    }
    if (k == n) {
        *factor = 0;
        return;
    }
    int s = 1;
    for (Index j = k; j < n; ++j) {
        const Cplx64 r = cmul_exact(a, b, j);
        while (!fits16(r.re >> s) || !fits16(r.im >> s)) ++s;
    }
    shift_stored(d, 2 * k, s);
    for (Index j = k; j < n; ++j) {
        const Cplx64 r = cmul_exact(a, b, j);
        d[2 * j] = W(r.re >> s);
        d[2 * j + 1] = W(r.im >> s);
    }
    *factor = s;
}

// a and d hold n CplxShort as 2n lanes.
template <class B>
void cmul_lanes(const W* a, B b, W* d, Index n, int mode, int* factor) {
    constexpr int C = lanes<std::int32_t>();
    Index k = 0;
    switch (mode) {
        case VEK_NO_SCALE:
            for (; k + C <= n; k += C) {
                VI re, im;
                cmul16(vload<VS>(a + 2 * k), b.vec(2 * k), re, im);
                vstore(d + 2 * k, pack_low(re, im));
            }
            for (; k < n; ++k) {
                const Cplx64 r = cmul_exact(a, b, k);
                d[2 * k] = wrap16(r.re);
                d[2 * k + 1] = wrap16(r.im);
            }
            return;
        case VEK_SATURATE:
            for (; k + C <= n; k += C) {
                VI re, im;
                cmul16(vload<VS>(a + 2 * k), b.vec(2 * k), re, im);
                vstore(d + 2 * k, pack_low(clamp16(re), clamp16(im_for_clamp(im))));
            }
            for (; k < n; ++k) {
                const Cplx64 r = cmul_exact(a, b, k);
                d[2 * k] = sat16(r.re);
                d[2 * k + 1] = sat16(r.im);
            }
            return;
        case VEK_AUTO_SCALE:
            auto_cmul(a, b, d, n, factor);
            return;
        case VEK_FIXED_SCALE | VEK_SATURATE: {
            const int f = fixed_factor(factor);
            for (; k < n; ++k) {
                const Cplx64 r = cmul_exact(a, b, k);
                d[2 * k] = fixed_sat_product(r.re, f);
                d[2 * k + 1] = fixed_sat_product(r.im, f);
            }
            return;
        }
        default: {
            const int f = fixed_factor(factor);
            for (; k < n; ++k) {
                const Cplx64 r = cmul_exact(a, b, k);
                d[2 * k] = fixed_wrap(r.re, f);
                d[2 * k + 1] = fixed_wrap(r.im, f);
            }
            return;
        }
    }
}

// ------------------------------------------------------------ table entries

VEK_ELEMENT const W* lanes_of(const CplxShort* p) { return reinterpret_cast<const W*>(p); }
VEK_ELEMENT W* lanes_of(CplxShort* p) { return reinterpret_cast<W*>(p); }

template <class Op>
void w_pairwise(const W* a, const W* b, W* d, int n, int mode, int* factor) {
    lanes16<Op>(a, ArrayB{b}, d, n, mode, factor);
}
template <class Op>
void w_with_val(const W* a, W val, W* d, int n, int mode, int* factor) {
    lanes16<Op>(a, RepeatB(val, val), d, n, mode, factor);
}
template <class Op>
void v_pairwise(const CplxShort* a, const CplxShort* b, CplxShort* d, int n, int mode,
                int* factor) {
    if constexpr (Op::kProduct)
        cmul_lanes(lanes_of(a), ArrayB{lanes_of(b)}, lanes_of(d), n, mode, factor);
    else
        lanes16<Op>(lanes_of(a), ArrayB{lanes_of(b)}, lanes_of(d), Index(n) * 2, mode, factor);
}
template <class Op>
void v_with_val(const CplxShort* a, CplxShort val, CplxShort* d, int n, int mode, int* factor) {
    if constexpr (Op::kProduct)
        cmul_lanes(lanes_of(a), RepeatB(val.re, val.im), lanes_of(d), n, mode, factor);
    else
        lanes16<Op>(lanes_of(a), RepeatB(val.re, val.im), lanes_of(d), Index(n) * 2, mode, factor);
}

VEK_ELEMENT void fill_lanes(W* d, Index n, VS v) {
    constexpr int L = lanes<W>();
    Index i = 0;
    for (; i + L <= n; i += L) vstore(d + i, v);
    for (; i < n; ++i) d[i] = v[i & 1];
}

void w_set(W val, W* d, int n) { fill_lanes(d, n, splat<VS>(val)); }
void v_set(CplxShort val, CplxShort* d, int n) {
    fill_lanes(lanes_of(d), Index(n) * 2, pairs<VS, W>(val.re, val.im));
}

void v_conj(const CplxShort* src, CplxShort* dst, int n) {
    constexpr int L = lanes<W>();
    const W* a = lanes_of(src);
    W* d = lanes_of(dst);
    const Index m = Index(n) * 2;
    const VS even = pairs<VS, W>(-1, 0);
    Index i = 0;
    for (; i + L <= m; i += L) {
        const VS x = vload<VS>(a + i);
        vstore(d + i, even ? x : subs16(VS{}, x));
    }
    for (; i < m; i += 2) {
        d[i] = a[i];
        d[i + 1] = sat16(-std::int32_t(a[i + 1]));
    }
}

const ShortKernels short_kernels = {
    w_pairwise<AddOp>,
    w_pairwise<SubOp>,
    w_pairwise<MpyOp>,
    w_with_val<AddOp>,
    w_with_val<SubOp>,
    w_with_val<MpyOp>,
    v_pairwise<AddOp>,
    v_pairwise<SubOp>,
    v_pairwise<MpyOp>,
    v_with_val<AddOp>,
    v_with_val<SubOp>,
    v_with_val<MpyOp>,
    w_set,
    v_set,
    v_conj,
};

}  // namespace VEK_ISA
}  // namespace vek
