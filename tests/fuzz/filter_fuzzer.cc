// The libFuzzer target: one input is one host session with the library (a
// processor level, a log set-up and up to a dozen calls on any filter).
// Built twice, for consistent records and for bad ones
// (LUMAFORGE_FUZZ_BAD_RECORDS).
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/fuzz_session.h"

namespace {
#if defined(LUMAFORGE_FUZZ_BAD_RECORDS)
constexpr Lumaforge::test::RecordMode kMode = Lumaforge::test::RecordMode::kBad;
#else
constexpr Lumaforge::test::RecordMode kMode = Lumaforge::test::RecordMode::kConsistent;
#endif
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Lumaforge::test::ByteSource choose(data, size);
  Lumaforge::test::FuzzSession session(kMode);
  session.RunChoices(choose);
  return 0;
}
