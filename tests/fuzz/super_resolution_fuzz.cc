// Super resolution under fuzzing: both buffer modes, 2x, 1.5x and other
// ratios, pictures with and without their own quantiser map, and the
// enhanced mode reading the library's coefficient file.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms SuperResolutionFuzz() {
  return {.type = LF_FILTER_SUPER_RESOLUTION,
          .flags = {0, 1},
          .config = [](ByteSource&, const RecordShape&) { return std::vector<uint8_t>(); },
          .afterInit =
              [](ILumaforge* library) {
                library->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_COEFFICIENT_FILE,
                                  const_cast<char*>(LUMAFORGE_SR_COEFFICIENT_FILE));
              },
          .readsQpMap = true,
          .outputs =
              [](const RecordShape& in) {
                const uint32_t w = in.width, h = in.height;
                return std::vector<OutputChoice>{SameAsInput({in.format, 2 * w, 2 * h}),
                                                 SameAsInput({in.format, 3 * w / 2, 3 * h / 2}),
                                                 SameAsInput({in.format, 2 * w, h}),
                                                 {{in.format, 2 * w, 2 * h}, {0, 2 * w, 2 * h}}};
              },
          .checksOutputFormat = false};
}

const FuzzRegistration kRegistration(SuperResolutionFuzz);

}  // namespace
}  // namespace Lumaforge::test
