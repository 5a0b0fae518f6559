// The standard upscalers of the super resolution filter: 2x steered by the
// per-block quantiser and by the previous frame, 1.5x steered by the
// quantiser and a strength, an alternative 1.5x, and a two-pass 2x.
//
// All are separable: a horizontal pass into 16-bit rows (weights summing to
// 64), then a vertical pass (again 64), rounded by 4096, held to 0..255.
// Taps beyond the plane repeat its edge samples. Kernels read only the
// width x height source samples (and the previous plane's, when given) and
// write only their output size: 2 width x 2 height, or (3 width) / 2 x
// (3 height) / 2.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// Sharpness entries of the standard 2x table: 0 is the softest kernel
// (bilinear), 256 the sharpest.
inline constexpr int32_t kSrSharpnessEntries = 257;
inline constexpr int32_t kSrStandardTaps = 6;

// The standard 2x kernel's table as its kernels read it: per sharpness entry
// and output position, one 16-byte row holding the six horizontal taps h0..h5
// and the six vertical taps v0..v5 as h0 h1 h2 0 h3 h5 h4 0 v0 v1 v3 0 v2 v4 v5 0.
struct SrStandardTable {
  alignas(16) int8_t rows[kSrSharpnessEntries][4][16];
};

// The six horizontal (0) or vertical (1) taps of a working-table row.
inline void SrStandardTaps(const int8_t row[16], int32_t direction, int32_t taps[kSrStandardTaps]) {
  static constexpr uint8_t kSlot[2][kSrStandardTaps] = {{0, 1, 2, 4, 6, 5}, {8, 9, 12, 10, 13, 14}};
  for (int32_t a = 0; a < kSrStandardTaps; ++a) taps[a] = row[kSlot[direction][a]];
}

// The quantiser map a plane is steered by: one byte per 16x16 luma block,
// `stride` bytes per block row; plane position (x, y) reads block
// (x >> shift, y >> shift), shift 4 for luma and 3 for the half-size chroma.
struct SrQpMap {
  const uint8_t* qp;
  int32_t stride;
  int32_t shift;
};

// Standard 2x. `previous` is the last frame's plane (same size and stride
// kind; null, or a stride of 0, when there is none). `detailDivisor` divides
// the sharpness the quantiser gives (1 luma, 4 chroma). `scratch` holds
// height x 2 width 16-bit values.
using SrStandard2xKernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                                int32_t dstStride, const SrQpMap& qp, const uint8_t* previous, int32_t previousStride,
                                int32_t detailDivisor, const SrStandardTable& table, int16_t* scratch);
// Standard 1.5x: `strength` 1..3 for luma (stronger for smaller pictures),
// 1..4 for chroma, `chroma` 0 or 1. `scratch` holds height x (3 width) / 2
// 16-bit values.
using SrScale15Kernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                             int32_t dstStride, const SrQpMap& qp, int32_t strength, int32_t chroma, int16_t* scratch);
// Alternative 1.5x: one fixed four-tap kernel per phase, no steering.
using SrAlternative15Kernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                                   int32_t dstStride, int16_t* scratch);
// Two-pass 2x: fixed four-tap interpolation, then `gain` / 16 of the detail
// the vertical pass adds beyond a linear blend, cored below `threshold`
// (`last` 1 leaves the coring out).
using SrTwoPassKernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                             int32_t dstStride, int32_t gain, int32_t threshold, int32_t last, int16_t* scratch);
// Fills the working table from the static one.
using SrTableInitKernel = void(SrStandardTable* table);

struct SrUpscaleKernels {
  SrAlternative15Kernel* alternative15;
  SrScale15Kernel* standard15;
  SrStandard2xKernel* standard2x;
  SrTwoPassKernel* twoPass;
  SrTableInitKernel* initTables;
};

SrAlternative15Kernel SrAlternative15_c;
SrScale15Kernel SrStandard15_c;
SrStandard2xKernel SrStandard2x_c;
SrTwoPassKernel SrTwoPass_c;
SrTableInitKernel SrInitTables_c;

LUMAFORGE_KERNEL_LEVEL(ssse3, SrUpscaleKernels)
LUMAFORGE_KERNEL_LEVEL(sse42, SrUpscaleKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, SrUpscaleKernels)

// 16-bit scratch values a kernel needs for a width x height plane.
size_t SrScratchValues(int32_t width, int32_t height);

void InitSrUpscaleKernels(SrUpscaleKernels* kernels, uint32_t cpuFeatures);

}  // namespace Lumaforge

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_UPSCALE_H_
