#define LUMAFORGE_SIMD_LEVEL avx
#include "color/kernels/x86/yuv_to_rgb_128.h"
