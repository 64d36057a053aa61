// The floating-point arithmetic kernels built for AVX-512.
#define VEK_ISA avx512
#include "arith_kernels.inl"
