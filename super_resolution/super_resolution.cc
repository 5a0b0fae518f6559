#include "super_resolution/super_resolution.h"

#include <cstring>

#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "framework/plane_layout.h"
#include "super_resolution/sr_coefficients.h"

namespace Lumaforge {
namespace {

constexpr uint8_t kDefaultQp = 24;
constexpr uint32_t kSuperResolutionFormats[] = {LF_I420};

}  // namespace

CSuperResolution::CSuperResolution(uint32_t cpuFeatures) {
  SetName("SR");
  CreateLogger();
  InitSrEnhancedKernels(&m_enhanced, cpuFeatures);
  InitSrUpscaleKernels(&m_upscale, cpuFeatures);
}

int32_t CSuperResolution::Init(void* /*config*/, uint8_t flag) {
  m_bCallerBuffers = flag != 0;
  return LF_OK;
}

void CSuperResolution::FreeAll() {
  for (int s = 0; s < 2; ++s) {
    m_srcBuffer[s].Free();
    m_SrcPicture[s] = WorkPicture();
    m_bSlotFilled[s] = false;
  }
  m_DstPicture = WorkPicture();
  m_dstBuffer.Free();
  m_QpList.Free();
  m_CoefficientTable.Free();
  m_CoefficientsByTap.Free();
  m_ValidFlags.Free();
  m_Scratch.Free();
  m_bQpListAllocated = false;
  m_uQpWidth = m_uQpHeight = 0;
  m_uMode = kSrStandard2x;
  m_uCurrentSlot = 0;
  m_bTablesReady = false;
  m_bAlternative15 = m_bEnhanced = m_bCustomPath = false;
  m_strCoefficientPath = kSrDefaultCoefficientPath;
}

int32_t CSuperResolution::Uninit() {
  FreeAll();
  ResetTiming();
  return LF_OK;
}

int32_t CSuperResolution::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  switch (id) {
    case LF_PARAM_SR_ALTERNATIVE_15: m_bAlternative15 = *static_cast<const uint8_t*>(value) != 0; break;
    case LF_PARAM_SR_ENHANCED: m_bEnhanced = *static_cast<const uint8_t*>(value) != 0; break;
    case LF_PARAM_SR_COEFFICIENT_FILE:
      m_strCoefficientPath = static_cast<const char*>(value);
      m_bCustomPath = true;
      break;
    default: break;
  }
  return LF_OK;
}

int32_t CSuperResolution::AllocateQpList(uint32_t width, uint32_t height) {
  const uint32_t bw = (width + 15) / 16, bh = (height + 15) / 16;
  if (!m_QpList.Reserve(bw * bh)) return LF_SETUP_ALLOC_FAILED;
  std::memset(m_QpList.data(), kDefaultQp, size_t{bw} * bh);
  m_bQpListAllocated = true;
  m_uQpWidth = width;
  m_uQpHeight = height;
  if (m_pLogger)
    m_pLogger->Info("CSuperResolution::AllocateQPList(), allocate(reallocate) QPList buffer, size=%d*%d", bw, bh);
  return LF_OK;
}

int32_t CSuperResolution::AllocateWorkPicture(WorkPictureBuffer& buffer, WorkPicture& picture, const VideoPicture& like,
                                              const char* what) {
  uint64_t bytes = 0;
  if (buffer.Cut(LF_I420, like.width, like.height, m_uAlignment, picture, &bytes) != LF_OK)
    return LF_SETUP_ALLOC_FAILED;
  if (bytes && m_pLogger) {
    m_pLogger->Info("CSuperResolution::%s(), allocate(reallocate) %s buffer, size=%d", what,
                    std::strcmp(what, "AllocateSrcBuffer") == 0 ? "SrcPicture" : "DstPicture", static_cast<int>(bytes));
  }
  return LF_OK;
}

