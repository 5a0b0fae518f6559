#define LUMAFORGE_SIMD_LEVEL sse42
#include "scaling/kernels/x86/multitap_scale_128.h"
