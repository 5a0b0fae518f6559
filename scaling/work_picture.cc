#include "scaling/work_picture.h"

#include <cstring>

namespace Lumaforge {

WorkPicture RecordPicture(const VideoPicture& p) {
  WorkPicture w;
  for (int k = 0; k < 3; ++k) {
    w.planes[k] = p.planes[k];
    w.strides[k] = p.strides[k];
  }
  w.width = p.width;
  w.height = p.height;
  return w;
}

bool IsAligned(const VideoPicture& picture, const PlaneLayout& layout, uint32_t alignment) {
  for (int k = 0; k < layout.planes; ++k) {
    if (picture.strides[k] % alignment || reinterpret_cast<uintptr_t>(picture.planes[k]) % alignment) return false;
  }
  return true;
}

void CopyPicture(uint32_t code, const WorkPicture& from, const WorkPicture& to) {
  const PlaneLayout layout = LayoutOf(code, FormatReading::kPlanes, from.width, from.height);
  for (int k = 0; k < layout.planes; ++k) {
    for (uint32_t y = 0; y < layout.plane[k].height; ++y) {
      std::memcpy(to.planes[k] + static_cast<size_t>(y) * to.strides[k],
                  from.planes[k] + static_cast<size_t>(y) * from.strides[k], layout.plane[k].rowBytes);
    }
  }
}

int32_t WorkPictureBuffer::Cut(uint32_t code, uint32_t width, uint32_t height, uint32_t alignment, WorkPicture& picture,
                               uint64_t* bytes) {
  const PlaneLayout layout = LayoutOf(code, FormatReading::kPlanes, width, height);
  uint32_t strides[3] = {};
  uint64_t required = alignment;
  for (int32_t k = 0; k < layout.planes; ++k) {
    const uint32_t padded = (layout.plane[k].width + alignment - 1) / alignment * alignment;
    strides[k] = padded * static_cast<uint32_t>(layout.bytesPerPixel);
    required += uint64_t{strides[k]} * layout.plane[k].height;
  }
  // Blocks are sized in 32 bits; a picture this large could have each plane
  // addressed but not all held in one block.
  if (required > UINT32_MAX) {
    allocated_ = false;
    return LF_SETUP_ALLOC_FAILED;
  }
  const bool keep = allocated_ && width_ == width && height_ == height && code_ == code;
  if (!keep) {
    if (!block_.Reserve(static_cast<uint32_t>(required))) {
      allocated_ = false;
      return LF_SETUP_ALLOC_FAILED;
    }
    std::memset(block_.data(), 0, static_cast<size_t>(required));
    allocated_ = true;
    width_ = width;
    height_ = height;
    code_ = code;
    *bytes = required;
  }
  // The picture is always cut again from the block: it may have pointed at
  // a caller's planes since the last frame. The first plane starts past the
  // next alignment boundary (always moving forward).
  uint8_t* next =
      reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(block_.data()) + alignment) & ~uintptr_t{alignment - 1});
  picture = WorkPicture();
  picture.width = width;
  picture.height = height;
  for (int32_t k = 0; k < layout.planes; ++k) {
    picture.planes[k] = next;
    picture.strides[k] = strides[k];
    next += static_cast<size_t>(strides[k]) * layout.plane[k].height;
  }
  return LF_OK;
}

void WorkPictureBuffer::Free() {
  block_.Free();
  allocated_ = false;
}

}  // namespace Lumaforge
