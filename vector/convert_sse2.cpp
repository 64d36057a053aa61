#define VEK_ISA sse2
#include "convert_kernels.inl"
