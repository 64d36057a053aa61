#define VEK_ISA avx2
#include "narrow_kernels.inl"
