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

#include "tools/lumaforge/param_set.h"
#include "tools/lumaforge/step.h"

namespace Lumaforge::cli {

struct ParamInfo {
  const char* name;
  const char* fallback;  // shown by `filters`
  const char* meaning;
};

struct FilterInfo {
  const char* name;
  int32_t type;  // the library's filter type
  const char* summary;
  // Formats the filter takes; empty for any. Frames in another format are
  // converted to the first one.
  std::vector<uint32_t> formats;
  std::vector<ParamInfo> params;
  // Throws on parameters it cannot use.
  std::unique_ptr<Step> (*make)(const ParamSet& params, bool verbose);

  bool Accepts(uint32_t format) const;
  bool Takes(std::string_view param) const;
};

std::span<const FilterInfo> Catalog();
const FilterInfo* FindFilter(std::string_view name);
std::vector<std::string> FilterNames();

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CATALOG_H_
