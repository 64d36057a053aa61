// The plain loops that the vek exports are compared with, one per benchmark.
// They are compiled -O3 -march=native (files *_native.cpp).
#pragma once

#include "vek.h"

namespace native {

// Conversions: lrintf with clamping, and without (out of range: unwritten).
void float_to_short_sat(const float* src, short* dst, int n);
void float_to_short(const float* src, short* dst, int n);
void short_to_float(const short* src, float* dst, int n);

// Dot products, summed in index order (the complex one in double).
float dot_float(const float* a, const float* b, int n);
CplxFloat dot_cplx(const CplxFloat* a, const CplxFloat* b, int n);
short dot_short(const short* a, const short* b, int n);  // 32-bit sum, low 16 bits

// Statistics.
float max_ext_float(const float* x, int n, int* index);
float mean_float(const float* x, int n);

// The direct DFT with symmetric pairing, summed in double: work holds n
// elements, tbl[k] = exp(-2*pi*i*k/n).
void dft_direct(const CplxFloat* x, CplxFloat* y, CplxFloat* work, const CplxFloat* tbl, int n);
void dft_direct(const CplxDouble* x, CplxDouble* y, CplxDouble* work, const CplxDouble* tbl, int n);

}  // namespace native
