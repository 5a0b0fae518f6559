// Where `run` writes frames: a Y4M clip, PNG files or raw frames.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SINK_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SINK_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

class FrameSink {
 public:
  virtual ~FrameSink() = default;
  // Converts the frame to what the file holds and writes it.
  virtual void Write(Frame frame) = 0;
  // Completes the output; write failures surface here at the latest.
  virtual void Finish() = 0;
};

// By extension: .y4m (I420), .png (RGBA; NAME-0001.png, NAME-0002.png ...
// when there is more than one frame), anything else raw bytes of the frame's
// format, or of `rawFormat`.
std::unique_ptr<FrameSink> OpenSink(const std::string& path, std::optional<uint32_t> rawFormat,
                                    const std::string& frameRate, bool verbose);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SINK_H_
