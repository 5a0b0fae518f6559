// downsample (type 8), writing into the step's own output frame (flag 1).
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/pixel_formats.h"
#include "tools/lumaforge/resize_target.h"

namespace Lumaforge::cli {
namespace {

constexpr uint32_t kMinSide = 16;  // the filter's smallest input and output
constexpr uint32_t kMaxSide = 16384;

class DownsampleStep : public Step {
 public:
  DownsampleStep(const ParamSet& params, bool verbose)
      : Step(verbose),
        width_(params.Whole("width", kMinSide, kMaxSide)),
        height_(params.Whole("height", kMinSide, kMaxSide)) {
    library_.Init(LF_FILTER_DOWNSAMPLE, nullptr, 1);
  }

  Frame Run(Frame frame) override {
    frame = EvenFrame(std::move(frame));
    const uint32_t inWidth = frame.width(), inHeight = frame.height();
    if (inWidth < kMinSide || inHeight < kMinSide)
      throw ToolError("a " + SizeText(inWidth, inHeight) + " picture is too small to downsample (16x16 at least)");
    const auto [width, height] =
        ResizeTarget(width_, height_, inWidth, inHeight, {(inWidth / 2) & ~1u, (inHeight / 2) & ~1u});
    if (width < kMinSide || height < kMinSide || width >= inWidth || height >= inHeight || ((width | height) & 1)) {
      throw ToolError("cannot downsample " + SizeText(inWidth, inHeight) + " to " + SizeText(width, height) +
                      ": the target must be even, at least 16x16 and smaller in both directions");
    }
    Frame out(frame.format(), width, height);
    VideoPicture input = frame.Picture(), output = out.Picture();
    library_.Process(LF_FILTER_DOWNSAMPLE, &input, &output);
    return out;
  }

 private:
  std::optional<uint32_t> width_, height_;
};

}  // namespace

std::unique_ptr<Step> MakeDownsampleStep(const ParamSet& params, bool verbose) {
  return std::make_unique<DownsampleStep>(params, verbose);
}

}  // namespace Lumaforge::cli
