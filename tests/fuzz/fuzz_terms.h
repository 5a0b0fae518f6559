// What the fuzz target and the sweep need to know of each filter to drive it
// as a host would: its Init record, the output records it takes for an
// input, and which parts of a record it promises not to check (those stay
// consistent even when records are spoiled on purpose). Each filter's
// tests/fuzz/<filter>_fuzz.cc registers one FuzzTerms.
#ifndef LUMAFORGE_TESTS_FUZZ_FUZZ_TERMS_H_
#define LUMAFORGE_TESTS_FUZZ_FUZZ_TERMS_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

// Choices read from fuzz input; zeros once the input is used up, so every
// input decodes to some call sequence.
class ByteSource {
 public:
  ByteSource(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  uint8_t Byte() { return used_ < size_ ? data_[used_++] : 0; }
  uint32_t Word() {
    uint32_t w = 0;
    for (int i = 0; i < 4; ++i) w = (w << 8) | Byte();
    return w;
  }
  // A value in 0 .. bound - 1 (bound > 0).
  uint32_t Below(uint32_t bound) { return (bound <= 256 ? Byte() : Word()) % bound; }
  bool Empty() const { return used_ >= size_; }

 private:
  const uint8_t* data_;
  size_t size_, used_ = 0;
};

// The format word and size a record states.
struct RecordShape {
  uint32_t format = 0, width = 0, height = 0;
};

// An output record for an input: the shape its planes are allocated for and
// the fields it states (they differ when a filter takes zero fields).
struct OutputChoice {
  RecordShape planes;
  RecordShape stated;
};

template <typename Record>
std::vector<uint8_t> BytesOf(const Record& record) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
  return {bytes, bytes + sizeof(record)};
}

struct FuzzTerms {
  int32_t type = 0;
  std::vector<uint8_t> flags = {0};
  // Init's record, from choice bytes; empty means null. `frame` is the
  // output of the frame it is made for (filters that keep a pointer to a
  // per-frame record, such as an alpha map, are given one before each frame).
  // A record-valued parameter takes the same record.
  std::function<std::vector<uint8_t>(ByteSource& choose, const RecordShape& frame)> config;
  bool configPerFrame = false;
  // Called after every Init, for settings a host makes through SetParam
  // that the descriptor's numeric parameters do not cover.
  std::function<void(ILumaforge* library)> afterInit = nullptr;
  // Whether Process reads the input's qpMap (one byte per 16x16 block); the
  // fuzz target then gives one of exactly that size, or null.
  bool readsQpMap = false;
  // Rows addressed by the width: strides are exactly the row bytes.
  bool rowsByWidth = false;
  // Output records the filter takes for an input of `in`'s shape.
  std::function<std::vector<OutputChoice>(const RecordShape& in)> outputs;
  // Whether spoiled output records are refused (the converter does not check
  // its output record at all) and whether a stated output format other than
  // the input's is.
  bool checksOutput = true;
  bool checksOutputFormat = false;
  // Planes start on this many bytes (filters that refuse others).
  uint32_t planeAlignment = 1;
};

// An output of the input's shape, planes and fields alike.
inline OutputChoice SameAsInput(const RecordShape& in) { return {in, in}; }

std::vector<FuzzTerms (*)()>& RegisteredFuzzTerms();
struct FuzzRegistration {
  explicit FuzzRegistration(FuzzTerms (*make)()) { RegisteredFuzzTerms().push_back(make); }
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_FUZZ_FUZZ_TERMS_H_
