// An independent model of the colour conversions, written from the
// documented byte layouts and fixed-point formulas, for checking the
// converter pixel by pixel.
#ifndef LUMAFORGE_TESTS_API_CSC_MODEL_H_
#define LUMAFORGE_TESTS_API_CSC_MODEL_H_

#include <cstdint>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::test {

enum class Kind { kRgb, kYuv420, kYuv422, kYuvFullWidthChroma, kNone };

Kind KindOf(uint32_t code);

// A picture decoded into samples. RGB pictures fill r, g, b, a (a = -1 per
// pixel without alpha); YUV pictures fill y and chroma planes u, v of
// chromaWidth x chromaHeight.
struct Samples {
  Kind kind = Kind::kNone;
  int width = 0, height = 0, chromaWidth = 0, chromaHeight = 0;
  std::vector<int> r, g, b, a, y, u, v;
};

// Reads the samples of a picture; `mirrored` walks its rows bottom up.
Samples ReadSamples(const VideoPicture& picture, bool mirrored);
// What converting `in` to format code `outCode` must give.
Samples ExpectedConversion(const Samples& in, uint32_t outCode);
// Whether the converter supports the pair of codes.
bool ConversionSupported(uint32_t inCode, uint32_t outCode);

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_API_CSC_MODEL_H_
