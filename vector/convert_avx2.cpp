#define VEK_ISA avx2
#include "convert_kernels.inl"
