#define LUMAFORGE_SIMD_LEVEL avx
#include "color/kernels/x86/packed422_128.h"
