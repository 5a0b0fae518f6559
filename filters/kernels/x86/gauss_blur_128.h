// Temporary: forwards to the plain passes until the vector forms land.
#include "filters/kernels/gauss_blur.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {

void GaussRowPass4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                   const DericheCoefficients& k, float* line, float* transposed) {
  GaussRowPass4_c(src, srcStride, width, height, k, line, transposed);
}

void GaussColumnPass4(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                      float* line, uint8_t* dst, ptrdiff_t dstStride) {
  GaussColumnPass4_c(transposed, width, height, k, line, dst, dstStride);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
