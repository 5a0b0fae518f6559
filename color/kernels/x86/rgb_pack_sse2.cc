#define LUMAFORGE_SIMD_LEVEL sse2
#include "color/kernels/x86/rgb_pack_128.h"
