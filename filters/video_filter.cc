#include "filters/video_filter.h"

#include <cmath>
#include <cstring>

#include "filters/effect_curves.h"
#include "framework/buffers.h"
#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/plane_layout.h"

namespace Lumaforge {

CVideoFilter::CVideoFilter(uint32_t cpuFeatures) : m_uCpuFeatures(cpuFeatures) {
  SetName("VideoFilter");
  CreateLogger();
}

int32_t CVideoFilter::Init(void* config, uint8_t /*flag*/) {
  if (config) {
    VideoFilterConfig c;
    std::memcpy(&c, config, sizeof(c));
    if (c.format != LF_I420) return LF_UNSUPPORTED;
    m_uWidth = c.width;
    m_uHeight = c.height;
    m_uEffect = c.effect;
  }
  m_pToRgb = Yuv420ToRgb;
  m_pFromRgb = RgbToYuv420;
  InitColorKernels(&m_colorKernels, m_uCpuFeatures);
  InitColorEffectKernels(&m_effectKernels, m_uCpuFeatures);
  ResetTiming();
  m_bInitialised = true;
  return LF_OK;
}

void CVideoFilter::FreeWorkBuffers() {
  m_RgbBuffer1.Free();
  m_RgbBuffer2.Free();
}

int32_t CVideoFilter::Uninit() {
  FreeWorkBuffers();
  m_bInitialised = false;
  return LF_OK;
}

int32_t CVideoFilter::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  if (id == LF_PARAM_VIDEO_EFFECT) std::memcpy(&m_uEffect, value, sizeof(m_uEffect));
  return LF_OK;
}

int32_t CVideoFilter::EnsureWorkBuffers(uint32_t lumaStride, uint32_t height) {
  const uint64_t bytes = uint64_t{lumaStride} * height * 3;
  if (bytes > UINT32_MAX) return LF_SETUP_ALLOC_FAILED;
  // A picture with a wider stride than the last one grows them instead of
  // writing past them.
  if (m_RgbBuffer1.Reserve(static_cast<uint32_t>(bytes)) && m_RgbBuffer2.Reserve(static_cast<uint32_t>(bytes)))
    return LF_OK;
  FreeWorkBuffers();
  return LF_SETUP_ALLOC_FAILED;
}

void CVideoFilter::ToRgb(const VideoPicture& picture, uint8_t* rgb) {
  VideoPicture out{};
  out.planes[0] = rgb;
  out.strides[0] = picture.strides[0] * 3;
  out.width = picture.width;
  out.height = picture.height;
  out.format = LF_RGB24;
  m_pToRgb(&picture, &out, m_colorKernels);
}

void CVideoFilter::FromRgb(const uint8_t* rgb, const VideoPicture& picture) {
  VideoPicture in{};
  in.planes[0] = const_cast<uint8_t*>(rgb);
  in.strides[0] = picture.strides[0] * 3;
  in.width = picture.width;
  in.height = picture.height;
  in.format = LF_RGB24;
  m_pFromRgb(&in, &picture, m_colorKernels);
}

void CVideoFilter::RunEffect(const VideoPicture& picture) {
  const size_t chromaSamples = size_t{picture.width >> 1} * (picture.height >> 1);
  // The RGB passes run over width x height pixels from the buffer start as
  // one run, whatever the stride.
  const size_t rgbBytes = size_t{picture.width} * picture.height * 3;
  switch (m_uEffect) {
    case LF_EFFECT_HUE_ROTATE:
      // 120 radians, as the effect has always turned.
      m_effectKernels.rotateHue(picture.planes[1], picture.planes[2], chromaSamples,
                                static_cast<float>(std::cos(120.0)), static_cast<float>(std::sin(120.0)));
      break;
    case LF_EFFECT_SEPIA:
      ToRgb(picture, m_RgbBuffer1.data());
      m_effectKernels.sepia(m_RgbBuffer1.data(), m_RgbBuffer2.data(), rgbBytes / 3);
      FromRgb(m_RgbBuffer2.data(), picture);
      break;
    case LF_EFFECT_TONE_CURVES:
    case LF_EFFECT_CURVE_TABLES:
      ToRgb(picture, m_RgbBuffer1.data());
      ApplyCurves(m_RgbBuffer1.data(), rgbBytes, m_uEffect == LF_EFFECT_TONE_CURVES ? ToneCurves() : FilmCurves());
      FromRgb(m_RgbBuffer1.data(), picture);
      break;
    default:  // grey, and any unknown effect
      std::memset(picture.planes[1], 128, chromaSamples);
      std::memset(picture.planes[2], 128, chromaSamples);
      break;
  }
}

int32_t CVideoFilter::Process(VideoPicture* input, VideoPicture* /*output*/) {
  if (!m_bInitialised) return LF_PARAM_NOT_READY;
  if (!input || m_uEffect == LF_EFFECT_NONE) return LF_INVALID_PARAMETER;
  if (input->format != LF_I420) return LF_UNSUPPORTED;
  const int64_t startUs = NowMicroseconds();
  if (input->width != m_uWidth || input->height != m_uHeight) {
    Uninit();
    VideoFilterConfig config{input->width, input->height, input->format, m_uEffect};
    Init(&config, 0);
  }
  const PlaneLayout layout = LayoutOf(LF_I420, FormatReading::kPlanes, input->width, input->height);
  if (!PlanesPresent(*input, layout)) return LF_INVALID_PARAMETER;
  // The colour effects convert through RGB, which works on whole 2x2 blocks
  // and reads rows by the strides; the chroma effects take the chroma
  // planes as one run of samples.
  const bool viaRgb =
      m_uEffect == LF_EFFECT_SEPIA || m_uEffect == LF_EFFECT_TONE_CURVES || m_uEffect == LF_EFFECT_CURVE_TABLES;
  if (viaRgb && ((input->width | input->height) & 1)) return LF_INVALID_PARAMETER;
  if (viaRgb ? !StridesHoldRows(*input, layout) : !PackedPlanesFit(layout)) return LF_INVALID_PARAMETER;
  const int32_t status = EnsureWorkBuffers(input->strides[0], input->height);
  if (status != LF_OK) return status;
  RunEffect(*input);
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr uint32_t kVideoFilterFormats[] = {LF_I420};
constexpr ParamDescriptor kVideoFilterParams[] = {
    {LF_PARAM_VIDEO_EFFECT, ParamType::kUint32, kParamSet, "effect",
     "a VideoEffect: 1 grey, 2 hue, 3 sepia, 4 tone curves, 5 film (unknown values act as grey)", 0, 5}};
}  // namespace

extern const FilterDescriptor kVideoFilterDescriptor = {
    LF_FILTER_VIDEO_FILTER, "VideoFilter",       "Create VideoFilter(%p)", CreateFilter<CVideoFilter>, false,
    FormatReading::kPlanes, kVideoFilterFormats, kVideoFilterParams};

}  // namespace Lumaforge
