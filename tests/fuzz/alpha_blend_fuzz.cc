// Alpha blending under fuzzing. The filter reads the input and the alpha map
// over the output's size without checking either, so the host gives a map of
// the output's size before each frame and an input at least that large in
// the output's layout.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms AlphaBlendFuzz() {
  return {.type = LF_FILTER_ALPHA_BLEND,
          .config =
              [](ByteSource& choose, const RecordShape& frame) {
                std::vector<uint8_t> map(size_t{frame.width} * frame.height);
                const uint8_t seed = choose.Byte();
                for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint8_t>(seed + i * 37);
                return map;
              },
          .configPerFrame = true,
          .rowsByWidth = true,
          .outputs =
              [](const RecordShape& in) {
                return std::vector<OutputChoice>{SameAsInput(in), SameAsInput({in.format, in.width / 2, in.height}),
                                                 SameAsInput({in.format, in.width, in.height > 0 ? in.height - 1 : 0})};
              }};
}

const FuzzRegistration kRegistration(AlphaBlendFuzz);

}  // namespace
}  // namespace Lumaforge::test
