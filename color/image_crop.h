// Crop (filter type 16): re-points a picture at a rectangle of itself,
// without copying pixels.
#ifndef LUMAFORGE_COLOR_IMAGE_CROP_H_
#define LUMAFORGE_COLOR_IMAGE_CROP_H_

#include "framework/lumaforge_framework.h"

namespace Lumaforge {

struct CropRectangle {
  uint32_t top = 0, left = 0, width = 0, height = 0;
};

class CImageCrop : public CLumaforgeFramework {
 public:
  explicit CImageCrop(uint32_t cpuFeatures);

  // `config` is a CropConfig; null keeps the previous one.
  int32_t Init(void* config, uint8_t flag) override;
  int32_t Uninit() override;
  // The output gets the input's format word and strides, the rectangle's size
  // and plane pointers into the input's memory.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // LF_PARAM_CROP_CONFIG replaces the configuration.
  int32_t SetParam(ParamId id, void* value) override;

 private:
  // Fits the configuration to a picture; false when it does not apply.
  bool ComputeRectangle(uint32_t code, uint32_t width, uint32_t height);

  CropConfig m_config = {};
  CropRectangle m_rect;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_IMAGE_CROP_H_
