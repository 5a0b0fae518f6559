// Row addressing for the conversions: vertical mirroring between bottom-up
// and top-down pictures, and RGB rows read and written through the 32-bit
// B, G, R, A working form in column chunks that fit on the stack.
#ifndef LUMAFORGE_COLOR_PICTURE_ROWS_H_
#define LUMAFORGE_COLOR_PICTURE_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "color/color_kernels.h"
#include "framework/formats.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// Conversions walk rows in column chunks of at most this many pixels (even),
// so their scratch rows live on the stack whatever the picture width.
constexpr int32_t kChunkPixels = 2048;

// Calls chunk(x0, count) for the column chunks of a row of `width` pixels.
template <typename Chunk>
inline void ForEachChunk(int32_t width, Chunk&& chunk) {
  for (int32_t x0 = 0; x0 < width; x0 += kChunkPixels) chunk(x0, width - x0 < kChunkPixels ? width - x0 : kChunkPixels);
}

// Rows of one plane, possibly walked from the last row up.
class PlaneRows {
 public:
  PlaneRows() = default;
  PlaneRows(uint8_t* plane, uint32_t stride, int32_t rows, bool mirrored)
      : m_pBase(mirrored ? plane + static_cast<ptrdiff_t>(rows - 1) * stride : plane),
        m_iStride(mirrored ? -static_cast<ptrdiff_t>(stride) : static_cast<ptrdiff_t>(stride)) {}
  uint8_t* Row(int32_t y) const { return m_pBase + y * m_iStride; }

 private:
  uint8_t* m_pBase = nullptr;
  ptrdiff_t m_iStride = 0;
};

// Conversions cover the pixels both pictures have, so a larger output
// keeps its extra pixels and a larger input is read only in part.
inline int32_t CommonWidth(const VideoPicture& in, const VideoPicture& out) {
  return static_cast<int32_t>(in.width < out.width ? in.width : out.width);
}
inline int32_t CommonHeight(const VideoPicture& in, const VideoPicture& out) {
  return static_cast<int32_t>(in.height < out.height ? in.height : out.height);
}

// True when the output must be written mirrored: the bottom-up flags differ.
inline bool Mirrored(const VideoPicture& in, const VideoPicture& out) {
  return IsBottomUp(in.format) != IsBottomUp(out.format);
}

// Plane k of a planar RGB picture: all three hang off planes[0].
inline uint8_t* PlanarRgbPlane(const VideoPicture& p, int32_t k) {
  return p.planes[0] + static_cast<size_t>(k) * p.strides[0] * p.height;
}

// Reads rows of any RGB layout as B, G, R, A pixels.
class RgbRowReader {
 public:
  RgbRowReader(const VideoPicture& picture, bool mirrored, const RgbPackKernels& kernels);
  // Pixels x0 .. x0 + count - 1 of row y; `scratch` holds 4 * count bytes
  // and is used unless the picture already is B, G, R, A.
  const uint8_t* Read(int32_t y, int32_t x0, int32_t count, uint8_t* scratch) const;

 private:
  const RgbPackKernels& m_kernels;
  RgbLayout m_layout;
  BytePattern m_toBgra;
  bool m_bIsBgra;
  PlaneRows m_rows[3];  // one per plane for planar RGB, else only the first
};

// Writes B, G, R, A pixels into rows of any RGB layout.
class RgbRowWriter {
 public:
  RgbRowWriter(const VideoPicture& picture, const RgbPackKernels& kernels);
  // Where to put B, G, R, A pixels x0 .. of row y: the picture itself when
  // it is B, G, R, A, else `scratch` (4 * count bytes), to be passed to Write.
  uint8_t* Target(int32_t y, int32_t x0, uint8_t* scratch) const;
  void Write(int32_t y, int32_t x0, int32_t count, const uint8_t* bgra) const;

 private:
  const RgbPackKernels& m_kernels;
  RgbLayout m_layout;
  BytePattern m_fromBgra;
  bool m_bIsBgra;
  PlaneRows m_rows[3];
};

// The pattern that moves channels from layout `from` to layout `to`, both
// 32-bit or (for the 24-bit forms) B, G, R, A on one side.
BytePattern ChannelPattern(const RgbLayout& from, const RgbLayout& to);
// Layout of the working form.
constexpr RgbLayout kBgraLayout = {2, 1, 0, 3, 4};

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_PICTURE_ROWS_H_
