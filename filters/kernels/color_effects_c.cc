#include "filters/kernels/color_effects.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void RotateHue_c(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  auto toByte = [](float x) { return static_cast<uint8_t>(x < 0.0f ? 0.0f : x > 255.0f ? 255.0f : x); };
  for (size_t i = 0; i < count; ++i) {
    const float du = static_cast<float>(u[i]) - 128.0f;
    const float dv = static_cast<float>(v[i]) - 128.0f;
    u[i] = toByte(du * c + dv * s + 128.0f);
    v[i] = toByte(dv * c - du * s + 128.0f);
  }
}

void Sepia_c(const uint8_t* in, uint8_t* out, size_t pixels) {
  for (size_t i = 0; i < 3 * pixels; i += 3) {
    const int32_t r = in[i], g = in[i + 1], b = in[i + 2];
    const int32_t red = (101 * r + 197 * g + 48 * b + 128) >> 8;
    const int32_t green = (89 * r + 176 * g + 43 * b + 128) >> 8;
    out[i] = static_cast<uint8_t>(red < 255 ? red : 255);
    out[i + 1] = static_cast<uint8_t>(green < 255 ? green : 255);
    out[i + 2] = static_cast<uint8_t>((70 * r + 137 * g + 34 * b + 128) >> 8);
  }
}

void InitColorEffectKernels(ColorEffectKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {RotateHue_c, Sepia_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuSSE42, sse42::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
