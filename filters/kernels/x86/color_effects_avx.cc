#define LUMAFORGE_SIMD_LEVEL avx
#include "filters/kernels/x86/color_effects_128.h"
