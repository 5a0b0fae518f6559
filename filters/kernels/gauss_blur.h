// Recursive (Deriche) Gaussian blur passes.
//
// A blur is a row pass, which filters every row and stores the result
// transposed as floats, followed by a column pass, which filters the
// transposed lines and writes bytes. Each pass runs a causal and an
// anti-causal second-order recursion over every line and adds the two.
//
// Transposed image: column x, row y, channel c at
// transposed[(x * height + y) * channels + c], so every image column is one
// contiguous line. It holds exactly channels * width * height floats.
//
// Line buffer: width and height are at most `lineSamples`; the buffer holds
// lineSamples * kGaussLineFloatsPerSample floats, room for the causal results
// of several lines at once in the vector forms.
//
// Any width and height >= 1. Every form computes each recursion step as
// ((p0 * x0 + p1 * x1) - b1 * y1) - b2 * y2 in single precision, in that
// order, so all forms give the same floats and bytes. Vector forms run
// lines side by side (never along the recursion) and hand leftover lines
// to the plain line routines.
#ifndef LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_
#define LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_

#include <cstddef>
#include <cstdint>

#include "framework/simd_levels.h"

namespace Lumaforge {

struct DericheCoefficients {
  float a0, a1, a2, a3, b1, b2, coefp, coefn;
};

constexpr size_t kGaussLineFloatsPerSample = 32;

// Filters `height` rows of `width` samples of `channels` bytes (4 or 1) into
// the transposed image. In the one-channel form the anti-causal recursion
// starts from the sample four before the end of the row (the first sample in
// rows shorter than four); the four-channel form starts from the last.
using GaussRowPassFn = void (*)(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                                const DericheCoefficients& k, float* line, float* transposed);
// Filters the transposed lines and writes each sum truncated toward zero as
// a byte (no clamping) to dst; the anti-causal recursion starts from the
// last sample.
using GaussColumnPassFn = void (*)(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                                   float* line, uint8_t* dst, ptrdiff_t dstStride);

struct GaussBlurKernels {
  GaussRowPassFn rowPass1;
  GaussColumnPassFn columnPass1;
  GaussRowPassFn rowPass4;
  GaussColumnPassFn columnPass4;
};

// One-channel passes: AVX2, else plain. Four-channel passes climb the whole
// ladder.
void InitGaussBlurKernels(GaussBlurKernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_GAUSS_BLUR4_KERNELS                                                                         \
  void GaussRowPass4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,                  \
                     const DericheCoefficients& k, float* line, float* transposed);                           \
  void GaussColumnPass4(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, \
                        float* line, uint8_t* dst, ptrdiff_t dstStride);

#define LUMAFORGE_GAUSS_BLUR1_KERNELS                                                                         \
  void GaussRowPass1(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,                  \
                     const DericheCoefficients& k, float* line, float* transposed);                           \
  void GaussColumnPass1(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, \
                        float* line, uint8_t* dst, ptrdiff_t dstStride);

void GaussRowPass1_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                     const DericheCoefficients& k, float* line, float* transposed);
void GaussColumnPass1_c(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                        float* line, uint8_t* dst, ptrdiff_t dstStride);
void GaussRowPass4_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                     const DericheCoefficients& k, float* line, float* transposed);
void GaussColumnPass4_c(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                        float* line, uint8_t* dst, ptrdiff_t dstStride);

// Plain line ranges for the vector forms' leftovers: rows [y0, y1) of the
// row pass, columns [x0, x1) of the column pass, with the same arguments as
// the passes above.
void GaussRowRange1_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0, int32_t y1,
                      const DericheCoefficients& k, float* line, float* transposed);
void GaussColumnRange1_c(const float* transposed, int32_t height, int32_t x0, int32_t x1, const DericheCoefficients& k,
                         float* line, uint8_t* dst, ptrdiff_t dstStride);
void GaussRowRange4_c(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0, int32_t y1,
                      const DericheCoefficients& k, float* line, float* transposed);
void GaussColumnRange4_c(const float* transposed, int32_t height, int32_t x0, int32_t x1, const DericheCoefficients& k,
                         float* line, uint8_t* dst, ptrdiff_t dstStride);

LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_GAUSS_BLUR4_KERNELS)
namespace avx2 {
LUMAFORGE_GAUSS_BLUR1_KERNELS
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_
