#define VEK_ISA avx2
#include "stats_kernels.inl"
