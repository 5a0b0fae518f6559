// Which filter class serves each filter type.
#ifndef LUMAFORGE_FRAMEWORK_FILTER_TYPES_H_
#define LUMAFORGE_FRAMEWORK_FILTER_TYPES_H_

#include <cstdint>

#include "framework/lumaforge_framework.h"

namespace Lumaforge {

constexpr int32_t kMaxFilterType = 27;

struct FilterTypeInfo {
  // Null when the allocation fails.
  CLumaforgeFramework* (*create)(uint32_t cpuFeatures);
  // Logged with the filter's address after each successful creation step.
  const char* createdText;
  // Whether the filter's Init receives the caller's flag (others get 0).
  bool receivesInitFlag;
};

// Null for types outside 1..kMaxFilterType and types without a filter.
const FilterTypeInfo* FindFilterType(int32_t type);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_FILTER_TYPES_H_
