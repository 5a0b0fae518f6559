#include "tools/lumaforge/resize_target.h"

namespace Lumaforge::cli {

Frame EvenFrame(Frame frame) {
  if (((frame.width() | frame.height()) & 1) == 0) return frame;
  VideoPicture even = frame.Picture();
  even.width &= ~1u;
  even.height &= ~1u;
  return Frame::CopyOf(even);
}

std::pair<uint32_t, uint32_t> ResizeTarget(std::optional<uint32_t> width, std::optional<uint32_t> height,
                                           uint32_t inWidth, uint32_t inHeight,
                                           std::pair<uint32_t, uint32_t> byDefault) {
  auto even = [](uint64_t value) { return static_cast<uint32_t>(value) & ~1u; };
  if (width && height) return {*width, *height};
  if (width) return {*width, even(uint64_t{inHeight} * *width / inWidth)};
  if (height) return {even(uint64_t{inWidth} * *height / inHeight), *height};
  return byDefault;
}

}  // namespace Lumaforge::cli
