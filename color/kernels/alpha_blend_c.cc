#include "color/kernels/alpha_blend.h"

#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

inline uint8_t Blend(uint8_t in, uint8_t old, uint8_t a) {
  return static_cast<uint8_t>((in * (256 - a) + old * a) >> 8);
}

}  // namespace

void BlendRgb32Row_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    for (int32_t k = 0; k < 4; ++k) out[4 * c + k] = Blend(in[4 * c + k], out[4 * c + k], alpha[c]);
  }
}

void BlendPlaneRow_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  for (int32_t c = 0; c < width; ++c) out[c] = Blend(in[c], out[c], alpha[c]);
}

void BlendChromaRow_c(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  for (int32_t c = 0; c < width; ++c) out[c] = Blend(in[c], out[c], alpha[2 * c]);
}

void InitAlphaBlendKernels(AlphaBlendKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BlendRgb32Row_c, BlendPlaneRow_c, BlendChromaRow_c};
  ClimbLadder(kernels, cpuFeatures, {{kCpuSSE2, sse2::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
