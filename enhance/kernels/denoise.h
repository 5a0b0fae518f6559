// Kernels of the denoise filter: the edge-preserving 3x3 spatial kernels,
// the edge smoother, the statistics of the noise estimator, the temporal
// blend and the block similarity test.
//
// Spatial runs work in place on `rows` rows of `width` pixels (1..16) from
// p, top row first. Each row is computed from the picture as it stands and
// then stored as a whole: its left and right neighbours and the row below
// are unfiltered, the row above is already filtered. A run reads columns
// -1 .. width of the rows -1 .. rows; it writes only its own pixels.
#ifndef LUMAFORGE_ENHANCE_KERNELS_DENOISE_H_
#define LUMAFORGE_ENHANCE_KERNELS_DENOISE_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// Kernel A (levels 1 to 3, and chroma at every level): each neighbour n of
// c with d = |n - c| <= 32 weighs ((32 - d)^2) >> 5. Kernel B (level 4):
// weight 28 - (d >> 2) where that is not negative. Both give
// ((256 - sum of weights) * c + 128 + sum of weight * n) >> 8.
// The edge smoother: the [1 2 1; 2 4 2; 1 2 1] sum + 8, >> 4.
using DenoiseRunKernel = void(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows);

// The noise estimator's 5x5 blocks along one band of five rows: block i
// covers columns 5i .. 5i + 4 of cur and ref (0 <= i < blocks). For each,
// d = clamp(cur - ref + 128, 0, 255) over its 25 samples, the variance
// (sum of (d - floor(mean))^2) * 256 / 24 into variances[i] and the
// structure weight (0 .. 256, from the ratio of its largest to its smallest
// directional energy) into weights[i].
using DenoiseBlockStatsKernel = void(const uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride,
                                     int32_t blocks, int32_t* weights, int32_t* variances);

// cur = clamp((cur * weight + ref * (32 - weight) + 16) >> 5) over `rows`
// rows of `width` pixels (1..16).
using DenoiseBlendKernel = void(uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride,
                                int32_t width, int32_t rows, int32_t weight);

// Whether the 8x8 block `cur` is like `ref`: the SAD of the vertically
// halved blocks, then a 4-point transform of their differences against the
// thresholds; `cell` carries the SAD from one block of a macroblock to the
// next.
using DenoiseBlockTestKernel = bool(const uint8_t* ref, ptrdiff_t refStride, const uint8_t* cur, ptrdiff_t curStride,
                                    int32_t tac, int32_t tdc, int32_t* cell);

struct DenoiseKernels {
  DenoiseRunKernel* spatialA;
  DenoiseRunKernel* spatialB;
  DenoiseRunKernel* edgeSmoother;
  DenoiseBlockStatsKernel* blockStats;
  DenoiseBlendKernel* blend;
  DenoiseBlockTestKernel* blockTest;
};

DenoiseRunKernel DenoiseSpatialA_c;
DenoiseRunKernel DenoiseSpatialB_c;
DenoiseRunKernel DenoiseEdgeSmoother_c;
DenoiseBlockStatsKernel DenoiseBlockStats_c;
DenoiseBlendKernel DenoiseBlend_c;
DenoiseBlockTestKernel DenoiseBlockTest_c;

LUMAFORGE_KERNEL_LEVEL(sse2, DenoiseKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, DenoiseKernels)
LUMAFORGE_KERNEL_LEVEL(sse42, DenoiseKernels)
LUMAFORGE_KERNEL_LEVEL(avx, DenoiseKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, DenoiseKernels)

void InitDenoiseKernels(DenoiseKernels* kernels, uint32_t cpuFeatures);

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_KERNELS_DENOISE_H_
