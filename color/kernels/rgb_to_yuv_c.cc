#include "color/kernels/rgb_to_yuv.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void BgraToYRow_c(const uint8_t* bgra, uint8_t* y, int32_t width) {
  for (int32_t x = 0; x < width; ++x) {
    const uint8_t* p = bgra + 4 * x;
    y[x] = static_cast<uint8_t>(((66 * p[2] + 129 * p[1] + 25 * p[0] + 128) >> 8) + 16);
  }
}

void BgraToUV420Row_c(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width) {
  for (int32_t x = 0; x + 1 < width; x += 2) {
    const uint8_t* a = bgra0 + 4 * x;
    const uint8_t* b = bgra1 + 4 * x;
    const int32_t sb = a[0] + a[4] + b[0] + b[4];
    const int32_t sg = a[1] + a[5] + b[1] + b[5];
    const int32_t sr = a[2] + a[6] + b[2] + b[6];
    u[x / 2] = static_cast<uint8_t>(((112 * sb - 74 * sg - 38 * sr + 512) >> 10) + 128);
    v[x / 2] = static_cast<uint8_t>(((112 * sr - 94 * sg - 18 * sb + 512) >> 10) + 128);
  }
}

void BgraToUV422Row_c(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width) {
  for (int32_t x = 0; x + 1 < width; x += 2) {
    const uint8_t* a = bgra + 4 * x;
    const int32_t sb = a[0] + a[4];
    const int32_t sg = a[1] + a[5];
    const int32_t sr = a[2] + a[6];
    u[x / 2] = static_cast<uint8_t>(((112 * sb - 74 * sg - 38 * sr + 256) >> 9) + 128);
    v[x / 2] = static_cast<uint8_t>(((112 * sr - 94 * sg - 18 * sb + 256) >> 9) + 128);
  }
}

void InitRgbToYuvKernels(RgbToYuvKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BgraToYRow_c, BgraToUV420Row_c, BgraToUV422Row_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
