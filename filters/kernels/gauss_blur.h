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
// whole blocks of lines side by side (never along the recursion) and hand
// the lines left over to the plain line ranges. No pass reads or writes
// past the rows, the transposed image or the line buffer described here.
#ifndef LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_
#define LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

struct DericheCoefficients {
  float a0, a1, a2, a3, b1, b2, coefp, coefn;
};

constexpr size_t kGaussLineFloatsPerSample = 32;

// Filters `height` rows of `width` samples of `channels` bytes (4 or 1) into
// the transposed image. In the one-channel form the anti-causal recursion
// starts from the sample four before the end of the row (the first sample in
// rows shorter than four); the four-channel form starts from the last.
using GaussRowPassKernel = void(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height,
                                const DericheCoefficients& k, float* line, float* transposed);
// Filters the transposed lines and writes each sum truncated toward zero as
// a byte (no clamping) to dst; the anti-causal recursion starts from the
// last sample.
using GaussColumnPassKernel = void(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k,
                                   float* line, uint8_t* dst, ptrdiff_t dstStride);
// The plain passes over rows [y0, y1) or columns [x0, x1) only, with the
// same arguments otherwise: the vector forms' leftover lines.
using GaussRowRangeKernel = void(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0,
                                 int32_t y1, const DericheCoefficients& k, float* line, float* transposed);
using GaussColumnRangeKernel = void(const float* transposed, int32_t height, int32_t x0, int32_t x1,
                                    const DericheCoefficients& k, float* line, uint8_t* dst, ptrdiff_t dstStride);

struct GaussBlurKernels {
  GaussRowPassKernel* rowPass1;
  GaussColumnPassKernel* columnPass1;
  GaussRowPassKernel* rowPass4;
  GaussColumnPassKernel* columnPass4;
};

// Plain routines, then the best variant the feature word allows.
void InitGaussBlurKernels(GaussBlurKernels* kernels, uint32_t cpuFeatures);

GaussRowPassKernel GaussRowPass1_c, GaussRowPass4_c;
GaussColumnPassKernel GaussColumnPass1_c, GaussColumnPass4_c;
GaussRowRangeKernel GaussRowRange1_c, GaussRowRange4_c;
GaussColumnRangeKernel GaussColumnRange1_c, GaussColumnRange4_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, GaussBlurKernels)
LUMAFORGE_KERNEL_LEVEL(sse42, GaussBlurKernels)
LUMAFORGE_KERNEL_LEVEL(avx, GaussBlurKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, GaussBlurKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_KERNELS_GAUSS_BLUR_H_
