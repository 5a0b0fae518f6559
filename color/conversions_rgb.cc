// Between RGB layouts.
#include <algorithm>
#include <cstring>

#include "color/conversions.h"
#include "color/picture_rows.h"

namespace Lumaforge {

void RgbReorder(const VideoPicture* in, const VideoPicture* out, const ColorKernels& k) {
  const bool mirrored = Mirrored(*in, *out);
  const uint32_t inCode = FormatCode(in->format), outCode = FormatCode(out->format);
  const RgbLayout& from = *GetRgbLayout(inCode);
  const RgbLayout& to = *GetRgbLayout(outCode);
  const int32_t width = CommonWidth(*in, *out), height = CommonHeight(*in, *out);

  if (from.step == 1 && to.step == 1) {
    // Planar to planar: each channel's plane copied to that channel's plane.
    const int32_t channelsFrom[3] = {from.r, from.g, from.b}, channelsTo[3] = {to.r, to.g, to.b};
    for (int32_t c = 0; c < 3; ++c) {
      const PlaneRows src(PlanarRgbPlane(*in, channelsFrom[c]), in->strides[0], height, mirrored);
      const PlaneRows dst(PlanarRgbPlane(*out, channelsTo[c]), out->strides[0], height, false);
      for (int32_t y = 0; y < height; ++y) std::memcpy(dst.Row(y), src.Row(y), width);
    }
    return;
  }
  if (inCode == outCode) {
    const PlaneRows src(in->planes[0], in->strides[0], height, mirrored);
    const PlaneRows dst(out->planes[0], out->strides[0], height, false);
    for (int32_t y = 0; y < height; ++y) std::memcpy(dst.Row(y), src.Row(y), static_cast<size_t>(width) * from.step);
    return;
  }
  if (from.step == 4 && to.step == 4) {
    // One shuffle moves every channel, alpha included.
    const PlaneRows src(in->planes[0], in->strides[0], height, mirrored);
    const PlaneRows dst(out->planes[0], out->strides[0], height, false);
    const BytePattern pattern = ChannelPattern(from, to);
    for (int32_t y = 0; y < height; ++y) k.rgbPack.shuffle4Row(src.Row(y), dst.Row(y), pattern, width);
    return;
  }
  // Through B, G, R, A: alpha comes from the input, or is 255 without one.
  const RgbRowReader reader(*in, mirrored, k.rgbPack);
  const RgbRowWriter writer(*out, k.rgbPack);
  alignas(64) uint8_t scratch[4 * kChunkPixels];
  for (int32_t y = 0; y < height; ++y) {
    ForEachChunk(width, [&](int32_t x0, int32_t count) {
      // With a B, G, R, A output the reader converts straight into it (the
      // input is then another layout, equal codes having been copied above).
      uint8_t* target = writer.Target(y, x0, scratch);
      writer.Write(y, x0, count, reader.Read(y, x0, count, target));
    });
  }
}

}  // namespace Lumaforge
