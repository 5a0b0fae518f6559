#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/rgb_to_yuv_128.h"
