// The converter under fuzzing: every format it converts to, at the input's
// size and at other sizes (it converts over the smaller of the two). Its
// output record is not checked, so it is never spoiled.
#include "framework/filter_descriptor.h"
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms CscFuzz() {
  return {.type = LF_FILTER_CSC,
          .config = [](ByteSource&, const RecordShape&) { return std::vector<uint8_t>(); },
          .outputs =
              [](const RecordShape& in) {
                std::vector<OutputChoice> choices;
                for (const uint32_t code : FindFilterDescriptor(LF_FILTER_CSC)->formats) {
                  choices.push_back(SameAsInput({code, in.width, in.height}));
                  choices.push_back(SameAsInput({code | LF_FORMAT_BOTTOM_UP, in.width, in.height}));
                }
                choices.push_back(SameAsInput({LF_BGRA, in.width + 3, in.height / 2}));
                choices.push_back(SameAsInput({LF_I420, in.width / 2, in.height + 5}));
                return choices;
              },
          .checksOutput = false};
}

const FuzzRegistration kRegistration(CscFuzz);

}  // namespace
}  // namespace Lumaforge::test
