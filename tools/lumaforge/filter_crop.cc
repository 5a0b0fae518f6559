// crop (type 16): the library answers plane pointers into the input; the
// step copies that rectangle out into a frame of its own.
#include <algorithm>

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

constexpr uint32_t kMaxCoordinate = 1u << 16;

class CropStep : public Step {
 public:
  CropStep(const ParamSet& params, bool verbose)
      : Step(verbose),
        left_(params.Whole("left", 0, kMaxCoordinate)),
        top_(params.Whole("top", 0, kMaxCoordinate)),
        width_(params.Whole("width", 1, kMaxCoordinate)),
        height_(params.Whole("height", 1, kMaxCoordinate)),
        aspect_(params.AspectRatio("aspect")) {
    if (aspect_ && (left_ || top_ || width_ || height_))
      throw ToolError("aspect= places its own rectangle; it cannot be combined with left, top, width or height");
    library_.Init(LF_FILTER_CROP, nullptr, 0);
  }

  Frame Run(Frame frame) override {
    CropConfig config = Config(frame.width(), frame.height());
    library_.SetParam(LF_FILTER_CROP, LF_PARAM_CROP_CONFIG, &config);
    VideoPicture input = frame.Picture(), output = {};
    library_.Process(LF_FILTER_CROP, &input, &output);
    if (output.width == 0 || output.height == 0) throw ToolError("the crop rectangle is empty");
    return Frame::CopyOf(output);
  }

 private:
  CropConfig Config(uint32_t width, uint32_t height) const {
    if (aspect_) return {0, 0, 0, aspect_->numerator, aspect_->denominator};
    const CropConfig config = {1, top_.value_or(height / 4), left_.value_or(width / 4),
                               width_.value_or(std::max(1u, width / 2)), height_.value_or(std::max(1u, height / 2))};
    if (config.left >= width || config.top >= height) {
      throw ToolError("left=" + std::to_string(config.left) + " top=" + std::to_string(config.top) +
                      " is outside the " + SizeText(width, height) + " picture");
    }
    return config;
  }

  std::optional<uint32_t> left_, top_, width_, height_;
  std::optional<Ratio> aspect_;
};

}  // namespace

std::unique_ptr<Step> MakeCropStep(const ParamSet& params, bool verbose) {
  return std::make_unique<CropStep>(params, verbose);
}

}  // namespace Lumaforge::cli
