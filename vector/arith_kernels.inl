// Floating-point element-wise kernels, compiled once per instruction set
// (arith_sse2.cpp, arith_avx2.cpp, arith_avx512.cpp define VEK_ISA and
// include this file).
//
// Complex vectors are handled as arrays of scalars, re and im interleaved;
// the complex operations work on (re, im) pairs inside double vectors. Float
// data that need more than one operation per result go through double
// vectors and are rounded once, which is what makes every ISA agree.
#include <cstddef>
#include <type_traits>

#include "vector/arith.hpp"
#include "vector/simd.inl"

namespace vek {
namespace VEK_ISA {

// ------------------------------------------------------------ element types

template <class T>
struct Elem;
template <>
struct Elem<float> {
    using S = float;
    static constexpr int kPair = 1;
};
template <>
struct Elem<double> {
    using S = double;
    static constexpr int kPair = 1;
};
template <>
struct Elem<CplxFloat> {
    using S = float;
    static constexpr int kPair = 2;
};
template <>
struct Elem<CplxDouble> {
    using S = double;
    static constexpr int kPair = 2;
};

template <class T>
using ScalarOf = typename Elem<T>::S;

template <class T>
VEK_ELEMENT const ScalarOf<T>* scalars(const T* p) {
    return reinterpret_cast<const ScalarOf<T>*>(p);
}
template <class T>
VEK_ELEMENT ScalarOf<T>* scalars(T* p) {
    return reinterpret_cast<ScalarOf<T>*>(p);
}

// The value of one element as a vector: a broadcast, or (re, im) pairs.
template <class V>
VEK_ELEMENT V element_vec(float v) {
    return splat<V>(v);
}
template <class V>
VEK_ELEMENT V element_vec(double v) {
    return splat<V>(v);
}
template <class V>
VEK_ELEMENT V element_vec(CplxFloat v) {
    return pairs<V>(v.re, v.im);
}
template <class V>
VEK_ELEMENT V element_vec(CplxDouble v) {
    return pairs<V>(v.re, v.im);
}

// ------------------------------------------------------------ loop drivers
//
// f maps whole vectors; the loop takes two vectors a step, then one, and
// the last partial vector goes through a stack copy padded with repeats of
// its first element, so that it gets the same arithmetic as the rest and
// the padding cannot raise a flag that the data would not.

// The last partial vector at p (r elements), padded with repeats of its
// first element.
template <int kPair, class V, class S>
VEK_ELEMENT V load_tail(const S* p, int r) {
    return load_first(p, r, kPair == 1 ? splat<V>(p[0]) : pairs<V>(p[0], p[1]));
}

template <int kPair, class V, class S, class F>
VEK_ELEMENT void map1_in(const S* a, S* d, std::ptrdiff_t n, F f) {
    constexpr int L = lane_count<V>();
    std::ptrdiff_t i = head_count<kPair>(d, n) % L;  // V may be narrower than a register
    if (i) store_first(d, f(load_tail<kPair, V>(a, int(i))), int(i));
    for (; i + 2 * L <= n; i += 2 * L) {
        const V x0 = load<V>(a + i), x1 = load<V>(a + i + L);
        store(d + i, f(x0));
        store(d + i + L, f(x1));
    }
    if (i + L <= n) {
        store(d + i, f(load<V>(a + i)));
        i += L;
    }
    if (i < n) store_first(d + i, f(load_tail<kPair, V>(a + i, int(n - i))), int(n - i));
}

template <int kPair, class V, class S, class F>
VEK_ELEMENT void map2_in(const S* a, const S* b, S* d, std::ptrdiff_t n, F f) {
    constexpr int L = lane_count<V>();
    std::ptrdiff_t i = head_count<kPair>(d, n) % L;
    if (i)
        store_first(d, f(load_tail<kPair, V>(a, int(i)), load_tail<kPair, V>(b, int(i))), int(i));
    for (; i + 2 * L <= n; i += 2 * L) {
        const V x0 = load<V>(a + i), x1 = load<V>(a + i + L);
        const V y0 = load<V>(b + i), y1 = load<V>(b + i + L);
        store(d + i, f(x0, y0));
        store(d + i + L, f(x1, y1));
    }
    if (i + L <= n) {
        store(d + i, f(load<V>(a + i), load<V>(b + i)));
        i += L;
    }
    if (i < n) {
        const int r = int(n - i);
        store_first(d + i, f(load_tail<kPair, V>(a + i, r), load_tail<kPair, V>(b + i, r)), r);
    }
}

template <int kPair, class S, class F>
VEK_ELEMENT void map1(const S* a, S* d, std::ptrdiff_t n, F f) {
    map1_in<kPair, Vec<S>>(a, d, n, f);
}
template <int kPair, class S, class F>
VEK_ELEMENT void map2(const S* a, const S* b, S* d, std::ptrdiff_t n, F f) {
    map2_in<kPair, Vec<S>>(a, b, d, n, f);
}

// g on double vectors, applied to a vector of S (float: both halves widened,
// results rounded to float once).
template <class G>
VEK_ELEMENT VD in_double(VD x, G g) {
    return g(x);
}
template <class G>
VEK_ELEMENT VF in_double(VF x, G g) {
    return to_floats(g(widen_lo(x)), g(widen_hi(x)));
}

// ------------------------------------------------------------ complex pairs

// All ones in the even (real part) lanes.
VEK_ELEMENT VL even_lanes() { return pairs<VL>(-1, 0); }

VEK_ELEMENT VD negate_even(VD x) { return (VD)((VL)x ^ pairs<VL>(INT64_MIN, 0)); }
VEK_ELEMENT VD conj_pairs(VD x) { return (VD)((VL)x ^ pairs<VL>(0, INT64_MIN)); }

// (xr yr - xi yi, xi yr + xr yi) per pair.
VEK_ELEMENT VD cmul(VD x, VD y) {
    return x * dup_even(y) + negate_even(swap_pairs(x) * dup_odd(y));
}

// x times the constant (yr, yi), given as broadcasts.
VEK_ELEMENT VD cmul_by(VD x, VD yr, VD yi) { return x * yr + negate_even(swap_pairs(x) * yi); }

// The same for float data in double: every product is exact, so a multiply
// and a fused multiply-add-subtract round as the separate operations do.
// Half a register of floats widens to one register of doubles, converted
// as it is loaded; the result is rounded to float once.
using HalfF = Vec<float, lanes<double>()>;

VEK_ELEMENT HalfF cmul_floats(HalfF x, HalfF y) {
    constexpr int N = lanes<double>();
    const VD u = widen<N>(x), v = widen<N>(y);
    const VD r = addsub_exact_product(u, dup_even(v), swap_pairs(u) * dup_odd(v));
    return __builtin_convertvector(r, HalfF);
}

VEK_ELEMENT HalfF cmul_floats_by(HalfF x, VD yr, VD yi) {
    const VD u = widen<lanes<double>()>(x);
    return __builtin_convertvector(addsub_exact_product(u, yr, swap_pairs(u) * yi), HalfF);
}

// re^2 + im^2 in both lanes of each pair.
VEK_ELEMENT VD norm_pairs(VD x) {
    const VD sq = x * x;
    return sq + swap_pairs(sq);
}

// ((re - im)(re + im), re im 2).
VEK_ELEMENT VD csqr(VD x) {
    const VD re = dup_even(x), im = dup_odd(x);
    return even_lanes() ? (re - im) * (re + im) : re * im * 2.0;
}

// Principal square root: t = sqrt((|re| + |x|) / 2); re >= 0 gives
// (t, im / 2t), re < 0 gives (|im| / 2t, t with the sign of im). The
// magnitude is formed as big * sqrt(1 + (small/big)^2) so that it neither
// overflows nor underflows for any finite double.
VEK_ELEMENT VD csqrt(VD x) {
    const VD re = dup_even(x), im = dup_odd(x);
    const VD ar = vabs(re), ai = vabs(im);
    const VD big = ar > ai ? ar : ai, small = ar > ai ? ai : ar;
    const VD ratio = big == 0.0 ? VD{} : small / big;
    const VD mag = big * vsqrt(1.0 + ratio * ratio);
    const VD t = vsqrt(ar * 0.5 + mag * 0.5);
    const VD q = t == 0.0 ? VD{} : im / (t + t);
    const auto even = even_lanes();
    const VD pos = even ? t : q;
    const VD neg = even ? vabs(q) : with_sign_of(t, im);
    const VD r = re >= 0.0 ? pos : neg;
    // Zero in, zero out (the imaginary zero keeps its sign).
    return t == 0.0 ? (even ? VD{} : im) : r;
}

// ------------------------------------------------------------ kernels

template <class T>
void k_add(const T* a, const T* b, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    map2<P>(scalars(a), scalars(b), scalars(d), std::ptrdiff_t(n) * P,
            [](auto x, auto y) { return x + y; });
}

template <class T>
void k_sub(const T* a, const T* b, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    map2<P>(scalars(a), scalars(b), scalars(d), std::ptrdiff_t(n) * P,
            [](auto x, auto y) { return x - y; });
}

template <class T>
void k_mpy(const T* a, const T* b, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    if constexpr (P == 1) {
        map2<P>(scalars(a), scalars(b), scalars(d), n, [](auto x, auto y) { return x * y; });
    } else if constexpr (std::is_same_v<T, CplxFloat>) {
        map2_in<P, HalfF>(scalars(a), scalars(b), scalars(d), std::ptrdiff_t(n) * P, cmul_floats);
    } else {
        map2<P>(scalars(a), scalars(b), scalars(d), std::ptrdiff_t(n) * P, cmul);
    }
}

template <class T>
void k_add_val(const T* a, T val, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    using V = Vec<ScalarOf<T>>;
    const V v = element_vec<V>(val);
    map1<P>(scalars(a), scalars(d), std::ptrdiff_t(n) * P, [v](V x) { return x + v; });
}

template <class T>
void k_sub_val(const T* a, T val, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    using V = Vec<ScalarOf<T>>;
    const V v = element_vec<V>(val);
    map1<P>(scalars(a), scalars(d), std::ptrdiff_t(n) * P, [v](V x) { return x - v; });
}

template <class T>
void k_mpy_val(const T* a, T val, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    using V = Vec<ScalarOf<T>>;
    if constexpr (P == 1) {
        const V v = splat<V>(val);
        map1<P>(scalars(a), scalars(d), n, [v](V x) { return x * v; });
    } else {
        const VD yr = splat<VD>(double(val.re)), yi = splat<VD>(double(val.im));
        if constexpr (std::is_same_v<T, CplxFloat>)
            map1_in<P, HalfF>(scalars(a), scalars(d), std::ptrdiff_t(n) * P,
                              [yr, yi](HalfF x) { return cmul_floats_by(x, yr, yi); });
        else
            map1<P>(scalars(a), scalars(d), std::ptrdiff_t(n) * P,
                    [yr, yi](VD x) { return cmul_by(x, yr, yi); });
    }
}

template <class T>
void k_set(T val, T* d, int n) {
    using S = ScalarOf<T>;
    using V = Vec<S>;
    constexpr int P = Elem<T>::kPair, L = lanes<S>();
    const V v = element_vec<V>(val);
    S* p = scalars(d);
    const std::ptrdiff_t m = std::ptrdiff_t(n) * P;
    std::ptrdiff_t i = head_count<P>(p, m);
    if (i) store_first(p, v, int(i));
    for (; i + L <= m; i += L) store(p + i, v);
    if (i < m) store_first(p + i, v, int(m - i));
}

template <class T>
void k_sqr(const T* src, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    if constexpr (P == 1) {
        map1<P>(scalars(src), scalars(d), n, [](auto x) { return x * x; });
    } else {
        map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P,
                [](auto x) { return in_double(x, csqr); });
    }
}

template <class T>
bool k_sqrt(const T* src, T* d, int n) {
    constexpr int P = Elem<T>::kPair;
    if constexpr (P == 1) {
        // Old destination values stay where the source is negative.
        VL negative{};
        map2<P>(scalars(src), scalars(d), scalars(d), n, [&negative](auto x, auto old) {
            const auto below = x < 0;
            negative |= (VL)below;
            return below ? old : vsqrt(x);
        });
        return any(negative);
    } else {
        map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P,
                [](auto x) { return in_double(x, csqrt); });
        return false;
    }
}

