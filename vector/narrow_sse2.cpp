#define VEK_ISA sse2
#include "narrow_kernels.inl"
