#define VEK_ISA avx512
#include "dft_kernels.inl"
