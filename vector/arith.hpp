// Kernels of the floating-point element-wise arithmetic (s, d, c, z), one
// table per instruction set. The exports check their arguments and call one
// entry of the table that vek::pick chooses.
//
// Every kernel accepts a destination that is one of its sources (the in-place
// forms pass the same pointer twice). Float data are computed in double and
// rounded once per result, double data without fused multiply-add, so every
// instruction set gives the same bits.
#pragma once

#include "frame/cpu.hpp"
#include "vek.h"

namespace vek {

// The kernels of one element type T whose real part type is R.
template <class T, class R>
struct FloatKernels {
    // dst = a op b, element by element.
    void (*add)(const T* a, const T* b, T* dst, int n);
    void (*sub)(const T* a, const T* b, T* dst, int n);
    void (*mpy)(const T* a, const T* b, T* dst, int n);
    // dst = a op val.
    void (*add_val)(const T* a, T val, T* dst, int n);
    void (*sub_val)(const T* a, T val, T* dst, int n);
    void (*mpy_val)(const T* a, T val, T* dst, int n);
    void (*set)(T val, T* dst, int n);
    void (*sqr)(const T* src, T* dst, int n);
    // Real types leave a negative element's destination alone and return
    // true when there was one; complex types take the principal root.
    bool (*sqrt)(const T* src, T* dst, int n);
    // relOp 0 raises what lies below thresh, any other value lowers what
    // lies above it (complex types: by magnitude, keeping the phase).
    void (*thresh)(const T* src, T* dst, int n, R thresh, int relOp);
    // Bounded reciprocal for thresh >= 0. A zero element under a zero
    // thresh becomes zeroValue (complex: zeroValue + 0i); returns true when
    // that happened.
    bool (*inv_thresh)(const T* src, T* dst, int n, R thresh, R zeroValue);
    // dst = (src - offset) * (1 / factor), factor != 0.
    void (*normalize)(const T* src, T* dst, int n, T offset, R factor);
    void (*abs)(const T* src, T* dst, int n);  // real types only
};

struct ArithKernels {
    FloatKernels<float, float> s;
    FloatKernels<double, double> d;
    FloatKernels<CplxFloat, float> c;
    FloatKernels<CplxDouble, double> z;
};

namespace sse2 {
extern const ArithKernels arith_kernels;
}
namespace avx2 {
extern const ArithKernels arith_kernels;
}
namespace avx512 {
extern const ArithKernels arith_kernels;
}

// The table of the instruction set in use.
inline const ArithKernels& arith() {
    static const ArithKernels* const kTables[kIsaCount] = {
        &sse2::arith_kernels, &avx2::arith_kernels, &avx512::arith_kernels};
    return pick(kTables);
}

}  // namespace vek
