#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/alpha_blend_128.h"
