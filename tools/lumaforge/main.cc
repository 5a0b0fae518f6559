// lumaforge: runs the library's filters on video files and pictures.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/pixel_formats.h"

namespace {

using namespace Lumaforge::cli;

std::optional<uint32_t> FormatOption(const CLI::Option* option, const std::string& name) {
  return option->count() ? FormatByName(name) : std::nullopt;
}

int Main(int argc, char** argv) {
  CLI::App app("Runs Lumaforge filters on Y4M clips, raw frames and still images.", "lumaforge");
  app.require_subcommand(1);
  app.fallthrough();  // options of the main command are also accepted after the subcommand
  app.failure_message(CLI::FailureMessage::help);
  bool verbose = false;
  app.add_flag("-v,--verbose", verbose, "Let the library write its log");

  CLI::App* filters = app.add_subcommand("filters", "List the filters, their formats and parameters");
  filters->callback(ListFilters);

  RunOptions run;
  std::pair<uint32_t, uint32_t> size;
  std::string format, outFormat;
  uint64_t frames = 0;
  CLI::App* runCommand = app.add_subcommand("run", "Push every frame of INPUT through the filters into OUTPUT");
  runCommand->add_option("FILTERS", run.filters, "Filter, or filters separated by commas, run in order")
      ->required()
      ->allow_extra_args(false)
      ->delimiter(',')
      ->check(CLI::IsMember(FilterNames()));
  runCommand->add_option("INPUT", run.input, ".y4m, .png/.bmp/.ppm/.pgm/.jpg, or raw frames (any other extension)")
      ->required();
  runCommand->add_option("OUTPUT", run.output, ".y4m, .png (NAME-0001.png ... for several frames), or raw")->required();
  runCommand
      ->add_option("--param", run.params, "NAME=VALUE, or FILTER.NAME=VALUE for one filter (see `lumaforge filters`)")
      ->allow_extra_args(false);
  CLI::Option* sizeOption = runCommand->add_option("--size", size, "Raw input: picture size WxH")
                                ->delimiter('x')
                                ->check(CLI::Range(1u, 16384u));
  CLI::Option* formatOption =
      runCommand->add_option("--format", format, "Raw input: pixel format")->check(CLI::IsMember(FormatNames()));
  CLI::Option* outFormatOption = runCommand->add_option("--out-format", outFormat, "Raw output: convert to this format")
                                     ->check(CLI::IsMember(FormatNames()));
  CLI::Option* framesOption = runCommand->add_option("--frames", frames, "Stop after N frames")
                                  ->check(CLI::Range(uint64_t{1}, uint64_t{1000000000}));
  runCommand->callback([&] {
    if (sizeOption->count()) run.size = size;
    run.format = FormatOption(formatOption, format);
    run.outFormat = FormatOption(outFormatOption, outFormat);
    if (framesOption->count()) run.frames = frames;
    run.verbose = verbose;
    RunFilters(run);
  });

  DemoOptions demo;
  CLI::App* demoCommand = app.add_subcommand("demo", "Run every filter over a synthetic 1280x720 clip");
  demoCommand->add_option("--out", demo.directory, "Directory for the contact sheets and timings.txt")
      ->capture_default_str();
  demoCommand->add_option("--frames", demo.frames, "Frames in the clip")
      ->capture_default_str()
      ->check(CLI::Range(1u, 1000u));
  demoCommand->callback([&] {
    demo.verbose = verbose;
    RunDemo(demo);
  });

  BenchOptions bench;
  CLI::App* benchCommand =
      app.add_subcommand("bench", "Time every filter at 1920x1080 and 1280x720 at each processor level");
  benchCommand->add_option("--frames", bench.frames, "Frames per filter, size and level")
      ->capture_default_str()
      ->check(CLI::Range(1u, 10000u));
  benchCommand->callback([&] {
    bench.verbose = verbose;
    RunBench(bench);
  });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "lumaforge: %s\n", e.what());
  } catch (...) {
    std::fprintf(stderr, "lumaforge: unexpected failure\n");
  }
  return 1;
}
