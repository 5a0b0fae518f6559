// Video filter (filter type 22): one of five colour effects applied in
// place to an I420 picture. Colour effects go through 24-bit RGB with the
// colour converter's own routines.
#ifndef LUMAFORGE_FILTERS_VIDEO_FILTER_H_
#define LUMAFORGE_FILTERS_VIDEO_FILTER_H_

#include <cstdint>

#include "color/color_kernels.h"
#include "color/conversions.h"
#include "filters/kernels/color_effects.h"
#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

class CVideoFilter : public CLumaforgeFramework {
 public:
  explicit CVideoFilter(uint32_t cpuFeatures);

  // `config` is a VideoFilterConfig (format must be I420) or null.
  int32_t Init(void* config, uint8_t flag) override;
  // Frees the RGB work buffers.
  int32_t Uninit() override;
  // Changes `input` in place; `output` is not used. Refuses with -2 missing
  // planes, and, for the effects through RGB, odd sizes and strides shorter
  // than a row.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // LF_PARAM_VIDEO_EFFECT sets the effect (uint32_t).
  int32_t SetParam(ParamId id, void* value) override;

 private:
  int32_t EnsureWorkBuffers(uint32_t lumaStride, uint32_t height);
  void FreeWorkBuffers();
  // Converts the picture into 24-bit RGB buffer `rgb`, or from it back.
  void ToRgb(const VideoPicture& picture, uint8_t* rgb);
  void FromRgb(const uint8_t* rgb, const VideoPicture& picture);
  void RunEffect(const VideoPicture& picture);

  uint32_t m_uCpuFeatures;
  uint32_t m_uWidth = 0, m_uHeight = 0;
  ConversionRoutine m_pToRgb = nullptr;
  ConversionRoutine m_pFromRgb = nullptr;
  // 24-bit RGB work pictures of the effects that go through RGB.
  WorkBlock m_RgbBuffer1, m_RgbBuffer2;
  uint32_t m_uEffect = 0;
  ColorKernels m_colorKernels{};
  ColorEffectKernels m_effectKernels{};
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_VIDEO_FILTER_H_
