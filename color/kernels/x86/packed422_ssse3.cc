#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/packed422_128.h"
