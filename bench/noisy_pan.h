// A clip made from a photograph as a camera would film it: a window panning
// slowly across the picture, each frame with Gaussian noise of a known
// deviation (fixed seed). Chroma is the photograph's half-size area average
// under the same pan, noisy too.
#ifndef LUMAFORGE_BENCH_NOISY_PAN_H_
#define LUMAFORGE_BENCH_NOISY_PAN_H_

#include <cstdint>
#include <vector>

#include "bench/sr_upscaler.h"

namespace Lumaforge::bench {

struct Region {
  int32_t x, y, width, height;
};

struct PanClip {
  std::vector<LumaPicture> cleanLuma;  // each frame's luma before the noise
  std::vector<I420Frame> noisy;
  std::vector<Region> moving;  // MakeMovingSquare: where the square is, with a margin
};

// `frames` frames of width x height (even), the window moving `stepX`,
// `stepY` pixels per frame (even) from the top-left corner; `photo` must be
// large enough for the last window.
PanClip MakeNoisyPan(const LumaPicture& photo, int32_t width, int32_t height, int32_t frames, int32_t stepX,
                     int32_t stepY, double sigma, uint32_t seed);

// A still window on the photograph's top-left corner with a square of
// `side` pixels, cut from elsewhere in the photograph, moving `step` pixels
// to the right per frame across it.
PanClip MakeMovingSquare(const LumaPicture& photo, int32_t width, int32_t height, int32_t frames, int32_t side,
                         int32_t step, double sigma, uint32_t seed);

// Mean luma PSNR of `frames` against the clean luma of `clip`, over the
// whole frames or, with `onlyMoving`, over the clip's moving regions.
double MeanLumaPsnr(const PanClip& clip, const std::vector<I420Frame>& frames, bool onlyMoving = false);

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_NOISY_PAN_H_
