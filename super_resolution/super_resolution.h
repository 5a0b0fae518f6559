// Super resolution (filter type 20): enlarges I420 pictures by exactly 2 or
// exactly 1.5. Standard 2x is steered by the per-block quantiser and the
// previous frame, enhanced 2x applies trained per-class filters from a
// coefficient file, and 1.5x has a steered and an alternative kernel.
#ifndef LUMAFORGE_SUPER_RESOLUTION_SUPER_RESOLUTION_H_
#define LUMAFORGE_SUPER_RESOLUTION_SUPER_RESOLUTION_H_

#include <cstdint>
#include <string>

#include "framework/buffers.h"
#include "framework/lumaforge_framework.h"
#include "scaling/work_picture.h"
#include "super_resolution/kernels/sr_enhanced.h"
#include "super_resolution/kernels/sr_upscale.h"

namespace Lumaforge {

// The filter's modes: 0 standard 2x, 1 enhanced 2x, 2 and 3 the two-pass
// 2x (no frame selects them), 4 standard 1.5x, 5 enhanced 1.5x (refused),
// 6 alternative 1.5x.
enum SrMode : uint32_t {
  kSrStandard2x = 0,
  kSrEnhanced2x = 1,
  kSrTwoPass = 2,
  kSrStandard15 = 4,
  kSrEnhanced15 = 5,
  kSrAlternative15 = 6
};

inline constexpr char kSrDefaultCoefficientPath[] = "../../../../../super_resolution/data/superResCoeffs.txt";

class CSuperResolution : public CLumaforgeFramework {
 public:
  explicit CSuperResolution(uint32_t cpuFeatures);

  // A non-zero flag selects the caller-buffer mode, as the downsampler's.
  int32_t Init(void* config, uint8_t flag) override;
  // Frees every buffer and table and clears the parameters.
  int32_t Uninit() override;
  // Returns 0, -1 (refused record, unsupported ratio, set-up failure) or -4
  // (enhanced 1.5x).
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // LF_PARAM_SR_ALTERNATIVE_15, LF_PARAM_SR_ENHANCED (uint8_t) and
  // LF_PARAM_SR_COEFFICIENT_FILE (a NUL-terminated path); a null value is -2.
  int32_t SetParam(ParamId id, void* value) override;

 private:
  int32_t InitBuffer(const VideoPicture* input, VideoPicture* output);
  int32_t AllocateQpList(uint32_t width, uint32_t height);
  int32_t AllocateWorkPicture(WorkPictureBuffer& buffer, WorkPicture& picture, const VideoPicture& like,
                              const char* what);
  int32_t ChooseMode(const VideoPicture& input, const VideoPicture& output);
  int32_t SetUpTables();
  int32_t LoadCoefficients();
  void ScalePlanes(const VideoPicture& input, const uint8_t* qp, int32_t qpStride);
  void FreeAll();

  bool m_bCallerBuffers = false;
  bool m_bAlternative15 = false;
  bool m_bEnhanced = false;
  bool m_bTablesReady = false;
  bool m_bCustomPath = false;
  std::string m_strCoefficientPath = kSrDefaultCoefficientPath;
  // The trained filters: the table and flags as loaded, and the same weights
  // regrouped for the vector kernels.
  WorkBlock m_ValidFlags, m_CoefficientTable, m_CoefficientsByTap;
  SrStandardTable m_StandardTable;
  WorkBlock m_QpList;
  bool m_bQpListAllocated = false;
  uint32_t m_uQpWidth = 0, m_uQpHeight = 0;
  uint32_t m_uMode = kSrStandard2x;
  // Two source slots: the current frame's and the previous one's.
  uint32_t m_uCurrentSlot = 0;
  WorkPicture m_SrcPicture[2];
  WorkPictureBuffer m_srcBuffer[2];
  // Whether a slot holds the copy of a frame of the current size.
  bool m_bSlotFilled[2] = {};
  WorkPicture m_DstPicture;
  WorkPictureBuffer m_dstBuffer;
  bool m_bCopyBack = false;
  WorkBlock m_Scratch;
  SrEnhancedKernels m_enhanced;
  SrUpscaleKernels m_upscale;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_SUPER_RESOLUTION_SUPER_RESOLUTION_H_
