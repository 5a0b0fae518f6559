// effect (type 22): colour effects, changing the I420 frame in place.
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"

namespace Lumaforge::cli {
namespace {

struct Look {
  const char* name;
  uint32_t effect;
};

constexpr Look kLooks[] = {{"grey", LF_EFFECT_GREY},
                           {"hue", LF_EFFECT_HUE_ROTATE},
                           {"sepia", LF_EFFECT_SEPIA},
                           {"tone", LF_EFFECT_TONE_CURVES},
                           {"film", LF_EFFECT_CURVE_TABLES}};

uint32_t EffectOf(const std::string& look) {
  for (const Look& l : kLooks) {
    if (look == l.name) return l.effect;
  }
  throw ToolError("look=" + look + " is not one of grey, hue, sepia, tone, film");
}

class EffectStep : public Step {
 public:
  EffectStep(const ParamSet& params, bool verbose)
      : Step(verbose), params_(params), effect_(EffectOf(params.Text("look", "sepia"))) {}

  Frame Run(Frame frame) override {
    if (frame.width() != width_ || frame.height() != height_) {
      VideoFilterConfig config = {frame.width(), frame.height(), LF_I420, effect_};
      library_.Init(LF_FILTER_VIDEO_FILTER, &config, 0);
      // An effect number given as the library's parameter overrides the look.
      ApplyLibraryParams(library_, *FindFilterDescriptor(LF_FILTER_VIDEO_FILTER), params_);
      width_ = frame.width();
      height_ = frame.height();
    }
    VideoPicture picture = frame.Picture(), unused = {};
    library_.Process(LF_FILTER_VIDEO_FILTER, &picture, &unused);
    return frame;
  }

 private:
  ParamSet params_;
  uint32_t effect_;
  uint32_t width_ = 0, height_ = 0;
};

}  // namespace

std::unique_ptr<Step> MakeEffectStep(const ParamSet& params, bool verbose) {
  return std::make_unique<EffectStep>(params, verbose);
}

}  // namespace Lumaforge::cli
