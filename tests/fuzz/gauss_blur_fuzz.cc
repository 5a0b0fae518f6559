// The Gaussian blur under fuzzing: any sigma bit pattern (NaN and infinities
// included), outputs that state the input's shape or leave it at zero.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms GaussBlurFuzz() {
  return {.type = LF_FILTER_GAUSS_BLUR,
          .config =
              [](ByteSource& choose, const RecordShape&) {
                const uint32_t bits = choose.Word();
                float sigma;
                std::memcpy(&sigma, &bits, sizeof(sigma));
                if ((bits & 3) != 0) sigma = static_cast<float>(bits % 4000) / 100.0f;
                return BytesOf(sigma);
              },
          .rowsByWidth = true,
          .outputs =
              [](const RecordShape& in) {
                return std::vector<OutputChoice>{SameAsInput(in), {in, {}}, {in, {in.format, 0, 0}}};
              },
          .checksOutputFormat = true};
}

const FuzzRegistration kRegistration(GaussBlurFuzz);

}  // namespace
}  // namespace Lumaforge::test
