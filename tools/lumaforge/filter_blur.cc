// blur (type 25): the Gaussian blur into a new frame.
#include "tools/lumaforge/filter_steps.h"

namespace Lumaforge::cli {
namespace {

class BlurStep : public Step {
 public:
  BlurStep(const ParamSet& params, bool verbose) : Step(verbose) {
    // The filter raises anything below 0.5; asking for less is refused instead.
    float sigma = params.Real("sigma", 5.0f, 0.5f, 1000.0f);
    library_.Init(LF_FILTER_GAUSS_BLUR, &sigma, 0);
  }

  Frame Run(Frame frame) override {
    Frame out(frame.format(), frame.width(), frame.height());
    VideoPicture input = frame.Picture(), output = out.Picture();
    library_.Process(LF_FILTER_GAUSS_BLUR, &input, &output);
    return out;
  }
};

}  // namespace

std::unique_ptr<Step> MakeBlurStep(const ParamSet& params, bool verbose) {
  return std::make_unique<BlurStep>(params, verbose);
}

}  // namespace Lumaforge::cli
