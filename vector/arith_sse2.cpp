// The floating-point arithmetic kernels built for SSE2.
#define VEK_ISA sse2
#include "arith_kernels.inl"
