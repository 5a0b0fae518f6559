#define LUMAFORGE_SIMD_LEVEL sse2
#include "scaling/kernels/x86/multitap_scale_128.h"
