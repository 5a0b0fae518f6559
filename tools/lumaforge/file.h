// A C stream that closes itself and reports failures with the file's name.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_FILE_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_FILE_H_

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace Lumaforge::cli {

class File {
 public:
  enum Mode { kRead, kWrite };
  File(const std::string& path, Mode mode);  // throws when it cannot be opened
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::FILE* get() const { return stream_; }
  const std::string& path() const { return path_; }
  // Bytes in the file when it was opened for reading.
  uint64_t Size() const { return size_; }
  // Fewer bytes than asked only at the end of the file.
  size_t Read(std::span<uint8_t> bytes);
  void Write(std::span<const uint8_t> bytes);
  // Flushes and closes; a failure (a full disk) throws here.
  void Close();

 private:
  std::string path_;
  std::FILE* stream_ = nullptr;
  uint64_t size_ = 0;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_FILE_H_
