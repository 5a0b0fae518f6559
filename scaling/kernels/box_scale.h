// Box and bilinear downscaling kernels: the 2x2 average at steps 2, 3 and 4
// (the top-left 2x2 block of every step x step cell), its packed-pixel form,
// and bilinear resampling for planes and packed pixels.
//
// Sizes: box kernels get the source width and height and write
// width / step x height / step samples; the bilinear kernels get both sizes
// and expect a smaller output (every interpolated position then has a right
// and a lower neighbour inside the source). Vector variants handle any size
// by finishing rows with the plain code, and never touch bytes outside the
// rows they are given.
#ifndef LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_
#define LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace Lumaforge {

// Kernel types are function types, so every level declares its forms with
// them and no declaration can drift from the table's slot.
// out = (((c + d + 1) >> 1) + ((a + b + 1) >> 1) + 1) >> 1 over the block a b / c d.
using BoxScaleKernel = void(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                            int32_t height);
// Step 2 per channel of `bytesPerPixel`-byte pixels, columns first: with p0, p1
// a channel of two neighbouring top-row pixels and q0, q1 the same below,
// out = (((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1.
using PackedHalfKernel = void(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                              int32_t height, int32_t bytesPerPixel);
using BilinearKernel = void(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                            int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
using PackedBilinearKernel = void(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight,
                                  uint8_t* dst, int32_t dstStride, int32_t dstWidth, int32_t dstHeight,
                                  int32_t bytesPerPixel);
using BoxScaleFn = BoxScaleKernel*;
using PackedHalfFn = PackedHalfKernel*;
using BilinearFn = BilinearKernel*;
using PackedBilinearFn = PackedBilinearKernel*;

// The downscaler's kernel set. It always halves through the six-tap filter
// and resamples through the four-tap one, so only `third`, `quarter` and the
// packed kernels run in the filter; the 2x2 halvings and plane bilinears are
// kept as members of the set, with their variants checked by the harness.
struct BoxScaleKernels {
  BoxScaleFn halfAligned;    // step 2, for sources whose stride is a multiple of 32
  BoxScaleFn halfUnaligned;  // step 2
  BoxScaleFn third;          // step 3
  BoxScaleFn quarter;        // step 4
  // Luma bilinear: x in 16.16 from 32768, y in 17.15 from 16384.
  BilinearFn generalLuma;
  // Chroma bilinear: both in 17.15 from 16384.
  BilinearFn generalChroma;
  PackedHalfFn packedHalf;
  // 2x2 average at bilinear positions (luma stepping), per channel.
  PackedBilinearFn packedGeneral;
};

// Plain routines, then the variants of each level the feature word holds.
void InitBoxScaleKernels(BoxScaleKernels* kernels, uint32_t cpuFeatures);

// Steps of the bilinear kernels: the size ratio times 2^16 or 2^15 in single
// precision, rounded to nearest.
inline int32_t BilinearStep(int32_t srcSize, int32_t dstSize, float one) {
  return static_cast<int32_t>(std::lround(static_cast<float>(srcSize) / static_cast<float>(dstSize) * one));
}

BoxScaleKernel BoxHalf_c, BoxThird_c, BoxQuarter_c;
PackedHalfKernel PackedHalf_c;
BilinearKernel BilinearLuma_c, BilinearChroma_c;
PackedBilinearKernel PackedBilinear_c;

// Vector forms, by the level whose feature bit installs them (SSE 0x4,
// SSE2 0x8, SSSE3 0x200, SSE4.1 0x20, AVX 0x800, AVX2 0x40000, in that order).
// x86-64 processors all have SSE2, so the SSE-bit forms use SSE2 too.
namespace sse {
BoxScaleKernel BoxHalfAligned, BoxHalf, BoxQuarter;
}  // namespace sse
namespace sse2 {
BilinearKernel BilinearLuma, BilinearChroma;
PackedHalfKernel PackedHalf;
PackedBilinearKernel PackedBilinear;
}  // namespace sse2
namespace ssse3 {
BoxScaleKernel BoxHalfAligned, BoxHalf, BoxThird, BoxQuarter;
BilinearKernel BilinearLuma;
PackedHalfKernel PackedHalf;
PackedBilinearKernel PackedBilinear;
}  // namespace ssse3
namespace sse41 {
BoxScaleKernel BoxThird, BoxQuarter;
BilinearKernel BilinearChroma;
PackedHalfKernel PackedHalf;
PackedBilinearKernel PackedBilinear;
}  // namespace sse41
namespace avx {
PackedHalfKernel PackedHalf;
PackedBilinearKernel PackedBilinear;
}  // namespace avx
namespace avx2 {
BilinearKernel BilinearLuma, BilinearChroma;
PackedHalfKernel PackedHalf;
PackedBilinearKernel PackedBilinear;
}  // namespace avx2

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_
