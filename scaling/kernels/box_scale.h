// Box and bilinear downscaling kernels: the 2x2 average at steps 2, 3 and 4
// (the top-left 2x2 block of every step x step cell), its packed-pixel form,
// and bilinear resampling for planes and packed pixels.
//
// Box kernels get the source width and height (any sizes >= 0) and write
// width / step x height / step samples; they read only the two top rows of
// each cell and only the source columns those outputs use. Packed halving
// does the same with `bytesPerPixel`-byte pixels (vector forms for 3 and 4).
//
// Bilinear kernels get both sizes and expect an output smaller than the
// source in both directions, so every interpolated position has a right and
// a lower neighbour inside the source. Vector forms read only the pixels the
// plain routine reads (the packed form's 8-byte loads stop before they would
// leave a row) and write nothing outside the output; no kernel touches bytes
// past its width.
#ifndef LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_
#define LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// out = (((c + d + 1) >> 1) + ((a + b + 1) >> 1) + 1) >> 1 over the block a b / c d.
using BoxScaleKernel = void(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                            int32_t height);
// Step 2 per channel, columns first: with p0, p1 a channel of two neighbouring
// top-row pixels and q0, q1 the same below,
// out = (((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1.
using PackedHalfKernel = void(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                              int32_t height, int32_t bytesPerPixel);
// Plane bilinear; positions and weights are given with the table slots.
using BilinearKernel = void(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                            int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
// The 2x2 average (rows first) at bilinear positions, luma stepping, per channel.
using PackedBilinearKernel = void(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight,
                                  uint8_t* dst, int32_t dstStride, int32_t dstWidth, int32_t dstHeight,
                                  int32_t bytesPerPixel);

// The downscaler's kernel set. It always halves through the six-tap filter
// and resamples through the four-tap one, so only `third`, `quarter` and the
// packed kernels run in the filter; the 2x2 halvings and plane bilinears are
// kept as members of the set, with their variants checked by the harness.
//
// Bilinear positions: output column i sits at x_i = startX + i * stepX and
// row r at y_r = 16384 + r * stepY (17.15), with the steps the size ratios
// times 2^16 or 2^15 in single precision, rounded to nearest. The last output
// row and column copy the source sample at their position.
struct BoxScaleKernels {
  BoxScaleKernel* halfAligned;    // step 2, for sources whose stride is a multiple of 32
  BoxScaleKernel* halfUnaligned;  // step 2
  BoxScaleKernel* third;          // step 3
  BoxScaleKernel* quarter;        // step 4
  // Luma bilinear: x in 16.16 from 32768, y in 17.15 from 16384.
  BilinearKernel* generalLuma;
  // Chroma bilinear: both in 17.15 from 16384.
  BilinearKernel* generalChroma;
  PackedHalfKernel* packedHalf;
  PackedBilinearKernel* packedGeneral;
};

// Plain routines, then the variants of each level the feature word holds.
void InitBoxScaleKernels(BoxScaleKernels* kernels, uint32_t cpuFeatures);

BoxScaleKernel BoxHalf_c, BoxThird_c, BoxQuarter_c;
PackedHalfKernel PackedHalf_c;
BilinearKernel BilinearLuma_c, BilinearChroma_c;
PackedBilinearKernel PackedBilinear_c;

// The interpolated part of one output row of the plain bilinear routines, for
// the vector forms to finish rows with: `count` outputs from column position
// x on, reading `line` and the row below it (fy: the row's 15-bit fraction).
using BilinearSpan = void(const uint8_t* line, int32_t srcStride, uint8_t* out, int32_t count, int32_t x, int32_t stepX,
                          uint32_t fy);
using PackedBilinearSpan = void(const uint8_t* line, int32_t srcStride, uint8_t* out, int32_t count, int32_t x,
                                int32_t stepX, int32_t bytesPerPixel);
BilinearSpan BilinearLumaSpan_c, BilinearChromaSpan_c;
PackedBilinearSpan PackedBilinearSpan_c;

// Levels with variants of their own, in ladder order (SSE 0x4, SSE2 0x8,
// SSSE3 0x200, AVX 0x800, AVX2 0x40000; SSE4.1 builds were no faster than
// SSSE3 and have none). x86-64 processors all have SSE2, so the SSE-bit
// forms use SSE2 too.
// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse, BoxScaleKernels)
LUMAFORGE_KERNEL_LEVEL(sse2, BoxScaleKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, BoxScaleKernels)
LUMAFORGE_KERNEL_LEVEL(avx, BoxScaleKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, BoxScaleKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_
