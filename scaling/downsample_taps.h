// Filter taps of the downscaler: the six-tap half-band filter, the 64-phase
// four-tap (Lanczos-2) table, and the fixed phase cycles of the special
// ratios 9/10, 8/10, 7/10, 6/10, 2/3 and 3/4.
#ifndef LUMAFORGE_SCALING_DOWNSAMPLE_TAPS_H_
#define LUMAFORGE_SCALING_DOWNSAMPLE_TAPS_H_

#include <cstdint>

namespace Lumaforge {

// Windowed-sinc taps: `count` phases of n integer taps each summing to
// 2^bits, written phase after phase into `taps`.
void GenerateTaps(int32_t n, int32_t count, double ratio, double cutoff, double phaseParam, int32_t bits,
                  int32_t* taps);

// -1, 8, 25, 25, 8, -1.
void MakeHalfBandTaps(int8_t taps[6]);
// Phase p (0..63) filters at distances p/64 - 2 + k; taps stored in reverse.
void MakeFourTapPhaseTable(int8_t table[64][4]);

// Ratio index of output/input size: 1 for 9/10, 2 for 8/10, 3 for 7/10,
// 4 for 6/10, 5 for 2/3, 6 for 3/4, else 0.
int32_t SpecialRatioIndex(int32_t outSize, int32_t inSize);
// The phase cycle of a ratio index 1..6, and its length.
const int8_t (*SpecialRatioPhases(int32_t index))[4];
int32_t SpecialRatioPhaseCount(int32_t index);

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_DOWNSAMPLE_TAPS_H_
