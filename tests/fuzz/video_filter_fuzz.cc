// The video filter under fuzzing: every effect, configured sizes that match
// the frames or not; it works in place and ignores its output record.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms VideoFilterFuzz() {
  return {.type = LF_FILTER_VIDEO_FILTER,
          .config =
              [](ByteSource& choose, const RecordShape& frame) {
                const bool matching = choose.Byte() & 1;
                VideoFilterConfig c{matching ? frame.width : choose.Below(140),
                                    matching ? frame.height : choose.Below(140),
                                    choose.Byte() & 7 ? LF_I420 : choose.Below(32), choose.Below(7)};
                return BytesOf(c);
              },
          .outputs =
              [](const RecordShape&) {
                return std::vector<OutputChoice>{SameAsInput({LF_I420, 16, 16})};
              }};
}

const FuzzRegistration kRegistration(VideoFilterFuzz);

}  // namespace
}  // namespace Lumaforge::test
