#include <algorithm>

#include "framework/cpu_features.h"
#include "scaling/kernels/bilinear_rows.h"
#include "scaling/kernels/box_scale.h"

namespace Lumaforge {
namespace {

inline uint8_t Average2x2(uint8_t a, uint8_t b, uint8_t c, uint8_t d) {
  return static_cast<uint8_t>((((c + d + 1) >> 1) + ((a + b + 1) >> 1) + 1) >> 1);
}

void BoxStep(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
             int32_t step) {
  for (int32_t y = 0; y < height / step; ++y) {
    const uint8_t* top = src + static_cast<ptrdiff_t>(step * y) * srcStride;
    const uint8_t* bottom = top + srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStride;
    for (int32_t x = 0; x < width / step; ++x) {
      const int32_t sx = step * x;
      out[x] = Average2x2(top[sx], top[sx + 1], bottom[sx], bottom[sx + 1]);
    }
  }
}

}  // namespace

void BoxHalf_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxStep(src, srcStride, dst, dstStride, width, height, 2);
}

void BoxThird_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  BoxStep(src, srcStride, dst, dstStride, width, height, 3);
}

void BoxQuarter_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                  int32_t height) {
  BoxStep(src, srcStride, dst, dstStride, width, height, 4);
}

void PackedHalf_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                  int32_t bytesPerPixel) {
  const int32_t k = bytesPerPixel;
  for (int32_t y = 0; y < height / 2; ++y) {
    const uint8_t* top = src + static_cast<ptrdiff_t>(2 * y) * srcStride;
    const uint8_t* bottom = top + srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStride;
    for (int32_t x = 0; x < width / 2; ++x) {
      for (int32_t c = 0; c < k; ++c) {
        // Vertical pairs first: the mean of the two column means.
        const int32_t i = 2 * x * k + c;
        out[x * k + c] = Average2x2(top[i], bottom[i], top[i + k], bottom[i + k]);
      }
    }
  }
}

void BilinearLumaSpan_c(const uint8_t* line, int32_t srcStride, uint8_t* out, int32_t count, int32_t x, int32_t stepX,
                        uint32_t fy) {
  const int32_t s = srcStride;
  for (int32_t i = 0; i < count; ++i, x += stepX) {
    const uint8_t* p = line + (x >> 16);
    const uint32_t fx = static_cast<uint32_t>(x) & 0xFFFF;
    const uint32_t v = ((((fx * fy) >> 16) * p[s + 1] + (((32767 - fy) * fx) >> 16) * p[1] +
                         (((65535 - fx) * (32767 - fy)) >> 16) * p[0] + (((65535 - fx) * fy) >> 16) * p[s]) >>
                        14);
    out[i] = static_cast<uint8_t>(v == 0 ? 0 : std::min<uint32_t>((v + 1) >> 1, 255));
  }
}

void BilinearChromaSpan_c(const uint8_t* line, int32_t srcStride, uint8_t* out, int32_t count, int32_t x, int32_t stepX,
                          uint32_t fy) {
  const int32_t s = srcStride;
  const uint64_t wy = fy;
  for (int32_t i = 0; i < count; ++i, x += stepX) {
    const uint8_t* p = line + (x >> 15);
    const uint64_t fx = static_cast<uint32_t>(x) & 0x7FFF;
    const uint64_t v =
        ((p[s] * wy + p[0] * (32767 - wy)) * (32767 - fx) + (p[s + 1] * wy + (32767 - wy) * p[1]) * fx + 0x20000000) >>
        30;
    out[i] = static_cast<uint8_t>(std::min<uint64_t>(v, 255));
  }
}

void PackedBilinearSpan_c(const uint8_t* line, int32_t srcStride, uint8_t* out, int32_t count, int32_t x, int32_t stepX,
                          int32_t bytesPerPixel) {
  const int32_t s = srcStride, k = bytesPerPixel;
  for (int32_t i = 0; i < count; ++i, x += stepX) {
    const uint8_t* p = line + static_cast<ptrdiff_t>(x >> 16) * k;
    for (int32_t c = 0; c < k; ++c) {
      const int32_t t = ((p[c] + p[s + c] + 1) >> 1) + 1 + ((p[k + c] + p[s + k + c] + 1) >> 1);
      out[i * k + c] = static_cast<uint8_t>(t < 2 ? 0 : t >> 1);
    }
  }
}

void BilinearLuma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  const BilinearColumns columns = LumaColumns(srcWidth, dstWidth);
  BilinearRows(src, srcStride, srcHeight, dst, dstStride, dstWidth, dstHeight, columns, 1,
               [&](const uint8_t* line, uint8_t* out, int32_t count, int32_t x, uint32_t fy) {
                 BilinearLumaSpan_c(line, srcStride, out, count, x, columns.stepX, fy);
               });
}

void BilinearChroma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  const BilinearColumns columns = ChromaColumns(srcWidth, dstWidth);
  BilinearRows(src, srcStride, srcHeight, dst, dstStride, dstWidth, dstHeight, columns, 1,
               [&](const uint8_t* line, uint8_t* out, int32_t count, int32_t x, uint32_t fy) {
                 BilinearChromaSpan_c(line, srcStride, out, count, x, columns.stepX, fy);
               });
}

void PackedBilinear_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  const BilinearColumns columns = LumaColumns(srcWidth, dstWidth);
  BilinearRows(src, srcStride, srcHeight, dst, dstStride, dstWidth, dstHeight, columns, bytesPerPixel,
               [&](const uint8_t* line, uint8_t* out, int32_t count, int32_t x, uint32_t) {
                 PackedBilinearSpan_c(line, srcStride, out, count, x, columns.stepX, bytesPerPixel);
               });
}

void InitBoxScaleKernels(BoxScaleKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {BoxHalf_c,      BoxHalf_c,        BoxThird_c,   BoxQuarter_c,
              BilinearLuma_c, BilinearChroma_c, PackedHalf_c, PackedBilinear_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE, sse::Install},
               {kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
