// Downsampling (filter type 8): shrinks a picture to a smaller caller-chosen
// size. Exact halvings use a six-tap half-band filter, other ratios a
// four-tap phase filter; large ratios first halve repeatedly through the
// filter's own sample planes.
#ifndef LUMAFORGE_SCALING_DOWNSAMPLING_H_
#define LUMAFORGE_SCALING_DOWNSAMPLING_H_

#include <cstdint>

#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"
#include "framework/plane_layout.h"
#include "scaling/kernels/box_scale.h"
#include "scaling/kernels/multitap_scale.h"
#include "scaling/work_picture.h"

namespace Lumaforge {

// One plane to scale: pointer, stride, size.
struct PlaneView {
  uint8_t* data;
  int32_t stride, width, height;
};

class CDownsampling : public CLumaforgeFramework {
 public:
  explicit CDownsampling(uint32_t cpuFeatures);

  // A non-zero flag selects the caller-buffer mode: results go straight to
  // the caller's aligned output planes. Otherwise the output record receives
  // the filter's own buffer.
  int32_t Init(void* config, uint8_t flag) override;
  int32_t Uninit() override;
  // Answers -1 for every bad record: missing records or planes (output
  // planes only in caller-buffer mode), sizes that are zero, odd, below 16
  // or not smaller, strides shorter than a row, planes of 2 GB or more, and
  // an output format other than the input's (0 means the input's).
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  int32_t SetParam(ParamId id, void* value) override;
  int32_t GetParam(ParamId id, void* value) override;

 private:
  int32_t InitBuffer(const VideoPicture* input, VideoPicture* output);
  int32_t AllocateSampleBuffers(uint32_t code);
  // Cuts a work picture of the input's format at `like`'s size, logging a
  // (re)allocation under `what`.
  int32_t AllocateWorkPicture(WorkPictureBuffer& buffer, WorkPicture& picture, const VideoPicture& like,
                              const char* what);
  void ReleaseBuffers();

  // Scaling one plane: the direct path or the halving cascade.
  void ScalePlane(const PlaneView& src, const PlaneView& dst, int32_t plane, bool chroma);
  // Grows a scratch buffer of the multi-tap paths; logs and answers null on failure.
  uint8_t* GrowScratch(WorkBlock& buffer, uint32_t bytes, const char* name);
  void DownsampleHalfMultiTap(const PlaneView& src, const PlaneView& dst);
  void DownsampleGeneralMultiTap(const PlaneView& src, const PlaneView& dst);

  bool m_bCallerBuffers = false;
  WorkBlock m_SampleBlock;
  uint8_t* m_pSamplePlanes[2][3] = {};
  // The format the sample planes are cut for (0: none yet).
  uint32_t m_uSampleFormat = 0;
  WorkBlock m_HalfBandTempBuffer;
  WorkBlock m_GeneralTempBuffer;
  bool m_bSampleBufferFailed = false;
  int8_t m_HalfBandTaps[6] = {};
  BoxScaleKernels m_box;
  MultiTapScaleKernels m_multiTap;
  int8_t m_PhaseTable[64][4] = {};
  WorkPicture m_SrcPicture, m_DstPicture;
  WorkPictureBuffer m_srcBuffer, m_dstBuffer;
  bool m_bSampleBuffersAllocated = false;
  bool m_bCopyBack = false;
  // The input's format code and layout, read on every frame.
  uint32_t m_uFormat = 0;
  PlaneLayout m_layout;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_DOWNSAMPLING_H_
