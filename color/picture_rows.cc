#include "color/picture_rows.h"

namespace Lumaforge {
namespace {

// Rows of each plane an RGB picture uses: three for planar RGB, else one.
void InitRgbRows(const VideoPicture& p, const RgbLayout& layout, bool mirrored, PlaneRows rows[3]) {
  const int32_t height = static_cast<int32_t>(p.height);
  if (layout.step == 1) {
    for (int32_t k = 0; k < 3; ++k) rows[k] = PlaneRows(PlanarRgbPlane(p, k), p.strides[0], height, mirrored);
  } else {
    rows[0] = PlaneRows(p.planes[0], p.strides[0], height, mirrored);
  }
}

bool IsBgra(const VideoPicture& p) { return FormatCode(p.format) == LF_BGRA; }

}  // namespace

BytePattern ChannelPattern(const RgbLayout& from, const RgbLayout& to) {
  BytePattern pattern = {{0, 1, 2, 3}};
  pattern.index[to.r] = static_cast<uint8_t>(from.r);
  pattern.index[to.g] = static_cast<uint8_t>(from.g);
  pattern.index[to.b] = static_cast<uint8_t>(from.b);
  if (to.a >= 0 && from.a >= 0) pattern.index[to.a] = static_cast<uint8_t>(from.a);
  return pattern;
}

RgbRowReader::RgbRowReader(const VideoPicture& picture, bool mirrored, const RgbPackKernels& kernels)
    : m_kernels(kernels),
      m_layout(*GetRgbLayout(FormatCode(picture.format))),
      m_toBgra(ChannelPattern(m_layout, kBgraLayout)),
      m_bIsBgra(IsBgra(picture)) {
  InitRgbRows(picture, m_layout, mirrored, m_rows);
}

const uint8_t* RgbRowReader::Read(int32_t y, int32_t x0, int32_t count, uint8_t* scratch) const {
  if (m_layout.step == 1) {
    m_kernels.planesToBgraRow(m_rows[m_layout.r].Row(y) + x0, m_rows[m_layout.g].Row(y) + x0,
                              m_rows[m_layout.b].Row(y) + x0, scratch, count);
    return scratch;
  }
  const uint8_t* src = m_rows[0].Row(y) + static_cast<ptrdiff_t>(x0) * m_layout.step;
  if (m_bIsBgra) return src;
  if (m_layout.step == 4) {
    m_kernels.shuffle4Row(src, scratch, m_toBgra, count);
  } else {
    m_kernels.rgb24ToBgraRow(src, scratch, m_toBgra, count);
  }
  return scratch;
}

RgbRowWriter::RgbRowWriter(const VideoPicture& picture, const RgbPackKernels& kernels)
    : m_kernels(kernels),
      m_layout(*GetRgbLayout(FormatCode(picture.format))),
      m_fromBgra(ChannelPattern(kBgraLayout, m_layout)),
      m_bIsBgra(IsBgra(picture)) {
  InitRgbRows(picture, m_layout, false, m_rows);
}

uint8_t* RgbRowWriter::Target(int32_t y, int32_t x0, uint8_t* scratch) const {
  return m_bIsBgra ? m_rows[0].Row(y) + 4 * static_cast<ptrdiff_t>(x0) : scratch;
}

void RgbRowWriter::Write(int32_t y, int32_t x0, int32_t count, const uint8_t* bgra) const {
  if (m_bIsBgra) return;  // already written in place
  if (m_layout.step == 1) {
    m_kernels.bgraToPlanesRow(bgra, m_rows[m_layout.r].Row(y) + x0, m_rows[m_layout.g].Row(y) + x0,
                              m_rows[m_layout.b].Row(y) + x0, count);
    return;
  }
  uint8_t* dst = m_rows[0].Row(y) + static_cast<ptrdiff_t>(x0) * m_layout.step;
  if (m_layout.step == 4) {
    m_kernels.shuffle4Row(bgra, dst, m_fromBgra, count);
  } else {
    m_kernels.bgraToRgb24Row(bgra, dst, m_fromBgra, count);
  }
}

}  // namespace Lumaforge
