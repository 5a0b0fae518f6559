#include "framework/clock.h"

#include "framework/platform/clock.h"

namespace Lumaforge {
namespace {

ClockSource g_source = {platform::QueryCounter, platform::QueryCounterFrequency};
// Written once on first use; racing first users all write the same value.
int64_t g_frequency = 0;

}  // namespace

int64_t NowMicroseconds() {
  if (g_frequency == 0) {
    const int64_t frequency = g_source.frequency();
    g_frequency = frequency == 0 ? 1 : frequency;
  }
  const double counter = static_cast<double>(g_source.counter());
  return static_cast<int64_t>(counter * 1000000.0 / static_cast<double>(g_frequency) + 0.5);
}

int64_t NowMilliseconds() { return NowMicroseconds() / 1000; }

void SetClockSourceForTesting(const ClockSource* source) {
  g_source = source ? *source : ClockSource{platform::QueryCounter, platform::QueryCounterFrequency};
  g_frequency = 0;
}

}  // namespace Lumaforge
