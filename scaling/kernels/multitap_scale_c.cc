#include "scaling/kernels/multitap_scale.h"

#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

inline uint8_t Clamp6(int32_t sum) {
  const int32_t v = (32 + sum) >> 6;
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

}  // namespace

void HalfBandVertical_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                        int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount) {
  const int32_t endRow = firstRow + rowCount < height / 2 ? firstRow + rowCount : height / 2;
  for (int32_t j = firstRow; j < endRow; ++j) {
    const uint8_t* rows[6];
    HalfBandSourceRows(src, srcStride, height, j, 6, rows);
    uint8_t* out = dst + static_cast<ptrdiff_t>(j - firstRow) * dstStride;
    for (int32_t x = 0; x < width; ++x) {
      int32_t sum = 0;
      for (int32_t k = 0; k < 6; ++k) sum += rows[k][x] * taps[5 - k];
      out[x] = Clamp6(sum);
    }
  }
}

void HalfBandHorizontal_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t rows, uint8_t* dst,
                          int32_t dstStride, const int8_t* taps) {
  for (int32_t j = 0; j < rows; ++j) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(j) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(j) * dstStride;
    for (int32_t i = 0; i < width / 2; ++i) {
      int32_t sum = 0;
      for (int32_t k = 0; k < 6; ++k) sum += line[2 * i - 2 + k] * taps[5 - k];
      out[i] = Clamp6(sum);
    }
  }
}

void FourTapVertical_c(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3, uint8_t* line,
                       int32_t width, const int8_t* taps) {
  for (int32_t x = 0; x < width; ++x) {
    line[x] = Clamp6(taps[0] * r0[x] + taps[1] * r1[x] + taps[2] * r2[x] + taps[3] * r3[x]);
  }
}

void FourTapHorizontal_c(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                         const int8_t (*phases)[4], int32_t cycleLength) {
  int32_t pos = posX;
  for (int32_t i = 0; i < width; ++i, pos += stepX) {
    const int8_t* t = cycleLength ? phases[i % cycleLength] : phases[(pos >> 10) & 63];
    const uint8_t* p = line + (pos >> 16) - 1;
    dst[i] = Clamp6(t[0] * p[0] + t[1] * p[1] + t[2] * p[2] + t[3] * p[3]);
  }
}

void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {HalfBandVertical_c, HalfBandHorizontal_c, FourTapVertical_c, FourTapHorizontal_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
