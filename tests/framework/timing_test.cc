// The per-frame timing record and the periodic "ms per frame" line, driven
// by a hand-stepped clock.
#include <gtest/gtest.h>

#include <cmath>

#include <string>
#include <vector>

#include "framework/clock.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {
namespace {

int64_t g_counterUs = 0;
int64_t FakeCounter() { return g_counterUs; }
int64_t FakeFrequency() { return 1000000; }

std::vector<std::string> g_lines;
int Capture(uint64_t, int32_t, const char* text) {
  g_lines.push_back(text);
  return 0;
}

// The smallest filter: each Process takes `workUs` of fake time.
class TimedFilter : public CLumaforgeFramework {
 public:
  TimedFilter() {
    SetName("Timed");
    CreateLogger();
    m_pLogger->SetCallback(Capture);
  }
  int32_t Init(void*, uint8_t) override { return LF_OK; }
  int32_t Uninit() override {
    ResetTiming();
    return LF_OK;
  }
  int32_t Process(VideoPicture*, VideoPicture*) override {
    const int64_t start = NowMicroseconds();
    g_counterUs += workUs;
    FinishFrameTiming(start);
    return LF_OK;
  }
  int32_t SetParam(ParamId, void*) override { return LF_OK; }
  int32_t GetParam(ParamId, void* value) override {
    *static_cast<double*>(value) = MicrosecondsPerFrame();
    return LF_OK;
  }
  int64_t workUs = 2500;
};

class TimingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    g_counterUs = 5000000;
    g_lines.clear();
    static const ClockSource fake = {FakeCounter, FakeFrequency};
    SetClockSourceForTesting(&fake);
  }
  void TearDown() override { SetClockSourceForTesting(nullptr); }
};

TEST_F(TimingTest, ClockRoundsToMicrosecondsAndTruncatesMilliseconds) {
  EXPECT_EQ(NowMicroseconds(), 5000000);
  g_counterUs = 1999;
  EXPECT_EQ(NowMilliseconds(), 1);
}

TEST_F(TimingTest, DefaultIntervalIsTenSecondsAndTheBoundaryDoesNotLog) {
  TimedFilter filter;
  // Frames up to exactly 10000 ms after construction log nothing.
  for (int i = 0; i < 4000; ++i) filter.Process(nullptr, nullptr);
  EXPECT_EQ(g_counterUs, 5000000 + 10000000);
  EXPECT_TRUE(g_lines.empty());
  double usPerFrame = 0;
  filter.GetParam(LF_PARAM_TIME_PER_FRAME, &usPerFrame);
  EXPECT_DOUBLE_EQ(usPerFrame, 2500.0);

  filter.Process(nullptr, nullptr);
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_NE(g_lines[0].find("[lf][Timed] Timed="), std::string::npos);
  EXPECT_NE(g_lines[0].find(", INFO: 2.500000 ms per frame"), std::string::npos);

  // The interval restarted: no frames yet, so the average is not finite.
  filter.GetParam(LF_PARAM_TIME_PER_FRAME, &usPerFrame);
  EXPECT_FALSE(std::isfinite(usPerFrame));
}

TEST_F(TimingTest, SetIntervalAndZeroMeansDefault) {
  TimedFilter filter;
  const int32_t fiftyMs = 50;
  filter.SetLogInterval(&fiftyMs);
  filter.workUs = 30000;
  filter.Process(nullptr, nullptr);  // 30 ms
  EXPECT_TRUE(g_lines.empty());
  filter.Process(nullptr, nullptr);  // 60 ms > 50
  EXPECT_EQ(g_lines.size(), 1u);

  const int32_t zero = 0;
  filter.SetLogInterval(&zero);
  for (int i = 0; i < 300; ++i) filter.Process(nullptr, nullptr);  // 9000 ms
  EXPECT_EQ(g_lines.size(), 1u);
  for (int i = 0; i < 34; ++i) filter.Process(nullptr, nullptr);  // past 10000 ms
  EXPECT_EQ(g_lines.size(), 2u);
}

TEST_F(TimingTest, UninitRestartsTheInterval) {
  TimedFilter filter;
  filter.Process(nullptr, nullptr);
  g_counterUs += 9000000;
  filter.Uninit();
  filter.Process(nullptr, nullptr);
  g_counterUs += 9000000;
  filter.Process(nullptr, nullptr);
  EXPECT_TRUE(g_lines.empty());
  double usPerFrame = 0;
  filter.GetParam(LF_PARAM_TIME_PER_FRAME, &usPerFrame);
  EXPECT_DOUBLE_EQ(usPerFrame, 2500.0);
}

}  // namespace
}  // namespace Lumaforge
