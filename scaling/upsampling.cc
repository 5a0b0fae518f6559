#include "scaling/upsampling.h"

#include <libyuv/scale.h>

#include <cstring>

#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "framework/plane_layout.h"

namespace Lumaforge {

int32_t ReducedUpsampleMode(int32_t mode, int32_t srcWidth, int32_t srcHeight, int32_t dstWidth, int32_t dstHeight) {
  const int32_t w = srcWidth < 0 ? -srcWidth : srcWidth, h = srcHeight < 0 ? -srcHeight : srcHeight;
  if (mode == LF_UPSAMPLE_BOX) {
    if (dstWidth * 2 < w || dstHeight * 2 < h) return LF_UPSAMPLE_BOX;
    mode = LF_UPSAMPLE_BILINEAR;
  }
  if (mode == LF_UPSAMPLE_BILINEAR && (h == 1 || dstHeight == h || dstHeight * 3 == h || w == 1))
    mode = LF_UPSAMPLE_LINEAR;
  return mode;
}

CUpsampling::CUpsampling(uint32_t /*cpuFeatures*/) {
  SetName("Upsample");
  CreateLogger();
}

int32_t CUpsampling::Init(void* config, uint8_t /*flag*/) {
  if (config) {
    uint32_t mode;
    std::memcpy(&mode, config, sizeof(mode));
    m_iMode = mode == LF_UPSAMPLE_BILINEAR || mode == LF_UPSAMPLE_BOX ? static_cast<int32_t>(mode)
                                                                      : static_cast<int32_t>(LF_UPSAMPLE_LINEAR);
  }
  return LF_OK;
}

int32_t CUpsampling::Process(VideoPicture* input, VideoPicture* output) {
  if (!input || !output) return LF_INVALID_PARAMETER;
  const int64_t startUs = NowMicroseconds();
  const uint32_t code = FormatCode(input->format);
  if (code != LF_I420 && code != LF_VYUY) return LF_UPSAMPLE_FORMAT;
  // libyuv reads (size + 1) / 2 chroma samples where the library's I420
  // layout has size / 2, so odd I420 pictures are refused rather than read
  // past their chroma planes.
  if (code == LF_I420 && ((input->width | input->height | output->width | output->height) & 1))
    return LF_INVALID_PARAMETER;
  const PlaneLayout in = LayoutOf(code, FormatReading::kPlanes, input->width, input->height);
  const PlaneLayout out = LayoutOf(code, FormatReading::kPlanes, output->width, output->height);
  if (!PlanesPresent(*input, in) || !PlanesPresent(*output, out)) return LF_INVALID_PARAMETER;
  if (!StridesHoldRows(*input, in) || !StridesHoldRows(*output, out)) return LF_INVALID_PARAMETER;

  // Every size now fits an int: each plane is below 2 GB.
  const auto w = static_cast<int32_t>(input->width), h = static_cast<int32_t>(input->height);
  const auto W = static_cast<int32_t>(output->width), H = static_cast<int32_t>(output->height);
  const auto stride = [](const VideoPicture& p, int k) { return static_cast<int>(p.strides[k]); };
  if (code == LF_I420) {
    // The scaler itself does nothing for empty or over-large sources.
    libyuv::I420Scale(input->planes[0], stride(*input, 0), input->planes[1], stride(*input, 1), input->planes[2],
                      stride(*input, 2), w, h, output->planes[0], stride(*output, 0), output->planes[1],
                      stride(*output, 1), output->planes[2], stride(*output, 2), W, H,
                      static_cast<libyuv::FilterMode>(m_iMode));
  } else if (H > h && w > 0 && h > 0 && W > 0) {
    // A grey plane is scaled only when it gets taller.
    libyuv::ScalePlane(input->planes[0], stride(*input, 0), w, h, output->planes[0], stride(*output, 0), W, H,
                       static_cast<libyuv::FilterMode>(ReducedUpsampleMode(m_iMode, w, h, W, H)));
  }
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr uint32_t kUpsampleFormats[] = {LF_I420, LF_VYUY};
}  // namespace

extern const FilterDescriptor kUpsampleDescriptor = {LF_FILTER_UPSAMPLE,        "Upsample", "Create Upsample(%p)",
                                                     CreateFilter<CUpsampling>, false,      FormatReading::kPlanes,
                                                     kUpsampleFormats,          {}};

}  // namespace Lumaforge
