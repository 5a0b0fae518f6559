#include <cstring>

#include "framework/cpu_features.h"
#include "super_resolution/kernels/sr_standard_taps.h"
#include "super_resolution/kernels/sr_upscale.h"
#include "super_resolution/kernels/sr_upscale_rows.h"

namespace Lumaforge {
namespace {

using sr_rows::Clamp;
using sr_rows::QpAt;
using sr_rows::ToByte;

}  // namespace

size_t SrScratchValues(int32_t width, int32_t height) {
  // One 16-bit row of 2 width values per source row, and one blended source
  // row of bytes.
  return static_cast<size_t>(height) * 2 * width + width;
}

void SrInitTables_c(SrStandardTable* table) {
  for (int32_t e = 0; e < kSrSharpnessEntries; ++e) {
    for (int32_t n = 0; n < 4; ++n) {
      const auto& s = sr_taps::kStandardTable[e][n];
      const int8_t row[16] = {s[0], s[1], s[2], 0, s[3], s[5], s[4], 0, s[6], s[7], s[9], 0, s[8], s[10], s[11], 0};
      std::memcpy(table->rows[e][n], row, sizeof(row));
    }
  }
}

void SrStandard2x_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                    int32_t dstStride, const SrQpMap& qp, const uint8_t* previous, int32_t previousStride,
                    int32_t detailDivisor, const SrStandardTable& table, int16_t* scratch) {
  using namespace sr_rows;
  auto* blended = reinterpret_cast<uint8_t*>(scratch + static_cast<size_t>(height) * 2 * width);
  const bool temporal = previous && previousStride != 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    const uint8_t* before = temporal ? previous + static_cast<ptrdiff_t>(y) * previousStride : row;
    for (int32_t x = 0; x < width; ++x) blended[x] = Blended(row[x], before[x]);
    int16_t* out = scratch + static_cast<size_t>(y) * 2 * width;
    for (int32_t x = 0; x < width; ++x) {
      const int32_t e = EntryAt(qp, x, y, detailDivisor);
      for (int32_t i = 0; i < 2; ++i) out[2 * x + i] = HorizontalOutput(blended, width, x, i, table.rows[e][i]);
    }
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t j = 0; j < 2; ++j) {
      const int16_t* rows[kSrStandardTaps];
      FirstPassRows(scratch, y, j, width, height, rows);
      uint8_t* out = dst + static_cast<ptrdiff_t>(2 * y + j) * dstStride;
      for (int32_t X = 0; X < 2 * width; ++X)
        out[X] = VerticalOutput(rows, X, table.rows[EntryAt(qp, X >> 1, y, detailDivisor)][2 * j]);
    }
  }
}

namespace {

// A separable 1.5x with the taps `tapsAt` gives.
template <typename TapsAt>
void Separable15(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst, int32_t dstStride,
                 int16_t* scratch, const TapsAt& tapsAt) {
  using namespace sr_rows;
  const int32_t outWidth = 3 * width / 2, outHeight = 3 * height / 2;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    int16_t* out = scratch + static_cast<size_t>(y) * outWidth;
    for (int32_t X = 0; X < outWidth; ++X) out[X] = HorizontalOutput15(row, width, X, y, tapsAt);
  }
  for (int32_t Y = 0; Y < outHeight; ++Y) {
    const int16_t* rows[kSrStandardTaps];
    FirstPassRows15(scratch, Y, outWidth, height, rows);
    uint8_t* out = dst + static_cast<ptrdiff_t>(Y) * dstStride;
    for (int32_t X = 0; X < outWidth; ++X)
      out[X] = VerticalOutput15(rows, X, VerticalTaps15(X, Y, width, height, tapsAt));
  }
}

}  // namespace

void SrStandard15_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                    int32_t dstStride, const SrQpMap& qp, int32_t strength, int32_t /*chroma*/, int16_t* scratch) {
  Separable15(src, srcStride, width, height, dst, dstStride, scratch, sr_rows::StandardTaps15{qp, strength});
}

void SrAlternative15_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                       int32_t dstStride, int16_t* scratch) {
  Separable15(src, srcStride, width, height, dst, dstStride, scratch, sr_rows::AlternativeTaps15{});
}

void SrTwoPass_c(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst, int32_t dstStride,
                 int32_t gain, int32_t threshold, int32_t last, int16_t* scratch) {
  using namespace sr_rows;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    int16_t* out = scratch + static_cast<size_t>(y) * 2 * width;
    for (int32_t x = 0; x < width; ++x) {
      out[2 * x] = TwoPassAcross(row, width, x, 0);
      out[2 * x + 1] = TwoPassAcross(row, width, x, 1);
    }
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t j = 0; j < 2; ++j) {
      const int16_t* rows[kSrStandardTaps];
      FirstPassRows(scratch, y, j, width, height, rows);
      uint8_t* out = dst + static_cast<ptrdiff_t>(2 * y + j) * dstStride;
      for (int32_t X = 0; X < 2 * width; ++X) out[X] = TwoPassDown(rows, X, j, gain, threshold, last);
    }
  }
}

void InitSrUpscaleKernels(SrUpscaleKernels* kernels, uint32_t cpuFeatures) {
  kernels->alternative15 = SrAlternative15_c;
  kernels->standard15 = SrStandard15_c;
  kernels->standard2x = SrStandard2x_c;
  kernels->twoPass = SrTwoPass_c;
  kernels->initTables = SrInitTables_c;
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSSE3, ssse3::Install}, {kCpuSSE42, sse42::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
