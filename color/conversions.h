// Whole-picture conversion routines. Each writes every pixel of the output
// from the input; sizes are even, and rows are mirrored when exactly one of
// the two pictures is bottom-up. The row work runs through the given kernels.
#ifndef LUMAFORGE_COLOR_CONVERSIONS_H_
#define LUMAFORGE_COLOR_CONVERSIONS_H_

#include "color/color_kernels.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

using ConversionRoutine = void (*)(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);

// Planar (I420, YV12) or semi-planar (NV12, NV21) 4:2:0 to any RGB layout.
void Yuv420ToRgb(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Packed 4:2:2 to any RGB layout.
void Packed422ToRgb(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Any RGB layout to planar or semi-planar 4:2:0.
void RgbToYuv420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Any RGB layout to packed 4:2:2.
void RgbToPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Between RGB layouts: planes or rows copied, or channels moved per pixel.
void RgbReorder(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);

// Planar 4:2:0 to planar 4:2:0 (U and V exchanged between I420 and YV12).
void CopyPlanar420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Semi-planar to semi-planar (pairs swapped between NV12 and NV21).
void CopySemiPlanar420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Planar 4:2:0 to semi-planar, and back.
void InterleaveChroma(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
void DeinterleaveChroma(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Planar or semi-planar 4:2:0 to packed 4:2:2, and packed 4:2:2 to either.
void Yuv420ToPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
void Packed422ToYuv420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Between packed 4:2:2 layouts.
void ReorderPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);
// Three planes with full-width, half-height chroma (I440 and unnamed codes)
// to planar 4:2:0, keeping every other chroma sample.
void VerticalChromaTo420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& kernels);

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_CONVERSIONS_H_
