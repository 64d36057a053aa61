// The plain loops of arith_native.cpp.
#pragma once

#include "vek.h"

namespace plain {
void s_add3(const float* a, const float* b, float* d, int n);
void s_mpy2(const float* s, float* d, int n);
void c_mpy3(const CplxFloat* a, const CplxFloat* b, CplxFloat* d, int n);
void z_mpy3(const CplxDouble* a, const CplxDouble* b, CplxDouble* d, int n);
bool d_sqrt2(const double* s, double* d, int n);
void w_add3_wrap(const short* a, const short* b, short* d, int n);
void w_add3_sat(const short* a, const short* b, short* d, int n);
int w_add3_auto(const short* a, const short* b, short* d, int n);
void v_mpy3_wrap(const CplxShort* a, const CplxShort* b, CplxShort* d, int n);
void v_mpy3_sat(const CplxShort* a, const CplxShort* b, CplxShort* d, int n);
}  // namespace plain
