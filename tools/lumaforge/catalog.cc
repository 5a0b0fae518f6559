#include "tools/lumaforge/catalog.h"

#include <algorithm>

#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

const std::vector<FilterInfo>& Table() {
  static const std::vector<FilterInfo> table = {
      {"csc",
       LF_FILTER_CSC,
       "converts the picture to another format (BT.601 limited range between YUV and RGB)",
       {},
       {{"format", "bgra", "target format (any format name)"}},
       MakeCscStep},
      {"crop",
       LF_FILTER_CROP,
       "cuts a rectangle out of the picture (even edges for subsampled formats)",
       {LF_I420, LF_YV12, LF_NV12, LF_NV21, LF_YUY2, LF_UYVY, LF_YVYU, LF_RGB24, LF_BGR24, LF_RGBA, LF_BGRA, LF_ARGB,
        LF_ABGR},
       {{"left", "width/4", "first column"},
        {"top", "height/4", "first row"},
        {"width", "width/2", "rectangle width (clipped to the picture)"},
        {"height", "height/2", "rectangle height (clipped to the picture)"},
        {"aspect", "off", "W:H instead of a rectangle: the largest W:H area at the top-left corner"}},
       MakeCropStep},
      {"downsample",
       LF_FILTER_DOWNSAMPLE,
       "shrinks the picture to a smaller even size, at least 16x16",
       {LF_I420, LF_RGB24, LF_BGR24, LF_RGBA, LF_BGRA, LF_ARGB, LF_ABGR, LF_RGBP, kGrey},
       {{"width", "width/2", "target width (with only width or height given, the other keeps the aspect)"},
        {"height", "height/2", "target height"}},
       MakeDownsampleStep},
      {"blend",
       LF_FILTER_ALPHA_BLEND,
       "mixes an overlay picture into the frame",
       {LF_I420, LF_YV12, LF_RGBA, LF_BGRA, LF_ARGB, LF_ABGR},
       {{"overlay", "colour bars", "still image (png, bmp, ppm, pgm, jpg) stretched to the frame size"},
        {"alpha", "ramp", "overlay opacity 0..255, or ramp: 0 at the left edge to 255 at the right"}},
       MakeBlendStep},
      {"blur",
       LF_FILTER_GAUSS_BLUR,
       "Gaussian blur",
       {LF_I420, LF_YV12, LF_RGBA, LF_BGRA, LF_ARGB, LF_ABGR, kGrey},
       {{"sigma", "5", "standard deviation in pixels, 0.5 to 1000"}},
       MakeBlurStep},
      {"effect",
       LF_FILTER_VIDEO_FILTER,
       "colour effect, in place",
       {LF_I420},
       {{"look", "sepia", "grey, hue, sepia, tone (contrast curves) or film (faded warm film)"}},
       MakeEffectStep},
  };
  return table;
}

}  // namespace

bool FilterInfo::Accepts(uint32_t format) const {
  return formats.empty() || std::find(formats.begin(), formats.end(), format) != formats.end();
}

bool FilterInfo::Takes(std::string_view param) const {
  return std::any_of(params.begin(), params.end(), [&](const ParamInfo& p) { return param == p.name; });
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
