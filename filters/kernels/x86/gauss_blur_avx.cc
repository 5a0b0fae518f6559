#define LUMAFORGE_SIMD_LEVEL avx
#include "filters/kernels/x86/gauss_blur_128.h"
