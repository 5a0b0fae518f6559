// The per-plane paths of the downscaler: the direct path, the halving
// cascade through the sample planes, and the two multi-tap filters.
#include <cstring>

#include "framework/buffers.h"
#include "scaling/downsample_taps.h"
#include "scaling/downsampling.h"

namespace Lumaforge {
namespace {

// Sample planes hold at most this many samples per row and rows.
constexpr int32_t kSampleLumaWidth = 1920, kSampleLumaHeight = 1088;

uint8_t* AlignUp16(uint8_t* p) {
  return reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(p) + 15) & ~uintptr_t{15});
}

const uint8_t* Row(const PlaneView& p, int32_t y) { return p.data + static_cast<ptrdiff_t>(y) * p.stride; }

}  // namespace

void CDownsampling::ScalePlane(const PlaneView& src, const PlaneView& dst, int32_t plane, bool chroma) {
  const int32_t W = src.width, H = src.height, w = dst.width, h = dst.height;
  // Chroma sample planes of I420 are a quarter of the luma ones; a plane
  // whose first halving would not fit its sample plane, or that has none
  // (the planes are cut for the first frame's format), scales directly.
  const int32_t limitW = chroma ? kSampleLumaWidth / 2 : kSampleLumaWidth;
  const int32_t limitH = chroma ? kSampleLumaHeight / 2 : kSampleLumaHeight;
  const bool direct = W / 2 > limitW || H / 2 > limitH || m_bSampleBufferFailed || !m_pSamplePlanes[0][plane];
  if (direct) {
    if (w == W / 2 && h == H / 2) {
      DownsampleHalfMultiTap(src, dst);
    } else if (w == W >> 2 && h == H >> 2) {
      m_box.quarter(src.data, src.stride, dst.data, dst.stride, W, H);
    } else if (w == W / 3 && h == H / 3) {
      m_box.third(src.data, src.stride, dst.data, dst.stride, W, H);
    } else {
      DownsampleGeneralMultiTap(src, dst);
    }
    return;
  }
  // Halve while both halves stay larger than the target, then finish with
  // one exact halving or one resampling into the output.
  PlaneView current = src;
  int32_t set = 0;
  for (;;) {
    const int32_t hw = current.width >> 1, hh = current.height >> 1;
    if (hw == w && hh == h) {
      DownsampleHalfMultiTap(current, dst);
      return;
    }
    if (hw <= w || hh <= h) {
      DownsampleGeneralMultiTap(current, dst);
      return;
    }
    const PlaneView sample{m_pSamplePlanes[set][plane], (hw + 31) & ~31, hw, hh};
    DownsampleHalfMultiTap(current, sample);
    current = sample;
    set ^= 1;
  }
}

uint8_t* CDownsampling::GrowScratch(WorkBlock& buffer, uint32_t bytes, const char* name) {
  uint8_t* scratch = buffer.Grow(bytes);
  // Both scratch buffers report under the half-band routine's name.
  if (!scratch && m_pLogger) m_pLogger->Error("CDownsampling::DownsampleHalfMultiTap(), Allocate %s failed.", name);
  return scratch;
}

void CDownsampling::DownsampleHalfMultiTap(const PlaneView& src, const PlaneView& dst) {
  const int32_t W = src.width, H = src.height;
  // Rows of the vertical pass, with 16 bytes of edge copies on each side.
  const int32_t T = (W + 47) & ~15;
  const uint32_t needed = static_cast<uint32_t>((H / 2 + 1) * T);
  uint8_t* scratch = GrowScratch(m_HalfBandTempBuffer, needed, "m_pHalfBandTempBuffer");
  if (!scratch) return;
  uint8_t* origin = AlignUp16(scratch) + 32;
  // Both passes run band by band, so the scratch rows are read back while
  // still in the cache; the bytes are those of two whole-plane passes.
  constexpr int32_t kBandRows = 8;
  for (int32_t j0 = 0; j0 < H / 2; j0 += kBandRows) {
    const int32_t rows = H / 2 - j0 < kBandRows ? H / 2 - j0 : kBandRows;
    m_multiTap.halfBandVertical(src.data, src.stride, W, H, origin, T, m_HalfBandTaps, j0, rows);
    for (int32_t j = 0; j < rows; ++j) {
      uint8_t* row = origin + static_cast<ptrdiff_t>(j) * T;
      std::memset(row - 16, row[0], 16);
      std::memset(row + W, row[W - 1], 16);
    }
    m_multiTap.halfBandHorizontal(origin, T, W, rows, dst.data + static_cast<ptrdiff_t>(j0) * dst.stride, dst.stride,
                                  m_HalfBandTaps);
  }
}

void CDownsampling::DownsampleGeneralMultiTap(const PlaneView& src, const PlaneView& dst) {
  const int32_t W = src.width, H = src.height, w = dst.width, h = dst.height;
  const int32_t stepY = static_cast<int32_t>((h / 2 + (static_cast<int64_t>(H) << 16)) / h);
  const int32_t stepX = static_cast<int32_t>((w / 2 + (static_cast<int64_t>(W) << 16)) / w);
  const int32_t startX = (stepX >> 1) - 32768;
  const int32_t widthIndex = SpecialRatioIndex(w, W);
  const int32_t heightIndex = widthIndex ? SpecialRatioIndex(h, H) : 0;
  const int8_t(*columnTaps)[4] = widthIndex ? SpecialRatioPhases(widthIndex) : m_PhaseTable;
  const int32_t columnCycle = widthIndex ? SpecialRatioPhaseCount(widthIndex) : 0;

  // One filtered line with 16 bytes in front; three edge copies on each side
  // cover every position the horizontal taps reach.
  const uint32_t needed = static_cast<uint32_t>((2 * W + 79) & ~15);
  uint8_t* scratch = GrowScratch(m_GeneralTempBuffer, needed, "m_pGeneralTempBuffer");
  if (!scratch) return;
  uint8_t* line = AlignUp16(scratch) + 16;

  int32_t posY = (stepY >> 1) - 32768;
  for (int32_t r = 0; r < h; ++r, posY += stepY) {
    const int32_t y = posY >> 16;
    const int8_t* taps = heightIndex ? SpecialRatioPhases(heightIndex)[r % SpecialRatioPhaseCount(heightIndex)]
                                     : m_PhaseTable[(posY >> 10) & 63];
    auto row = [&](int32_t k) { return Row(src, k < 0 ? 0 : (k > H - 1 ? H - 1 : k)); };
    m_multiTap.fourTapVertical(row(y - 1), row(y), row(y + 1), row(y + 2), line, W, taps);
    std::memset(line - 3, line[0], 3);
    std::memset(line + W, line[W - 1], 3);
    m_multiTap.fourTapHorizontal(line, dst.data + static_cast<ptrdiff_t>(r) * dst.stride, w, startX, stepX, columnTaps,
                                 columnCycle);
  }
}

}  // namespace Lumaforge
