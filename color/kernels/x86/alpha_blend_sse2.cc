#define LUMAFORGE_SIMD_LEVEL sse2
#include "color/kernels/x86/alpha_blend_128.h"
