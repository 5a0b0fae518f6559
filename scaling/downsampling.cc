#include "scaling/downsampling.h"

#include <cstring>

#include "framework/buffers.h"
#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "scaling/downsample_taps.h"

namespace Lumaforge {
namespace {

// Largest plane of one sample set: the cascade halves into planes this size.
constexpr uint32_t kSampleLumaBytes = 1920 * 1088;
constexpr uint32_t kSampleChromaBytes = 960 * 544;
constexpr uint32_t kHalfBandTempBytes = 2088960;
constexpr uint32_t kGeneralTempBytes = 3840;

// The formats the filter takes, as scaling reads them (code 31 is grey,
// RGBP three planes with their own pointers).
bool IsDownsampledFormat(uint32_t code) {
  return code == LF_RGB24 || code == LF_BGR24 || code == LF_RGBA || code == LF_BGRA || code == LF_ABGR ||
         code == LF_ARGB || code == LF_RGBP || code == LF_I420 || code == LF_VYUY;
}

// Packed pixels are scaled by the packed kernels and never cascade.
bool IsPacked(const PlaneLayout& layout) { return layout.bytesPerPixel > 1; }

}  // namespace

CDownsampling::CDownsampling(uint32_t cpuFeatures) {
  SetName("Downsample");
  CreateLogger();
  InitBoxScaleKernels(&m_box, cpuFeatures);
  InitMultiTapScaleKernels(&m_multiTap, cpuFeatures);
  MakeHalfBandTaps(m_HalfBandTaps);
  MakeFourTapPhaseTable(m_PhaseTable);
}

int32_t CDownsampling::Init(void* /*config*/, uint8_t flag) {
  m_bCallerBuffers = flag != 0;
  return LF_OK;
}

void CDownsampling::ReleaseBuffers() {
  m_HalfBandTempBuffer.Free();
  m_GeneralTempBuffer.Free();
  m_SampleBlock.Free();
  m_srcBuffer.Free();
  m_dstBuffer.Free();
  std::memset(m_pSamplePlanes, 0, sizeof(m_pSamplePlanes));
  m_SrcPicture = WorkPicture();
  m_DstPicture = WorkPicture();
  m_bSampleBuffersAllocated = false;
  m_bSampleBufferFailed = false;
}

int32_t CDownsampling::Uninit() {
  ReleaseBuffers();
  ResetTiming();
  return LF_OK;
}

int32_t CDownsampling::SetParam(ParamId /*id*/, void* /*value*/) { return LF_OK; }

int32_t CDownsampling::GetParam(ParamId id, void* value) {
  AnswerTimePerFrame(id, value);
  return LF_OK;
}

int32_t CDownsampling::Process(VideoPicture* input, VideoPicture* output) {
  const int64_t startUs = NowMicroseconds();
  if (InitBuffer(input, output) != LF_OK) return LF_FAILED;
  const int32_t W = static_cast<int32_t>(input->width), H = static_cast<int32_t>(input->height);
  const int32_t w = static_cast<int32_t>(output->width), h = static_cast<int32_t>(output->height);
  const WorkPicture &s = m_SrcPicture, &d = m_DstPicture;

  if (IsPacked(m_layout)) {
    const int32_t k = m_layout.bytesPerPixel;
    if ((W >> 1) == w && (H >> 1) == h) {
      m_box.packedHalf(s.planes[0], s.strides[0], d.planes[0], d.strides[0], W, H, k);
    } else {
      m_box.packedGeneral(s.planes[0], s.strides[0], W, H, d.planes[0], d.strides[0], w, h, k);
    }
  } else {
    // Planar pictures: every plane on its own; 4:2:0 chroma at half size.
    for (int32_t k = 0; k < m_layout.planes; ++k) {
      const bool chroma = k > 0 && m_layout.chroma420;
      const int32_t shift = chroma ? 1 : 0;
      ScalePlane(PlaneView{s.planes[k], static_cast<int32_t>(s.strides[k]), W >> shift, H >> shift},
                 PlaneView{d.planes[k], static_cast<int32_t>(d.strides[k]), w >> shift, h >> shift}, k, chroma);
    }
  }

  if (m_bCopyBack) {
    CopyPicture(m_uFormat, m_DstPicture, RecordPicture(*output));
  }
  FinishFrameTiming(startUs);
  return LF_OK;
}

int32_t CDownsampling::InitBuffer(const VideoPicture* input, VideoPicture* output) {
  Logger* log = m_pLogger.get();
  auto fail = [log](int32_t status, const char* format, auto... args) {
    if (!log) return status;
    if constexpr (sizeof...(args) == 0) {
      log->Error("%s", format);
    } else {
      log->Error(format, args...);
    }
    return status;
  };
  if (!input || !output)
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), input or output picture pointer is null");
  const uint32_t code = FormatCode(input->format);
  const uint32_t W = input->width, H = input->height, w = output->width, h = output->height;
  m_uFormat = code;
  m_layout = LayoutOf(code, FormatReading::kPlanes, W, H);
  // A three-plane format needs all three planes: a missing one is refused
  // like a missing first plane rather than read through.
  if (!input->planes[0] || (IsDownsampledFormat(code) && !PlanesPresent(*input, m_layout)))
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), input data pointer is null.");
  if (!W || !H || !w || !h)
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), input or output frame size is 0.");
  if ((W | H | w | h) & 1) {
    return fail(LF_INVALID_PARAMETER,
                "CDownsampling::InitBuffer(), odd frame size is not supported. inframe=%dx%d, outframe=%dx%d", W, H, w,
                h);
  }
  if (W < 16 || H < 16 || w < 16 || h < 16) {
    return fail(LF_INVALID_PARAMETER,
                "CDownsampling::InitBuffer(), width or height less than 16. inframe=%dx%d, outframe=%dx%d", W, H, w, h);
  }
  if (!(W > w && H > h)) {
    return fail(LF_INVALID_PARAMETER,
                "CDownsampling::InitBuffer(), unsupported downsample ratio from (%dx%d) to (%dx%d), input width or "
                "height less then output.",
                W, H, w, h);
  }
  if (!IsDownsampledFormat(code)) return LF_INVALID_PARAMETER;
  if (!StridesHoldRows(*input, m_layout)) {
    return fail(LF_INVALID_PARAMETER,
                "CDownsampling::InitBuffer(), input stride is smaller than a row, or a plane reaches 2 GB.");
  }
  // The result has the input's format; an output record stating another
  // format has other planes (0 leaves it to the input).
  const uint32_t outCode = FormatCode(output->format);
  if (outCode != 0 && outCode != code) {
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), output format %d differs from input format %d.",
                outCode, code);
  }

  // The sample planes are cut for the format at hand, so a frame scales the
  // same way whatever format came before it.
  if (!m_bSampleBuffersAllocated || (!IsPacked(m_layout) && code != m_uSampleFormat)) {
    const int32_t status = AllocateSampleBuffers(code);
    if (status != LF_OK) return status;
  }

  m_bCopyBack = false;
  if (!m_bCallerBuffers) {
    if (AllocateWorkPicture(m_srcBuffer, m_SrcPicture, *input, "AllocateSrcBuffer") != LF_OK ||
        AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, "AllocateDstBuffer") != LF_OK) {
      return fail(LF_SETUP_ALLOC_FAILED, "CDownsampling::InitBuffer(), AllocateBuffer failed.");
    }
    CopyPicture(m_uFormat, RecordPicture(*input), m_SrcPicture);
    for (int k = 0; k < 3; ++k) {
      output->planes[k] = m_DstPicture.planes[k];
      output->strides[k] = m_DstPicture.strides[k];
    }
    return LF_OK;
  }
  // The kernels write the caller's planes, so every one the format has must
  // be there and hold its rows.
  const PlaneLayout outLayout = LayoutOf(code, FormatReading::kPlanes, w, h);
  if (!PlanesPresent(*output, outLayout))
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), output data pointer is null.");
  if (!StridesHoldRows(*output, outLayout))
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), output stride is smaller than a row.");
  if (IsAligned(*input, m_layout, m_uAlignment)) {
    m_SrcPicture = RecordPicture(*input);
  } else {
    if (AllocateWorkPicture(m_srcBuffer, m_SrcPicture, *input, "AllocateSrcBuffer") != LF_OK) {
      return LF_SETUP_ALLOC_FAILED;
    }
    CopyPicture(m_uFormat, RecordPicture(*input), m_SrcPicture);
  }
  if (IsAligned(*output, outLayout, m_uAlignment)) {
    m_DstPicture = RecordPicture(*output);
  } else {
    if (AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, "AllocateDstBuffer") != LF_OK) {
      return LF_SETUP_ALLOC_FAILED;
    }
    m_bCopyBack = true;
  }
  return LF_OK;
}

