#define LUMAFORGE_SIMD_LEVEL sse42
#include "filters/kernels/x86/color_effects_128.h"
