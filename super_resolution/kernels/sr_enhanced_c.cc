#include "super_resolution/kernels/sr_enhanced.h"

#include "framework/cpu_features.h"
#include "super_resolution/kernels/sr_enhanced_rows.h"
#include "super_resolution/sr_coefficients.h"

namespace Lumaforge {

using namespace sr_enhanced;

void SrEnhancedPlane_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                       int32_t dstStride, const SrTrainedFilters& filters) {
  for (int32_t y = 0; y < height; y += 2) {
    // Two source rows per step; an odd last row pairs with itself.
    const int32_t y1 = y + 1 < height ? y + 1 : y;
    const RowTriple rows[2] = {RowsAround(src, srcStride, height, y), RowsAround(src, srcStride, height, y1)};
    uint8_t* out[2][2] = {{dst + static_cast<ptrdiff_t>(2 * y) * dstStride, nullptr}, {nullptr, nullptr}};
    out[0][1] = out[0][0] + dstStride;
    out[1][0] = y1 != y ? out[0][0] + 2 * static_cast<ptrdiff_t>(dstStride) : nullptr;
    out[1][1] = y1 != y ? out[1][0] + dstStride : nullptr;
    for (int32_t x = 0; x < width; x += 2) {
      const bool flat = FlatBlock(rows[0], rows[1], x, width);
      for (int32_t r = 0; r < (y1 != y ? 2 : 1); ++r) {
        for (int32_t px = x; px < x + 2 && px < width; ++px) {
          uint8_t p[kSrTaps];
          const int32_t cls = TrainedClass(rows[r], px, width, flat, filters.valid, p);
          if (cls < 0) {
            PlainPixel(rows[r], px, width, out[r][0], out[r][1]);
            continue;
          }
          uint8_t block[kSrPositions];
          for (int32_t n = 0; n < kSrPositions; ++n) {
            const double* w = filters.table + SrWeightIndex(cls, n, 0);
            double sum = 0.0;
            for (int32_t k = 0; k < kSrTaps; ++k) sum += p[k] * w[k];
            block[n] = SrClampToByte(sum);
          }
          out[r][0][2 * px] = block[0];
          out[r][0][2 * px + 1] = block[1];
          out[r][1][2 * px] = block[2];
          out[r][1][2 * px + 1] = block[3];
        }
      }
    }
  }
}

void InitSrEnhancedKernels(SrEnhancedKernels* kernels, uint32_t cpuFeatures) {
  kernels->plane = SrEnhancedPlane_c;
  ClimbLadder(kernels, cpuFeatures, {{kCpuSSE2, sse2::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
