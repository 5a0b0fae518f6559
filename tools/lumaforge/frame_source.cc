#include "tools/lumaforge/frame_source.h"

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/file.h"
#include "tools/lumaforge/media_kind.h"
#include "tools/lumaforge/pixel_formats.h"
#include "tools/lumaforge/still_image.h"
#include "tools/lumaforge/y4m.h"

namespace Lumaforge::cli {
namespace {

// Frames of one format and size back to back, no headers.
class RawReader : public FrameSource {
 public:
  RawReader(const std::string& path, uint32_t format, uint32_t width, uint32_t height)
      : file_(path, File::kRead), format_(format), width_(width), height_(height) {}

  bool Next(Frame& frame) override {
    frame = Frame(format_, width_, height_);
    const size_t got = file_.Read(frame.Bytes());
    if (got == 0) return false;
    if (got < frame.Bytes().size()) {
      throw ToolError(file_.path() + ": frame " + std::to_string(framesRead_ + 1) + " is truncated (" +
                      std::to_string(got) + " of " + std::to_string(frame.Bytes().size()) + " bytes)");
    }
    ++framesRead_;
    return true;
  }

  uint64_t FrameCountHint() const override { return file_.Size() / LayoutOf(format_, width_, height_).PackedBytes(); }

 private:
  File file_;
  uint32_t format_, width_, height_;
  uint64_t framesRead_ = 0;
};

// One RGBA frame.
class StillSource : public FrameSource {
 public:
  explicit StillSource(const std::string& path) : image_(LoadStillImage(path)) {}

  bool Next(Frame& frame) override {
    if (done_) return false;
    frame = std::move(image_);
    done_ = true;
    return true;
  }
  uint64_t FrameCountHint() const override { return 1; }

 private:
  Frame image_;
  bool done_ = false;
};

}  // namespace

std::unique_ptr<FrameSource> OpenSource(const std::string& path, const RawDescription& raw) {
  const MediaKind kind = KindOf(path);
  if (kind != MediaKind::kRaw) {
    if (raw.size || raw.format)
      throw ToolError(path + ": --size and --format describe raw input; this file carries its own");
    if (kind == MediaKind::kY4m) return std::make_unique<Y4mReader>(path);
    return std::make_unique<StillSource>(path);
  }
  if (!raw.size || !raw.format) throw ToolError(path + ": raw input needs --size WxH and --format NAME");
  const auto [width, height] = *raw.size;
  if (const std::string problem = SizeProblem(*raw.format, width, height); !problem.empty())
    throw ToolError(path + ": " + problem);
  return std::make_unique<RawReader>(path, *raw.format, width, height);
}

}  // namespace Lumaforge::cli
