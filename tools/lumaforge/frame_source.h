// Where `run` reads frames from: a Y4M clip, raw frames or a still image.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SOURCE_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SOURCE_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

class FrameSource {
 public:
  virtual ~FrameSource() = default;
  // The next frame; false at the end. Damaged input throws, naming the file
  // and the frame.
  virtual bool Next(Frame& frame) = 0;
  // Frames the input holds, as far as its size tells (for progress).
  virtual uint64_t FrameCountHint() const = 0;
  // Y4M's F value, passed on to a Y4M output.
  virtual std::string FrameRate() const { return "25:1"; }
};

// What --size and --format say; required for raw input, refused otherwise.
struct RawDescription {
  std::optional<std::pair<uint32_t, uint32_t>> size;
  std::optional<uint32_t> format;
};

std::unique_ptr<FrameSource> OpenSource(const std::string& path, const RawDescription& raw);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_FRAME_SOURCE_H_
