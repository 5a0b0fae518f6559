// The library's microsecond clock, over the platform counter.
#ifndef LUMAFORGE_FRAMEWORK_CLOCK_H_
#define LUMAFORGE_FRAMEWORK_CLOCK_H_

#include <cstdint>

namespace Lumaforge {

// counter * 1000000 / frequency, rounded half up. The frequency is read once
// per process and cached (0 is taken as 1).
int64_t NowMicroseconds();
// NowMicroseconds() / 1000, truncated.
int64_t NowMilliseconds();

// Tests replace the counter to step time by hand; null restores the platform
// counter. The cached frequency is dropped either way.
struct ClockSource {
  int64_t (*counter)();
  int64_t (*frequency)();
};
void SetClockSourceForTesting(const ClockSource* source);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_CLOCK_H_
