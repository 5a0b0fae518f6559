// The 2x upscalers the training measures: the plain formula, the trained
// per-class filter applied as the library's enhanced mode applies it, and a
// bicubic reference; and the picture PSNR that compares them.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_UPSCALERS_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_UPSCALERS_H_

#include <cstdint>
#include <vector>

#include "tools/sr_train/coefficient_table.h"
#include "tools/sr_train/luma_picture.h"

namespace Lumaforge::sr_train {

// The 3x3 neighbourhood of (x, y) in raster order, rows and columns beyond
// the edges clamped.
void GatherNeighbourhood(const LumaPicture& source, int32_t x, int32_t y, uint8_t p[kSrTaps]);

// One byte per source pixel: 1 when the 2x2 block holding it (blocks start at
// even rows and columns) is flat, that is every 3x3 neighbourhood centred in
// the block has max - min below kSrFlatRange. Neighbourhoods at the edges are
// clamped like GatherNeighbourhood's.
std::vector<uint8_t> FlatBlockMap(const LumaPicture& source);

// The plain formula's four outputs from a gathered neighbourhood.
inline void PlainOutputs(const uint8_t p[kSrTaps], uint8_t out[kSrPositions]) {
  SrPlainBlock(p[4], p[1], p[7], p[3], p[5], out);
}

// The trained filter's four outputs for class `cls`, which must be valid.
void TrainedOutputs(const uint8_t p[kSrTaps], const CoefficientTable& table, int32_t cls, uint8_t out[kSrPositions]);

LumaPicture PlainUpscale(const LumaPicture& source);
// First and last columns, flat blocks and classes without a filter take the
// plain formula.
LumaPicture TrainedUpscale(const LumaPicture& source, const CoefficientTable& table);
// Separable Keys cubic (a = -0.5). Output 2x + i samples the source at
// x - 0.25 + 0.5 i, the centre of the 2x2 block an area average came from.
LumaPicture BicubicUpscale(const LumaPicture& source);

// Peak signal-to-noise ratio in dB of two pictures of one size (99 when equal).
double Psnr(const LumaPicture& a, const LumaPicture& b);

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_UPSCALERS_H_
