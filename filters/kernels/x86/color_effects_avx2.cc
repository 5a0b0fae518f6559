#define LUMAFORGE_SIMD_LEVEL avx2
#include "filters/kernels/x86/color_effects_128.h"
