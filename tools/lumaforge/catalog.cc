#include "tools/lumaforge/catalog.h"

#include <algorithm>

#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

const std::vector<FilterInfo>& Table() {
  static const std::vector<FilterInfo> table = {
      {"csc",
       LF_FILTER_CSC,
       "converts the picture to another format (BT.601 limited range between YUV and RGB)",
       {{"format", "bgra", "target format (any format name)"}},
       MakeCscStep},
      {"denoise",
       LF_FILTER_DENOISE,
       "removes noise in place (I420): edge-preserving 3x3 filter and motion-gated recursion",
       {},
       MakeDenoiseStep},
      {"deband",
       LF_FILTER_FAST_DEBAND,
       "removes banding (I420): four-tap averages within a strength, and a fine dither",
       {{"qp", "none (QP 24)", "file of quantiser maps, one byte per 16x16 block, one map per frame"}},
       MakeDebandStep},
      {"crop",
       LF_FILTER_CROP,
       "cuts a rectangle out of the picture (even edges for subsampled formats)",
       {{"left", "width/4", "first column"},
        {"top", "height/4", "first row"},
        {"width", "width/2", "rectangle width (clipped to the picture)"},
        {"height", "height/2", "rectangle height (clipped to the picture)"},
        {"aspect", "off", "W:H instead of a rectangle: the largest W:H area at the top-left corner"}},
       MakeCropStep},
      {"downsample",
       LF_FILTER_DOWNSAMPLE,
       "shrinks the picture to a smaller even size, at least 16x16",
       {{"width", "width/2", "target width (with only width or height given, the other keeps the aspect)"},
        {"height", "height/2", "target height"}},
       MakeDownsampleStep},
      {"upsample",
       LF_FILTER_UPSAMPLE,
       "enlarges the picture (libyuv's plane scaler; I420 and grey)",
       {{"width", "2 x width", "target width (with only width or height given, the other keeps the aspect)"},
        {"height", "2 x height", "target height"},
        {"mode", "bilinear", "linear, bilinear or box"}},
       MakeUpsampleStep},
      {"sr",
       LF_FILTER_SUPER_RESOLUTION,
       "super resolution: enlarges I420 by 2 or 1.5",
       {{"mode", "standard", "standard (2x or 1.5x), enhanced (2x, trained filters) or alt15 (1.5x)"},
        {"scale", "2 (alt15: 1.5)", "2 or 1.5"},
        {"coeffs", "the source tree's file", "coefficient file of the enhanced mode"}},
       MakeSrStep},
      {"blend",
       LF_FILTER_ALPHA_BLEND,
       "mixes an overlay picture into the frame",
       {{"overlay", "colour bars", "still image (png, bmp, ppm, pgm, jpg) stretched to the frame size"},
        {"alpha", "ramp", "overlay opacity 0..255, or ramp: 0 at the left edge to 255 at the right"}},
       MakeBlendStep},
      {"blur", LF_FILTER_GAUSS_BLUR, "Gaussian blur", {}, MakeBlurStep},
      {"effect",
       LF_FILTER_VIDEO_FILTER,
       "colour effect, in place",
       {{"look", "sepia", "grey, hue, sepia, tone (contrast curves) or film (faded warm film)"}},
       MakeEffectStep},
  };
  return table;
}

}  // namespace

const FilterDescriptor& FilterInfo::Descriptor() const { return *FindFilterDescriptor(type); }

bool FilterInfo::Accepts(uint32_t format) const {
  const FilterDescriptor& d = Descriptor();
  // The tool's grey frames are code 31 read as one plane; a filter that
  // reads 31 as packed 4:2:2 does not take them.
  if (format == kGrey && d.reading != FormatReading::kPlanes) return false;
  return ListsFormat(d.formats, format);
}

uint32_t FilterInfo::PreferredFormat() const { return Descriptor().formats.front(); }

bool FilterInfo::Takes(std::string_view param) const {
  const auto& libraryParams = Descriptor().params;
  return std::any_of(options.begin(), options.end(), [&](const ParamInfo& p) { return param == p.name; }) ||
         std::any_of(libraryParams.begin(), libraryParams.end(),
                     [&](const ParamDescriptor& p) { return IsToolSettable(p) && param == p.name; });
}

std::span<const FilterInfo> Catalog() { return Table(); }

const FilterInfo* FindFilter(std::string_view name) {
  for (const FilterInfo& info : Table()) {
    if (name == info.name) return &info;
  }
  return nullptr;
}

std::vector<std::string> FilterNames() {
  std::vector<std::string> names;
  for (const FilterInfo& info : Table()) names.emplace_back(info.name);
  return names;
}

}  // namespace Lumaforge::cli
