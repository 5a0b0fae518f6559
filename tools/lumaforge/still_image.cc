#include "tools/lumaforge/still_image.h"

#include <stb_image.h>
#include <stb_image_write.h>

#include <cstring>
#include <memory>

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/file.h"

namespace Lumaforge::cli {

Frame LoadStillImage(const std::string& path) {
  File file(path, File::kRead);
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, void (*)(void*)> pixels(stbi_load_from_file(file.get(), &width, &height, &channels, 4),
                                                         stbi_image_free);
  if (!pixels) throw ToolError(path + ": not a readable image (" + stbi_failure_reason() + ")");
  Frame frame(LF_RGBA, static_cast<uint32_t>(width), static_cast<uint32_t>(height));
  std::memcpy(frame.Plane(0), pixels.get(), frame.Bytes().size());
  return frame;
}

void WritePng(const std::string& path, const Frame& rgba) {
  const int width = static_cast<int>(rgba.width()), height = static_cast<int>(rgba.height());
  if (!stbi_write_png(path.c_str(), width, height, 4, rgba.Plane(0), width * 4))
    throw ToolError(path + ": cannot write the PNG file");
}

}  // namespace Lumaforge::cli
