#include "color/kernels/rgb_pack.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void Shuffle4Row_c(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    const uint8_t* s = src + 4 * i;
    uint8_t* d = dst + 4 * i;
    const uint8_t b0 = s[pattern.index[0]], b1 = s[pattern.index[1]], b2 = s[pattern.index[2]],
                  b3 = s[pattern.index[3]];
    d[0] = b0;
    d[1] = b1;
    d[2] = b2;
    d[3] = b3;
  }
}

void Rgb24ToBgraRow_c(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    const uint8_t* s = src + 3 * i;
    uint8_t* d = bgra + 4 * i;
    d[0] = s[pattern.index[0]];
    d[1] = s[pattern.index[1]];
    d[2] = s[pattern.index[2]];
    d[3] = 255;
  }
}

void BgraToRgb24Row_c(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    const uint8_t* s = bgra + 4 * i;
    uint8_t* d = dst + 3 * i;
    d[0] = s[pattern.index[0]];
    d[1] = s[pattern.index[1]];
    d[2] = s[pattern.index[2]];
  }
}

void PlanesToBgraRow_c(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    bgra[4 * i] = b[i];
    bgra[4 * i + 1] = g[i];
    bgra[4 * i + 2] = r[i];
    bgra[4 * i + 3] = 255;
  }
}

void BgraToPlanesRow_c(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width) {
  for (int32_t i = 0; i < width; ++i) {
    b[i] = bgra[4 * i];
    g[i] = bgra[4 * i + 1];
    r[i] = bgra[4 * i + 2];
  }
}

void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {Shuffle4Row_c, Rgb24ToBgraRow_c, BgraToRgb24Row_c, PlanesToBgraRow_c, BgraToPlanesRow_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
