// Whole-picture conversion routines. Each writes every pixel of the output
// from the input; sizes are even, and rows are mirrored when exactly one of
// the two pictures is bottom-up. The row work runs through the given kernels.
#ifndef LUMAFORGE_COLOR_CONVERSIONS_H_
#define LUMAFORGE_COLOR_CONVERSIONS_H_

#include "color/color_kernels.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// Every whole-picture routine has this signature.
using Conversion = void(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
using ConversionRoutine = Conversion*;

// Planar (I420, YV12) or semi-planar (NV12, NV21) 4:2:0 to any RGB layout.
Conversion Yuv420ToRgb;
// Packed 4:2:2 to any RGB layout.
Conversion Packed422ToRgb;
// Any RGB layout to planar or semi-planar 4:2:0.
Conversion RgbToYuv420;
// Any RGB layout to packed 4:2:2.
Conversion RgbToPacked422;
// Between RGB layouts: planes or rows copied, or channels moved per pixel.
Conversion RgbReorder;

// Planar 4:2:0 to planar 4:2:0 (U and V exchanged between I420 and YV12).
Conversion CopyPlanar420;
// Semi-planar to semi-planar (pairs swapped between NV12 and NV21).
Conversion CopySemiPlanar420;
// Planar 4:2:0 to semi-planar, and back.
Conversion InterleaveChroma;
Conversion DeinterleaveChroma;
// Planar or semi-planar 4:2:0 to packed 4:2:2, and packed 4:2:2 to either.
Conversion Yuv420ToPacked422;
Conversion Packed422ToYuv420;
// Between packed 4:2:2 layouts.
Conversion ReorderPacked422;
// Three planes with full-width, half-height chroma (I440 and unnamed codes)
// to planar 4:2:0, keeping every other chroma sample.
Conversion VerticalChromaTo420;

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_CONVERSIONS_H_
