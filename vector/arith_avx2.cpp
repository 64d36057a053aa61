// The floating-point arithmetic kernels built for AVX2.
#define VEK_ISA avx2
#include "arith_kernels.inl"
