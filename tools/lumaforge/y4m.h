// YUV4MPEG2 clips, 4:2:0 only (C420, C420jpeg, C420mpeg2, C420paldv or no C tag).
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_Y4M_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_Y4M_H_

#include <cstdint>
#include <string>

#include "tools/lumaforge/file.h"
#include "tools/lumaforge/frame_source.h"

namespace Lumaforge::cli {

// Gives I420 frames. The stream header is read (and checked) on opening.
class Y4mReader : public FrameSource {
 public:
  explicit Y4mReader(const std::string& path);
  bool Next(Frame& frame) override;
  uint64_t FrameCountHint() const override;
  std::string FrameRate() const override { return frameRate_; }

 private:
  enum class Line { kWhole, kNone, kCut };
  // One header line without its newline.
  Line ReadLine(std::string& line);
  void ParseStreamHeader(const std::string& line);

  File file_;
  uint32_t width_ = 0, height_ = 0;
  std::string frameRate_ = "25:1";
  uint64_t headerBytes_ = 0;
  uint64_t framesRead_ = 0;
};

// Takes I420 frames, all of the first frame's size.
class Y4mWriter {
 public:
  Y4mWriter(const std::string& path, const std::string& frameRate);
  void Write(const Frame& i420);
  void Close() { file_.Close(); }

 private:
  File file_;
  std::string frameRate_;
  uint32_t width_ = 0, height_ = 0;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_Y4M_H_
