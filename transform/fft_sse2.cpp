#define VEK_ISA sse2
#include "fft_kernels.inl"
