#include "scaling/downsampling.h"

#include <cstring>

#include "framework/buffers.h"
#include "framework/clock.h"
#include "framework/formats.h"
#include "scaling/downsample_taps.h"

namespace Lumaforge {
namespace {

// Largest plane of one sample set: the cascade halves into planes this size.
constexpr uint32_t kSampleLumaBytes = 1920 * 1088;
constexpr uint32_t kSampleChromaBytes = 960 * 544;
constexpr uint32_t kHalfBandTempBytes = 2088960;
constexpr uint32_t kGeneralTempBytes = 3840;

// Bytes per pixel of the formats the filter takes, 0 for the others.
int32_t BytesPerPixel(uint32_t code) {
  if (code == LF_RGB24 || code == LF_BGR24) return 3;
  if (IsPackedRgb32(code)) return 4;
  if (code == LF_RGBP || code == LF_I420 || code == LF_VYUY) return 1;
  return 0;
}

bool IsPacked(uint32_t code) { return IsPackedRgb24(code) || IsPackedRgb32(code); }

// Three-plane formats need all three planes; a missing one is refused like a
// missing first plane rather than read through.
bool HasPlanes(const VideoPicture& p) {
  const uint32_t code = FormatCode(p.format);
  if (code == LF_RGBP || code == LF_I420) return p.planes[0] && p.planes[1] && p.planes[2];
  return p.planes[0] != nullptr;
}

WorkPicture RecordPicture(const VideoPicture& p) {
  WorkPicture w;
  for (int k = 0; k < 3; ++k) {
    w.planes[k] = p.planes[k];
    w.strides[k] = p.strides[k];
  }
  w.width = p.width;
  w.height = p.height;
  return w;
}

uint32_t RoundUp(uint32_t value, uint32_t multiple) { return (value + multiple - 1) / multiple * multiple; }

}  // namespace

CDownsampling::CDownsampling(uint32_t cpuFeatures) : m_uCpuFeatures(cpuFeatures) {
  SetName("Downsample");
  CreateLogger();
  InitBoxScaleKernels(&m_box, m_uCpuFeatures);
  InitMultiTapScaleKernels(&m_multiTap, m_uCpuFeatures);
  MakeHalfBandTaps(m_HalfBandTaps);
  MakeFourTapPhaseTable(m_PhaseTable);
}

CDownsampling::~CDownsampling() {
  ReleaseBuffers();
  ResetTiming();
}

int32_t CDownsampling::Init(void* /*config*/, uint8_t flag) {
  m_bCallerBuffers = flag != 0;
  return LF_OK;
}

void CDownsampling::ReleaseBuffers() {
  AlignedFree(m_pHalfBandTempBuffer);
  AlignedFree(m_pGeneralTempBuffer);
  AlignedFree(m_pSampleBlock);
  AlignedFree(m_srcBuffer.block);
  AlignedFree(m_dstBuffer.block);
  m_pHalfBandTempBuffer = m_pGeneralTempBuffer = m_pSampleBlock = nullptr;
  m_uHalfBandTempCapacity = m_uGeneralTempCapacity = 0;
  std::memset(m_pSamplePlanes, 0, sizeof(m_pSamplePlanes));
  m_srcBuffer = WorkBuffer();
  m_dstBuffer = WorkBuffer();
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
  const uint32_t code = FormatCode(input->format);
  const int32_t W = static_cast<int32_t>(input->width), H = static_cast<int32_t>(input->height);
  const int32_t w = static_cast<int32_t>(output->width), h = static_cast<int32_t>(output->height);
  auto plane = [](const WorkPicture& p, int32_t k, int32_t width, int32_t height) {
    return PlaneView{p.planes[k], static_cast<int32_t>(p.strides[k]), width, height};
  };

  if (IsPacked(code)) {
    const WorkPicture &s = m_SrcPicture, &d = m_DstPicture;
    if ((W >> 1) == w && (H >> 1) == h) {
      m_box.packedHalf(s.planes[0], s.strides[0], d.planes[0], d.strides[0], W, H, m_iBytesPerPixel);
    } else {
      m_box.packedGeneral(s.planes[0], s.strides[0], W, H, d.planes[0], d.strides[0], w, h, m_iBytesPerPixel);
    }
  } else if (code == LF_VYUY) {
    ScalePlane(plane(m_SrcPicture, 0, W, H), plane(m_DstPicture, 0, w, h), 0, false);
  } else if (code == LF_I420) {
    ScalePlane(plane(m_SrcPicture, 0, W, H), plane(m_DstPicture, 0, w, h), 0, false);
    for (int32_t k = 1; k < 3; ++k) {
      ScalePlane(plane(m_SrcPicture, k, W / 2, H / 2), plane(m_DstPicture, k, w / 2, h / 2), k, true);
    }
  } else if (code == LF_RGBP) {
    for (int32_t k = 0; k < 3; ++k) ScalePlane(plane(m_SrcPicture, k, W, H), plane(m_DstPicture, k, w, h), k, false);
  } else {
    return LF_UNSUPPORTED;
  }

  if (m_bCopyBack) {
    WorkPicture out = RecordPicture(*output);
    CopyPicture(m_DstPicture, out, code);
  }
  FinishFrameTiming(startUs);
  return LF_OK;
}

int32_t CDownsampling::InitBuffer(const VideoPicture* input, VideoPicture* output) {
  Logger* log = m_pLogger.get();
  auto fail = [log](int32_t status, const char* format, auto... args) {
    if (log) log->Error(format, args...);
    return status;
  };
  if (!input || !output)
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), input or output picture pointer is null");
  if (!HasPlanes(*input)) return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), input data pointer is null.");
  const uint32_t W = input->width, H = input->height, w = output->width, h = output->height;
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
  const uint32_t code = FormatCode(input->format);
  if (code < 1 || code > 31 || BytesPerPixel(code) == 0) return LF_INVALID_PARAMETER;
  m_iBytesPerPixel = BytesPerPixel(code);

  if (!m_bSampleBuffersAllocated) {
    const int32_t status = AllocateSampleBuffers(code);
    if (status != LF_OK) return status;
  }

  m_bCopyBack = false;
  if (!m_bCallerBuffers) {
    if (AllocateWorkPicture(m_srcBuffer, m_SrcPicture, *input, code, "AllocateSrcBuffer") != LF_OK ||
        AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, code, "AllocateDstBuffer") != LF_OK) {
      return fail(LF_SETUP_ALLOC_FAILED, "CDownsampling::InitBuffer(), AllocateBuffer failed.");
    }
    CopyPicture(RecordPicture(*input), m_SrcPicture, code);
    for (int k = 0; k < 3; ++k) {
      output->planes[k] = m_DstPicture.planes[k];
      output->strides[k] = m_DstPicture.strides[k];
    }
    return LF_OK;
  }
  if (!output->planes[0])
    return fail(LF_INVALID_PARAMETER, "CDownsampling::InitBuffer(), output data pointer is null.");
  if (IsAligned(*input, code)) {
    m_SrcPicture = RecordPicture(*input);
  } else {
    if (AllocateWorkPicture(m_srcBuffer, m_SrcPicture, *input, code, "AllocateSrcBuffer") != LF_OK) {
      return LF_SETUP_ALLOC_FAILED;
    }
    CopyPicture(RecordPicture(*input), m_SrcPicture, code);
  }
  if (IsAligned(*output, code)) {
    m_DstPicture = RecordPicture(*output);
  } else {
    if (AllocateWorkPicture(m_dstBuffer, m_DstPicture, *output, code, "AllocateDstBuffer") != LF_OK) {
      return LF_SETUP_ALLOC_FAILED;
    }
    m_bCopyBack = true;
  }
  return LF_OK;
}

