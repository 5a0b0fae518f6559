#include "tools/lumaforge/file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tools/lumaforge/errors.h"

namespace Lumaforge::cli {
namespace {

std::string Reason() { return std::strerror(errno); }

}  // namespace

File::File(const std::string& path, Mode mode) : path_(path) {
  if (mode == kRead && std::filesystem::is_directory(path)) throw ToolError(path + ": is a directory");
  stream_ = std::fopen(path.c_str(), mode == kRead ? "rb" : "wb");
  if (!stream_) {
    throw ToolError(path + ": cannot open for " + (mode == kRead ? "reading" : "writing") + " (" + Reason() + ")");
  }
  if (mode == kRead) {
    std::error_code error;
    size_ = std::filesystem::file_size(path, error);
    if (error) size_ = 0;
  }
}

File::~File() {
  if (stream_) std::fclose(stream_);
}

size_t File::Read(std::span<uint8_t> bytes) {
  const size_t got = std::fread(bytes.data(), 1, bytes.size(), stream_);
  if (got < bytes.size() && std::ferror(stream_)) throw ToolError(path_ + ": read error (" + Reason() + ")");
  return got;
}

void File::Write(std::span<const uint8_t> bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size())
    throw ToolError(path_ + ": write error (" + Reason() + ")");
}

void File::Close() {
  std::FILE* stream = stream_;
  stream_ = nullptr;
  if (stream && std::fclose(stream) != 0) throw ToolError(path_ + ": write error (" + Reason() + ")");
}

}  // namespace Lumaforge::cli
