// The platform's high-resolution counter.
#ifndef LUMAFORGE_FRAMEWORK_PLATFORM_CLOCK_H_
#define LUMAFORGE_FRAMEWORK_PLATFORM_CLOCK_H_

#include <cstdint>

namespace Lumaforge::platform {

// Current value of a monotonic counter, in ticks.
int64_t QueryCounter();
// Ticks per second of QueryCounter.
int64_t QueryCounterFrequency();

}  // namespace Lumaforge::platform

#endif  // LUMAFORGE_FRAMEWORK_PLATFORM_CLOCK_H_
