// The subcommands, each a plain function of its options; main.cc parses the
// command line into these structures.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_COMMANDS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_COMMANDS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Lumaforge::cli {

void ListFilters();

struct RunOptions {
  std::vector<std::string> filters;
  std::vector<std::string> params;
  std::string input;
  std::string output;
  std::optional<std::pair<uint32_t, uint32_t>> size;
  std::optional<uint32_t> format;
  std::optional<uint32_t> outFormat;
  std::optional<uint64_t> frames;
  bool verbose = false;
};
void RunFilters(const RunOptions& options);

struct DemoOptions {
  std::string directory = "lumaforge-demo";
  uint32_t frames = 75;
  bool verbose = false;
};
void RunDemo(const DemoOptions& options);

struct BenchOptions {
  uint32_t frames = 30;
  bool verbose = false;
};
void RunBench(const BenchOptions& options);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_COMMANDS_H_
