#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/rgb_pack_128.h"
