#include "tools/lumaforge/frame_sink.h"

#include <cstdio>
#include <filesystem>

#include "tools/lumaforge/converter.h"
#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/file.h"
#include "tools/lumaforge/media_kind.h"
#include "tools/lumaforge/still_image.h"
#include "tools/lumaforge/y4m.h"

namespace Lumaforge::cli {
namespace {

// Conversion failures named after the output they were for.
Frame Converted(Converter& converter, Frame frame, uint32_t format, const std::string& path) {
  try {
    return converter.To(std::move(frame), format);
  } catch (const ToolError& e) {
    throw ToolError(path + ": " + e.what());
  }
}

class Y4mSink : public FrameSink {
 public:
  Y4mSink(const std::string& path, const std::string& frameRate, bool verbose)
      : path_(path), writer_(path, frameRate), converter_(verbose) {}
  void Write(Frame frame) override { writer_.Write(Converted(converter_, std::move(frame), LF_I420, path_)); }
  void Finish() override { writer_.Close(); }

 private:
  std::string path_;
  Y4mWriter writer_;
  Converter converter_;
};

// A single frame goes to NAME.png. The first frame waits until the second
// shows whether the output is a sequence.
class PngSink : public FrameSink {
 public:
  PngSink(const std::string& path, bool verbose) : path_(path), converter_(verbose) {}

  void Write(Frame frame) override {
    Frame rgba = Converted(converter_, std::move(frame), LF_RGBA, path_);
    if (count_ == 0) {
      first_ = std::move(rgba);
    } else {
      if (count_ == 1) WritePng(Numbered(1), first_);
      WritePng(Numbered(count_ + 1), rgba);
    }
    ++count_;
  }

  void Finish() override {
    if (count_ == 1) WritePng(path_, first_);
  }

 private:
  std::string Numbered(uint64_t number) const {
    const std::filesystem::path path(path_);
    char suffix[32];
    std::snprintf(suffix, sizeof(suffix), "-%04llu", static_cast<unsigned long long>(number));
    return (path.parent_path() / (path.stem().string() + suffix + path.extension().string())).string();
  }

  std::string path_;
  Converter converter_;
  Frame first_;
  uint64_t count_ = 0;
};

class RawSink : public FrameSink {
 public:
  RawSink(const std::string& path, std::optional<uint32_t> format, bool verbose)
      : file_(path, File::kWrite), format_(format), converter_(verbose) {}

  void Write(Frame frame) override {
    if (format_) frame = Converted(converter_, std::move(frame), *format_, file_.path());
    file_.Write(frame.Bytes());
  }
  void Finish() override { file_.Close(); }

 private:
  File file_;
  std::optional<uint32_t> format_;
  Converter converter_;
};

}  // namespace

std::unique_ptr<FrameSink> OpenSink(const std::string& path, std::optional<uint32_t> rawFormat,
                                    const std::string& frameRate, bool verbose) {
  const MediaKind kind = KindOf(path);
  if (rawFormat && kind != MediaKind::kRaw)
    throw ToolError(path + ": --out-format applies to raw output; this file's format is fixed");
  switch (kind) {
    case MediaKind::kY4m: return std::make_unique<Y4mSink>(path, frameRate, verbose);
    case MediaKind::kPng: return std::make_unique<PngSink>(path, verbose);
    case MediaKind::kStill: throw ToolError(path + ": only PNG is written among still images");
    case MediaKind::kRaw: break;
  }
  return std::make_unique<RawSink>(path, rawFormat, verbose);
}

}  // namespace Lumaforge::cli
