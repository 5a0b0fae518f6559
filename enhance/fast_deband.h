// Fast deband (filter type 5): removes banding from decoded I420 video by
// four-tap averages at size-scaled distances, horizontally then vertically,
// ignoring taps too far from the centre, with a small pseudo-random dither;
// strength and size can follow the decoder's quantisers.
#ifndef LUMAFORGE_ENHANCE_FAST_DEBAND_H_
#define LUMAFORGE_ENHANCE_FAST_DEBAND_H_

#include <cstdint>

#include "enhance/kernels/deband.h"
#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

class CFastDeband : public CLumaforgeFramework {
 public:
  explicit CFastDeband(uint32_t cpuFeatures);

  // `config` is a FastDebandConfig (format I420 only, else -4); null only
  // reselects the kernel.
  int32_t Init(void* config, uint8_t flag) override;
  // Frees the QP list and the work memory; the automatic mode is kept.
  int32_t Uninit() override;
  // Debands `input` into `output` (same size, other planes, all 64-byte
  // aligned) over the configured size.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  int32_t SetParam(ParamId id, void* value) override;
  int32_t GetParam(ParamId id, void* value) override;

 private:
  // The QP list of a picture of `width` x `height`, filled with 24; false
  // when it cannot be had.
  bool PrepareQpList(uint32_t width, uint32_t height);
  // The average of the frame's quantiser map, and the history it joins.
  void RecordAverageQp(const uint8_t* map);
  uint32_t NextSeed();
  // All passes over every plane; false when the work memory cannot be had.
  bool RunPasses(const VideoPicture& input, const VideoPicture& output, int32_t width, int32_t height, int32_t strength,
                 int32_t size, uint32_t seed);
  // The passes over one plane, the first from `src`, the others in place.
  bool RunPlane(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride, int32_t width,
                int32_t height, int32_t strength, int32_t spanH, int32_t spanV, int32_t depth, int32_t dither,
                uint32_t seed);

  uint32_t m_CPUFlag;
  int32_t m_iWidth = 0, m_iHeight = 0;
  int32_t m_iFrameIndex = 0;
  int32_t m_iBlockSize = 16;
  int32_t m_iStrength = 8;
  int32_t m_iDither = 6;
  int32_t m_iLog2Size = 6;
  int32_t m_iDepthY = 0;
  int32_t m_iDepthUV = 1;
  int32_t m_iSeedMethod = 0;
  bool m_bAutoMode = false;
  // One byte per quantiser block; kept and grown, refilled when set up.
  WorkBlock m_QpList;
  uint32_t m_uQpCount = 0;
  uint32_t m_uQpWidth = 0, m_uQpHeight = 0;  // the picture the list was cut for
  bool m_bQpListAllocated = false;
  // Average QP of the last 16 frames, newest first.
  uint8_t m_QpHistory[16] = {};
  DebandKernels m_kernels{};
  WorkBlock m_Ring;
  int16_t m_DitherTable[kDebandDitherEntries] = {};
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_FAST_DEBAND_H_
