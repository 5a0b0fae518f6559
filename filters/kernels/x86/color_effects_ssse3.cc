#define LUMAFORGE_SIMD_LEVEL ssse3
#include "filters/kernels/x86/color_effects_128.h"
