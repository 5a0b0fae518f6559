// The per-sample work of the video filter's effects, on packed bytes.
#ifndef LUMAFORGE_FILTERS_COLOR_EFFECTS_H_
#define LUMAFORGE_FILTERS_COLOR_EFFECTS_H_

#include <cstddef>
#include <cstdint>

namespace Lumaforge {

// Rotates `count` (U, V) pairs about (128, 128) by 120 radians, in place.
void RotateHue(uint8_t* u, uint8_t* v, size_t count);

// Sepia tone from R, G, B triplets in `in` to `out` (`count` bytes, a
// multiple of three).
void ApplySepia(const uint8_t* in, uint8_t* out, size_t count);

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

#endif  // LUMAFORGE_FILTERS_COLOR_EFFECTS_H_
