#define LUMAFORGE_SIMD_LEVEL ssse3
#include "scaling/kernels/x86/box_scale_128.h"

namespace Lumaforge::ssse3 {

// Unaligned loads cost nothing extra on aligned rows, so both step-2 entries share one body.
void BoxHalfAligned(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height) {
  BoxHalfImpl(src, srcStride, dst, dstStride, width, height);
}
void BoxHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxHalfImpl(src, srcStride, dst, dstStride, width, height);
}

void BoxThird(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxThirdImpl(src, srcStride, dst, dstStride, width, height);
}

void BoxQuarter(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxQuarterImpl(src, srcStride, dst, dstStride, width, height);
}

void BilinearLuma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                  int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  BilinearLumaImpl(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight);
}

void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel) {
  PackedHalfImpl(src, srcStride, dst, dstStride, width, height, bytesPerPixel);
}

void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  PackedBilinearImpl(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight, bytesPerPixel);
}

}  // namespace Lumaforge::ssse3