template <class T, class R>
void k_thresh(const T* src, T* d, int n, R thresh, int relOp) {
    using S = ScalarOf<T>;
    using V = Vec<S>;
    constexpr int P = Elem<T>::kPair;
    if constexpr (P == 1) {
        const V t = splat<V>(thresh);
        if (relOp == 0)
            map1<P>(scalars(src), scalars(d), n, [t](V x) { return x < t ? t : x; });
        else
            map1<P>(scalars(src), scalars(d), n, [t](V x) { return x > t ? t : x; });
    } else {
        const VD t2 = splat<VD>(double(thresh) * double(thresh));
        if (relOp == 0) {
            // Below thresh: scaled up to it; zero becomes (thresh, 0).
            const VD zero_to = pairs<VD>(double(thresh), 0.0);
            map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P, [t2, zero_to](V x) {
                return in_double(x, [t2, zero_to](VD u) {
                    const VD m2 = norm_pairs(u);
                    const VD up = m2 == 0.0 ? zero_to : u * vsqrt(t2 / m2);
                    return m2 < t2 ? up : u;
                });
            });
        } else {
            map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P, [t2](V x) {
                return in_double(x, [t2](VD u) {
                    const VD m2 = norm_pairs(u);
                    return m2 > t2 ? u * vsqrt(t2 / m2) : u;
                });
            });
        }
    }
}

