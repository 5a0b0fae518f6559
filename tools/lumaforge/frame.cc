#include "tools/lumaforge/frame.h"

#include <cstring>

#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {

Frame::Frame(uint32_t format, uint32_t width, uint32_t height)
    : format_(format), width_(width), height_(height), bytes_(LayoutOf(format, width, height).PackedBytes()) {}

Frame Frame::CopyOf(const VideoPicture& picture) {
  Frame frame(picture.format & LF_FORMAT_CODE_MASK, picture.width, picture.height);
  const PlaneLayout layout = LayoutOf(frame.format_, frame.width_, frame.height_);
  for (int k = 0; k < layout.planes; ++k) {
    const PlaneShape& shape = layout.plane[k];
    for (uint32_t row = 0; row < shape.height; ++row) {
      std::memcpy(frame.Plane(k) + size_t{row} * shape.rowBytes, picture.planes[k] + size_t{row} * picture.strides[k],
                  shape.rowBytes);
    }
  }
  return frame;
}

size_t Frame::PlaneOffset(int k) const {
  if (k == 0) return 0;  // the common case, per pixel in drawing loops
  const PlaneLayout layout = LayoutOf(format_, width_, height_);
  size_t offset = 0;
  for (int i = 0; i < k; ++i) offset += layout.plane[i].rowBytes * layout.plane[i].height;
  return offset;
}

VideoPicture Frame::Picture() {
  const PlaneLayout layout = LayoutOf(format_, width_, height_);
  VideoPicture picture = {};
  picture.width = width_;
  picture.height = height_;
  picture.format = format_;
  for (int k = 0; k < layout.planes; ++k) {
    picture.planes[k] = Plane(k);
    picture.strides[k] = static_cast<uint32_t>(layout.plane[k].rowBytes);
  }
  return picture;
}

}  // namespace Lumaforge::cli
