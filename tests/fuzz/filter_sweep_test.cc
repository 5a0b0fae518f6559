// The deterministic sweep: every filter at every processor level, on every
// format code (0 .. 32, with and without the bottom-up flag) at sizes 0 .. 129,
// into several outputs, with exact-size heap planes; then every kind of bad
// record on each accepted format. Under the sanitizers any access outside a
// plane fails the test; in every build a crash does.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/environment.h"
#include "tests/fuzz/fuzz_session.h"
#include "tools/cpu_level_masks.h"

namespace Lumaforge::test {
namespace {

struct Size {
  uint32_t width, height;
};

// Squares 0 .. 129, and every width and height 0 .. 129 beside a small other side.
std::vector<Size> SweepSizes() {
  std::vector<Size> sizes;
  for (uint32_t s = 0; s < 130; ++s) {
    sizes.push_back({s, s});
    sizes.push_back({s, s % 9});
    sizes.push_back({s % 7, s});
  }
  return sizes;
}

// Fixed choice bytes per call, for the records a filter's terms make.
struct Choices {
  explicit Choices(uint32_t n) {
    for (uint8_t& b : bytes) {
      n = n * 1664525u + 1013904223u;
      b = static_cast<uint8_t>(n >> 24);
    }
  }
  std::array<uint8_t, 32> bytes;
  ByteSource source() const { return ByteSource(bytes.data(), bytes.size()); }
};

class FilterSweep : public testing::TestWithParam<std::tuple<size_t, size_t>> {
 protected:
  void SetUp() override {
    const auto [filter, level] = GetParam();
    terms_ = AllFuzzTerms()[filter];
    const std::vector<const char*> masks = AvailableCpuMasks();
    if (level >= masks.size()) GTEST_SKIP() << "this processor lacks the level";
    SetEnv("LUMAFORGE_CPU_MASK", masks[level]);
  }
  void TearDown() override { UnsetEnv("LUMAFORGE_CPU_MASK"); }

  void Init(FuzzSession& session, uint8_t flag, uint32_t n) {
    Choices choices(n);
    ByteSource choose = choices.source();
    session.Init(terms_, choose, flag, {FindFilterDescriptor(terms_.type)->formats[0], 64, 64});
  }

  FuzzTerms terms_;
};

TEST_P(FilterSweep, ConsistentRecordsOfEveryCodeAndSize) {
  const FilterDescriptor& descriptor = *FindFilterDescriptor(terms_.type);
  const std::vector<Size> sizes = SweepSizes();
  for (const uint8_t flag : terms_.flags) {
    FuzzSession session(RecordMode::kConsistent);
    Init(session, flag, flag);
    for (uint32_t code = 0; code <= 32; ++code) {
      uint32_t accepted = 0;
      for (const uint32_t bottomUp : {0u, LF_FORMAT_BOTTOM_UP}) {
        for (uint32_t i = 0; i < sizes.size(); ++i) {
          // Another Init record now and then: crop rectangles, effects, sigmas.
          if (i % 8 == 0) Init(session, flag, i + code);
          FrameChoice f;
          f.input = {code | bottomUp, sizes[i].width, sizes[i].height};
          const std::vector<OutputChoice> outputs = terms_.outputs(f.input);
          if (!terms_.rowsByWidth) {
            f.inPad = (i % 3) * 7;
            f.outPad = (i % 4) * 5;
          }
          f.inOffset = i % 5 == 4 ? 3 : 0;
          f.seed = static_cast<uint8_t>(i);
          // Two outputs per call, turning through all of them over the sizes.
          for (const size_t j : {i % outputs.size(), (i + outputs.size() / 2) % outputs.size()}) {
            f.output = outputs[j];
            Choices choices(i * 31 + code);
            ByteSource choose = choices.source();
            accepted += session.Process(terms_, f, choose) == LF_OK;
            if (outputs.size() == 1) break;
          }
        }
      }
      if (ListsFormat(descriptor.formats, code)) {
        EXPECT_GT(accepted, 0u) << "code " << code << " flag " << int{flag};
      }
    }
  }
}

TEST_P(FilterSweep, EveryKindOfBadRecordOnEveryAcceptedFormat) {
  const FilterDescriptor& descriptor = *FindFilterDescriptor(terms_.type);
  const Size sizes[] = {{0, 0}, {1, 1}, {17, 9}, {64, 48}, {130, 66}};
  for (const uint8_t flag : terms_.flags) {
    FuzzSession session(RecordMode::kBad);
    Init(session, flag, flag);
    for (const uint32_t code : descriptor.formats) {
      for (const Size& size : sizes) {
        for (uint8_t spoil = 1; spoil < static_cast<uint8_t>(Spoil::kCount); ++spoil) {
          for (uint8_t plane = 0; plane < 3; ++plane) {
            FrameChoice f;
            f.input = {code, size.width, size.height};
            f.output = terms_.outputs(f.input)[0];
            f.spoil = static_cast<Spoil>(spoil);
            f.spoiledPlane = plane;
            f.seed = static_cast<uint8_t>(spoil * 3 + plane);
            Choices choices(spoil);
            ByteSource choose = choices.source();
            session.Process(terms_, f, choose);
          }
        }
      }
    }
  }
}

std::string SweepName(const testing::TestParamInfo<std::tuple<size_t, size_t>>& info) {
  static const std::vector<FuzzTerms> kTerms = AllFuzzTerms();
  const auto [filter, level] = info.param;
  return std::string(FindFilterDescriptor(kTerms[filter].type)->name) + "_level" + std::to_string(level);
}

INSTANTIATE_TEST_SUITE_P(AllFilters, FilterSweep,
                         testing::Combine(testing::Range<size_t>(0, AllFuzzTerms().size()),
                                          testing::Range<size_t>(0, std::size(kCpuLevels))),
                         SweepName);

}  // namespace
}  // namespace Lumaforge::test
