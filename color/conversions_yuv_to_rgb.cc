// YUV to RGB: rows go through the 4:2:2 to B, G, R, A kernel, written into
// the picture directly when it is B, G, R, A and repacked otherwise.
#include <algorithm>

#include "color/chroma_rows.h"
#include "color/conversions.h"

namespace Lumaforge {

void Yuv420ToRgb(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const Yuv420Rows src(*in, Mirrored(*in, *out));
  const RgbRowWriter dst(*out, k.rgbPack);
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  alignas(64) uint8_t bgra[4 * kChunkPixels];
  alignas(64) uint8_t scratchU[kChunkPixels / 2], scratchV[kChunkPixels / 2];
  ForEachChunk(width, [&](int32_t x0, int32_t count) {
    const uint8_t *u = nullptr, *v = nullptr;
    for (int32_t y = 0; y < height; ++y) {
      // Each chroma row serves two luma rows; interleaved rows are split once.
      if ((y & 1) == 0) ReadChroma(src, y / 2, x0, count, k, scratchU, scratchV, &u, &v);
      uint8_t* target = dst.Target(y, x0, bgra);
      k.yuvToRgb.i422ToBgraRow(src.luma.Row(y) + x0, u, v, target, count);
      dst.Write(y, x0, count, target);
    }
  });
}

void Packed422ToRgb(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const PlaneRows src(in->planes[0], in->strides[0], static_cast<int32_t>(in->height), Mirrored(*in, *out));
  const Packed422Layout layout = *GetPacked422Layout(FormatCode(in->format));
  const RgbRowWriter dst(*out, k.rgbPack);
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  alignas(64) uint8_t bgra[4 * kChunkPixels];
  alignas(64) uint8_t y[kChunkPixels], u[kChunkPixels / 2], v[kChunkPixels / 2];
  for (int32_t row = 0; row < height; ++row) {
    ForEachChunk(width, [&](int32_t x0, int32_t count) {
      k.packed422.packed422ToPlanesRow(src.Row(row) + 2 * x0, y, u, v, layout, count);
      uint8_t* target = dst.Target(row, x0, bgra);
      k.yuvToRgb.i422ToBgraRow(y, u, v, target, count);
      dst.Write(row, x0, count, target);
    });
  }
}

}  // namespace Lumaforge
