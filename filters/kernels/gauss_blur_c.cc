#include <cstdint>

#include "filters/kernels/gauss_blur.h"
#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

// One line of n samples, `step` apart: the causal recursion writes out[i],
// then the anti-causal one, started from x[start], adds to it.
template <typename Sample>
void FilterLine(const Sample* x, ptrdiff_t step, int32_t n, int32_t start, const DericheCoefficients& k, float* out) {
  float xp = static_cast<float>(x[0]);
  float yp = k.coefp * xp;
  float yb = yp;
  for (int32_t i = 0; i < n; ++i) {
    const float xi = static_cast<float>(x[i * step]);
    const float y = k.a0 * xi + k.a1 * xp - k.b1 * yp - k.b2 * yb;
    out[i] = y;
    xp = xi;
    yb = yp;
    yp = y;
  }
  float xn = static_cast<float>(x[start * step]);
  float xa = xn;
  float yn = k.coefn * xn;
  float ya = yn;
  for (int32_t i = n - 1; i >= 0; --i) {
    const float y = k.a2 * xn + k.a3 * xa - k.b1 * yn - k.b2 * ya;
    xa = xn;
    xn = static_cast<float>(x[i * step]);
    ya = yn;
    yn = y;
    out[i] += y;
  }
}

uint8_t TruncateToByte(float v) { return static_cast<uint8_t>(static_cast<int32_t>(v)); }

}  // namespace

void GaussRowRange1_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0, int32_t y1,
                      const DericheCoefficients& k, float* line, float* transposed) {
  // The anti-causal start four samples before the end is deliberate.
  const int32_t start = width >= 4 ? width - 4 : 0;
  for (int32_t y = y0; y < y1; ++y) {
    FilterLine(src + y * srcStride, 1, width, start, k, line);
    for (int32_t x = 0; x < width; ++x) transposed[static_cast<size_t>(x) * height + y] = line[x];
  }
}

void GaussColumnRange1_c(const float* transposed, int32_t height, int32_t x0, int32_t x1, const DericheCoefficients& k,
                         float* line, uint8_t* dst, ptrdiff_t dstStride) {
  for (int32_t x = x0; x < x1; ++x) {
    FilterLine(transposed + static_cast<size_t>(x) * height, 1, height, height - 1, k, line);
    for (int32_t y = 0; y < height; ++y) dst[y * dstStride + x] = TruncateToByte(line[y]);
  }
}

void GaussRowRange4_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0, int32_t y1,
                      const DericheCoefficients& k, float* line, float* transposed) {
  for (int32_t y = y0; y < y1; ++y) {
    for (int32_t c = 0; c < 4; ++c) {
      FilterLine(src + y * srcStride + c, 4, width, width - 1, k, line);
      for (int32_t x = 0; x < width; ++x) transposed[(static_cast<size_t>(x) * height + y) * 4 + c] = line[x];
    }
  }
}

void GaussColumnRange4_c(const float* transposed, int32_t height, int32_t x0, int32_t x1, const DericheCoefficients& k,
                         float* line, uint8_t* dst, ptrdiff_t dstStride) {
  for (int32_t x = x0; x < x1; ++x) {
    for (int32_t c = 0; c < 4; ++c) {
      FilterLine(transposed + static_cast<size_t>(x) * height * 4 + c, 4, height, height - 1, k, line);
      for (int32_t y = 0; y < height; ++y) dst[y * dstStride + x * 4 + c] = TruncateToByte(line[y]);
    }
  }
}

void GaussRowPass1_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                     const DericheCoefficients& k, float* line, float* transposed) {
  GaussRowRange1_c(src, srcStride, width, height, 0, height, k, line, transposed);
}

void GaussColumnPass1_c(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                        float* line, uint8_t* dst, ptrdiff_t dstStride) {
  GaussColumnRange1_c(transposed, height, 0, width, k, line, dst, dstStride);
}

void GaussRowPass4_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                     const DericheCoefficients& k, float* line, float* transposed) {
  GaussRowRange4_c(src, srcStride, width, height, 0, height, k, line, transposed);
}

void GaussColumnPass4_c(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                        float* line, uint8_t* dst, ptrdiff_t dstStride) {
  GaussColumnRange4_c(transposed, height, 0, width, k, line, dst, dstStride);
}

void InitGaussBlurKernels(GaussBlurKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {GaussRowPass1_c, GaussColumnPass1_c, GaussRowPass4_c, GaussColumnPass4_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSE42, sse42::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