int32_t CSuperResolution::ChooseMode(const VideoPicture& input, const VideoPicture& output) {
  if (output.width == 2 * input.width && output.height == 2 * input.height) {
    m_uMode = m_bEnhanced ? kSrEnhanced2x : kSrStandard2x;
    return LF_OK;
  }
  if (output.width != (3 * input.width) >> 1 || output.height != (3 * input.height) >> 1) return LF_FAILED;
  m_uMode = m_bAlternative15 ? kSrAlternative15 : m_bEnhanced ? kSrEnhanced15 : kSrStandard15;
  return LF_OK;
}

int32_t CSuperResolution::LoadCoefficients() {
  if (!m_CoefficientTable.Reserve(static_cast<uint32_t>(kSrTableBytes))) {
    if (m_pLogger) {
      m_pLogger->Error(
          "CSuperResolution::InitBuffer: Memory allocation for enhanced super resolution filter coeffs failed");
    }
    return LF_SETUP_ALLOC_FAILED;
  }
  if (!m_ValidFlags.Reserve(kSrClasses) ||
      !m_CoefficientsByTap.Reserve(static_cast<uint32_t>(size_t{kSrClasses} * kSrTaps * kSrPositions * 8))) {
    if (m_pLogger) {
      m_pLogger->Error(
          "CSuperResolution::InitBuffer: Memory allocation for enhanced super resolution filter coeffs's valid status "
          "flag buffer failed");
    }
    return LF_SETUP_ALLOC_FAILED;
  }
  if (!m_bCustomPath && m_pLogger) {
    m_pLogger->Info("CSuperResolution::InitBuffer: Using default coeff filter coefficients file, %s",
                    m_strCoefficientPath.c_str());
  }
  auto* table = reinterpret_cast<double*>(m_CoefficientTable.data());
  const int32_t status =
      setup_enhSR_coeffs_c(m_strCoefficientPath.c_str(), table, m_ValidFlags.data(), m_pLogger.get());
  if (status != 0) {
    if (m_pLogger) m_pLogger->Error("CSuperResolution::InitBuffer: setup_enhSR_coeffs_c returns %d", status);
    return LF_FAILED;
  }
  // The vector kernels read a class's four positions side by side.
  auto* byTap = reinterpret_cast<double*>(m_CoefficientsByTap.data());
  for (int32_t c = 0; c < kSrClasses; ++c) {
    for (int32_t k = 0; k < kSrTaps; ++k) {
      for (int32_t n = 0; n < kSrPositions; ++n)
        byTap[(static_cast<size_t>(c) * kSrTaps + k) * kSrPositions + n] = table[SrWeightIndex(c, n, k)];
    }
  }
  return LF_OK;
}

int32_t CSuperResolution::SetUpTables() {
  if (m_bTablesReady) return LF_OK;
  if (m_uMode == kSrEnhanced2x) {
    const int32_t status = LoadCoefficients();
    if (status != LF_OK) return status;
  } else if (m_uMode == kSrStandard2x) {
    m_upscale.initTables(&m_StandardTable);
  } else {
    return LF_OK;  // the 1.5x modes need no tables
  }
  m_bTablesReady = true;
  return LF_OK;
}

