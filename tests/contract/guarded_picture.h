// A picture whose every plane is its own block with guard bytes before and
// after it, and whose record fields the filter should not touch hold
// recognisable values, so a test can tell what a call wrote.
#ifndef LUMAFORGE_TESTS_CONTRACT_GUARDED_PICTURE_H_
#define LUMAFORGE_TESTS_CONTRACT_GUARDED_PICTURE_H_

#include <cstdint>
#include <cstring>
#include <vector>

#include "framework/plane_layout.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

inline constexpr size_t kGuardBytes = 64;
inline constexpr uint8_t kGuardValue = 0xA5;

class GuardedPicture {
 public:
  // Strides are the row bytes plus `pad`; planes start on `alignment` bytes.
  GuardedPicture(uint32_t format, FormatReading reading, uint32_t width, uint32_t height, uint32_t pad,
                 uint32_t alignment = 1)
      : layout_(LayoutOf(format, reading, width, height)) {
    std::memset(&picture, 0, sizeof(picture));
    picture.width = width;
    picture.height = height;
    picture.format = format;
    // Fields no filter of these tests writes: recognisable values.
    picture.dataSize = 0x5151;
    picture.aux0 = 0xA0;
    picture.aux1 = 0xA1;
    picture.aux2 = 0xA2;
    picture.maskWidth = -3;
    picture.maskHeight = -4;
    picture.decoderWord = 0xDEC;
    picture.frameDurationMs = 33;
    for (int32_t k = 0; k < layout_.planes; ++k) {
      picture.strides[k] = static_cast<uint32_t>(layout_.plane[k].rowBytes) + pad;
      const size_t bytes = layout_.PlaneBytes(k, picture.strides[k]);
      blocks_[k].assign(bytes + 2 * kGuardBytes + alignment, kGuardValue);
      const auto address = reinterpret_cast<uintptr_t>(blocks_[k].data() + kGuardBytes);
      starts_[k] = kGuardBytes + (alignment - address % alignment) % alignment;
      ends_[k] = starts_[k] + bytes;
      picture.planes[k] = blocks_[k].data() + starts_[k];
    }
  }
  GuardedPicture(const GuardedPicture&) = delete;
  GuardedPicture& operator=(const GuardedPicture&) = delete;

  void FillRandom(uint32_t seed) {
    for (int32_t k = 0; k < layout_.planes; ++k) {
      uint8_t* plane = picture.planes[k];
      for (size_t i = 0, n = ends_[k] - starts_[k]; i < n; ++i) {
        seed = seed * 1664525u + 1013904223u;
        plane[i] = static_cast<uint8_t>(seed >> 24);
      }
    }
  }

  bool GuardsIntact() const {
    for (int32_t k = 0; k < layout_.planes; ++k) {
      const std::vector<uint8_t>& b = blocks_[k];
      for (size_t i = 0; i < b.size(); ++i) {
        if ((i < starts_[k] || i >= ends_[k]) && b[i] != kGuardValue) return false;
      }
    }
    return true;
  }

  // Every byte of every block, guards included.
  std::vector<uint8_t> AllBytes() const {
    std::vector<uint8_t> bytes;
    for (const auto& b : blocks_) bytes.insert(bytes.end(), b.begin(), b.end());
    return bytes;
  }

  const PlaneLayout& layout() const { return layout_; }
  VideoPicture picture;

 private:
  PlaneLayout layout_;
  std::vector<uint8_t> blocks_[3];
  // Where each plane lies in its block; everything else is guard.
  size_t starts_[3] = {}, ends_[3] = {};
};

// The pixel bytes a record points at (rows of each plane of `layout`, without
// their padding), wherever the planes are.
inline std::vector<uint8_t> PixelBytes(const VideoPicture& p, const PlaneLayout& layout) {
  std::vector<uint8_t> bytes;
  for (int32_t k = 0; k < layout.planes; ++k) {
    for (uint32_t y = 0; y < layout.plane[k].height; ++y) {
      const uint8_t* row = p.planes[k] + static_cast<size_t>(y) * p.strides[k];
      bytes.insert(bytes.end(), row, row + layout.plane[k].rowBytes);
    }
  }
  return bytes;
}

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_CONTRACT_GUARDED_PICTURE_H_
