// The crop filter under fuzzing: rectangles of every size, including ones
// reaching past the picture and past 32 bits; the output record it writes
// points into the input, and the fuzz target reads every byte of it.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

// Mostly numbers near picture sizes, sometimes any 32-bit value.
uint32_t Coordinate(ByteSource& choose) { return (choose.Byte() & 3) == 0 ? choose.Word() : choose.Below(140); }

std::vector<uint8_t> Rectangle(ByteSource& choose) {
  CropConfig c{choose.Below(3), Coordinate(choose), Coordinate(choose), Coordinate(choose), Coordinate(choose)};
  return BytesOf(c);
}

FuzzTerms CropFuzz() {
  return {.type = LF_FILTER_CROP,
          .config = [](ByteSource& choose, const RecordShape&) { return Rectangle(choose); },
          .outputs = [](const RecordShape& in) { return std::vector<OutputChoice>{SameAsInput(in)}; }};
}

const FuzzRegistration kRegistration(CropFuzz);

}  // namespace
}  // namespace Lumaforge::test
