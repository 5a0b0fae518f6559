#include "tests/tools/media_files.h"

#include <stb_image.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Lumaforge::test {

Bytes RandomBytes(size_t count, uint32_t seed) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) {
    seed = seed * 1664525u + 1013904223u;
    byte = static_cast<uint8_t>(seed >> 24);
  }
  return bytes;
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Bytes ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void WriteY4m(const std::string& path, uint32_t width, uint32_t height, const std::vector<Bytes>& frames) {
  const std::string header =
      "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) + " F30000:1001 Ip A1:1 C420mpeg2\n";
  Bytes bytes(header.begin(), header.end());
  for (const Bytes& frame : frames) {
    const std::string frameHeader = "FRAME Ixyz\n";  // frame parameters are allowed
    bytes.insert(bytes.end(), frameHeader.begin(), frameHeader.end());
    bytes.insert(bytes.end(), frame.begin(), frame.end());
  }
  WriteFile(path, bytes);
}

std::vector<Bytes> ReadY4mFrames(const std::string& path, uint32_t width, uint32_t height) {
  const Bytes bytes = ReadFile(path);
  const size_t frameBytes = size_t{width} * height * 3 / 2;
  const std::string frameLine = "FRAME\n";
  std::vector<Bytes> frames;
  auto at = std::find(bytes.begin(), bytes.end(), '\n');
  if (at == bytes.end()) throw std::runtime_error(path + ": no header");
  for (++at; at != bytes.end();) {
    if (!std::equal(frameLine.begin(), frameLine.end(), at)) throw std::runtime_error(path + ": no FRAME line");
    at += static_cast<ptrdiff_t>(frameLine.size());
    if (static_cast<size_t>(bytes.end() - at) < frameBytes) throw std::runtime_error(path + ": cut frame");
    frames.emplace_back(at, at + static_cast<ptrdiff_t>(frameBytes));
    at += static_cast<ptrdiff_t>(frameBytes);
  }
  return frames;
}

Image LoadPng(const std::string& path) {
  Image image;
  int channels = 0;
  stbi_uc* pixels = stbi_load(path.c_str(), &image.width, &image.height, &channels, 4);
  if (!pixels) return image;
  image.rgba.assign(pixels, pixels + size_t(image.width) * image.height * 4);
  stbi_image_free(pixels);
  return image;
}

VideoPicture PictureOver(Bytes& bytes, uint32_t format, uint32_t width, uint32_t height) {
  VideoPicture picture = {};
  picture.width = width;
  picture.height = height;
  picture.format = format;
  picture.planes[0] = bytes.data();
  if (format == LF_I420) {
    picture.strides[0] = width;
    picture.strides[1] = picture.strides[2] = width / 2;
    picture.planes[1] = bytes.data() + size_t{width} * height;
    picture.planes[2] = picture.planes[1] + size_t{width / 2} * (height / 2);
  } else {
    picture.strides[0] = width * 4;
  }
  return picture;
}

DirectLibrary::DirectLibrary() {
  CreateLumaforge(&lf_);
  int32_t silent = -1;
  lf_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
}

DirectLibrary::~DirectLibrary() { DestroyLumaforge(lf_); }

}  // namespace Lumaforge::test
