#include "filters/effect_curves.h"

#include <array>

namespace Lumaforge {
namespace {

using Curve = std::array<uint8_t, 256>;

constexpr uint8_t Clamp(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

// t < 128 follows d^power / scale with d = t; from 128 the curve mirrors
// itself about (128, 128) with d = 256 - t.
constexpr Curve SCurve(int32_t power, int32_t scale) {
  Curve curve{};
  for (int32_t t = 0; t < 256; ++t) {
    const int32_t d = t < 128 ? t : 256 - t;
    const int32_t lift = (power == 3 ? d * d * d : d * d) / scale;
    curve[t] = Clamp(t < 128 ? lift : 256 - lift);
  }
  return curve;
}

constexpr Curve Linear(int32_t gain, int32_t offset) {
  Curve curve{};
  for (int32_t t = 0; t < 256; ++t) curve[t] = Clamp(t / gain + offset);
  return curve;
}

struct Knot {
  int32_t input, output;
};

// Straight segments between knots (rounded to nearest); the first knot
// must be input 0, the last 255.
template <size_t N>
constexpr Curve Piecewise(const Knot (&knots)[N]) {
  Curve curve{};
  for (size_t k = 0; k + 1 < N; ++k) {
    const Knot a = knots[k], b = knots[k + 1];
    for (int32_t t = a.input; t <= b.input; ++t) {
      const int32_t span = b.input - a.input;
      curve[t] = Clamp(a.output + ((b.output - a.output) * (t - a.input) * 2 + span) / (2 * span));
    }
  }
  return curve;
}

constexpr Curve kToneRed = SCurve(3, 16384);
constexpr Curve kToneGreen = SCurve(2, 128);
constexpr Curve kToneBlue = Linear(2, 37);

// Film look: red and green from 57 to 225 (red rising faster through the
// mid-tones for warmth; both held at 225 once reached), blue from a lifted
// 64 held over the deepest shadows, through 130 at 120, up to 212.
constexpr Knot kFilmRedKnots[] = {{0, 57}, {64, 95}, {128, 152}, {192, 204}, {236, 225}, {255, 225}};
constexpr Knot kFilmGreenKnots[] = {{0, 57}, {64, 88}, {128, 142}, {192, 197}, {244, 225}, {255, 225}};
constexpr Knot kFilmBlueKnots[] = {{0, 64}, {15, 64}, {120, 130}, {200, 182}, {255, 212}};
constexpr Curve kFilmRed = Piecewise(kFilmRedKnots);
constexpr Curve kFilmGreen = Piecewise(kFilmGreenKnots);
constexpr Curve kFilmBlue = Piecewise(kFilmBlueKnots);

}  // namespace

void ApplyCurves(uint8_t* rgb, size_t count, const uint8_t* const curves[3]) {
  for (size_t i = 0; i + 2 < count; i += 3) {
    rgb[i] = curves[0][rgb[i]];
    rgb[i + 1] = curves[1][rgb[i + 1]];
    rgb[i + 2] = curves[2][rgb[i + 2]];
  }
}

const uint8_t* const* ToneCurves() {
  static const uint8_t* const kCurves[3] = {kToneRed.data(), kToneGreen.data(), kToneBlue.data()};
  return kCurves;
}

const uint8_t* const* FilmCurves() {
  static const uint8_t* const kCurves[3] = {kFilmRed.data(), kFilmGreen.data(), kFilmBlue.data()};
  return kCurves;
}

}  // namespace Lumaforge