int32_t CDownsampling::AllocateSampleBuffers(uint32_t code) {
  if (m_pLogger) m_pLogger->Info("CDownsampling::InitBuffer(), allocate(reallocate) sampleBuffer and tempBuffer.");
  // Per set: the planes the first frame's format needs; packed pictures never cascade.
  uint32_t planeBytes[3] = {};
  if (code == LF_RGBP) {
    planeBytes[0] = planeBytes[1] = planeBytes[2] = kSampleLumaBytes;
  } else if (code == LF_I420) {
    planeBytes[0] = kSampleLumaBytes;
    planeBytes[1] = planeBytes[2] = kSampleChromaBytes;
  } else if (code == LF_VYUY) {
    planeBytes[0] = kSampleLumaBytes;
  }
  const uint32_t setBytes = planeBytes[0] + planeBytes[1] + planeBytes[2];
  m_bSampleBufferFailed = false;
  if (setBytes && !m_pSampleBlock) {
    m_pSampleBlock = AlignedAlloc(2 * setBytes);
    m_bSampleBufferFailed = m_pSampleBlock == nullptr;
    uint8_t* next = m_pSampleBlock;
    for (int set = 0; set < 2 && next; ++set) {
      for (int k = 0; k < 3; ++k) {
        m_pSamplePlanes[set][k] = planeBytes[k] ? next : nullptr;
        next += planeBytes[k];
      }
    }
  }
  AlignedFree(m_pHalfBandTempBuffer);
  AlignedFree(m_pGeneralTempBuffer);
  m_pHalfBandTempBuffer = AlignedAlloc(kHalfBandTempBytes);
  m_uHalfBandTempCapacity = m_pHalfBandTempBuffer ? kHalfBandTempBytes : 0;
  m_pGeneralTempBuffer = AlignedAlloc(kGeneralTempBytes);
  m_uGeneralTempCapacity = m_pGeneralTempBuffer ? kGeneralTempBytes : 0;
  if (m_bSampleBufferFailed || !m_pHalfBandTempBuffer || !m_pGeneralTempBuffer) {
    if (m_pLogger)
      m_pLogger->Error("CDownsampling::InitBuffer(), allocate(reallocate) sampleBuffer and tempBuffer failed.");
    return LF_SETUP_ALLOC_FAILED;
  }
  m_bSampleBuffersAllocated = true;
  return LF_OK;
}

