#define LUMAFORGE_SIMD_LEVEL ssse3
#include "scaling/kernels/x86/multitap_scale_128.h"
