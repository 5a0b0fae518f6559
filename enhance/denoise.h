// Denoise (filter type 2): in place on I420/YV12 pictures, an
// edge-preserving 3x3 spatial filter and a motion-gated recursion against
// the previous output, at one of four strengths, fixed or chosen from a
// periodic estimate of the temporal noise.
#ifndef LUMAFORGE_ENHANCE_DENOISE_H_
#define LUMAFORGE_ENHANCE_DENOISE_H_

#include <cstdint>

#include "enhance/denoise_passes.h"
#include "enhance/kernels/denoise.h"
#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

// Noise levels; the names are those of the log lines.
enum DenoiseLevel : int32_t {
  kDenoiseNone = 0,
  kDenoiseWeak = 1,
  kDenoiseStrong = 2,
  kDenoiseVeryStrong = 3,
  kDenoiseSuperStrong = 4,
};

class CDenoise : public CLumaforgeFramework {
 public:
  explicit CDenoise(uint32_t cpuFeatures);

  // `config` is a DenoiseConfig: -2 when null, -4 for formats other than
  // I420 and YV12.
  int32_t Init(void* config, uint8_t flag) override;
  // Frees the work planes and the reference.
  int32_t Uninit() override;
  // Denoises `input` in place; `output` is not used.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  int32_t SetParam(ParamId id, void* value) override;
  int32_t GetParam(ParamId id, void* value) override;
  // The base's timing line, with the highest level of the interval.
  void LogFrameTiming(TimingRecord* record) override;

 private:
  // Stores the configured level and derives the level in force.
  void ApplyLevel(int32_t level);
  void SelectSpatialKernels();
  // The planes the frame is worked on: the picture's own when its luma is
  // 16-byte aligned, else aligned copies. Null planes when the copies
  // cannot be had.
  DenoisePlanes WorkPlanes(const VideoPicture& picture);
  // The reference planes and the map behind them, allocated on first use.
  bool EnsureReference();
  // Runs the estimator and moves the level; false when its scratch arrays
  // cannot be had. Sets `staleReference` when the level rises from none.
  bool UpdateLevel(const DenoisePlanes& work, bool& staleReference);
  void SpatialPass(const DenoisePlanes& work, bool everyBlock);
  void CopyPlanes(const DenoisePlanes& from, const DenoisePlanes& to) const;
  void FreeBuffers();

  uint32_t m_CPUFlag;
  DenoiseKernels m_kernels{};
  DenoiseRunKernels m_runKernels{};
  uint16_t m_uPlaneMask = 7;
  uint32_t m_uWidth = 0, m_uHeight = 0;
  int32_t m_iConfiguredLevel = -1;
  int32_t m_iNoiseEstimate = 0;
  int32_t m_iCurrentLevel = kDenoiseNone;
  // Level x 256, 0 .. 1024: the estimates' running average.
  int32_t m_iSmoothedLevel = 256;
  int32_t m_iInterval = 90;
  int32_t m_iFrameIndex = 0;
  // Aligned copies of a picture that is not aligned; the reference (the
  // previous output) followed by the static map. Both use rows of the
  // width rounded up to 16, whatever the caller's strides.
  WorkBlock m_WorkPlanes, m_Reference;
  bool m_bHasReference = false;
  StaticMap m_StaticMap{};
  // The estimator's per-block weights and variances.
  WorkBlock m_NoiseScratch;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_DENOISE_H_
