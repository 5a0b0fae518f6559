#include <algorithm>

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

// The last output column and row copy the source sample at their position.
template <typename Interpolate>
void Bilinear(int32_t srcStride, int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t stepX, int32_t stepY,
              int32_t startX, int32_t xShift, const uint8_t* src, uint8_t* dst, int32_t bytes,
              Interpolate interpolate) {
  int32_t y = 16384;
  for (int32_t row = 0; row < dstHeight; ++row, y += stepY) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(y >> 15) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(row) * dstStride;
    const bool lastRow = row == dstHeight - 1;
    int32_t x = startX;
    for (int32_t col = 0; col < dstWidth; ++col, x += stepX) {
      const uint8_t* p = line + static_cast<ptrdiff_t>(x >> xShift) * bytes;
      for (int32_t c = 0; c < bytes; ++c) {
        out[col * bytes + c] = (lastRow || col == dstWidth - 1) ? p[c] : interpolate(p + c, x, y);
      }
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

void BilinearLuma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  const int32_t s = srcStride;
  Bilinear(srcStride, dstStride, dstWidth, dstHeight, BilinearStep(srcWidth, dstWidth, 65536.0f),
           BilinearStep(srcHeight, dstHeight, 32768.0f), 32768, 16, src, dst, 1,
           [s](const uint8_t* p, int32_t x, int32_t y) {
             const uint32_t fx = static_cast<uint32_t>(x) & 0xFFFF, fy = static_cast<uint32_t>(y) & 0x7FFF;
             const uint32_t v = ((((fx * fy) >> 16) * p[s + 1] + (((32767 - fy) * fx) >> 16) * p[1] +
                                  (((65535 - fx) * (32767 - fy)) >> 16) * p[0] + (((65535 - fx) * fy) >> 16) * p[s]) >>
                                 14);
             return static_cast<uint8_t>(v == 0 ? 0 : std::min<uint32_t>((v + 1) >> 1, 255));
           });
}

void BilinearChroma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  const int32_t s = srcStride;
  Bilinear(srcStride, dstStride, dstWidth, dstHeight, BilinearStep(srcWidth, dstWidth, 32768.0f),
           BilinearStep(srcHeight, dstHeight, 32768.0f), 16384, 15, src, dst, 1,
           [s](const uint8_t* p, int32_t x, int32_t y) {
             const uint64_t fx = static_cast<uint32_t>(x) & 0x7FFF, fy = static_cast<uint32_t>(y) & 0x7FFF;
             const uint64_t v = ((p[s] * fy + p[0] * (32767 - fy)) * (32767 - fx) +
                                 (p[s + 1] * fy + (32767 - fy) * p[1]) * fx + 0x20000000) >>
                                30;
             return static_cast<uint8_t>(std::min<uint64_t>(v, 255));
           });
}

void PackedBilinear_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  const int32_t s = srcStride, k = bytesPerPixel;
  Bilinear(srcStride, dstStride, dstWidth, dstHeight, BilinearStep(srcWidth, dstWidth, 65536.0f),
           BilinearStep(srcHeight, dstHeight, 32768.0f), 32768, 16, src, dst, k,
           [s, k](const uint8_t* p, int32_t, int32_t) {
             const int32_t t = ((p[0] + p[s] + 1) >> 1) + 1 + ((p[k] + p[s + k] + 1) >> 1);
             return static_cast<uint8_t>(t < 2 ? 0 : t >> 1);
           });
}

}  // namespace Lumaforge
