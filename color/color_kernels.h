// The row kernels the colour conversions are built from, selected together
// from one feature word.
#ifndef LUMAFORGE_COLOR_COLOR_KERNELS_H_
#define LUMAFORGE_COLOR_COLOR_KERNELS_H_

#include <cstdint>

#include "color/kernels/chroma_interleave.h"
#include "color/kernels/packed422.h"
#include "color/kernels/rgb_pack.h"
#include "color/kernels/rgb_to_yuv.h"
#include "color/kernels/yuv_to_rgb.h"

namespace Lumaforge {

struct ColorKernels {
  ChromaInterleaveKernels chroma;
  YuvToRgbKernels yuvToRgb;
  RgbToYuvKernels rgbToYuv;
  RgbPackKernels rgbPack;
  Packed422Kernels packed422;
};

inline void InitColorKernels(ColorKernels* kernels, uint32_t cpuFeatures) {
  InitChromaInterleaveKernels(&kernels->chroma, cpuFeatures);
  InitYuvToRgbKernels(&kernels->yuvToRgb, cpuFeatures);
  InitRgbToYuvKernels(&kernels->rgbToYuv, cpuFeatures);
  InitRgbPackKernels(&kernels->rgbPack, cpuFeatures);
  InitPacked422Kernels(&kernels->packed422, cpuFeatures);
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_COLOR_KERNELS_H_
