// Alpha blending (filter type 24): mixes the input into the picture already
// in the output's planes, in place, under a caller-owned map of one alpha
// byte per output pixel (the weight of the output's own pixel).
#ifndef LUMAFORGE_COLOR_ALPHA_BLEND_H_
#define LUMAFORGE_COLOR_ALPHA_BLEND_H_

#include "color/kernels/alpha_blend.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

class CAlphaBlend : public CLumaforgeFramework {
 public:
  explicit CAlphaBlend(uint32_t cpuFeatures);

  // `config` is the alpha map (width x height bytes of the output, rows
  // packed); it is kept, not copied.
  int32_t Init(void* config, uint8_t flag) override;
  // 32-bit RGB or I420/YV12 outputs; rows are addressed by the output width
  // (pictures must be tightly packed). Missing planes are refused with -2;
  // the input's size and the map's are not checked: the input and the map
  // are read over the output's width x height, so both must be that large.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // No parameters: only (0, null) is accepted.
  int32_t SetParam(ParamId id, void* value) override;
  int32_t GetParam(ParamId id, void* value) override;

 private:
  uint32_t m_uFeatures;
  const uint8_t* m_pAlphaMap = nullptr;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_ALPHA_BLEND_H_
