// RGB to YUV: rows are read as B, G, R, A (directly when the picture already
// is), then reduced to luma and chroma by the kernels.
#include <algorithm>

#include "color/chroma_rows.h"
#include "color/conversions.h"

namespace Lumaforge {

void RgbToYuv420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const RgbRowReader src(*in, Mirrored(*in, *out), k.rgbPack);
  const Yuv420Rows dst(*out, false);
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  alignas(64) uint8_t scratch0[4 * kChunkPixels], scratch1[4 * kChunkPixels];
  alignas(64) uint8_t scratchU[kChunkPixels / 2], scratchV[kChunkPixels / 2];
  for (int32_t y = 0; y + 1 < height; y += 2) {
    ForEachChunk(width, [&](int32_t x0, int32_t count) {
      const uint8_t* top = src.Read(y, x0, count, scratch0);
      const uint8_t* bottom = src.Read(y + 1, x0, count, scratch1);
      k.rgbToYuv.bgraToYRow(top, dst.luma.Row(y) + x0, count);
      k.rgbToYuv.bgraToYRow(bottom, dst.luma.Row(y + 1) + x0, count);
      uint8_t *u, *v;
      ChromaTargets(dst, y / 2, x0, scratchU, scratchV, &u, &v);
      k.rgbToYuv.bgraToUV420Row(top, bottom, u, v, count);
      CommitChroma(dst, y / 2, x0, count, k, u, v);
    });
  }
}

void RgbToPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const RgbRowReader src(*in, Mirrored(*in, *out), k.rgbPack);
  const PlaneRows dst(out->planes[0], out->strides[0], static_cast<int32_t>(out->height), false);
  const Packed422Layout layout = *GetPacked422Layout(FormatCode(out->format));
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  alignas(64) uint8_t scratch[4 * kChunkPixels];
  alignas(64) uint8_t y[kChunkPixels], u[kChunkPixels / 2], v[kChunkPixels / 2];
  for (int32_t row = 0; row < height; ++row) {
    ForEachChunk(width, [&](int32_t x0, int32_t count) {
      const uint8_t* bgra = src.Read(row, x0, count, scratch);
      k.rgbToYuv.bgraToYRow(bgra, y, count);
      k.rgbToYuv.bgraToUV422Row(bgra, u, v, count);
      k.packed422.planesToPacked422Row(y, u, v, dst.Row(row) + 2 * x0, layout, count);
    });
  }
}

}  // namespace Lumaforge
