#define LUMAFORGE_SIMD_LEVEL ssse3
#include "filters/kernels/x86/gauss_blur_128.h"
