#define VEK_ISA avx512
#include "convert_kernels.inl"
