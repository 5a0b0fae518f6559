#include "color/image_crop.h"

#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "framework/plane_layout.h"
#include "framework/safe_string.h"

namespace Lumaforge {
namespace {

constexpr uint32_t kCropFormats[] = {LF_I420, LF_YV12,  LF_NV12,  LF_NV21, LF_I440, LF_YUY2, LF_YVYU, LF_UYVY,
                                     LF_VYUY, LF_RGB24, LF_BGR24, LF_RGBA, LF_BGRA, LF_ABGR, LF_ARGB};

// Planes a layout does not use may be null; they stay null.
uint8_t* Advance(uint8_t* plane, size_t bytes) { return plane ? plane + bytes : nullptr; }

}  // namespace

CImageCrop::CImageCrop(uint32_t /*cpuFeatures*/) {
  SetName("IMAGECROP");
  CreateLogger();
}

int32_t CImageCrop::Init(void* config, uint8_t /*flag*/) {
  if (config) memcpy_s(&m_config, sizeof(m_config), config, sizeof(CropConfig));
  return LF_OK;
}

int32_t CImageCrop::Uninit() {
  ResetTiming();
  return LF_OK;
}

int32_t CImageCrop::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  if (id == LF_PARAM_CROP_CONFIG) memcpy_s(&m_config, sizeof(m_config), value, sizeof(CropConfig));
  return LF_OK;
}

bool CImageCrop::ComputeRectangle(uint32_t code, uint32_t width, uint32_t height) {
  const CropConfig& c = m_config;
  if (!(c.top < height && c.left < width && c.width != 0 && c.height != 0)) return false;
  CropRectangle r;
  if (c.mode == 1) {
    r = {c.top, c.left, c.width, c.height};
    // In 64 bits: a rectangle reaching past 2^32 is clipped, not wrapped.
    if (uint64_t{r.left} + r.width > width) r.width = width - r.left;
    if (uint64_t{r.top} + r.height > height) r.height = height - r.top;
  } else if (c.mode == 0) {
    // Fitted at the top-left corner, not centred.
    const bool pictureIsWider = static_cast<float>(width) / static_cast<float>(height) >
                                static_cast<float>(c.width) / static_cast<float>(c.height);
    if (pictureIsWider) {
      r.width = c.width * height / c.height;
      r.height = height;
    } else {
      r.width = width;
      r.height = c.height * width / c.width;
    }
  } else {
    return false;
  }
  if (IsChromaSubsampled(code)) {
    r.top &= ~1u;
    r.left &= ~1u;
    r.width &= ~1u;
    r.height &= ~1u;
  }
  m_rect = r;
  return true;
}

int32_t CImageCrop::Process(VideoPicture* input, VideoPicture* output) {
  const int64_t startUs = NowMicroseconds();
  if (!input || !output) return LF_INVALID_PARAMETER;
  const uint32_t code = FormatCode(input->format);
  if (!ComputeRectangle(code, input->width, input->height)) return LF_INVALID_PARAMETER;

  output->format = input->format;
  output->width = m_rect.width;
  output->height = m_rect.height;
  for (int k = 0; k < 3; ++k) {
    output->planes[k] = input->planes[k];
    output->strides[k] = input->strides[k];
  }
  // The whole picture: nothing moves, and the call is not timed.
  if (m_rect.width == input->width && m_rect.height == input->height) return LF_OK;

  // Planar RGB, among others, has no plane pointers of its own to move.
  if (!ListsFormat(kCropFormats, code)) return LF_INVALID_PARAMETER;
  const PlaneLayout layout = LayoutOf(code, FormatReading::kConversion, input->width, input->height);
  for (int32_t k = 0; k < layout.planes; ++k) {
    output->planes[k] = Advance(input->planes[k], layout.plane[k].Offset(m_rect.left, m_rect.top, input->strides[k]));
  }
  // Formats with fewer planes repeat their last plane pointer.
  for (int32_t k = layout.planes; k < 3; ++k) output->planes[k] = output->planes[k - 1];
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr ParamDescriptor kCropParams[] = {
    {LF_PARAM_CROP_CONFIG, ParamType::kRecord, kParamSet, "crop", "a CropConfig: mode, top, left, width, height"}};
}  // namespace

extern const FilterDescriptor kCropDescriptor = {
    LF_FILTER_CROP, "IMAGECROP", "Create ImageCrop(%p)", CreateFilter<CImageCrop>, false, FormatReading::kConversion,
    kCropFormats,   kCropParams};

}  // namespace Lumaforge
