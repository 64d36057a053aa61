#define VEK_ISA sse2
#include "dot_kernels.inl"
