#define LUMAFORGE_SIMD_LEVEL avx
#include "color/kernels/x86/rgb_pack_128.h"
