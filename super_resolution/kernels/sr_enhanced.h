// The enhanced 2x upscaler: every source pixel becomes a 2x2 output block,
// by the trained 3x3 -> 2x2 filter of its class (super_resolution/
// sr_classes.h) where the coefficient file has one, else by the plain
// formula. Source blocks of 2x2 pixels whose four 3x3 neighbourhoods are all
// nearly flat, and the first and last columns, always take the plain formula.
// Rows above the first and below the last repeat the edge rows; so do
// columns beyond the edges in the flatness test.
//
// The kernel reads only the width x height source samples and writes only
// the 2 width x 2 height outputs.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// The trained filters as the kernels read them.
struct SrTrainedFilters {
  const double* table;   // SrWeightIndex(class, position, k) layout
  const uint8_t* valid;  // one flag per class
  // The same weights with the four positions side by side: [class][k][position].
  const double* byTap;
};

// Sums are taken k = 0..8 in order from 0.0, in double, so every variant
// lands on the same bits.
using SrEnhancedPlaneKernel = void(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                                   int32_t dstStride, const SrTrainedFilters& filters);

struct SrEnhancedKernels {
  SrEnhancedPlaneKernel* plane;
};

SrEnhancedPlaneKernel SrEnhancedPlane_c;

LUMAFORGE_KERNEL_LEVEL(sse2, SrEnhancedKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, SrEnhancedKernels)

void InitSrEnhancedKernels(SrEnhancedKernels* kernels, uint32_t cpuFeatures);

}  // namespace Lumaforge

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_SR_ENHANCED_H_
