#define VEK_ISA sse2
#include "realfft_kernels.inl"
