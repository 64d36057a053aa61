#define VEK_ISA avx2
#include "fft_kernels.inl"
