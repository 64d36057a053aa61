// Dot products: the table of kernels that each instruction set provides for
// the modules vekdotp and vekdotpw.
//
// Floating forms sum in a fixed layout of double-precision partial sums (see
// sum_lanes in lanes.inl), so every path gives the same result. Complex
// forms accumulate Σ re·re, Σ im·im, Σ re·im and Σ im·re separately and
// combine them at the end; no operand is conjugated. 16-bit forms return the
// exact sums modulo 2^32.
#pragma once

#include <cstdint>

#include "frame/cpu.hpp"
#include "vek.h"

namespace vek {

struct DotOps {
    float (*s)(const float* a, const float* b, int n);
    double (*d)(const double* a, const double* b, int n);
    CplxFloat (*c)(const CplxFloat* a, const CplxFloat* b, int n);
    CplxFloat (*cs)(const CplxFloat* a, const float* b, int n);  // sc: the same, swapped
    CplxDouble (*z)(const CplxDouble* a, const CplxDouble* b, int n);
    CplxDouble (*zd)(const CplxDouble* a, const double* b, int n);  // dz: swapped
    std::int32_t (*w)(const short* a, const short* b, int n);
    CplxInt (*v)(const CplxShort* a, const CplxShort* b, int n);
    CplxInt (*vw)(const CplxShort* a, const short* b, int n);  // wv: swapped
};

namespace sse2 {
extern const DotOps dot_ops;
}
namespace avx2 {
extern const DotOps dot_ops;
}
namespace avx512 {
extern const DotOps dot_ops;
}

inline const DotOps& dot_ops() {
    static const DotOps* const kDotTables[kIsaCount] = {&sse2::dot_ops, &avx2::dot_ops,
                                                        &avx512::dot_ops};
    return pick(kDotTables);
}

}  // namespace vek
