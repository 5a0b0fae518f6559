// The one place that knows how a picture format lies in memory: how many
// planes it has, their sizes in bytes and samples, and bytes per pixel.
// Filters ask here instead of re-deriving it from the format code.
#ifndef LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_
#define LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_

#include <cstdint>

#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// Two codes mean different things to different filters.
enum class FormatReading : uint8_t {
  // Conversion and crop: code 31 is packed 4:2:2 (VYUY); RGBP and BGRP are
  // three planes stacked in the first plane's buffer, plane k at
  // k * strides[0] * height.
  kConversion,
  // Scaling and spatial filters: code 31 is one 8-bit grey plane; RGBP is
  // three full-size planes, each with its own pointer and stride.
  kPlanes,
};

struct PlaneShape {
  uint32_t width = 0, height = 0;  // samples (packed pixels count as one)
  uint64_t rowBytes = 0;           // bytes one row of the plane needs
  uint32_t bytesPerSample = 0;     // bytes of one sample (pixel, or chroma pair)
  uint32_t shiftX = 0, shiftY = 0;  // picture column x, row y lie at x >> shiftX, y >> shiftY

  // Bytes from the plane's start to picture position (x, y) at `stride`.
  uint64_t Offset(uint32_t x, uint32_t y, uint64_t stride) const {
    return (y >> shiftY) * stride + uint64_t{x >> shiftX} * bytesPerSample;
  }
};

struct PlaneLayout {
  int32_t planes = 0;         // planes with their own pointer; 0: the reading does not know the code
  int32_t bytesPerPixel = 0;  // bytes per sample of plane 0 (2 for packed 4:2:2)
  bool chroma420 = false;     // planes 1 and 2 (or the interleaved plane 1) are half size both ways
  PlaneShape plane[3];

  bool Known() const { return planes > 0; }
  // Bytes a plane needs at `stride`: the last row ends after rowBytes.
  uint64_t PlaneBytes(int32_t k, uint64_t stride) const {
    return plane[k].height ? (plane[k].height - 1) * stride + plane[k].rowBytes : 0;
  }
};

// Layout of `format` (the bottom-up flag is ignored) at width x height.
// Half-size planes truncate odd sizes.
PlaneLayout LayoutOf(uint32_t format, FormatReading reading, uint32_t width, uint32_t height);

// True when every plane of `layout` has a pointer.
bool PlanesPresent(const VideoPicture& picture, const PlaneLayout& layout);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_PLANE_LAYOUT_H_
