// The contract, checked for every filter of the library's list from the terms
// its tests register: the same bytes at every processor level, the same
// bytes whatever frames came before, the documented refusals, no heap
// allocation once a geometry has been seen, and no write outside the
// record fields and buffers the filter owns.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <ostream>
#include <string>

#include "framework/filter_descriptor.h"
#include "tests/api/cpu_levels.h"
#include "tests/contract/allocation_count.h"
#include "tests/contract/filter_contract.h"
#include "tests/contract/guarded_picture.h"

namespace Lumaforge {

// Test names and failure messages show the filter's name.
void PrintTo(const FilterDescriptor* descriptor, std::ostream* os) { *os << descriptor->name; }

namespace test {

std::vector<ContractTerms (*)()>& RegisteredContracts() {
  static std::vector<ContractTerms (*)()> contracts;
  return contracts;
}

namespace {

std::string FrameText(const ContractFrame& f) {
  return std::to_string(f.inFormat) + " " + std::to_string(f.inWidth) + "x" + std::to_string(f.inHeight) + " -> " +
         std::to_string(f.outFormat) + " " + std::to_string(f.outWidth) + "x" + std::to_string(f.outHeight);
}

// Compares the record fields a call may not write.
void ExpectFieldsKept(const VideoPicture& before, const VideoPicture& after, uint32_t writable,
                      const std::string& what) {
  if (!(writable & kPlaneFields)) {
    EXPECT_EQ(0, std::memcmp(before.planes, after.planes, sizeof(before.planes))) << what << ": plane pointers";
    EXPECT_EQ(0, std::memcmp(before.strides, after.strides, sizeof(before.strides))) << what << ": strides";
  }
  if (!(writable & kSizeFields)) {
    EXPECT_EQ(before.width, after.width) << what << ": width";
    EXPECT_EQ(before.height, after.height) << what << ": height";
  }
  if (!(writable & kFormatField)) {
    EXPECT_EQ(before.format, after.format) << what << ": format";
  }
  // The rest of the record belongs to the host.
  VideoPicture a = before, b = after;
  for (VideoPicture* p : {&a, &b}) {
    std::memset(p->planes, 0, sizeof(p->planes));
    std::memset(p->strides, 0, sizeof(p->strides));
    p->width = p->height = p->format = 0;
  }
  EXPECT_EQ(0, std::memcmp(&a, &b, sizeof(a))) << what << ": other record fields";
}

// One manager with the filter under test initialised.
class Session {
 public:
  Session(const ContractTerms& terms, uint8_t flag) : config_(terms.config) {
    CreateLumaforge(&manager_);
    int32_t silent = -1;
    manager_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    initStatus_ = manager_->Init(terms.type, config_.empty() ? nullptr : config_.data(), flag);
  }
  ~Session() { DestroyLumaforge(manager_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  int32_t initStatus() const { return initStatus_; }
  ILumaforge& manager() { return *manager_; }

 private:
  std::vector<uint8_t> config_;  // kept: a filter may keep Init's pointer
  ILumaforge* manager_ = nullptr;
  int32_t initStatus_;
};

struct Result {
  int32_t status = LF_FAILED;
  std::vector<uint8_t> bytes;
};

class FilterContract : public testing::TestWithParam<const FilterDescriptor*> {
 protected:
  void SetUp() override {
    descriptor_ = GetParam();
    for (auto make : RegisteredContracts()) {
      ContractTerms terms = make();
      if (terms.type == descriptor_->type) terms_ = std::move(terms);
    }
    ASSERT_EQ(terms_.type, descriptor_->type) << descriptor_->name << " registers no contract";
  }

  // Runs one frame on fresh pictures made from `seed`, checks the records
  // and the guards, and returns the result bytes.
  Result Run(Session& session, uint8_t flag, const ContractFrame& f, uint32_t seed) {
    const FormatReading reading = descriptor_->reading;
    GuardedPicture in(f.inFormat, reading, f.inWidth, f.inHeight, terms_.pad, terms_.alignment);
    GuardedPicture out(f.outFormat, reading, f.outWidth, f.outHeight, terms_.pad, terms_.alignment);
    in.FillRandom(seed);
    out.FillRandom(~seed);
    const VideoPicture inBefore = in.picture, outBefore = out.picture;
    Result r;
    r.status = session.manager().Process(terms_.type, &in.picture, &out.picture);
    const std::string what = std::string(descriptor_->name) + " " + FrameText(f);
    EXPECT_TRUE(in.GuardsIntact()) << what << ": bytes around the input planes";
    EXPECT_TRUE(out.GuardsIntact()) << what << ": bytes around the output planes";
    ExpectFieldsKept(inBefore, in.picture, terms_.writesInput, what + " input record");
    ExpectFieldsKept(outBefore, out.picture, terms_.writesOutput(flag), what + " output record");
    if (r.status == LF_OK) {
      const VideoPicture& result = terms_.resultInInput ? in.picture : out.picture;
      r.bytes = PixelBytes(result, LayoutOf(result.format, reading, result.width, result.height));
      if (f.model) {
        EXPECT_TRUE(r.bytes == f.model(inBefore)) << what << ": differs from the formula";
      }
    }
    return r;
  }

  const FilterDescriptor* descriptor_ = nullptr;
  ContractTerms terms_{};
};

bool SameSize(const ContractFrame& a, const ContractFrame& b) {
  return a.inWidth == b.inWidth && a.inHeight == b.inHeight;
}

TEST(FilterContractList, EveryFilterRegistersAContract) {
  for (const FilterDescriptor* d : FilterList()) {
    bool found = false;
    for (auto make : RegisteredContracts()) found |= make().type == d->type;
    EXPECT_TRUE(found) << d->name;
  }
}

TEST_P(FilterContract, SameBytesAtEveryProcessorLevel) {
  for (const uint8_t flag : terms_.flags) {
    for (size_t i = 0; i < terms_.frames.size(); ++i) {
      const ContractFrame& f = terms_.frames[i];
      Result first;
      ForEachCpuLevel([&](const CpuLevel& level) {
        Session session(terms_, flag);
        ASSERT_EQ(session.initStatus(), LF_OK);
        Result r = Run(session, flag, f, static_cast<uint32_t>(i + 1));
        ASSERT_EQ(r.status, LF_OK) << FrameText(f) << " at " << level.name;
        // A filter that reads earlier frames is also compared on the same
        // frame again, with the first one behind it.
        if (terms_.readsPreviousFrame || terms_.recursive) {
          const Result again = Run(session, flag, f, static_cast<uint32_t>(i + 1));
          r.bytes.insert(r.bytes.end(), again.bytes.begin(), again.bytes.end());
        }
        if (first.bytes.empty()) {
          first = r;
        } else {
          EXPECT_TRUE(r.bytes == first.bytes)
              << FrameText(f) << " flag " << int{flag} << ": " << level.name << " differs from the plain routines";
        }
      });
    }
  }
}

TEST_P(FilterContract, SameBytesWhateverCameBefore) {
  for (const uint8_t flag : terms_.flags) {
    std::vector<Result> fresh;
    for (size_t i = 0; i < terms_.frames.size(); ++i) {
      Session session(terms_, flag);
      fresh.push_back(Run(session, flag, terms_.frames[i], static_cast<uint32_t>(i + 1)));
    }
    // Forwards, then backwards, through one filter.
    Session shared(terms_, flag);
    const size_t n = terms_.frames.size();
    for (size_t step = 0; step < 2 * n; ++step) {
      const size_t i = step < n ? step : 2 * n - 1 - step;
      // A filter that reads the previous frame sees the same frame first.
      if (terms_.readsPreviousFrame) Run(shared, flag, terms_.frames[i], static_cast<uint32_t>(i + 1));
      const Result r = Run(shared, flag, terms_.frames[i], static_cast<uint32_t>(i + 1));
      // A recursive filter builds on the frame before when it has the same size.
      if (terms_.recursive && step > 0 &&
          (step == n || SameSize(terms_.frames[i], terms_.frames[step < n ? i - 1 : i + 1])))
        continue;
      EXPECT_EQ(r.status, fresh[i].status) << FrameText(terms_.frames[i]);
      EXPECT_TRUE(r.bytes == fresh[i].bytes)
          << FrameText(terms_.frames[i]) << " flag " << int{flag} << " after other frames differs from a fresh filter";
    }
  }
}

TEST_P(FilterContract, DocumentedRefusals) {
  for (const uint8_t flag : terms_.flags) {
    for (const ContractRefusal& refusal : terms_.refusals) {
      if (refusal.onlyFlag >= 0 && refusal.onlyFlag != flag) continue;
      Session session(terms_, flag);
      const FormatReading reading = descriptor_->reading;
      const ContractFrame& f = refusal.frame;
      GuardedPicture in(f.inFormat, reading, f.inWidth, f.inHeight, terms_.pad, terms_.alignment);
      GuardedPicture out(f.outFormat, reading, f.outWidth, f.outHeight, terms_.pad, terms_.alignment);
      in.FillRandom(7);
      out.FillRandom(8);
      VideoPicture* inRecord = &in.picture;
      VideoPicture* outRecord = &out.picture;
      refusal.spoil(inRecord, outRecord);
      const VideoPicture inBefore = in.picture, outBefore = out.picture;
      const std::vector<uint8_t> inBytes = in.AllBytes(), outBytes = out.AllBytes();
      EXPECT_EQ(session.manager().Process(terms_.type, inRecord, outRecord), refusal.status) << refusal.what;
      EXPECT_TRUE(in.AllBytes() == inBytes) << refusal.what << ": input bytes changed";
      EXPECT_TRUE(out.AllBytes() == outBytes) << refusal.what << ": output bytes changed";
      EXPECT_EQ(0, std::memcmp(&inBefore, &in.picture, sizeof(VideoPicture))) << refusal.what << ": input record";
      ExpectFieldsKept(outBefore, out.picture, refusal.writesOutput, std::string(refusal.what) + ": output record");
    }
  }
}

TEST_P(FilterContract, NoHeapAllocationOnceAGeometryIsSeen) {
  for (const uint8_t flag : terms_.flags) {
    for (const ContractFrame& f : terms_.frames) {
      Session session(terms_, flag);
      const FormatReading reading = descriptor_->reading;
      GuardedPicture in(f.inFormat, reading, f.inWidth, f.inHeight, terms_.pad, terms_.alignment);
      GuardedPicture out(f.outFormat, reading, f.outWidth, f.outHeight, terms_.pad, terms_.alignment);
      const VideoPicture inRecord = in.picture, outRecord = out.picture;
      auto process = [&] {
        in.picture = inRecord;
        out.picture = outRecord;
        return session.manager().Process(terms_.type, &in.picture, &out.picture);
      };
      ASSERT_EQ(process(), LF_OK) << FrameText(f);
      const uint64_t before = HeapAllocations();
      for (int i = 0; i < 3; ++i) process();
      EXPECT_EQ(HeapAllocations() - before, 0u) << FrameText(f) << " flag " << int{flag};
    }
  }
}

std::vector<const FilterDescriptor*> AllFilters() {
  const auto list = FilterList();
  return {list.begin(), list.end()};
}

INSTANTIATE_TEST_SUITE_P(Filters, FilterContract, testing::ValuesIn(AllFilters()),
                         [](const testing::TestParamInfo<const FilterDescriptor*>& info) {
                           std::string name = info.param->name;
                           for (char& c : name) {
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           }
                           return name;
                         });

}  // namespace
}  // namespace test
}  // namespace Lumaforge
