// The 16-bit arithmetic kernels built for AVX-512.
#define VEK_ISA avx512
#include "aritw_kernels.inl"
