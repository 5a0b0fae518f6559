// lumaforge_kernel_harness [--seed N] [--filter TEXT] [--bench] [--list]
//
// Checks every registered kernel variant this processor can run against its
// plain routine; with --bench, times them instead. LUMAFORGE_CPU_MASK limits
// the levels used.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "framework/cpu_features.h"
#include "tests/kernels/kernel_harness.h"

namespace {

int Usage() {
  std::fprintf(stderr, "usage: lumaforge_kernel_harness [--seed N] [--filter TEXT] [--bench] [--list]\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace Lumaforge::test;
  HarnessOptions options;
  options.seed = static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  bool list = false;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--seed") && i + 1 < argc) {
      options.seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 0));
    } else if (!std::strcmp(argv[i], "--filter") && i + 1 < argc) {
      options.filter = argv[++i];
    } else if (!std::strcmp(argv[i], "--bench")) {
      options.bench = true;
    } else if (!std::strcmp(argv[i], "--list")) {
      list = true;
    } else {
      return Usage();
    }
  }
  options.cpuFeatures = Lumaforge::DetectCpuFeatures();
  std::printf("feature word 0x%08x, seed %u\n", options.cpuFeatures, options.seed);

  if (list) {
    for (const auto& family : RegisteredFamilies()) {
      for (size_t e = 0; e < family->EntryCount(); ++e) {
        std::printf("%s.%s:", family->Name().c_str(), family->EntryName(e).c_str());
        for (size_t l = 1; l < Levels().size(); ++l) {
          if (family->Changed(e, Levels()[l - 1].features, Levels()[l].features)) std::printf(" %s", Levels()[l].name);
        }
        std::printf("\n");
      }
    }
    return 0;
  }
  if (options.bench) {
    RunBenchmarks(options);
    return 0;
  }
  return RunChecks(options) == 0 ? 0 : 1;
}
