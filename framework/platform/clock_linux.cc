#include <time.h>

#include "framework/platform/clock.h"

namespace Lumaforge::platform {

int64_t QueryCounter() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

int64_t QueryCounterFrequency() { return 1000000000; }

}  // namespace Lumaforge::platform
