#define LUMAFORGE_SIMD_LEVEL sse42
#include "color/kernels/x86/chroma_interleave_128.h"
