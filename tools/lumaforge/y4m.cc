#include "tools/lumaforge/y4m.h"

#include <charconv>
#include <sstream>

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

constexpr size_t kMaxHeaderLine = 4096;
constexpr uint32_t kMaxSide = 16384;
constexpr char kFrameTag[] = "FRAME";
constexpr uint8_t kFrameLine[] = {'F', 'R', 'A', 'M', 'E', '\n'};  // what the writer puts before each frame

bool IsSupportedColourSpace(const std::string& tag) {
  return tag == "420" || tag == "420jpeg" || tag == "420mpeg2" || tag == "420paldv";
}

uint32_t Side(const std::string& path, const std::string& token) {
  uint32_t value = 0;
  const char* end = token.data() + token.size();
  const auto [stop, error] = std::from_chars(token.data() + 1, end, value);
  if (error != std::errc() || stop != end || value == 0 || value > kMaxSide)
    throw ToolError(path + ": bad size " + token + " in the YUV4MPEG2 header");
  return value;
}

}  // namespace

Y4mReader::Y4mReader(const std::string& path) : file_(path, File::kRead) {
  std::string line;
  if (ReadLine(line) != Line::kWhole) throw ToolError(path + ": not a YUV4MPEG2 file (no complete header line)");
  headerBytes_ = line.size() + 1;
  ParseStreamHeader(line);
}

Y4mReader::Line Y4mReader::ReadLine(std::string& line) {
  line.clear();
  for (;;) {
    const int c = std::fgetc(file_.get());
    if (c == EOF) return line.empty() ? Line::kNone : Line::kCut;
    if (c == '\n') return Line::kWhole;
    if (line.size() == kMaxHeaderLine) throw ToolError(file_.path() + ": header line longer than 4096 bytes");
    line.push_back(static_cast<char>(c));
  }
}

void Y4mReader::ParseStreamHeader(const std::string& line) {
  const std::string& path = file_.path();
  std::istringstream tokens(line);
  std::string token;
  tokens >> token;
  if (token != "YUV4MPEG2") throw ToolError(path + ": not a YUV4MPEG2 file");
  while (tokens >> token) {
    switch (token[0]) {
      case 'W': width_ = Side(path, token); break;
      case 'H': height_ = Side(path, token); break;
      case 'F':
        if (token.size() > 1) frameRate_ = token.substr(1);
        break;
      case 'C':
        if (!IsSupportedColourSpace(token.substr(1))) {
          throw ToolError(path + ": colour space " + token +
                          " is not supported (4:2:0 only: C420, C420jpeg, C420mpeg2, C420paldv)");
        }
        break;
      default: break;  // interlacing, aspect and X tags do not change the bytes
    }
  }
  if (!width_ || !height_) throw ToolError(path + ": the YUV4MPEG2 header has no W or H");
  if (const std::string problem = SizeProblem(LF_I420, width_, height_); !problem.empty())
    throw ToolError(path + ": " + problem);
}

bool Y4mReader::Next(Frame& frame) {
  const std::string where = file_.path() + ": frame " + std::to_string(framesRead_ + 1);
  std::string line;
  const Line header = ReadLine(line);
  if (header == Line::kNone) return false;
  if (header == Line::kCut) throw ToolError(where + " is truncated (incomplete FRAME header)");
  if (line.compare(0, 5, kFrameTag) != 0 || (line.size() > 5 && line[5] != ' '))
    throw ToolError(where + ": expected a FRAME header");
  frame = Frame(LF_I420, width_, height_);
  const size_t got = file_.Read(frame.Bytes());
  if (got < frame.Bytes().size()) {
    throw ToolError(where + " is truncated (" + std::to_string(got) + " of " + std::to_string(frame.Bytes().size()) +
                    " bytes)");
  }
  ++framesRead_;
  return true;
}

uint64_t Y4mReader::FrameCountHint() const {
  const uint64_t perFrame = sizeof(kFrameLine) + LayoutOf(LF_I420, width_, height_).PackedBytes();
  return file_.Size() > headerBytes_ ? (file_.Size() - headerBytes_) / perFrame : 0;
}

Y4mWriter::Y4mWriter(const std::string& path, const std::string& frameRate)
    : file_(path, File::kWrite), frameRate_(frameRate) {}

void Y4mWriter::Write(const Frame& i420) {
  if (!width_) {
    width_ = i420.width();
    height_ = i420.height();
    const std::string header = "YUV4MPEG2 W" + std::to_string(width_) + " H" + std::to_string(height_) + " F" +
                               frameRate_ + " Ip A1:1 C420jpeg\n";
    file_.Write({reinterpret_cast<const uint8_t*>(header.data()), header.size()});
  } else if (i420.width() != width_ || i420.height() != height_) {
    throw ToolError(file_.path() + ": a YUV4MPEG2 clip keeps one frame size");
  }
  file_.Write(kFrameLine);
  file_.Write(i420.Bytes());
}

}  // namespace Lumaforge::cli
