// The upsampler under fuzzing: every mode, enlarging by 2, 1.5 and other
// ratios, widening only, and shrinking.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms UpsampleFuzz() {
  return {.type = LF_FILTER_UPSAMPLE,
          .config = [](ByteSource& choose, const RecordShape&) { return BytesOf(uint32_t{choose.Below(5)}); },
          .outputs =
              [](const RecordShape& in) {
                const uint32_t w = in.width, h = in.height;
                std::vector<OutputChoice> choices;
                for (const auto& [ow, oh] : {std::pair{2 * w, 2 * h},
                                             {(3 * w / 2) & ~1u, (3 * h / 2) & ~1u},
                                             {w + 2, h},
                                             {w / 2, h / 2},
                                             {w + 10, h + 4}}) {
                  choices.push_back(SameAsInput({in.format, ow, oh}));
                }
                return choices;
              }};
}

const FuzzRegistration kRegistration(UpsampleFuzz);

}  // namespace
}  // namespace Lumaforge::test