int32_t CDownsampling::AllocateSampleBuffers(uint32_t code) {
  if (m_pLogger) m_pLogger->Info("CDownsampling::InitBuffer(), allocate(reallocate) sampleBuffer and tempBuffer.");
  // Two sets of the planes this format cascades through; packed pictures never cascade.
  uint32_t planeBytes[3] = {};
  if (!IsPacked(m_layout)) {
    for (int32_t k = 0; k < m_layout.planes; ++k) {
      planeBytes[k] = k > 0 && m_layout.chroma420 ? kSampleChromaBytes : kSampleLumaBytes;
    }
  }
  const uint32_t setBytes = planeBytes[0] + planeBytes[1] + planeBytes[2];
  uint8_t* next = setBytes ? m_SampleBlock.Reserve(2 * setBytes) : nullptr;
  m_bSampleBufferFailed = setBytes && !next;
  std::memset(m_pSamplePlanes, 0, sizeof(m_pSamplePlanes));
  for (int set = 0; set < 2 && next; ++set) {
    for (int k = 0; k < 3; ++k) {
      m_pSamplePlanes[set][k] = planeBytes[k] ? next : nullptr;
      next += planeBytes[k];
    }
  }
  m_uSampleFormat = setBytes ? code : 0;
  const bool temps = m_HalfBandTempBuffer.Reserve(kHalfBandTempBytes) && m_GeneralTempBuffer.Reserve(kGeneralTempBytes);
  if (m_bSampleBufferFailed || !temps) {
    if (m_pLogger)
      m_pLogger->Error("CDownsampling::InitBuffer(), allocate(reallocate) sampleBuffer and tempBuffer failed.");
    return LF_SETUP_ALLOC_FAILED;
  }
  m_bSampleBuffersAllocated = true;
  return LF_OK;
}

