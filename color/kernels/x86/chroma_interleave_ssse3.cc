#define LUMAFORGE_SIMD_LEVEL ssse3
#include "color/kernels/x86/chroma_interleave_128.h"
