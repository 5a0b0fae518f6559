// Upsampling (filter type 21): enlarges an I420 or grey picture by any ratio
// with libyuv's plane scaler; the filter chooses the filter mode, validates
// the records and dispatches.
#ifndef LUMAFORGE_SCALING_UPSAMPLING_H_
#define LUMAFORGE_SCALING_UPSAMPLING_H_

#include <cstdint>

#include "framework/lumaforge_framework.h"

namespace Lumaforge {

// The mode one plane is scaled with: box only while shrinking by more than
// half, bilinear falls back to linear when no rows need blending, linear
// stays linear. Never 0 (nearest).
int32_t ReducedUpsampleMode(int32_t mode, int32_t srcWidth, int32_t srcHeight, int32_t dstWidth, int32_t dstHeight);

class CUpsampling : public CLumaforgeFramework {
 public:
  explicit CUpsampling(uint32_t cpuFeatures);

  // `config` points to a uint32_t mode: 2 bilinear, 3 box, anything else
  // linear; null keeps the mode.
  int32_t Init(void* config, uint8_t flag) override;
  // I420 (even sizes) through libyuv's three-plane scaler, grey (31) one
  // plane scaled only when it gets taller; -8 for other formats, -2 for
  // records with missing planes, odd I420 sizes, strides shorter than a row
  // or planes of 2 GB or more.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;

 private:
  int32_t m_iMode = LF_UPSAMPLE_LINEAR;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_UPSAMPLING_H_
