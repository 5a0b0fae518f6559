// blur (type 25): the Gaussian blur into a new frame.
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"

namespace Lumaforge::cli {
namespace {

class BlurStep : public Step {
 public:
  BlurStep(const ParamSet& params, bool verbose) : Step(verbose) {
    // Null keeps the filter's own sigma until --param sigma sets one.
    library_.Init(LF_FILTER_GAUSS_BLUR, nullptr, 0);
    ApplyLibraryParams(library_, *FindFilterDescriptor(LF_FILTER_GAUSS_BLUR), params);
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
