// Byte layouts of the picture formats and the format groups filters test for.
#ifndef LUMAFORGE_FRAMEWORK_FORMATS_H_
#define LUMAFORGE_FRAMEWORK_FORMATS_H_

#include <cstdint>

#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// The PixelFormat code of a format word (the bottom-up flag removed).
constexpr uint32_t FormatCode(uint32_t format) { return format & LF_FORMAT_CODE_MASK; }
constexpr bool IsBottomUp(uint32_t format) { return (format & LF_FORMAT_BOTTOM_UP) != 0; }

// Where R, G, B and A sit in an RGB pixel. For the planar one-buffer codes
// (step 1) the index is the plane number.
struct RgbLayout {
  int32_t r, g, b, a;  // a is -1 without alpha
  int32_t step;        // bytes per pixel; 1 marks planar RGB
};

// Byte positions of Y0, U, Y1, V within one 4-byte pixel pair.
struct Packed422Layout {
  int32_t y0, u, y1, v;
};

// Null for codes without such a layout.
const RgbLayout* GetRgbLayout(uint32_t code);
const Packed422Layout* GetPacked422Layout(uint32_t code);

constexpr bool IsPackedRgb24(uint32_t code) { return code == LF_RGB24 || code == LF_BGR24; }
constexpr bool IsPackedRgb32(uint32_t code) {
  return code == LF_RGBA || code == LF_BGRA || code == LF_ABGR || code == LF_ARGB;
}
constexpr bool IsPlanarRgb(uint32_t code) { return code == LF_RGBP || code == LF_BGRP; }
constexpr bool IsPacked422(uint32_t code) {
  return code == LF_YUY2 || code == LF_YVYU || code == LF_UYVY || code == LF_VYUY;
}
constexpr bool IsPlanar420(uint32_t code) { return code == LF_I420 || code == LF_YV12; }
constexpr bool IsSemiPlanar420(uint32_t code) { return code == LF_NV12 || code == LF_NV21; }

// Codes whose chroma is subsampled, so rectangles and sizes must be even.
constexpr uint32_t kChromaSubsampledMask = 0xE5F00000u;
constexpr bool IsChromaSubsampled(uint32_t code) { return code < 32 && ((kChromaSubsampledMask >> code) & 1u); }

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_FORMATS_H_
