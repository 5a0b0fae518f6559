// Multi-tap downscaling kernels: the two passes of the six-tap half-band
// halving, and the rows of the separable four-tap phase filter. Taps are
// signed 8-bit, sum to 64, and every output is clamp((32 + sum) >> 6).
//
// Widths and row counts are any values >= 0. Each kernel says below what it
// reads; the vector forms read nothing more and write only the outputs. Their
// sums stay in 16-bit lanes, which is exact for taps of moderate size (see
// x86/multitap_tap_range.h); other tap sets run the plain routines.
#ifndef LUMAFORGE_SCALING_KERNELS_MULTITAP_SCALE_H_
#define LUMAFORGE_SCALING_KERNELS_MULTITAP_SCALE_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// Rows j of `width` samples, firstRow <= j < min(firstRow + rowCount,
// height / 2), written to dst row j - firstRow:
//   dst(x, j) = clamp((32 + sum_k src(x, clamp(2j - 2 + k, 0, height - 1)) * taps[5 - k]) >> 6), k < 6.
// The row range lets a caller run both passes band by band in the cache.
using HalfBandVerticalKernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                                    int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount);
// `rows` rows of `width` samples, each readable two samples before its start
// and three past its end; writes width / 2 samples per row:
//   dst(i, j) = clamp((32 + sum_k src_j(2i - 2 + k) * taps[5 - k]) >> 6), k < 6.
using HalfBandHorizontalKernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t rows, uint8_t* dst,
                                      int32_t dstStride, const int8_t* taps);
// line[x] = clamp((32 + t0 r0[x] + t1 r1[x] + t2 r2[x] + t3 r3[x]) >> 6), x < width.
using FourTapVerticalKernel = void(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3,
                                   uint8_t* line, int32_t width, const int8_t* taps);
// dst[i] = clamp((32 + sum_k t_i[k] line[x_i - 1 + k]) >> 6), i < width, with
// p_i = posX + i * stepX, x_i = p_i >> 16 and t_i = phases[(p_i >> 10) & 63]
// when cycleLength is 0, else t_i = phases[i % cycleLength]. The line must be
// readable wherever x_i - 1 .. x_i + 2 fall; nothing else is read.
using FourTapHorizontalKernel = void(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                                     const int8_t (*phases)[4], int32_t cycleLength);

struct MultiTapScaleKernels {
  HalfBandVerticalKernel* halfBandVertical;
  HalfBandHorizontalKernel* halfBandHorizontal;
  FourTapVerticalKernel* fourTapVertical;
  FourTapHorizontalKernel* fourTapHorizontal;
};

// Plain routines, then the variants of each level the feature word holds.
void InitMultiTapScaleKernels(MultiTapScaleKernels* kernels, uint32_t cpuFeatures);

HalfBandVerticalKernel HalfBandVertical_c;
HalfBandHorizontalKernel HalfBandHorizontal_c;
FourTapVerticalKernel FourTapVertical_c;
FourTapHorizontalKernel FourTapHorizontal_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, MultiTapScaleKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, MultiTapScaleKernels)
LUMAFORGE_KERNEL_LEVEL(avx, MultiTapScaleKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, MultiTapScaleKernels)

// The source rows of vertical half-band output rows from j0 on: row
// 2 j0 - 2 + k for k < count, clamped to the plane. In an unnamed namespace:
// each level's file keeps its own copy, built with its own flags.
namespace {
inline void HalfBandSourceRows(const uint8_t* src, int32_t srcStride, int32_t height, int32_t j0, int32_t count,
                               const uint8_t** rows) {
  for (int32_t k = 0; k < count; ++k) {
    const int32_t y = 2 * j0 - 2 + k;
    rows[k] = src + static_cast<ptrdiff_t>(y < 0 ? 0 : (y > height - 1 ? height - 1 : y)) * srcStride;
  }
}
}  // namespace

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_MULTITAP_SCALE_H_
