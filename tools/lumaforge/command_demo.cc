// lumaforge demo: every filter of the catalog over a synthetic 1280x720
// clip, a contact sheet per filter and a table of times.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/chain.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/contact_sheet.h"
#include "tools/lumaforge/cpu_levels.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/file.h"
#include "tools/lumaforge/patterns.h"
#include "tools/lumaforge/progress.h"
#include "tools/lumaforge/sr_sheet.h"

namespace Lumaforge::cli {
namespace {

constexpr uint32_t kWidth = 1280;
constexpr uint32_t kHeight = 720;

struct Timing {
  std::string filter;
  double msPerFrame;
};

std::string TimingTable(const std::vector<Timing>& timings, uint32_t frames) {
  const int32_t tier = GetLumaforgeArch();
  char line[160];
  std::snprintf(line, sizeof(line), "%u frames of %ux%u I420, processor level %s (tier %d)\n", frames, kWidth, kHeight,
                TierName(tier), tier);
  std::string table = line;
  std::snprintf(line, sizeof(line), "%-12s %10s\n", "filter", "ms/frame");
  table += line;
  for (const Timing& t : timings) {
    std::snprintf(line, sizeof(line), "%-12s %10.3f\n", t.filter.c_str(), t.msPerFrame);
    table += line;
  }
  return table;
}

}  // namespace

void RunDemo(const DemoOptions& options) {
  const auto start = std::chrono::steady_clock::now();
  const std::filesystem::path directory(options.directory);
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw ToolError(options.directory + ": cannot create the directory (" + error.message() + ")");

  const uint32_t frames = options.frames;
  const std::vector<Frame> clip = DemoClip(kWidth, kHeight, frames, options.verbose);
  const uint32_t samples[] = {0, frames / 2, frames - 1};

  std::vector<Timing> timings;
  {
    Progress progress("demo", uint64_t{frames} * Catalog().size());
    for (const FilterInfo& info : Catalog()) {
      Chain chain({info.name}, {}, options.verbose);
      ContactSheet sheet(std::size(samples), options.verbose);
      for (uint32_t i = 0; i < frames; ++i) {
        const std::string number = std::to_string(i + 1);
        const Frame out = chain.Run(clip[i], "frame " + number + " of the demo clip");
        for (uint32_t row = 0; row < std::size(samples); ++row) {
          if (samples[row] != i) continue;
          sheet.Place(row, 0, clip[i], "input, frame " + number);
          sheet.Place(row, 1, out, std::string(info.name) + " output");
        }
        progress.Advance();
      }
      sheet.Write((directory / (std::string(info.name) + ".png")).string());
      timings.push_back({info.name, std::chrono::duration<double, std::milli>(chain.ProcessTime(0)).count() / frames});
    }
  }

  std::vector<Frame> sampled;
  for (const uint32_t i : samples) sampled.push_back(clip[i]);
  WriteSrSheet(sampled, (directory / "sr-detail.png").string(), options.verbose);

  const std::string table = TimingTable(timings, frames);
  File file((directory / "timings.txt").string(), File::kWrite);
  file.Write({reinterpret_cast<const uint8_t*>(table.data()), table.size()});
  file.Close();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%s\n%zu contact sheets and timings.txt in %s (%.1f s)\n", table.c_str(), timings.size() + 1,
              options.directory.c_str(), seconds);
}

}  // namespace Lumaforge::cli
