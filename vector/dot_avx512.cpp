#define VEK_ISA avx512
#include "dot_kernels.inl"
