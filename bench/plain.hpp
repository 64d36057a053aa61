// The plain loops that the vek exports are compared with, one per
// benchmark: what the compiler makes of the obvious C++ on this machine.
// They are compiled -O3 -march=native (files *_native.cpp).
#pragma once

#include "vek.h"

namespace plain {

// Element-wise arithmetic (complex float products in float).
void s_add3(const float* a, const float* b, float* d, int n);
void s_mpy2(const float* s, float* d, int n);
void c_mpy3(const CplxFloat* a, const CplxFloat* b, CplxFloat* d, int n);
void c_mpy1(CplxFloat v, CplxFloat* d, int n);  // d[i] *= v
void z_mpy3(const CplxDouble* a, const CplxDouble* b, CplxDouble* d, int n);
bool d_sqrt2(const double* s, double* d, int n);
void w_add3_wrap(const short* a, const short* b, short* d, int n);
void w_add3_sat(const short* a, const short* b, short* d, int n);
int w_add3_auto(const short* a, const short* b, short* d, int n);
void v_mpy3_wrap(const CplxShort* a, const CplxShort* b, CplxShort* d, int n);
void v_mpy3_sat(const CplxShort* a, const CplxShort* b, CplxShort* d, int n);

// Conversions: lrintf with clamping, and without (out of range: unwritten).
void float_to_short_sat(const float* src, short* dst, int n);
void float_to_short(const float* src, short* dst, int n);
void short_to_float(const short* src, float* dst, int n);

// Dot products, summed in index order (the complex one in double).
float dot_float(const float* a, const float* b, int n);
CplxFloat dot_cplx(const CplxFloat* a, const CplxFloat* b, int n);
short dot_short(const short* a, const short* b, int n);  // 32-bit sum, low 16 bits

// Floats to 16 bits, scaled by 2^-f and truncated toward zero: clamped
// first when saturating, else wrapped. The auto form takes f from the
// largest magnitude's exponent (minus 14) and returns it.
void narrow_fixed(const float* src, short* dst, int n, int f, bool saturate);
int narrow_auto(const float* src, short* dst, int n);

// Statistics.
float max_ext_float(const float* x, int n, int* index);
float mean_float(const float* x, int n);

// The direct DFT with symmetric pairing, summed in double: work holds n
// elements, tbl[k] = exp(-2*pi*i*k/n).
void dft_direct(const CplxFloat* x, CplxFloat* y, CplxFloat* work, const CplxFloat* tbl, int n);
void dft_direct(const CplxDouble* x, CplxDouble* y, CplxDouble* work, const CplxDouble* tbl, int n);

// The Goertzel recurrence over a block from zero states, in the data's
// precision (16-bit data in float); cosw and sinw of 2 pi rfreq.
CplxFloat goertzel(const float* x, int n, float cosw, float sinw);
CplxFloat goertzel(const short* x, int n, float cosw, float sinw);
CplxDouble goertzel(const CplxDouble* x, int n, double cosw, double sinw);

}  // namespace plain
