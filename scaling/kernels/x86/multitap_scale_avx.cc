#define LUMAFORGE_SIMD_LEVEL avx
#include "scaling/kernels/x86/multitap_scale_128.h"
