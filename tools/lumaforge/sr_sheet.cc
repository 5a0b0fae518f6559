#include "tools/lumaforge/sr_sheet.h"

#include <stb_image_resize.h>

#include "tools/lumaforge/contact_sheet.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/library.h"

namespace Lumaforge::cli {
namespace {

// Catmull-Rom bicubic of every plane, as an image editor enlarges.
Frame Bicubic(const Frame& i420, uint32_t width, uint32_t height) {
  Frame out(LF_I420, width, height);
  for (int k = 0; k < 3; ++k) {
    const int shift = k ? 1 : 0;
    const int w = static_cast<int>(i420.width() >> shift), h = static_cast<int>(i420.height() >> shift);
    const int W = static_cast<int>(width >> shift), H = static_cast<int>(height >> shift);
    if (!stbir_resize_uint8_generic(i420.Plane(k), w, h, w, out.Plane(k), W, H, W, 1, STBIR_ALPHA_CHANNEL_NONE, 0,
                                    STBIR_EDGE_CLAMP, STBIR_FILTER_CATMULLROM, STBIR_COLORSPACE_LINEAR, nullptr)) {
      throw ToolError("bicubic enlargement failed");
    }
  }
  return out;
}

// The middle of an I420 picture, one cell large.
Frame Middle(Frame& i420) {
  VideoPicture middle = i420.Picture();
  const uint32_t left = (i420.width() - ContactSheet::kCellWidth) / 2 & ~1u;
  const uint32_t top = (i420.height() - ContactSheet::kCellHeight) / 2 & ~1u;
  for (int k = 0; k < 3; ++k) {
    const uint32_t shift = k ? 1 : 0;
    middle.planes[k] += size_t{top >> shift} * middle.strides[k] + (left >> shift);
  }
  middle.width = ContactSheet::kCellWidth;
  middle.height = ContactSheet::kCellHeight;
  return Frame::CopyOf(middle);
}

}  // namespace

void WriteSrSheet(const std::vector<Frame>& frames, const std::string& path, bool verbose) {
  Library library(verbose);
  library.Init(LF_FILTER_DOWNSAMPLE, nullptr, 1);
  library.Init(LF_FILTER_SUPER_RESOLUTION, nullptr, 1);
  uint8_t enhanced = 1;
  library.SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ENHANCED, &enhanced);
  library.SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_COEFFICIENT_FILE,
                   const_cast<char*>(LUMAFORGE_SR_COEFFICIENT_FILE));
  ContactSheet sheet(static_cast<uint32_t>(frames.size()), verbose);
  for (size_t row = 0; row < frames.size(); ++row) {
    Frame original = frames[row];
    const uint32_t width = original.width() / 2 & ~1u, height = original.height() / 2 & ~1u;
    Frame half(LF_I420, width, height);
    VideoPicture input = original.Picture(), output = half.Picture();
    library.Process(LF_FILTER_DOWNSAMPLE, &input, &output);
    Frame enlarged(LF_I420, 2 * width, 2 * height);
    input = half.Picture();
    output = enlarged.Picture();
    library.Process(LF_FILTER_SUPER_RESOLUTION, &input, &output);
    Frame bicubic = Bicubic(half, 2 * width, 2 * height);
    const auto r = static_cast<uint32_t>(row);
    sheet.Place(r, 0, Middle(bicubic), "halved, bicubic 2x");
    sheet.Place(r, 1, Middle(enlarged), "halved, sr enhanced 2x");
  }
  sheet.Write(path);
}

}  // namespace Lumaforge::cli
