// denoise (type 2): spatial and temporal denoising, changing the I420 frame
// in place; the filter keeps the previous output as its reference.
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"

namespace Lumaforge::cli {
namespace {

class DenoiseStep : public Step {
 public:
  DenoiseStep(const ParamSet& params, bool verbose) : Step(verbose), params_(params) {}

  Frame Run(Frame frame) override {
    if (frame.width() != width_ || frame.height() != height_) {
      // Automatic level unless --param level=1..4 (or -1) fixes one.
      DenoiseConfig config = {frame.width(), frame.height(), LF_I420, 0};
      library_.Init(LF_FILTER_DENOISE, &config, 0);
      ApplyLibraryParams(library_, *FindFilterDescriptor(LF_FILTER_DENOISE), params_);
      width_ = frame.width();
      height_ = frame.height();
    }
    VideoPicture picture = frame.Picture(), unused = {};
    library_.Process(LF_FILTER_DENOISE, &picture, &unused);
    return frame;
  }

 private:
  ParamSet params_;
  uint32_t width_ = 0, height_ = 0;
};

}  // namespace

std::unique_ptr<Step> MakeDenoiseStep(const ParamSet& params, bool verbose) {
  return std::make_unique<DenoiseStep>(params, verbose);
}

}  // namespace Lumaforge::cli
