#include "tools/lumaforge/converter.h"

#include <cstring>

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

Frame GreyAsI420(const Frame& grey) {
  Frame i420(LF_I420, grey.width() & ~1u, grey.height() & ~1u);
  for (uint32_t row = 0; row < i420.height(); ++row)
    std::memcpy(i420.Plane(0) + size_t{row} * i420.width(), grey.Plane(0) + size_t{row} * grey.width(), i420.width());
  const size_t chroma = size_t{i420.width() / 2} * (i420.height() / 2);
  std::memset(i420.Plane(1), 128, 2 * chroma);
  return i420;
}

Frame LumaOf(const Frame& i420) {
  Frame grey(kGrey, i420.width(), i420.height());
  std::memcpy(grey.Plane(0), i420.Plane(0), size_t{grey.width()} * grey.height());
  return grey;
}

}  // namespace

Converter::Converter(bool verbose) : owned_(std::make_unique<Library>(verbose)), library_(*owned_) {
  library_.Init(LF_FILTER_CSC, nullptr, 0);
}

Converter::Converter(Library& library) : library_(library) { library_.Init(LF_FILTER_CSC, nullptr, 0); }

Frame Converter::To(Frame frame, uint32_t format) {
  if (frame.format() == format) return frame;
  if (frame.width() < 2 || frame.height() < 2) {
    throw ToolError("cannot convert a " + SizeText(frame.width(), frame.height()) +
                    " picture (conversions need at least 2x2)");
  }
  if (frame.format() == kGrey) return To(GreyAsI420(frame), format);
  const uint32_t target = format == kGrey ? LF_I420 : format;
  Frame out(target, frame.width() & ~1u, frame.height() & ~1u);
  VideoPicture input = frame.Picture(), output = out.Picture();
  try {
    library_.Process(LF_FILTER_CSC, &input, &output);
  } catch (const ToolError& e) {
    throw ToolError("converting " + FormatName(frame.format()) + " to " + FormatName(target) + ": " + e.what());
  }
  return format == kGrey ? LumaOf(out) : out;
}

}  // namespace Lumaforge::cli
