#define VEK_ISA avx2
#include "realfft_kernels.inl"
