// What a file holds, judged by its extension.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_MEDIA_KIND_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_MEDIA_KIND_H_

#include <string>

namespace Lumaforge::cli {

enum class MediaKind {
  kY4m,    // .y4m
  kPng,    // .png
  kStill,  // other still images stb reads: .bmp, .ppm, .pgm, .jpg, .jpeg
  kRaw,    // anything else: bare frames
};

MediaKind KindOf(const std::string& path);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_MEDIA_KIND_H_
