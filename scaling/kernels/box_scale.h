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

// out = (((c + d + 1) >> 1) + ((a + b + 1) >> 1) + 1) >> 1 over the block a b / c d.
using BoxScaleFn = void (*)(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                            int32_t height);
// The same per channel of `bytesPerPixel`-byte pixels, step 2.
using PackedHalfFn = void (*)(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                              int32_t height, int32_t bytesPerPixel);
using BilinearFn = void (*)(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                            int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
using PackedBilinearFn = void (*)(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight,
                                  uint8_t* dst, int32_t dstStride, int32_t dstWidth, int32_t dstHeight,
                                  int32_t bytesPerPixel);

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

void BoxHalf_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxThird_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxQuarter_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                  int32_t height);
void PackedHalf_c(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                  int32_t bytesPerPixel);
void BilinearLuma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void BilinearChroma_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void PackedBilinear_c(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                      int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);

// Vector forms, by the level whose feature bit installs them (SSE 0x4,
// SSE2 0x8, SSSE3 0x200, SSE4.1 0x20, AVX 0x800, AVX2 0x40000, in that order).
// x86-64 processors all have SSE2, so the SSE-bit forms use SSE2 too.
namespace sse {
void BoxHalfAligned(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height);
void BoxHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxQuarter(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
}  // namespace sse
namespace sse2 {
void BilinearLuma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                  int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void BilinearChroma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel);
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);
}  // namespace sse2
namespace ssse3 {
void BoxHalfAligned(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height);
void BoxHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxThird(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxQuarter(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BilinearLuma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                  int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel);
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);
}  // namespace ssse3
namespace sse41 {
void BoxThird(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BoxQuarter(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height);
void BilinearChroma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel);
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);
}  // namespace sse41
namespace avx {
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel);
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);
}  // namespace avx
namespace avx2 {
void BilinearLuma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                  int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void BilinearChroma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight);
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel);
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel);
}  // namespace avx2

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_BOX_SCALE_H_
