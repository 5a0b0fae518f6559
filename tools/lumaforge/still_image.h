// Still images through stb: any file stb_image reads, and PNG writing.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_STILL_IMAGE_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_STILL_IMAGE_H_

#include <string>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

// An RGBA frame; grey and RGB files get their channels expanded.
Frame LoadStillImage(const std::string& path);
// `rgba` must be in RGBA.
void WritePng(const std::string& path, const Frame& rgba);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_STILL_IMAGE_H_
