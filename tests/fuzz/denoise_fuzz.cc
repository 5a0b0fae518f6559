// Denoise under fuzzing: every level (automatic, fixed, pass-through),
// configured sizes that match the frames or not; it works in place and
// ignores its output record.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms DenoiseFuzz() {
  return {.type = LF_FILTER_DENOISE,
          .config =
              [](ByteSource& choose, const RecordShape& frame) {
                const bool matching = choose.Byte() & 1;
                DenoiseConfig c{matching ? frame.width : choose.Below(140), matching ? frame.height : choose.Below(140),
                                choose.Byte() & 7 ? LF_I420 : choose.Below(32),
                                static_cast<int32_t>(choose.Below(6)) - 1};
                return BytesOf(c);
              },
          .outputs =
              [](const RecordShape&) {
                return std::vector<OutputChoice>{SameAsInput({LF_I420, 16, 16})};
              }};
}

const FuzzRegistration kRegistration(DenoiseFuzz);

}  // namespace
}  // namespace Lumaforge::test
