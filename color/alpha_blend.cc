#include "color/alpha_blend.h"

#include <cstddef>

#include "framework/filter_descriptor.h"
#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {
constexpr uint32_t kAlphaBlendFormats[] = {LF_I420, LF_YV12, LF_RGBA, LF_BGRA, LF_ABGR, LF_ARGB};
}  // namespace

CAlphaBlend::CAlphaBlend(uint32_t cpuFeatures) : m_uFeatures(cpuFeatures) {
  SetName("AlphaBlend");
  CreateLogger();
}

int32_t CAlphaBlend::Init(void* config, uint8_t /*flag*/) {
  m_pAlphaMap = static_cast<const uint8_t*>(config);
  return LF_OK;
}

int32_t CAlphaBlend::SetParam(ParamId id, void* value) {
  return (id == 0 && value == nullptr) ? LF_OK : LF_INVALID_PARAMETER;
}

int32_t CAlphaBlend::GetParam(ParamId id, void* value) {
  return (id == 0 && value == nullptr) ? LF_OK : LF_INVALID_PARAMETER;
}

int32_t CAlphaBlend::Process(VideoPicture* input, VideoPicture* output) {
  // The kernels are chosen on every call, from the constructor's word.
  AlphaBlendKernels kernels;
  InitAlphaBlendKernels(&kernels, m_uFeatures);
  if (!input || !output || !m_pAlphaMap) return LF_INVALID_PARAMETER;
  const size_t W = output->width, H = output->height;

  // The whole format word: a bottom-up output is not accepted.
  if (!ListsFormat(kAlphaBlendFormats, output->format)) return LF_UNSUPPORTED;
  // Both pictures are read over the output's layout: every plane of it must
  // be there in each, and small enough for the kernels' 32-bit widths.
  const PlaneLayout layout = LayoutOf(output->format, FormatReading::kPlanes, output->width, output->height);
  if (!PlanesPresent(*input, layout) || !PlanesPresent(*output, layout) || !PackedPlanesFit(layout))
    return LF_INVALID_PARAMETER;
  if (layout.planes == 1) {
    for (size_t r = 0; r < H; ++r) {
      kernels.rgb32Row(input->planes[0] + r * W * 4, output->planes[0] + r * W * 4, m_pAlphaMap + r * W,
                       static_cast<int32_t>(W));
    }
    return LF_OK;
  }
  // Planar 4:2:0, row pair by row pair: the two luma rows, then U and V of
  // that chroma row, whose alphas are the first of those two map rows, still
  // in the cache. Chroma sample (r, c) takes the alpha of its block's
  // top-left pixel.
  auto lumaRow = [&](size_t y) {
    kernels.planeRow(input->planes[0] + y * W, output->planes[0] + y * W, m_pAlphaMap + y * W, static_cast<int32_t>(W));
  };
  for (size_t r = 0; r < H / 2; ++r) {
    lumaRow(2 * r);
    lumaRow(2 * r + 1);
    for (int k = 1; k < 3; ++k) {
      kernels.chromaRow(input->planes[k] + r * (W / 2), output->planes[k] + r * (W / 2), m_pAlphaMap + 2 * r * W,
                        static_cast<int32_t>(W / 2));
    }
  }
  if (H & 1) lumaRow(H - 1);
  return LF_OK;
}

extern const FilterDescriptor kAlphaBlendDescriptor = {LF_FILTER_ALPHA_BLEND,
                                                       "AlphaBlend",
                                                       "Create AlphaBlend(%p)",
                                                       CreateFilter<CAlphaBlend>,
                                                       false,
                                                       FormatReading::kPlanes,
                                                       kAlphaBlendFormats,
                                                       {}};

}  // namespace Lumaforge
