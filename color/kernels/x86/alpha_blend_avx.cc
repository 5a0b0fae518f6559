#define LUMAFORGE_SIMD_LEVEL avx
#include "color/kernels/x86/alpha_blend_128.h"