int32_t CSuperResolution::InitBuffer(const VideoPicture* input, VideoPicture* output) {
  Logger* log = m_pLogger.get();
  auto fail = [log](int32_t status, const char* text) {
    if (log) log->Error("%s", text);
    return status;
  };
  if (!input || !output)
    return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), input or output picture pointer is null");
  if (!input->planes[0] || !input->planes[1] || !input->planes[2])
    return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), input data pointer is null.");
  const uint32_t code = FormatCode(input->format);
  if (code != LF_I420) {
    if (log) log->Error("CSuperResolution::InitBuffer(), unsupported video format: %d", static_cast<int>(code));
    return LF_INVALID_PARAMETER;
  }
  if ((input->width | input->height | output->width | output->height) & 1)
    return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), Odd frame size.");
  if (!input->width || !input->height || !output->width || !output->height)
    return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), input or output frame size is 0.");
  const PlaneLayout inLayout = LayoutOf(LF_I420, FormatReading::kPlanes, input->width, input->height);
  const PlaneLayout outLayout = LayoutOf(LF_I420, FormatReading::kPlanes, output->width, output->height);
  if (!StridesHoldRows(*input, inLayout) || !PackedPlanesFit(outLayout)) {
    return fail(LF_INVALID_PARAMETER,
                "CSuperResolution::InitBuffer(), input stride is smaller than a row, or a plane reaches 2 GB.");
  }

  if (!m_bQpListAllocated || input->width != m_uQpWidth || input->height != m_uQpHeight) {
    if (AllocateQpList(input->width, input->height) != LF_OK) return LF_SETUP_ALLOC_FAILED;
  }

  m_bCopyBack = false;
  const uint32_t slot = m_uCurrentSlot;
  // A slot cut for another size no longer holds a previous frame.
  if (m_SrcPicture[1 - slot].width != input->width || m_SrcPicture[1 - slot].height != input->height)
    m_bSlotFilled[1 - slot] = false;
  if (!m_bCallerBuffers) {
    // Both slots are cut together, so the second frame allocates nothing.
    if (AllocateWorkPicture(m_srcBuffer[slot], m_SrcPicture[slot], *input, "AllocateSrcBuffer") != LF_OK ||
        AllocateWorkPicture(m_srcBuffer[1 - slot], m_SrcPicture[1 - slot], *input, "AllocateSrcBuffer") != LF_OK ||
        AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, "AllocateDstBuffer") != LF_OK) {
      return fail(LF_SETUP_ALLOC_FAILED, "CSuperResolution::InitBuffer(), AllocateBuffer failed.");
    }
    CopyPicture(LF_I420, RecordPicture(*input), m_SrcPicture[slot]);
    m_bSlotFilled[slot] = true;
    for (int k = 0; k < 3; ++k) {
      output->planes[k] = m_DstPicture.planes[k];
      output->strides[k] = m_DstPicture.strides[k];
    }
  } else {
    if (!PlanesPresent(*output, outLayout))
      return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), output data pointer is null.");
    if (!StridesHoldRows(*output, outLayout))
      return fail(LF_INVALID_PARAMETER, "CSuperResolution::InitBuffer(), output stride is smaller than a row.");
    // The caller's planes are theirs between frames: no previous frame is
    // read from them.
    m_bSlotFilled[0] = m_bSlotFilled[1] = false;
    if (IsAligned(*input, inLayout, m_uAlignment)) {
      m_SrcPicture[slot] = RecordPicture(*input);
    } else {
      if (AllocateWorkPicture(m_srcBuffer[slot], m_SrcPicture[slot], *input, "AllocateSrcBuffer") != LF_OK ||
          AllocateWorkPicture(m_srcBuffer[1 - slot], m_SrcPicture[1 - slot], *input, "AllocateSrcBuffer") != LF_OK)
        return LF_SETUP_ALLOC_FAILED;
      CopyPicture(LF_I420, RecordPicture(*input), m_SrcPicture[slot]);
    }
    if (IsAligned(*output, outLayout, m_uAlignment)) {
      m_DstPicture = RecordPicture(*output);
    } else {
      if (AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, "AllocateDstBuffer") != LF_OK)
        return LF_SETUP_ALLOC_FAILED;
      m_bCopyBack = true;
    }
  }

  if (ChooseMode(*input, *output) != LF_OK) return LF_FAILED;
  if (!m_Scratch.Grow(static_cast<uint32_t>(SrScratchValues(input->width, input->height) * sizeof(int16_t))))
    return fail(LF_SETUP_ALLOC_FAILED, "CSuperResolution::InitBuffer(), AllocateBuffer failed.");
  return SetUpTables();
}

