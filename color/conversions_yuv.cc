// Between YUV layouts.
#include <algorithm>
#include <cstring>

#include "color/chroma_rows.h"
#include "color/conversions.h"

namespace Lumaforge {
namespace {

void CopyRows(const PlaneRows& src, const PlaneRows& dst, int32_t rows, int32_t bytes) {
  for (int32_t y = 0; y < rows; ++y) std::memcpy(dst.Row(y), src.Row(y), bytes);
}

}  // namespace

void CopyPlanar420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& /*kernels*/) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const Yuv420Rows src(*in, Mirrored(*in, *out)), dst(*out, false);
  CopyRows(src.luma, dst.luma, height, width);
  CopyRows(src.u, dst.u, height / 2, width / 2);
  CopyRows(src.v, dst.v, height / 2, width / 2);
}

void CopySemiPlanar420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& /*kernels*/) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const Yuv420Rows src(*in, Mirrored(*in, *out)), dst(*out, false);
  CopyRows(src.luma, dst.luma, height, width);
  if (src.swapped == dst.swapped) {
    CopyRows(src.u, dst.u, height / 2, width);
    return;
  }
  for (int32_t c = 0; c < height / 2; ++c) {
    const uint8_t* s = src.u.Row(c);
    uint8_t* d = dst.u.Row(c);
    for (int32_t i = 0; i + 1 < width; i += 2) {
      const uint8_t first = s[i], second = s[i + 1];
      d[i] = second;
      d[i + 1] = first;
    }
  }
}

void InterleaveChroma(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const Yuv420Rows src(*in, Mirrored(*in, *out)), dst(*out, false);
  CopyRows(src.luma, dst.luma, height, width);
  for (int32_t c = 0; c < height / 2; ++c) CommitChroma(dst, c, 0, width, k, src.u.Row(c), src.v.Row(c));
}

void DeinterleaveChroma(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const Yuv420Rows src(*in, Mirrored(*in, *out)), dst(*out, false);
  CopyRows(src.luma, dst.luma, height, width);
  for (int32_t c = 0; c < height / 2; ++c) {
    uint8_t* u = dst.u.Row(c);
    uint8_t* v = dst.v.Row(c);
    k.chroma.splitUVRow(src.u.Row(c), src.swapped ? v : u, src.swapped ? u : v, width / 2);
  }
}

void Yuv420ToPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const Yuv420Rows src(*in, Mirrored(*in, *out));
  const PlaneRows dst(out->planes[0], out->strides[0], height, false);
  const Packed422Layout layout = *GetPacked422Layout(FormatCode(out->format));
  alignas(64) uint8_t scratchU[kChunkPixels / 2], scratchV[kChunkPixels / 2];
  ForEachChunk(width, [&](int32_t x0, int32_t count) {
    const uint8_t *u = nullptr, *v = nullptr;
    for (int32_t y = 0; y < height; ++y) {
      if ((y & 1) == 0) ReadChroma(src, y / 2, x0, count, k, scratchU, scratchV, &u, &v);
      k.packed422.planesToPacked422Row(src.luma.Row(y) + x0, u, v, dst.Row(y) + 2 * x0, layout, count);
    }
  });
}

void Packed422ToYuv420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const PlaneRows src(in->planes[0], in->strides[0], static_cast<int32_t>(in->height), Mirrored(*in, *out));
  const Packed422Layout layout = *GetPacked422Layout(FormatCode(in->format));
  const Yuv420Rows dst(*out, false);
  alignas(64) uint8_t u0[kChunkPixels / 2], v0[kChunkPixels / 2], u1[kChunkPixels / 2], v1[kChunkPixels / 2];
  alignas(64) uint8_t scratchU[kChunkPixels / 2], scratchV[kChunkPixels / 2];
  for (int32_t y = 0; y + 1 < height; y += 2) {
    ForEachChunk(width, [&](int32_t x0, int32_t count) {
      k.packed422.packed422ToPlanesRow(src.Row(y) + 2 * x0, dst.luma.Row(y) + x0, u0, v0, layout, count);
      k.packed422.packed422ToPlanesRow(src.Row(y + 1) + 2 * x0, dst.luma.Row(y + 1) + x0, u1, v1, layout, count);
      uint8_t *u, *v;
      ChromaTargets(dst, y / 2, x0, scratchU, scratchV, &u, &v);
      k.packed422.averageRows(u0, u1, u, count / 2);
      k.packed422.averageRows(v0, v1, v, count / 2);
      CommitChroma(dst, y / 2, x0, count, k, u, v);
    });
  }
}

void ReorderPacked422(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const PlaneRows src(in->planes[0], in->strides[0], static_cast<int32_t>(in->height), Mirrored(*in, *out));
  const PlaneRows dst(out->planes[0], out->strides[0], height, false);
  const uint32_t inCode = FormatCode(in->format), outCode = FormatCode(out->format);
  if (inCode == outCode) {
    CopyRows(src, dst, height, 2 * width);
    return;
  }
  // Output byte j of a pair takes the input byte holding the same sample.
  const Packed422Layout& a = *GetPacked422Layout(inCode);
  const Packed422Layout& b = *GetPacked422Layout(outCode);
  BytePattern pattern;
  pattern.index[b.y0] = static_cast<uint8_t>(a.y0);
  pattern.index[b.u] = static_cast<uint8_t>(a.u);
  pattern.index[b.y1] = static_cast<uint8_t>(a.y1);
  pattern.index[b.v] = static_cast<uint8_t>(a.v);
  for (int32_t y = 0; y < height; ++y) k.rgbPack.shuffle4Row(src.Row(y), dst.Row(y), pattern, width / 2);
}

void VerticalChromaTo420(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);
  const bool mirrored = Mirrored(*in, *out);
  const Yuv420Rows dst(*out, false);
  const PlaneRows luma(in->planes[0], in->strides[0], static_cast<int32_t>(in->height), mirrored);
  const PlaneRows u(in->planes[1], in->strides[1], static_cast<int32_t>(in->height) / 2, mirrored);
  const PlaneRows v(in->planes[2], in->strides[2], static_cast<int32_t>(in->height) / 2, mirrored);
  CopyRows(luma, dst.luma, height, width);
  for (int32_t c = 0; c < height / 2; ++c) {
    k.chroma.evenSamplesRow(u.Row(c), dst.u.Row(c), width / 2);
    k.chroma.evenSamplesRow(v.Row(c), dst.v.Row(c), width / 2);
  }
}

}  // namespace Lumaforge
