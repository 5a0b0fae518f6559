#define LUMAFORGE_SIMD_LEVEL sse2
#include "color/kernels/x86/packed422_128.h"