int32_t CDownsampling::AllocateWorkPicture(WorkPictureBuffer& buffer, WorkPicture& picture, const VideoPicture& like,
                                           const char* what) {
  // Both work pictures take the input's format.
  uint64_t bytes = 0;
  if (buffer.Cut(m_uFormat, like.width, like.height, m_uAlignment, picture, &bytes) != LF_OK)
    return LF_SETUP_ALLOC_FAILED;
  if (bytes && m_pLogger) {
    m_pLogger->Info("CDownsampling::%s(), allocate(reallocate) %s buffer, size=%d", what,
                    std::strcmp(what, "AllocateSrcBuffer") == 0 ? "SrcPicture" : "DstPicture", static_cast<int>(bytes));
  }
  return LF_OK;
}

namespace {
constexpr uint32_t kDownsampleFormats[] = {LF_I420, LF_RGB24, LF_BGR24, LF_RGBA, LF_BGRA,
                                           LF_ARGB, LF_ABGR,  LF_RGBP,  LF_VYUY};
}  // namespace

extern const FilterDescriptor kDownsampleDescriptor = {LF_FILTER_DOWNSAMPLE,
                                                       "Downsample",
                                                       "Create Downsample(%p)",
                                                       CreateFilter<CDownsampling>,
                                                       true,
                                                       FormatReading::kPlanes,
                                                       kDownsampleFormats,
                                                       {}};

}  // namespace Lumaforge
