#define VEK_ISA sse2
#include "stats_kernels.inl"
