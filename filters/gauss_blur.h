// Gaussian blur (filter type 25): the Deriche recursive approximation, a
// causal plus an anti-causal second-order pass along rows, then along
// columns, so the cost per pixel does not depend on sigma.
#ifndef LUMAFORGE_FILTERS_GAUSS_BLUR_H_
#define LUMAFORGE_FILTERS_GAUSS_BLUR_H_

#include <cstdint>

#include "filters/kernels/gauss_blur.h"
#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

class CGaussBlur : public CLumaforgeFramework {
 public:
  explicit CGaussBlur(uint32_t cpuFeatures);

  // `config` points to the float sigma; null keeps the current one. A
  // sigma that is not finite is refused with -2.
  int32_t Init(void* config, uint8_t flag) override;
  // Blurs the input into the output's planes (only those pointers are
  // used): 32-bit RGB as four channels, I420/YV12 plane by plane, grey (31)
  // as one plane. Rows are width (x channels) bytes apart. An output record
  // that states a size or format whose planes are smaller than the result
  // is refused with -4; one that leaves them zero is trusted.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // LF_PARAM_BLUR_SIGMA sets the sigma.
  int32_t SetParam(ParamId id, void* value) override;
  // LF_PARAM_BLUR_SIGMA reads the sigma, LF_PARAM_TIME_PER_FRAME the time.
  int32_t GetParam(ParamId id, void* value) override;

 private:
  // Takes the float at `value`, held to 0.5 .. 1000; false (nothing
  // changed) for NaN and infinities.
  bool SetSigma(const void* value);
  // Blurs one plane of `channels` interleaved channels; false when the
  // work buffers cannot be had.
  bool Blur(const uint8_t* src, uint8_t* dst, uint32_t channels, uint32_t width, uint32_t height);
  bool EnsureBuffers(uint32_t channels, uint32_t width, uint32_t height);
  void FreeBuffers();

  float m_fSigma = 5.0f;
  // The float buffers, owned by their blocks.
  WorkBlock m_LineBuffer, m_Transposed;
  float* m_pLineBuffer = nullptr;
  float* m_pTransposed = nullptr;
  // What the buffers were last allocated for.
  uint32_t m_uCapacityWidth = 16, m_uCapacityHeight = 16, m_uCapacityChannels = 4;
  DericheCoefficients m_coefficients{};
  GaussBlurKernels m_kernels{};
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_GAUSS_BLUR_H_
