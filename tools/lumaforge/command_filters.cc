// lumaforge filters: the catalog, as a user reads it.
#include <cstdio>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {

void ListFilters() {
  std::printf("Filters for `lumaforge run FILTER[,FILTER...] [--param NAME=VALUE ...] INPUT OUTPUT`.\n");
  std::printf("Frames in a format a filter does not take are converted to its first format.\n");
  for (const FilterInfo& info : Catalog()) {
    std::printf("\n%s (library filter type %d): %s\n", info.name, info.type, info.summary);
    std::printf("  formats: %s\n", info.formats.empty() ? "any" : JoinedFormatNames(info.formats).c_str());
    for (const ParamInfo& param : info.params) {
      const std::string shown = std::string(param.name) + "=" + param.fallback;
      std::printf("  %-20s %s\n", shown.c_str(), param.meaning);
    }
  }
  std::printf("\nFormat names: %s\n", JoinedFormatNames(AllFormats()).c_str());
  std::printf("(grey is library code 31 read as one 8-bit plane; conversions treat it as I420 luma)\n");
}

}  // namespace Lumaforge::cli
