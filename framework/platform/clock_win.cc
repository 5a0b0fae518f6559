#include <windows.h>

#include "framework/platform/clock.h"

namespace Lumaforge::platform {

int64_t QueryCounter() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

int64_t QueryCounterFrequency() {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

}  // namespace Lumaforge::platform