template <class T, class R>
bool k_inv_thresh(const T* src, T* d, int n, R thresh, R zeroValue) {
    using S = ScalarOf<T>;
    using V = Vec<S>;
    constexpr int P = Elem<T>::kPair;
    VL zeros{};
    if constexpr (P == 1) {
        const V one = splat<V>(S(1));
        if (thresh == 0) {
            const V zv = splat<V>(zeroValue);
            map1<P>(scalars(src), scalars(d), n, [&zeros, one, zv](V x) {
                const auto zero = x == 0;
                zeros |= (VL)zero;
                return zero ? zv : one / x;
            });
        } else {
            const V t = splat<V>(thresh);
            const V inv = splat<V>(S(1) / thresh);
            map1<P>(scalars(src), scalars(d), n, [one, t, inv](V x) {
                const V bounded = x < 0 ? -inv : inv;
                return vabs(x) <= t ? bounded : one / x;
            });
        }
    } else {
        // 1/x = conj(x) / |x|^2; at most thresh in magnitude: 1/thresh with
        // the phase of 1/x, and zero as (1/thresh, 0).
        if (thresh == 0) {
            const VD zv = pairs<VD>(double(zeroValue), 0.0);
            map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P, [&zeros, zv](V x) {
                return in_double(x, [&zeros, zv](VD u) {
                    const VD m2 = norm_pairs(u);
                    const auto zero = m2 == 0.0;
                    zeros |= (VL)zero;
                    return zero ? zv : conj_pairs(u) * (1.0 / m2);
                });
            });
        } else {
            const double inv_t = 1.0 / double(thresh);
            const VD t2 = splat<VD>(double(thresh) * double(thresh));
            const VD inv = splat<VD>(inv_t);
            const VD zero_to = pairs<VD>(inv_t, 0.0);
            map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P, [t2, inv, zero_to](V x) {
                return in_double(x, [t2, inv, zero_to](VD u) {
                    const VD m2 = norm_pairs(u);
                    const VD k = m2 <= t2 ? inv / vsqrt(m2) : 1.0 / m2;
                    return m2 == 0.0 ? zero_to : conj_pairs(u) * k;
                });
            });
        }
    }
    return any(zeros);
}