void CSuperResolution::ScalePlanes(const VideoPicture& input, const uint8_t* qp, int32_t qpStride) {
  const WorkPicture& src = m_SrcPicture[m_uCurrentSlot];
  const WorkPicture& previous = m_SrcPicture[1 - m_uCurrentSlot];
  const bool hasPrevious = m_bSlotFilled[1 - m_uCurrentSlot];
  auto* scratch = reinterpret_cast<int16_t*>(m_Scratch.data());
  // Strength of 1.5x: pictures smaller than 640x360 are enlarged from
  // further away and get more; chroma a lighter setting of its own.
  int32_t strength =
      static_cast<int32_t>(640 / input.width > 360 / input.height ? 640 / input.width : 360 / input.height);
  strength = strength < 1 ? 1 : strength > 3 ? 3 : strength;
  const int32_t chromaStrength = strength > 1 ? strength : 4;
  const SrTrainedFilters filters = {reinterpret_cast<const double*>(m_CoefficientTable.data()), m_ValidFlags.data(),
                                    reinterpret_cast<const double*>(m_CoefficientsByTap.data())};
  for (int32_t k = 0; k < 3; ++k) {
    const int32_t chroma = k > 0;
    const auto w = static_cast<int32_t>(input.width >> chroma), h = static_cast<int32_t>(input.height >> chroma);
    const auto srcStride = static_cast<int32_t>(src.strides[k]),
               dstStride = static_cast<int32_t>(m_DstPicture.strides[k]);
    const SrQpMap map = {qp, qpStride, chroma ? 3 : 4};
    switch (m_uMode) {
      case kSrStandard2x:
        m_upscale.standard2x(src.planes[k], srcStride, w, h, m_DstPicture.planes[k], dstStride, map,
                             hasPrevious ? previous.planes[k] : nullptr,
                             hasPrevious ? static_cast<int32_t>(previous.strides[k]) : 0, chroma ? 4 : 1,
                             m_StandardTable, scratch);
        break;
      case kSrEnhanced2x:
        m_enhanced.plane(src.planes[k], srcStride, w, h, m_DstPicture.planes[k], dstStride, filters);
        break;
      case kSrStandard15:
        m_upscale.standard15(src.planes[k], srcStride, w, h, m_DstPicture.planes[k], dstStride, map,
                             chroma ? chromaStrength : strength, chroma, scratch);
        break;
      case kSrAlternative15:
        m_upscale.alternative15(src.planes[k], srcStride, w, h, m_DstPicture.planes[k], dstStride, scratch);
        break;
      default: break;
    }
  }
}

int32_t CSuperResolution::Process(VideoPicture* input, VideoPicture* output) {
  const int64_t startUs = NowMicroseconds();
  if (InitBuffer(input, output) != LF_OK) return LF_FAILED;
  if (m_uMode == kSrEnhanced15) {
    if (m_pLogger) {
      m_pLogger->Error(
          "CSuperResolution::Process: 1.5X version of enhanced Super Resolution Filter is not supported yet.");
    }
    return LF_UNSUPPORTED;
  }
  // The picture's own quantiser map when it has one (the host gives one
  // byte per 16x16 block), else the filter's list of QP 24.
  const uint8_t* qp = input->qpMap ? input->qpMap : m_QpList.data();
  ScalePlanes(*input, qp, static_cast<int32_t>((input->width + 15) / 16));
  if (m_bCopyBack) CopyPicture(LF_I420, m_DstPicture, RecordPicture(*output));
  m_uCurrentSlot ^= 1;
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr ParamDescriptor kSuperResolutionParams[] = {
    {LF_PARAM_SR_ALTERNATIVE_15, ParamType::kUint32, kParamSet, "alt15", "1: 1.5x by the alternative kernel", 0, 1},
    {LF_PARAM_SR_ENHANCED, ParamType::kUint32, kParamSet, "enhanced",
     "1: 2x by the trained per-class filters of the coefficient file", 0, 1}};
}  // namespace

extern const FilterDescriptor kSuperResolutionDescriptor = {LF_FILTER_SUPER_RESOLUTION,
                                                            "SR",
                                                            "Create super resolution SR(%p)",
                                                            CreateFilter<CSuperResolution>,
                                                            true,
                                                            FormatReading::kPlanes,
                                                            kSuperResolutionFormats,
                                                            kSuperResolutionParams};

}  // namespace Lumaforge
