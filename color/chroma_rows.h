// Chroma rows of 4:2:0 pictures, planar or semi-planar, seen as separate U
// and V rows.
#ifndef LUMAFORGE_COLOR_CHROMA_ROWS_H_
#define LUMAFORGE_COLOR_CHROMA_ROWS_H_

#include "color/picture_rows.h"

namespace Lumaforge {

// Luma and chroma rows of a planar or semi-planar 4:2:0 picture.
struct Yuv420Rows {
  Yuv420Rows(const VideoPicture& p, bool mirrored) {
    const uint32_t code = FormatCode(p.format);
    const int32_t height = static_cast<int32_t>(p.height);
    luma = PlaneRows(p.planes[0], p.strides[0], height, mirrored);
    semiPlanar = IsSemiPlanar420(code);
    // YV12 keeps V in plane 1; NV21 keeps V first in each pair.
    swapped = code == LF_YV12 || code == LF_NV21;
    const int32_t first = semiPlanar ? 1 : (swapped ? 2 : 1);
    u = PlaneRows(p.planes[first], p.strides[first], height / 2, mirrored);
    if (!semiPlanar) {
      const int32_t second = swapped ? 1 : 2;
      v = PlaneRows(p.planes[second], p.strides[second], height / 2, mirrored);
    }
  }

  PlaneRows luma, u, v;  // for semi-planar pictures u holds the pair rows
  bool semiPlanar, swapped;
};

// Reads U and V samples x0 / 2 .. of chroma row c: planar rows directly,
// interleaved pairs split into the scratch rows.
inline void ReadChroma(const Yuv420Rows& rows, int32_t c, int32_t x0, int32_t count, const ColorKernels& k,
                       uint8_t* scratchU, uint8_t* scratchV, const uint8_t** u, const uint8_t** v) {
  if (!rows.semiPlanar) {
    *u = rows.u.Row(c) + x0 / 2;
    *v = rows.v.Row(c) + x0 / 2;
    return;
  }
  uint8_t* first = rows.swapped ? scratchV : scratchU;
  uint8_t* second = rows.swapped ? scratchU : scratchV;
  k.chroma.splitUVRow(rows.u.Row(c) + x0, first, second, count / 2);
  *u = scratchU;
  *v = scratchV;
}

// Where U and V samples x0 / 2 .. of chroma row c go: the planes themselves,
// or for semi-planar pictures the scratch rows, which CommitChroma then
// interleaves into the picture.
inline void ChromaTargets(const Yuv420Rows& rows, int32_t c, int32_t x0, uint8_t* scratchU, uint8_t* scratchV,
                          uint8_t** u, uint8_t** v) {
  if (rows.semiPlanar) {
    *u = scratchU;
    *v = scratchV;
  } else {
    *u = rows.u.Row(c) + x0 / 2;
    *v = rows.v.Row(c) + x0 / 2;
  }
}

inline void CommitChroma(const Yuv420Rows& rows, int32_t c, int32_t x0, int32_t count, const ColorKernels& k,
                         const uint8_t* u, const uint8_t* v) {
  if (!rows.semiPlanar) return;
  uint8_t* pairs = rows.u.Row(c) + x0;
  if (rows.swapped) {
    k.chroma.mergeUVRow(v, u, pairs, count / 2);
  } else {
    k.chroma.mergeUVRow(u, v, pairs, count / 2);
  }
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_CHROMA_ROWS_H_
