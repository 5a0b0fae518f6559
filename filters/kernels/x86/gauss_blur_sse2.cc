#define LUMAFORGE_SIMD_LEVEL sse2
#include "filters/kernels/x86/gauss_blur_128.h"
