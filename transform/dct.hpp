// The orthonormal DCT-II (forward) and DCT-III (inverse) of any length.
//
// Powers of two take the fast path: up to kDctMatrixMax points a product
// with the cached N x N cosine matrix, above it the N-point real FFT of the
// even/odd reordered input (v[n] = x[2n], v[N-1-n] = x[2n+1]) followed by
// X[k] = c(k) Re(exp(-i pi k / 2N) V[k]), two outputs per spectrum value;
// the inverse runs the same steps backwards. Other lengths above
// kDctDirectMax take the same arrangement through the N-point complex DFT
// in double (a plan of the DCT's own, for the latest such length); shorter
// ones, and any whose plan cannot be had, are summed directly from the
// thread's table of 4N cosines, with x[n] and x[N-1-n] paired so that each
// output needs half the products.
#pragma once

#include <cstdint>

#include "frame/context.hpp"

namespace vek {

constexpr int kDctMatrixMax = 32;

// False when memory is short (after one retry with the thread's transform
// caches released); dst is then unwritten. src may equal dst.
bool dct(const float* src, float* dst, int len, bool inverse);
bool dct(const double* src, double* dst, int len, bool inverse);

// A work block of `count` floats (table_free releases it), with the retry;
// null when memory is short.
float* dct_floats(std::uint64_t count);

// Both kinds of DCT table of the thread.
void dct_release(ThreadContext* ctx);

}  // namespace vek
