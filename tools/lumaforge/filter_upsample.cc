// upsample (type 21): enlarges the frame with libyuv's plane scaler into the
// step's own output frame.
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/pixel_formats.h"
#include "tools/lumaforge/resize_target.h"

namespace Lumaforge::cli {
namespace {

constexpr uint32_t kMaxSide = 16384;

uint32_t ModeOf(const std::string& name) {
  if (name == "linear") return LF_UPSAMPLE_LINEAR;
  if (name == "bilinear") return LF_UPSAMPLE_BILINEAR;
  if (name == "box") return LF_UPSAMPLE_BOX;
  throw ToolError("mode=" + name + " is not one of linear, bilinear, box");
}

class UpsampleStep : public Step {
 public:
  UpsampleStep(const ParamSet& params, bool verbose)
      : Step(verbose), width_(params.Whole("width", 2, kMaxSide)), height_(params.Whole("height", 2, kMaxSide)) {
    uint32_t mode = ModeOf(params.Text("mode", "bilinear"));
    library_.Init(LF_FILTER_UPSAMPLE, &mode, 0);
  }

  Frame Run(Frame frame) override {
    frame = EvenFrame(std::move(frame));
    const auto [width, height] =
        ResizeTarget(width_, height_, frame.width(), frame.height(), {2 * frame.width(), 2 * frame.height()});
    if ((width | height) & 1)
      throw ToolError("cannot upsample to " + SizeText(width, height) + ": the target must be even");
    Frame out(frame.format(), width, height);
    VideoPicture input = frame.Picture(), output = out.Picture();
    library_.Process(LF_FILTER_UPSAMPLE, &input, &output);
    return out;
  }

 private:
  std::optional<uint32_t> width_, height_;
};

}  // namespace

std::unique_ptr<Step> MakeUpsampleStep(const ParamSet& params, bool verbose) {
  return std::make_unique<UpsampleStep>(params, verbose);
}

}  // namespace Lumaforge::cli
