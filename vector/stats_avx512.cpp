#define VEK_ISA avx512
#include "stats_kernels.inl"
