// The contract every filter keeps, written once: each filter's tests give a
// ContractTerms (pictures to run, documented refusals, which record fields
// the filter writes), and the contract test runs the same checks on all of
// them through the manager's public interface.
#ifndef LUMAFORGE_TESTS_CONTRACT_FILTER_CONTRACT_H_
#define LUMAFORGE_TESTS_CONTRACT_FILTER_CONTRACT_H_

#include <cstdint>
#include <functional>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

// Record fields a filter may write (besides the pixels it produces).
enum RecordFields : uint32_t {
  kNoFields = 0,
  kPlaneFields = 1,  // planes and strides
  kSizeFields = 2,   // width and height
  kFormatField = 4,
};

// One call's pictures.
struct ContractFrame {
  uint32_t inFormat, inWidth, inHeight;
  uint32_t outFormat, outWidth, outHeight;
  // When set: the expected result bytes (rows of every plane, padding
  // left out) computed from the input by the filter's formula.
  std::function<std::vector<uint8_t>(const VideoPicture& in)> model = nullptr;
};

// A frame whose output record has the input's format and size.
inline ContractFrame Same(uint32_t format, uint32_t width, uint32_t height) {
  return {format, width, height, format, width, height};
}

struct ContractRefusal {
  const char* what;
  ContractFrame frame;
  // Spoils the records (a record pointer may be set to null).
  std::function<void(VideoPicture*& in, VideoPicture*& out)> spoil;
  int32_t status;  // the documented answer
  // Output record fields the refusal still writes, where that is documented.
  uint32_t writesOutput = kNoFields;
  // The one Init flag the refusal applies under (-1: every flag).
  int32_t onlyFlag = -1;
};

struct ContractTerms {
  int32_t type = 0;
  // Init's record (its bytes; null when empty) and the flags to run under.
  std::vector<uint8_t> config = {};
  std::vector<uint8_t> flags = {0};
  // Bytes of row padding in the test pictures (0 for filters that address
  // rows by the width).
  uint32_t pad = 8;
  // Planes start on this many bytes (filters that refuse others).
  uint32_t alignment = 1;
  // Whether the result lands in the input (in-place filters) or the output.
  bool resultInInput = false;
  uint32_t writesInput = kNoFields;
  // Per flag: what Process writes into the output record.
  std::function<uint32_t(uint8_t flag)> writesOutput = [](uint8_t) { return kNoFields; };
  std::vector<ContractFrame> frames = {};
  // Whether the filter reads the previous frame of the same size: a frame
  // then gives the same bytes after itself as in a fresh filter.
  bool readsPreviousFrame = false;
  // Whether each result depends on every earlier frame of its size (a
  // recursive filter): only the first frame after a change of size must
  // match a fresh filter's.
  bool recursive = false;
  std::vector<ContractRefusal> refusals = {};
};

// Common ways to spoil a call's records.
inline void NoInput(VideoPicture*& in, VideoPicture*&) { in = nullptr; }
inline void NoOutput(VideoPicture*&, VideoPicture*& out) { out = nullptr; }
inline void AsGiven(VideoPicture*&, VideoPicture*&) {}
template <int kPlane>
void NoInputPlane(VideoPicture*& in, VideoPicture*&) {
  in->planes[kPlane] = nullptr;
}
template <int kPlane>
void NoOutputPlane(VideoPicture*&, VideoPicture*& out) {
  out->planes[kPlane] = nullptr;
}
// A first-plane stride one byte short of the row.
inline void ShortInputStride(VideoPicture*& in, VideoPicture*&) { in->strides[0] = in->strides[0] - 9; }
inline void ShortOutputStride(VideoPicture*&, VideoPicture*& out) { out->strides[0] = out->strides[0] - 9; }
// A record claiming 2^30 x 2^31 pixels at strides of 2^31 bytes, over the
// small buffers of the test: its byte counts pass 32 bits, so it must be
// refused before anything is read.
inline void Huge(VideoPicture& p) {
  p.width = 1u << 30;
  p.height = 1u << 31;
  for (uint32_t& stride : p.strides) stride = 1u << 31;
}
inline void HugeInput(VideoPicture*& in, VideoPicture*&) { Huge(*in); }
inline void HugeOutput(VideoPicture*&, VideoPicture*& out) { Huge(*out); }

// A configuration record as Init's bytes.
template <typename Record>
std::vector<uint8_t> RecordBytes(const Record& record) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
  return {bytes, bytes + sizeof(record)};
}

// Each filter's contract file registers its terms by defining one
// ContractRegistration at namespace scope (test programs link every object,
// so none is dropped).
std::vector<ContractTerms (*)()>& RegisteredContracts();
struct ContractRegistration {
  explicit ContractRegistration(ContractTerms (*make)()) { RegisteredContracts().push_back(make); }
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_CONTRACT_FILTER_CONTRACT_H_