int32_t CDownsampling::AllocateWorkPicture(WorkBuffer& buffer, WorkPicture& picture, const VideoPicture& like,
                                           uint32_t code, const char* what) {
  // Kept for the same size, and the same format: a picture of another format
  // needs another layout (and possibly more bytes) than the kept one.
  if (buffer.allocated && buffer.width == like.width && buffer.height == like.height && buffer.format == code) {
    return LF_OK;
  }
  const uint32_t align = m_uAlignment, margin = m_uMargin;
  const uint32_t P = RoundUp(like.width + 2 * margin, align);
  const uint32_t Pc = RoundUp(like.width / 2 + 2 * margin, align);
  const uint32_t R = like.height + 2 * margin, chromaRows = 2 * margin + like.height / 2;
  uint32_t required;
  if (IsPacked(code)) {
    required = R * m_iBytesPerPixel * P + align;
  } else if (code == LF_RGBP) {
    required = 3 * R * P + align;
  } else if (code == LF_I420) {
    required = R * P + 2 * chromaRows * Pc + align;
  } else if (code == LF_VYUY) {
    required = R * P + align;
  } else {
    if (m_pLogger && std::strcmp(what, "AllocateDstBuffer") == 0) {
      m_pLogger->Error("CDownsampling::AllocateDstBuffer(), not support this format");
    }
    return LF_UNSUPPORTED;
  }
  if (required > buffer.capacity) {
    AlignedFree(buffer.block);
    buffer.block = AlignedAlloc(required);
    buffer.capacity = buffer.block ? required : 0;
    if (!buffer.block) {
      buffer.allocated = false;
      return LF_SETUP_ALLOC_FAILED;
    }
  }
  std::memset(buffer.block, 0, required);
  // The first plane starts past the next alignment boundary (always moving
  // forward), then past the margin.
  uint8_t* base =
      reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(buffer.block) + align) & ~uintptr_t{align - 1});
  picture = WorkPicture();
  picture.width = like.width;
  picture.height = like.height;
  picture.planes[0] = base + (P + 1) * margin;
  if (IsPacked(code)) {
    picture.strides[0] = P * m_iBytesPerPixel;
  } else {
    picture.strides[0] = P;
    if (code == LF_RGBP) {
      for (int k = 1; k < 3; ++k) {
        picture.planes[k] = picture.planes[k - 1] + static_cast<size_t>(R) * P;
        picture.strides[k] = P;
      }
    } else if (code == LF_I420) {
      picture.planes[1] = picture.planes[0] + static_cast<size_t>(R) * P;
      picture.planes[2] = picture.planes[1] + static_cast<size_t>(chromaRows) * Pc;
      picture.strides[1] = picture.strides[2] = Pc;
    }
  }
  if (m_pLogger) {
    m_pLogger->Info("CDownsampling::%s(), allocate(reallocate) %s buffer, size=%d", what,
                    std::strcmp(what, "AllocateSrcBuffer") == 0 ? "SrcPicture" : "DstPicture", required);
  }
  buffer.allocated = true;
  buffer.width = like.width;
  buffer.height = like.height;
  buffer.format = code;
  return LF_OK;
}

bool CDownsampling::IsAligned(const VideoPicture& picture, uint32_t code) const {
  const int planes = (code == LF_RGBP || code == LF_I420) ? 3 : 1;
  for (int k = 0; k < planes; ++k) {
    if (picture.strides[k] % m_uAlignment || reinterpret_cast<uintptr_t>(picture.planes[k]) % m_uAlignment)
      return false;
  }
  return true;
}

void CDownsampling::CopyPicture(const WorkPicture& from, WorkPicture& to, uint32_t code) const {
  const uint32_t width = from.width, height = from.height;
  auto copy = [](const uint8_t* src, uint32_t srcStride, uint8_t* dst, uint32_t dstStride, size_t bytes,
                 uint32_t rows) {
    for (uint32_t y = 0; y < rows; ++y)
      std::memcpy(dst + static_cast<size_t>(y) * dstStride, src + static_cast<size_t>(y) * srcStride, bytes);
  };
  if (IsPacked(code) || code == LF_VYUY) {
    copy(from.planes[0], from.strides[0], to.planes[0], to.strides[0], static_cast<size_t>(width) * m_iBytesPerPixel,
         height);
  } else if (code == LF_RGBP) {
    for (int k = 0; k < 3; ++k) copy(from.planes[k], from.strides[k], to.planes[k], to.strides[k], width, height);
  } else if (code == LF_I420) {
    copy(from.planes[0], from.strides[0], to.planes[0], to.strides[0], width, height);
    for (int k = 1; k < 3; ++k)
      copy(from.planes[k], from.strides[k], to.planes[k], to.strides[k], width / 2, height / 2);
  } else if (m_pLogger) {
    m_pLogger->Error("CDownsampling::AllocateDstBuffer(), not support this format");
  }
}

}  // namespace Lumaforge
