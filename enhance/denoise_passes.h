// The denoise filter's passes over a picture: the spatial passes over luma
// and chroma macroblocks, the temporal pass against the previous output and
// the noise estimate. They run on the filter's selected kernels.
#ifndef LUMAFORGE_ENHANCE_DENOISE_PASSES_H_
#define LUMAFORGE_ENHANCE_DENOISE_PASSES_H_

#include <cstddef>
#include <cstdint>

#include "enhance/kernels/denoise.h"

namespace Lumaforge {

// Y, U and V of a 4:2:0 picture: luma width x height, chroma planes of
// width / 2 x height / 2.
struct DenoisePlanes {
  uint8_t* plane[3];
  ptrdiff_t stride[3];
};

// The static map: one byte per 16x16 macroblock (partial ones included),
// the number of consecutive frames it was found static (0..7).
struct StaticMap {
  uint8_t* cells;
  int32_t width, height;  // in macroblocks
  uint8_t& At(int32_t x, int32_t y) const { return cells[static_cast<size_t>(y) * width + x]; }
};

// The kernels a frame runs with.
struct DenoiseRunKernels {
  DenoiseRunKernel* luma;    // 16- and 8-wide runs of luma: kernel A, or B at level 4
  DenoiseRunKernel* chroma;  // kernel A
  DenoiseRunKernel* edge;    // the edge smoother
};

// The spatial pass over the luma plane, macroblock by macroblock in raster
// order; with `everyBlock` false, macroblocks whose map cell is non-zero
// are left alone.
void LumaSpatialPass(const DenoiseRunKernels& kernels, uint8_t* y, ptrdiff_t stride, int32_t width, int32_t height,
                     const StaticMap& map, bool everyBlock);

// The spatial pass over one chroma plane (width x height being the chroma
// sizes), in 8x8 blocks that share the map cell of their macroblock.
void ChromaSpatialPass(const DenoiseRunKernels& kernels, uint8_t* plane, ptrdiff_t stride, int32_t width,
                       int32_t height, const StaticMap& map, bool everyBlock);

// The temporal pass: every whole macroblock like the reference (by the
// block test at the thresholds of `level`, eased for blocks that have been
// static) is blended with it and counted static once more; the others are
// counted moving.
void TemporalPass(const DenoiseKernels& kernels, const DenoisePlanes& current, const DenoisePlanes& reference,
                  int32_t width, int32_t height, const StaticMap& map, int32_t level);

// The number of 5x5 blocks the noise estimator reads in a luma plane.
int32_t NoiseBlockCount(int32_t width, int32_t height);

// The temporal noise estimate of `current` against `reference` (luma,
// one stride each); `weights` and `variances` hold NoiseBlockCount entries.
int32_t EstimateNoise(const DenoiseKernels& kernels, const uint8_t* current, ptrdiff_t currentStride,
                      const uint8_t* reference, ptrdiff_t referenceStride, int32_t width, int32_t height,
                      int32_t* weights, int32_t* variances);

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_DENOISE_PASSES_H_
