#define VEK_ISA avx512
#include "realfft_kernels.inl"
