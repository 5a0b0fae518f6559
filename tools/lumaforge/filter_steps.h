// The step of each catalog entry; one source file per filter.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_FILTER_STEPS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_FILTER_STEPS_H_

#include <memory>

#include "tools/lumaforge/param_set.h"
#include "tools/lumaforge/step.h"

namespace Lumaforge::cli {

std::unique_ptr<Step> MakeCscStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeDenoiseStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeDebandStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeCropStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeDownsampleStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeUpsampleStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeSrStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeBlendStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeBlurStep(const ParamSet& params, bool verbose);
std::unique_ptr<Step> MakeEffectStep(const ParamSet& params, bool verbose);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_FILTER_STEPS_H_
