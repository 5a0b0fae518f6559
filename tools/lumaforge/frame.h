// A picture owned by the tool: one buffer, planes tightly packed, so every
// filter can take it (several address rows by the width and ignore strides).
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_FRAME_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_FRAME_H_

#include <cstdint>
#include <span>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::cli {

class Frame {
 public:
  Frame() = default;
  // Zero-filled.
  Frame(uint32_t format, uint32_t width, uint32_t height);
  // Copies a picture whose planes may have any strides (crop's answer).
  static Frame CopyOf(const VideoPicture& picture);

  uint32_t format() const { return format_; }
  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }

  // A record over this frame's planes, valid while the frame lives unchanged.
  VideoPicture Picture();
  uint8_t* Plane(int k) { return bytes_.data() + PlaneOffset(k); }
  const uint8_t* Plane(int k) const { return bytes_.data() + PlaneOffset(k); }
  std::span<uint8_t> Bytes() { return bytes_; }
  std::span<const uint8_t> Bytes() const { return bytes_; }

 private:
  size_t PlaneOffset(int k) const;

  uint32_t format_ = 0;
  uint32_t width_ = 0;
  uint32_t height_ = 0;
  std::vector<uint8_t> bytes_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_FRAME_H_