template <class T, class R>
void k_normalize(const T* src, T* d, int n, T offset, R factor) {
    using V = Vec<ScalarOf<T>>;
    constexpr int P = Elem<T>::kPair;
    const VD o = element_vec<VD>(offset);
    const VD r = splat<VD>(1.0 / double(factor));
    map1<P>(scalars(src), scalars(d), std::ptrdiff_t(n) * P,
            [o, r](V x) { return in_double(x, [o, r](VD u) { return (u - o) * r; }); });
}

template <class T>
void k_abs(const T* src, T* d, int n) {
    map1<1>(scalars(src), scalars(d), n, [](auto x) { return vabs(x); });
}

template <class T, class R>
constexpr FloatKernels<T, R> float_kernels() {
    FloatKernels<T, R> k{k_add<T>,     k_sub<T>,       k_mpy<T>,           k_add_val<T>,
                         k_sub_val<T>, k_mpy_val<T>,   k_set<T>,           k_sqr<T>,
                         k_sqrt<T>,    k_thresh<T, R>, k_inv_thresh<T, R>, k_normalize<T, R>,
                         nullptr};
    if constexpr (Elem<T>::kPair == 1) k.abs = k_abs<T>;
    return k;
}

const ArithKernels arith_kernels = {
    float_kernels<float, float>(),
    float_kernels<double, double>(),
    float_kernels<CplxFloat, float>(),
    float_kernels<CplxDouble, double>(),
};

}  // namespace VEK_ISA
}  // namespace vek
