#define VEK_ISA avx512
#include "fft_kernels.inl"
