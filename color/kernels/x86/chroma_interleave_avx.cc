#define LUMAFORGE_SIMD_LEVEL avx
#include "color/kernels/x86/chroma_interleave_128.h"
