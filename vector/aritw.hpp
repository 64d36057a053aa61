// Kernels of the 16-bit element-wise arithmetic (w: int16, v: CplxShort),
// one table per instruction set.
//
// The arithmetic kernels take the scale mode as given: 0 wraps, 1
// saturates, 4 picks the smallest factor that makes every result fit
// (correcting the results already stored when an overflow turns up), 3 is
// the caller's factor with saturation, any other value the caller's factor
// with wrap-around. A destination may be one of the sources.
#pragma once

#include <cstdint>

#include "frame/cpu.hpp"
#include "vek.h"

namespace vek {

struct ShortKernels {
    using W = std::int16_t;
    using V = CplxShort;

    // dst = a op b and dst = a op val.
    void (*w_add)(const W* a, const W* b, W* dst, int n, int mode, int* factor);
    void (*w_sub)(const W* a, const W* b, W* dst, int n, int mode, int* factor);
    void (*w_mpy)(const W* a, const W* b, W* dst, int n, int mode, int* factor);
    void (*w_add_val)(const W* a, W val, W* dst, int n, int mode, int* factor);
    void (*w_sub_val)(const W* a, W val, W* dst, int n, int mode, int* factor);
    void (*w_mpy_val)(const W* a, W val, W* dst, int n, int mode, int* factor);
    void (*v_add)(const V* a, const V* b, V* dst, int n, int mode, int* factor);
    void (*v_sub)(const V* a, const V* b, V* dst, int n, int mode, int* factor);
    void (*v_mpy)(const V* a, const V* b, V* dst, int n, int mode, int* factor);
    void (*v_add_val)(const V* a, V val, V* dst, int n, int mode, int* factor);
    void (*v_sub_val)(const V* a, V val, V* dst, int n, int mode, int* factor);
    void (*v_mpy_val)(const V* a, V val, V* dst, int n, int mode, int* factor);

    void (*w_set)(W val, W* dst, int n);
    void (*v_set)(V val, V* dst, int n);
    // dst = conj(src); the imaginary part saturates (-(-32768) is 32767).
    void (*v_conj)(const V* src, V* dst, int n);
};

namespace sse2 {
extern const ShortKernels short_kernels;
}
namespace avx2 {
extern const ShortKernels short_kernels;
}
namespace avx512 {
extern const ShortKernels short_kernels;
}

inline const ShortKernels& aritw() {
    static const ShortKernels* const kTables[kIsaCount] = {
        &sse2::short_kernels, &avx2::short_kernels, &avx512::short_kernels};
    return pick(kTables);
}

}  // namespace vek
