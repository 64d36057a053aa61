// The 16-bit arithmetic kernels built for SSE2.
#define VEK_ISA sse2
#include "aritw_kernels.inl"
