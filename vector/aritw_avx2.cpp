// The 16-bit arithmetic kernels built for AVX2.
#define VEK_ISA avx2
#include "aritw_kernels.inl"
