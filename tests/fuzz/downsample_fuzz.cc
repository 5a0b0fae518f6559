// The downsampler under fuzzing: both buffer modes, exact halvings, thirds,
// quarters and other ratios, and outputs that leave the format to the input.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms DownsampleFuzz() {
  return {.type = LF_FILTER_DOWNSAMPLE,
          .flags = {0, 1},
          .config = [](ByteSource&, const RecordShape&) { return std::vector<uint8_t>(); },
          .outputs =
              [](const RecordShape& in) {
                const uint32_t w = in.width, h = in.height;
                const auto even = [](uint32_t v) { return v & ~1u; };
                std::vector<OutputChoice> choices;
                for (const auto& [ow, oh] : {std::pair{w / 2, h / 2},
                                             {even(w / 3), even(h / 3)},
                                             {even(w / 4), even(h / 4)},
                                             {even(w * 2 / 3), even(h * 2 / 3)},
                                             {even(w > 2 ? w - 2 : 0), even(h * 3 / 4)}}) {
                  choices.push_back(SameAsInput({in.format, ow, oh}));
                }
                choices.push_back({{in.format, w / 2, h / 2}, {0, w / 2, h / 2}});
                return choices;
              },
          .checksOutputFormat = true};
}

const FuzzRegistration kRegistration(DownsampleFuzz);

}  // namespace
}  // namespace Lumaforge::test
