// csc: the colour space converter (type 1) as a chain step.
#include "tools/lumaforge/converter.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

class CscStep : public Step {
 public:
  CscStep(const ParamSet& params, bool verbose) : Step(verbose), converter_(library_) {
    const std::string name = params.Text("format", "bgra");
    const std::optional<uint32_t> format = FormatByName(name);
    if (!format) throw ToolError("format=" + name + " is not a format (" + JoinedFormatNames(AllFormats()) + ")");
    target_ = *format;
  }

  Frame Run(Frame frame) override { return converter_.To(std::move(frame), target_); }

 private:
  Converter converter_;
  uint32_t target_ = LF_BGRA;
};

}  // namespace

std::unique_ptr<Step> MakeCscStep(const ParamSet& params, bool verbose) {
  return std::make_unique<CscStep>(params, verbose);
}

}  // namespace Lumaforge::cli
