#include "tools/lumaforge/media_kind.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Lumaforge::cli {

MediaKind KindOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".y4m") return MediaKind::kY4m;
  if (extension == ".png") return MediaKind::kPng;
  if (extension == ".bmp" || extension == ".ppm" || extension == ".pgm" || extension == ".jpg" || extension == ".jpeg")
    return MediaKind::kStill;
  return MediaKind::kRaw;
}

}  // namespace Lumaforge::cli
