#define VEK_ISA avx2
#include "dot_kernels.inl"
