#define VEK_ISA avx512
#include "narrow_kernels.inl"
