#define LUMAFORGE_SIMD_LEVEL avx2
#include "filters/kernels/x86/gauss_blur_128.h"

namespace Lumaforge::avx2 {

void GaussRowPass1(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                   const DericheCoefficients& k, float* line, float* transposed) {
  GaussRowPass1_c(src, srcStride, width, height, k, line, transposed);
}

void GaussColumnPass1(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                      float* line, uint8_t* dst, ptrdiff_t dstStride) {
  GaussColumnPass1_c(transposed, width, height, k, line, dst, dstStride);
}

}  // namespace Lumaforge::avx2
