// Every filter the tool knows, in one table: a new filter is one more entry
// there and one file with its step.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CATALOG_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CATALOG_H_

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/filter_descriptor.h"
#include "tools/lumaforge/param_set.h"
#include "tools/lumaforge/step.h"

namespace Lumaforge::cli {

// One of the tool's own options for a filter: a field of its Init record or
// an input it needs. The library's parameters come from its descriptor.
struct ParamInfo {
  const char* name;
  const char* fallback;  // shown by `filters`
  const char* meaning;
};

struct FilterInfo {
  const char* name;
  int32_t type;  // the library's filter type
  const char* summary;
  std::vector<ParamInfo> options;
  // Throws on parameters it cannot use.
  std::unique_ptr<Step> (*make)(const ParamSet& params, bool verbose);

  // The library's own description: formats and parameters.
  const FilterDescriptor& Descriptor() const;
  // Whether frames of this tool format go in as they are; others are
  // converted to PreferredFormat().
  bool Accepts(uint32_t format) const;
  uint32_t PreferredFormat() const;
  // An option of the tool or a parameter of the library.
  bool Takes(std::string_view param) const;
};

std::span<const FilterInfo> Catalog();
const FilterInfo* FindFilter(std::string_view name);
std::vector<std::string> FilterNames();

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CATALOG_H_
