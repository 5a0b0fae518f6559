// Drives the library through its public interface as a host would, from a
// stream of choices: the fuzz target feeds it fuzz input, the sweep feeds it
// every combination in turn. Every plane of every picture is its own heap
// block of exactly stride x rows bytes, freed right after the call that used
// it, so a filter that reads or writes outside a record's planes, or keeps a
// pointer to an earlier frame, is caught by AddressSanitizer.
#ifndef LUMAFORGE_TESTS_FUZZ_FUZZ_SESSION_H_
#define LUMAFORGE_TESTS_FUZZ_FUZZ_SESSION_H_

#include <cstdint>
#include <map>
#include <vector>

#include "framework/filter_descriptor.h"
#include "lumaforge/lumaforge.h"
#include "tests/fuzz/fuzz_terms.h"

namespace Lumaforge::test {

enum class RecordMode {
  kConsistent,  // every plane a real buffer of the size its record states
  kBad,         // records spoiled in ways a filter can see and must refuse
};

// Ways a bad-record call spoils its records (kNone: as made).
enum class Spoil : uint8_t {
  kNone,
  kNoInputRecord,
  kNoOutputRecord,
  kNoInputPlane,
  kNoOutputPlane,
  kShortInputStride,
  kShortOutputStride,
  kHugeInput,
  kHugeOutput,
  kOtherOutputFormat,
  kCount
};

// One Process call's pictures, as chosen.
struct FrameChoice {
  RecordShape input;
  OutputChoice output;
  uint32_t inPad = 0, outPad = 0;        // bytes of stride beyond the row
  uint32_t inOffset = 0, outOffset = 0;  // plane start within its block
  Spoil spoil = Spoil::kNone;
  uint8_t spoiledPlane = 0;
  uint8_t seed = 0;
};

class FuzzSession {
 public:
  explicit FuzzSession(RecordMode mode);
  ~FuzzSession();
  FuzzSession(const FuzzSession&) = delete;
  FuzzSession& operator=(const FuzzSession&) = delete;

  // Decodes a processor level, a log set-up and up to a dozen calls, and
  // makes them.
  void RunChoices(ByteSource& choose);

  // The calls themselves, for the sweep.
  int32_t Init(const FuzzTerms& terms, ByteSource& choose, uint8_t flag, const RecordShape& frame);
  int32_t Process(const FuzzTerms& terms, const FrameChoice& frame, ByteSource& choose);
  ILumaforge* library() const { return lf_; }

 private:
  void SetParam(const FuzzTerms* terms, ByteSource& choose);
  void GetParam(const FuzzTerms* terms, ByteSource& choose);
  FrameChoice ChooseFrame(const FuzzTerms& terms, const FilterDescriptor& descriptor, ByteSource& choose) const;

  RecordMode mode_;
  ILumaforge* lf_ = nullptr;
  // Each filter's last Init record, kept alive as a host keeps it.
  std::map<int32_t, std::vector<uint8_t>> configs_;
  std::map<int32_t, uint8_t> flags_;
};

// The registered terms of every filter in the library's list, in list order;
// aborts when a filter has none, so no filter goes unfuzzed.
std::vector<FuzzTerms> AllFuzzTerms();

// The processor levels this machine runs, as LUMAFORGE_CPU_MASK values.
std::vector<const char*> AvailableCpuMasks();

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_FUZZ_FUZZ_SESSION_H_
