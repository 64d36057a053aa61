#define VEK_ISA avx2
#include "dft_kernels.inl"
