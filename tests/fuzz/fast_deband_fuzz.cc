// Deband under fuzzing: configured sizes that match the frames or not, any
// strength, dither, size and depths; outputs of the input's shape in their
// own 64-byte aligned planes.
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {
namespace {

FuzzTerms FastDebandFuzz() {
  return {.type = LF_FILTER_FAST_DEBAND,
          .config =
              [](ByteSource& choose, const RecordShape& frame) {
                const bool matching = choose.Byte() & 1;
                FastDebandConfig c{
                    matching ? frame.width : choose.Below(140), matching ? frame.height : choose.Below(140),
                    static_cast<int32_t>(choose.Below(40)) - 4, static_cast<int32_t>(choose.Below(20)) - 2,
                    static_cast<int32_t>(choose.Below(12)) - 2, choose.Byte() & 7 ? LF_I420 : choose.Below(32),
                    static_cast<int32_t>(choose.Below(7)) - 1,  static_cast<int32_t>(choose.Below(7)) - 1};
                return BytesOf(c);
              },
          .readsQpMap = true,
          .outputs = [](const RecordShape& in) { return std::vector<OutputChoice>{SameAsInput(in)}; },
          .planeAlignment = 64};
}

const FuzzRegistration kRegistration(FastDebandFuzz);

}  // namespace
}  // namespace Lumaforge::test
