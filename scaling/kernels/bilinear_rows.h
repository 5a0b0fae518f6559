// The row walk of the bilinear kernels, shared by the plain routines and the
// vector forms so both place every output alike. Internal linkage: each file
// that includes it is built with its own instruction-set flags and keeps its
// own copy.
#ifndef LUMAFORGE_SCALING_KERNELS_BILINEAR_ROWS_H_
#define LUMAFORGE_SCALING_KERNELS_BILINEAR_ROWS_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Lumaforge {
namespace {

// A size ratio times `one` (2^16 or 2^15) in single precision, rounded to nearest.
inline int32_t BilinearStep(int32_t srcSize, int32_t dstSize, float one) {
  return static_cast<int32_t>(std::lround(static_cast<float>(srcSize) / static_cast<float>(dstSize) * one));
}

struct BilinearColumns {
  int32_t startX, stepX, xShift;  // column i reads source column (startX + i * stepX) >> xShift
};

// Luma and packed columns: 16.16 from 32768. Chroma columns: 17.15 from 16384.
inline BilinearColumns LumaColumns(int32_t srcWidth, int32_t dstWidth) {
  return {32768, BilinearStep(srcWidth, dstWidth, 65536.0f), 16};
}
inline BilinearColumns ChromaColumns(int32_t srcWidth, int32_t dstWidth) {
  return {16384, BilinearStep(srcWidth, dstWidth, 32768.0f), 15};
}

// Walks the output rows; row r reads source row (16384 + r * stepY) >> 15 and
// the one below. `inner(line, out, count, x, fy)` writes the first count =
// dstWidth - 1 outputs of a row, x being the position of its first column and
// fy the row's 15-bit fraction; the last column, and every column of the last
// row, copy the `bytes`-byte source sample at their position.
template <typename Inner>
void BilinearRows(const uint8_t* src, int32_t srcStride, int32_t srcHeight, uint8_t* dst, int32_t dstStride,
                  int32_t dstWidth, int32_t dstHeight, BilinearColumns columns, int32_t bytes, Inner&& inner) {
  const auto copy = [&](const uint8_t* line, uint8_t* out, int32_t first, int32_t count) {
    int32_t x = columns.startX + first * columns.stepX;
    for (int32_t i = first; i < first + count; ++i, x += columns.stepX) {
      std::memcpy(out + i * bytes, line + static_cast<ptrdiff_t>(x >> columns.xShift) * bytes, bytes);
    }
  };
  if (dstWidth < 1) return;
  const int32_t stepY = BilinearStep(srcHeight, dstHeight, 32768.0f);
  int32_t y = 16384;
  for (int32_t row = 0; row < dstHeight; ++row, y += stepY) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(y >> 15) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(row) * dstStride;
    if (row == dstHeight - 1) {
      copy(line, out, 0, dstWidth);
    } else {
      inner(line, out, dstWidth - 1, columns.startX, static_cast<uint32_t>(y) & 0x7FFF);
      copy(line, out, dstWidth - 1, 1);
    }
  }
}

}  // namespace
}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_BILINEAR_ROWS_H_
