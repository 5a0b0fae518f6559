// blend (type 24): the frame is the background; the filter mixes an overlay
// into it in place through an alpha map it keeps by pointer.
#include <optional>
#include <vector>

#include "tools/lumaforge/canvas.h"
#include "tools/lumaforge/converter.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/patterns.h"
#include "tools/lumaforge/pixel_formats.h"
#include "tools/lumaforge/still_image.h"

namespace Lumaforge::cli {
namespace {

// Overlay opacity per column: a constant, or a ramp from 0 to 255.
std::optional<uint32_t> Opacity(const ParamSet& params) {
  if (params.Text("alpha", "ramp") == "ramp") return std::nullopt;
  return params.Whole("alpha", 0, 255);
}

class BlendStep : public Step {
 public:
  BlendStep(const ParamSet& params, bool verbose) : Step(verbose), opacity_(Opacity(params)), converter_(verbose) {
    const std::string path = params.Text("overlay", "");
    if (!path.empty()) image_ = LoadStillImage(path);
  }

  Frame Run(Frame frame) override {
    if (overlay_.format() != frame.format() || overlay_.width() != frame.width() ||
        overlay_.height() != frame.height()) {
      Prepare(frame);
    }
    VideoPicture input = overlay_.Picture(), output = frame.Picture();
    library_.Process(LF_FILTER_ALPHA_BLEND, &input, &output);
    return frame;
  }

 private:
  // The overlay in the frame's format and size, and the map for that size.
  void Prepare(const Frame& frame) {
    const uint32_t width = frame.width(), height = frame.height();
    Frame rgba = image_ ? Stretched(*image_, width, height) : ColourBars(width, height);
    overlay_ = converter_.To(std::move(rgba), frame.format());
    if (overlay_.width() != width || overlay_.height() != height) {
      throw ToolError("the overlay cannot be converted to an odd-sized " + FormatName(frame.format()) +
                      " picture (the converter works on even sizes)");
    }
    // The map holds the background's weight: 255 - opacity.
    alpha_.resize(size_t{width} * height);
    for (uint32_t y = 0; y < height; ++y) {
      for (uint32_t x = 0; x < width; ++x) {
        const uint32_t opacity = opacity_ ? *opacity_ : (width > 1 ? x * 255 / (width - 1) : 255);
        alpha_[size_t{y} * width + x] = static_cast<uint8_t>(255 - opacity);
      }
    }
    library_.Init(LF_FILTER_ALPHA_BLEND, alpha_.data(), 0);
  }

  std::optional<uint32_t> opacity_;
  std::optional<Frame> image_;
  Converter converter_;
  Frame overlay_;
  std::vector<uint8_t> alpha_;
};

}  // namespace

std::unique_ptr<Step> MakeBlendStep(const ParamSet& params, bool verbose) {
  return std::make_unique<BlendStep>(params, verbose);
}

}  // namespace Lumaforge::cli
