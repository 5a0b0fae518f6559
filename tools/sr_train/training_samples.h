// Which pixels teach the filters: every source pixel off the picture's border
// whose 2x2 block is not flat, that is exactly the pixels inside the picture
// for which the upscaler would look up a class filter.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_TRAINING_SAMPLES_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_TRAINING_SAMPLES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/sr_train/luma_picture.h"
#include "tools/sr_train/upscalers.h"

namespace Lumaforge::sr_train {

// A degraded source and the picture it should upscale to (twice its size).
struct PicturePair {
  LumaPicture source;
  LumaPicture target;
};

inline PicturePair TransformedPair(const PicturePair& pair, int32_t symmetry) {
  return {Transformed(pair.source, symmetry), Transformed(pair.target, symmetry)};
}

// Calls visit(p, cls, wanted) in raster order, with the neighbourhood, its
// class and the four target pixels of the source pixel.
template <typename Visit>
void ForEachTrainingSample(const PicturePair& pair, Visit&& visit) {
  const LumaPicture& source = pair.source;
  const std::vector<uint8_t> flat = FlatBlockMap(source);
  for (int32_t y = 1; y + 1 < source.height; ++y) {
    for (int32_t x = 1; x + 1 < source.width; ++x) {
      if (flat[static_cast<size_t>(y) * source.width + x]) continue;
      uint8_t p[kSrTaps];
      GatherNeighbourhood(source, x, y, p);
      const uint8_t wanted[kSrPositions] = {pair.target.At(2 * x, 2 * y), pair.target.At(2 * x + 1, 2 * y),
                                            pair.target.At(2 * x, 2 * y + 1), pair.target.At(2 * x + 1, 2 * y + 1)};
      visit(p, SrClass(p), wanted);
    }
  }
}

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_TRAINING_SAMPLES_H_
