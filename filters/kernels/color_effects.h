// Per-sample kernels of the video filter's colour effects.
//
// Counts are samples (hue) or pixels (sepia); any count >= 0. Vector
// variants never touch bytes past the count.
#ifndef LUMAFORGE_FILTERS_KERNELS_COLOR_EFFECTS_H_
#define LUMAFORGE_FILTERS_KERNELS_COLOR_EFFECTS_H_

#include <cstddef>
#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

// Rotates (U, V) pairs about (128, 128), in place, in single precision:
// U' = trunc(clamp(u c + v s + 128, 0, 255)), V' = trunc(clamp(v c - u s + 128,
// 0, 255)) with u = U - 128, v = V - 128, evaluated left to right; c and s
// are a rotation's cosine and sine (|c|, |s| <= 1).
using RotateHueKernel = void(uint8_t* u, uint8_t* v, size_t count, float c, float s);
// Sepia tone from R, G, B triplets to R, G, B triplets (in may equal out):
// min((101 R + 197 G + 48 B + 128) >> 8, 255), min((89 R + 176 G + 43 B + 128) >> 8, 255),
// (70 R + 137 G + 34 B + 128) >> 8.
using SepiaKernel = void(const uint8_t* in, uint8_t* out, size_t pixels);

struct ColorEffectKernels {
  RotateHueKernel* rotateHue;
  SepiaKernel* sepia;
};

// Plain routines, then the best variant the feature word allows.
void InitColorEffectKernels(ColorEffectKernels* kernels, uint32_t cpuFeatures);

RotateHueKernel RotateHue_c;
SepiaKernel Sepia_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, ColorEffectKernels)
LUMAFORGE_KERNEL_LEVEL(ssse3, ColorEffectKernels)
LUMAFORGE_KERNEL_LEVEL(sse42, ColorEffectKernels)
LUMAFORGE_KERNEL_LEVEL(avx, ColorEffectKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, ColorEffectKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_KERNELS_COLOR_EFFECTS_H_
