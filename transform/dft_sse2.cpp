#define VEK_ISA sse2
#include "dft_kernels.inl"
