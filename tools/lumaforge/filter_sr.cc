// sr (type 20): super resolution by 2 or by 1.5 into the step's own output
// frame (caller-buffer mode).
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"
#include "tools/lumaforge/resize_target.h"

namespace Lumaforge::cli {
namespace {

class SrStep : public Step {
 public:
  SrStep(const ParamSet& params, bool verbose)
      : Step(verbose),
        mode_(params.Text("mode", "standard")),
        path_(params.Text("coeffs", LUMAFORGE_SR_COEFFICIENT_FILE)) {
    const std::string scale = params.Text("scale", mode_ == "alt15" ? "1.5" : "2");
    if (mode_ != "standard" && mode_ != "enhanced" && mode_ != "alt15")
      throw ToolError("mode=" + mode_ + " is not one of standard, enhanced, alt15");
    if (scale != "2" && scale != "1.5") throw ToolError("scale=" + scale + " is not 2 or 1.5");
    if ((mode_ == "enhanced" && scale != "2") || (mode_ == "alt15" && scale != "1.5"))
      throw ToolError("mode=" + mode_ + " enlarges by " + (mode_ == "enhanced" ? "2" : "1.5") + " only");
    oneAndAHalf_ = scale == "1.5";
    library_.Init(LF_FILTER_SUPER_RESOLUTION, nullptr, 1);
    uint8_t enhanced = mode_ == "enhanced", alternative = mode_ == "alt15";
    library_.SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ENHANCED, &enhanced);
    library_.SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ALTERNATIVE_15, &alternative);
    library_.SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_COEFFICIENT_FILE, path_.data());
    // The library's own parameters, given by name, override the mode.
    ApplyLibraryParams(library_, *FindFilterDescriptor(LF_FILTER_SUPER_RESOLUTION), params);
  }

  Frame Run(Frame frame) override {
    // Every output side must be even: by 1.5 the input sides are cut to
    // multiples of 4.
    frame = EvenFrame(std::move(frame));
    if (oneAndAHalf_ && ((frame.width() | frame.height()) & 3)) {
      VideoPicture cut = frame.Picture();
      cut.width &= ~3u;
      cut.height &= ~3u;
      frame = Frame::CopyOf(cut);
    }
    const uint32_t width = oneAndAHalf_ ? frame.width() * 3 / 2 : 2 * frame.width();
    const uint32_t height = oneAndAHalf_ ? frame.height() * 3 / 2 : 2 * frame.height();
    Frame out(frame.format(), width, height);
    VideoPicture input = frame.Picture(), output = out.Picture();
    library_.Process(LF_FILTER_SUPER_RESOLUTION, &input, &output);
    return out;
  }

 private:
  std::string mode_;
  std::string path_;
  bool oneAndAHalf_ = false;
};

}  // namespace

std::unique_ptr<Step> MakeSrStep(const ParamSet& params, bool verbose) {
  return std::make_unique<SrStep>(params, verbose);
}

}  // namespace Lumaforge::cli
