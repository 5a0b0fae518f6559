#define LUMAFORGE_SIMD_LEVEL sse
#include "scaling/kernels/x86/box_scale_128.h"

namespace Lumaforge::sse {

// Unaligned loads cost nothing extra on aligned rows, so both step-2 entries share one body.
void BoxHalfAligned(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height) {
  BoxHalfImpl(src, srcStride, dst, dstStride, width, height);
}

void BoxHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxHalfImpl(src, srcStride, dst, dstStride, width, height);
}

void BoxQuarter(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxQuarterImpl(src, srcStride, dst, dstStride, width, height);
}

}  // namespace Lumaforge::sse
