#include "framework/filter_descriptor.h"

namespace Lumaforge {

const FilterDescriptor* FindFilterDescriptor(int32_t type) {
  for (const FilterDescriptor* descriptor : FilterList()) {
    if (descriptor->type == type) return descriptor;
  }
  return nullptr;
}

}  // namespace Lumaforge
