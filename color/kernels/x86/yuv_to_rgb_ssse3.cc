#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/yuv_to_rgb_128.h"
