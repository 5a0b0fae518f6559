#define LUMAFORGE_SIMD_LEVEL sse2
#include "filters/kernels/x86/color_effects_128.h"
