#include "enhance/kernels/denoise.h"

#include <cstdlib>
#include <cstring>

#include "enhance/kernels/denoise_rows.h"
#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

using namespace denoise;

// Runs `pixel` over a run, one row at a time: the row's results go to a
// small buffer first, so the run's own pixels are read unfiltered.
template <typename Pixel>
void ForEachRunRow(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows, Pixel pixel) {
  uint8_t row[kMaxRunWidth];
  for (int32_t y = 0; y < rows; ++y, p += stride) {
    for (int32_t x = 0; x < width; ++x) row[x] = pixel(p + x, stride);
    std::memcpy(p, row, static_cast<size_t>(width));
  }
}

}  // namespace

void DenoiseSpatialA_c(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows) {
  ForEachRunRow(p, stride, width, rows, SpatialPixel<WeightA>);
}

void DenoiseSpatialB_c(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows) {
  ForEachRunRow(p, stride, width, rows, SpatialPixel<WeightB>);
}

void DenoiseEdgeSmoother_c(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows) {
  ForEachRunRow(p, stride, width, rows, SmoothedPixel);
}

void DenoiseBlockStats_c(const uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride,
                         int32_t blocks, int32_t* weights, int32_t* variances) {
  for (int32_t i = 0; i < blocks; ++i) {
    int32_t d[5][5];
    for (int32_t r = 0; r < 5; ++r) {
      for (int32_t c = 0; c < 5; ++c) {
        const int32_t v = cur[r * curStride + 5 * i + c] - ref[r * refStride + 5 * i + c] + 128;
        d[r][c] = v < 0 ? 0 : v > 255 ? 255 : v;
      }
    }
    const BlockStats stats = StatsOfDifferences(d);
    weights[i] = stats.weight;
    variances[i] = stats.variance;
  }
}

void DenoiseBlend_c(uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride, int32_t width,
                    int32_t rows, int32_t weight) {
  for (int32_t y = 0; y < rows; ++y, cur += curStride, ref += refStride) {
    for (int32_t x = 0; x < width; ++x) cur[x] = BlendPixel(cur[x], ref[x], weight);
  }
}

bool DenoiseBlockTest_c(const uint8_t* ref, ptrdiff_t refStride, const uint8_t* cur, ptrdiff_t curStride, int32_t tac,
                        int32_t tdc, int32_t* cell) {
  int32_t halfRef[4][8], halfCur[4][8], sad = 0;
  for (int32_t r = 0; r < 4; ++r) {
    for (int32_t j = 0; j < 8; ++j) {
      halfRef[r][j] = (ref[2 * r * refStride + j] + ref[(2 * r + 1) * refStride + j] + 1) >> 1;
      halfCur[r][j] = (cur[2 * r * curStride + j] + cur[(2 * r + 1) * curStride + j] + 1) >> 1;
      sad += std::abs(halfCur[r][j] - halfRef[r][j]);
    }
  }
  if (QuickAnswer(sad, tac, *cell)) return sad < ((7 * tac) >> 4);
  int32_t diff[4][4];
  for (int32_t r = 0; r < 4; ++r) {
    for (int32_t k = 0; k < 4; ++k)
      diff[r][k] = (halfRef[r][2 * k] - halfCur[r][2 * k]) + (halfRef[r][2 * k + 1] - halfCur[r][2 * k + 1]);
  }
  *cell = sad;
  return TransformPasses(diff, tac, tdc);
}

void InitDenoiseKernels(DenoiseKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {DenoiseSpatialA_c,   DenoiseSpatialB_c, DenoiseEdgeSmoother_c,
              DenoiseBlockStats_c, DenoiseBlend_c,    DenoiseBlockTest_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuSSE42, sse42::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
