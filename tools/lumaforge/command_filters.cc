// lumaforge filters: the catalog, as a user reads it.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/library_params.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

std::string FormatRange(const ParamDescriptor& param) {
  char text[48];
  std::snprintf(text, sizeof(text), "%g..%g", param.min, param.max);
  return text;
}

}  // namespace

void ListFilters() {
  std::printf("Filters for `lumaforge run FILTER[,FILTER...] [--param NAME=VALUE ...] INPUT OUTPUT`.\n");
  std::printf("Frames in a format a filter does not take are converted to its first format.\n");
  for (const FilterInfo& info : Catalog()) {
    std::printf("\n%s (library filter type %d): %s\n", info.name, info.type, info.summary);
    std::vector<uint32_t> formats;
    for (uint32_t format : AllFormats()) {
      if (info.Accepts(format)) formats.push_back(format);
    }
    std::printf("  formats: %s\n", JoinedFormatNames(formats).c_str());
    for (const ParamInfo& option : info.options) {
      const std::string shown = std::string(option.name) + "=" + option.fallback;
      std::printf("  %-20s %s\n", shown.c_str(), option.meaning);
    }
    for (const ParamDescriptor& param : info.Descriptor().params) {
      if (!IsToolSettable(param)) continue;
      const std::string shown = std::string(param.name) + "=" + FormatRange(param);
      std::printf("  %-20s %s (library parameter %d)\n", shown.c_str(), param.meaning, param.id);
    }
  }
  std::printf("\nFormat names: %s\n", JoinedFormatNames(AllFormats()).c_str());
  std::printf("(grey is library code 31 read as one 8-bit plane; conversions treat it as I420 luma)\n");
}

}  // namespace Lumaforge::cli
