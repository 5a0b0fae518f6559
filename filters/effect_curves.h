// The curve looks of the video filter: three 256-entry tables, one per byte
// of an R, G, B triplet.
#ifndef LUMAFORGE_FILTERS_EFFECT_CURVES_H_
#define LUMAFORGE_FILTERS_EFFECT_CURVES_H_

#include <cstddef>
#include <cstdint>

namespace Lumaforge {

// Maps byte 0, 1 and 2 of each triplet through its own 256-entry curve, in
// place (`count` bytes, a multiple of three).
void ApplyCurves(uint8_t* rgb, size_t count, const uint8_t* const curves[3]);

// Contrast S-curves on red (cubic) and green (quadratic), blue halved and
// lifted: a cross-processed look.
const uint8_t* const* ToneCurves();
// A faded warm film look: lifted shadows, softened highlights, blue kept
// higher in the shadows and lower in the highlights.
const uint8_t* const* FilmCurves();

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_EFFECT_CURVES_H_
