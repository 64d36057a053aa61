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

// The last r (< lanes) lanes at p, padded with repeats of the first pair,
// which overflows only if the data do.
VEK_ELEMENT VS tail(const W* p, Index r) {
    return load_part(p, int(r), r > 1 ? pairs<VS, W>(p[0], p[1]) : splat<VS>(p[0]));
}

// An array of 16-bit lanes.
struct ArrayB {
    const W* p;
    VS vec(Index i) const { return vload<VS>(p + i); }
    VS tail(Index i, Index r) const { return VEK_ISA::tail(p + i, r); }
    std::int32_t at(Index i) const { return p[i]; }
};

// One value (w) or one (re, im) pair (v) in every lane pair.
struct RepeatB {
    VS v;
    W even, odd;
    RepeatB(W e, W o) : v(pairs<VS, W>(e, o)), even(e), odd(o) {}
    VS vec(Index) const { return v; }
    VS tail(Index, Index) const { return v; }
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

// Complex products as lane operations, like AddOp and friends; exact()
// works on whole elements (see cmul_exact).
struct CmulOp {
    static VS wrap(VS a, VS b) {
        VI re, im;
        cmul16(a, b, re, im);
        return pack_low(re, im);
    }
    static VS sat(VS a, VS b) {
        VI re, im;
        cmul16(a, b, re, im);
        return pack_low(clamp16(re), clamp16(im_for_clamp(im)));
    }
    static VS overflow(VS a, VS b, VS& wrapped) {
        VI re, im;
        cmul16(a, b, re, im);
        wrapped = pack_low(re, im);
        return (VS)((re != clamp16(re)) | (im != clamp16(im)));
    }
};

struct Cplx64 {
    std::int64_t re, im;
};

template <class B>
VEK_ELEMENT Cplx64 cmul_exact(const W* a, B b, Index k) {
    const std::int64_t ar = a[2 * k], ai = a[2 * k + 1], br = b.at(2 * k), bi = b.at(2 * k + 1);
    return Cplx64{ar * br - ai * bi, ai * br + ar * bi};
}

// ------------------------------------------------------------ loop drivers
//
// Lanes are handled in whole (re, im) pairs so that complex data keep their
// layout: a first partial vector up to the destination's vector boundary
// where that pays, two vectors a step, and a last partial vector.

// d = g(a, b) on n lanes.
template <class G, class B>
VEK_ELEMENT void map_lanes(const W* a, B b, W* d, Index n, G g) {
    constexpr int L = lanes<W>();
    Index i = head_count<2>(d, n);
    if (i) store_part(d, g(tail(a, i), b.tail(0, i)), int(i));
    for (; i + 2 * L <= n; i += 2 * L) {
        const VS x0 = vload<VS>(a + i), x1 = vload<VS>(a + i + L);
        const VS y0 = b.vec(i), y1 = b.vec(i + L);
        vstore(d + i, g(x0, y0));
        vstore(d + i + L, g(x1, y1));
    }
    if (i + L <= n) {
        vstore(d + i, g(vload<VS>(a + i), b.vec(i)));
        i += L;
    }
    if (i < n) store_part(d + i, g(tail(a + i, n - i), b.tail(i, n - i)), int(n - i));
}

// The single pass of mode 4: stores wrapped results while every vector of
// them fits. Returns the lane where a vector with an overflow begins (the
// results from there on are not stored), or n.
template <class Op, class B>
VEK_ELEMENT Index fitting_prefix(const W* a, B b, W* d, Index n) {
    constexpr int L = lanes<W>();
    VS w;
    Index i = head_count<2>(d, n);
    if (i) {
        if (any(Op::overflow(tail(a, i), b.tail(0, i), w))) return 0;
        store_part(d, w, int(i));
    }
    for (; i + L <= n; i += L) {
        if (any(Op::overflow(vload<VS>(a + i), b.vec(i), w))) return i;
        vstore(d + i, w);
    }
    if (i < n) {
        if (any(Op::overflow(tail(a + i, n - i), b.tail(i, n - i), w))) return i;
        store_part(d + i, w, int(n - i));
    }
    return n;
}

// Stored results that fitted, shifted right by s once an overflow chose s.
VEK_ELEMENT void shift_stored(W* d, Index count, int s) {
    for (Index j = 0; j < count; ++j) d[j] = W(d[j] >> s);
}

// ------------------------------------------------------------ the modes

// Mode 4 on lanes: one pass while every result fits; at the first one that
// does not, s is 1 for sums and, for products, grows over the remaining
// results until each of them fits after the shift. The results already
// stored are then shifted in place.
template <class Op, class B>
void auto_lanes(const W* a, B b, W* d, Index n, int* factor) {
    Index i = fitting_prefix<Op>(a, b, d, n);
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

// The same for complex products, element by element (both parts must fit).
template <class B>
void auto_cmul(const W* a, B b, W* d, Index n, int* factor) {
    Index k = fitting_prefix<CmulOp>(a, b, d, 2 * n) / 2;
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

// n lanes of a op b under the scale mode; modes are compared as values in
// the order 0, 1, 4, 3, anything else.
template <class Op, class B>
void lanes16(const W* a, B b, W* d, Index n, int mode, int* factor) {
    if (mode == VEK_NO_SCALE) {
        map_lanes(a, b, d, n, [](VS x, VS y) { return Op::wrap(x, y); });
    } else if (mode == VEK_SATURATE) {
        map_lanes(a, b, d, n, [](VS x, VS y) { return Op::sat(x, y); });
    } else if (mode == VEK_AUTO_SCALE) {
        auto_lanes<Op>(a, b, d, n, factor);
    } else if (mode == (VEK_FIXED_SCALE | VEK_SATURATE)) {
        const int f = fixed_factor(factor);
        for (Index i = 0; i < n; ++i) {
            const std::int64_t r = Op::exact(a[i], b.at(i));
            d[i] = Op::kProduct ? fixed_sat_product(r, f) : fixed_sat_sum(r, f);
        }
    } else {
        const int f = fixed_factor(factor);
        for (Index i = 0; i < n; ++i) d[i] = fixed_wrap(Op::exact(a[i], b.at(i)), f);
    }
}

// n complex products (2n lanes) under the scale mode.
template <class B>
void cmul_lanes(const W* a, B b, W* d, Index n, int mode, int* factor) {
    if (mode == VEK_NO_SCALE) {
        map_lanes(a, b, d, 2 * n, [](VS x, VS y) { return CmulOp::wrap(x, y); });
    } else if (mode == VEK_SATURATE) {
        map_lanes(a, b, d, 2 * n, [](VS x, VS y) { return CmulOp::sat(x, y); });
    } else if (mode == VEK_AUTO_SCALE) {
        auto_cmul(a, b, d, n, factor);
    } else if (mode == (VEK_FIXED_SCALE | VEK_SATURATE)) {
        const int f = fixed_factor(factor);
        for (Index k = 0; k < n; ++k) {
            const Cplx64 r = cmul_exact(a, b, k);
            d[2 * k] = fixed_sat_product(r.re, f);
            d[2 * k + 1] = fixed_sat_product(r.im, f);
        }
    } else {
        const int f = fixed_factor(factor);
        for (Index k = 0; k < n; ++k) {
            const Cplx64 r = cmul_exact(a, b, k);
            d[2 * k] = fixed_wrap(r.re, f);
            d[2 * k + 1] = fixed_wrap(r.im, f);
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
    const VS even = pairs<VS, W>(-1, 0);
    map_lanes(lanes_of(src), ArrayB{lanes_of(src)}, lanes_of(dst), Index(n) * 2,
              [even](VS x, VS) { return even ? x : subs16(VS{}, x); });
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
