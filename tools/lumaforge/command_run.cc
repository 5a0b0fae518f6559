// lumaforge run: every frame of INPUT through the chain into OUTPUT.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>

#include "tools/lumaforge/chain.h"
#include "tools/lumaforge/commands.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/frame_sink.h"
#include "tools/lumaforge/frame_source.h"
#include "tools/lumaforge/progress.h"

namespace Lumaforge::cli {

void RunFilters(const RunOptions& options) {
  // Opening the output truncates it: it must not be the input.
  std::error_code error;
  if (std::filesystem::equivalent(options.input, options.output, error))
    throw ToolError(options.output + ": is the input file");
  Chain chain(options.filters, options.params, options.verbose);
  const std::unique_ptr<FrameSource> source = OpenSource(options.input, {options.size, options.format});
  const std::unique_ptr<FrameSink> sink =
      OpenSink(options.output, options.outFormat, source->FrameRate(), options.verbose);
  const uint64_t limit = options.frames.value_or(std::numeric_limits<uint64_t>::max());
  uint64_t count = 0;
  {
    Progress progress("run", std::min(limit, source->FrameCountHint()));
    Frame frame;
    while (count < limit && source->Next(frame)) {
      ++count;
      sink->Write(chain.Run(std::move(frame), "frame " + std::to_string(count) + " of " + options.input));
      progress.Advance();
    }
  }
  if (count == 0) throw ToolError(options.input + ": no frames");
  sink->Finish();
  std::printf("%llu frame%s written to %s\n", static_cast<unsigned long long>(count), count == 1 ? "" : "s",
              options.output.c_str());
}

}  // namespace Lumaforge::cli
