// Files the tests hand to the tool and read back, and the library called
// directly for the expected answers.
#ifndef LUMAFORGE_TESTS_TOOLS_MEDIA_FILES_H_
#define LUMAFORGE_TESTS_TOOLS_MEDIA_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

using Bytes = std::vector<uint8_t>;

Bytes RandomBytes(size_t count, uint32_t seed);
void WriteFile(const std::string& path, const Bytes& bytes);
Bytes ReadFile(const std::string& path);

// A 4:2:0 clip of the given I420 frames.
void WriteY4m(const std::string& path, uint32_t width, uint32_t height, const std::vector<Bytes>& frames);
// The frames of a clip the tool wrote (plain FRAME headers).
std::vector<Bytes> ReadY4mFrames(const std::string& path, uint32_t width, uint32_t height);

struct Image {
  int width = 0, height = 0;
  Bytes rgba;
};
Image LoadPng(const std::string& path);

// Tightly packed I420 / 32-bit RGB records over `bytes`.
VideoPicture PictureOver(Bytes& bytes, uint32_t format, uint32_t width, uint32_t height);

// The library called directly, log silenced.
class DirectLibrary {
 public:
  DirectLibrary();
  ~DirectLibrary();
  ILumaforge* operator->() const { return lf_; }

 private:
  ILumaforge* lf_ = nullptr;
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_TOOLS_MEDIA_FILES_H_
