#include "color/kernels/packed422.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void Packed422ToPlanesRow_c(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                            int32_t width) {
  for (int32_t x = 0; x + 1 < width; x += 2) {
    const uint8_t* pair = src + 2 * x;
    y[x] = pair[layout.y0];
    y[x + 1] = pair[layout.y1];
    u[x / 2] = pair[layout.u];
    v[x / 2] = pair[layout.v];
  }
}

void PlanesToPacked422Row_c(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst, Packed422Layout layout,
                            int32_t width) {
  for (int32_t x = 0; x + 1 < width; x += 2) {
    uint8_t* pair = dst + 2 * x;
    pair[layout.y0] = y[x];
    pair[layout.y1] = y[x + 1];
    pair[layout.u] = u[x / 2];
    pair[layout.v] = v[x / 2];
  }
}

void AverageRows_c(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count) {
  for (int32_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) >> 1);
}

void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures) {
  *kernels = {Packed422ToPlanesRow_c, PlanesToPacked422Row_c, AverageRows_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
