// Brightness mapping of the boost filter: the luma statistics of a frame,
// and the three ways of turning them into a 256-entry luma mapping. Each
// way ends in one curve family, a logarithmic brightening (or darkening)
// curve with one parameter, searched so that a reference level lands on a
// target level.
#ifndef LUMAFORGE_ENHANCE_BRIGHTNESS_MAPPING_H_
#define LUMAFORGE_ENHANCE_BRIGHTNESS_MAPPING_H_

#include <array>
#include <cstdint>

#include "framework/logger.h"

namespace Lumaforge {

using LumaMapping = std::array<float, 256>;

// Statistics of a set of luma samples, in single precision.
struct LumaStatistics {
  std::array<float, 256> histogram{};  // normalised to sum 1 (all zero without samples)
  float min = 0, max = 0;              // lowest and highest level with samples
  float mean = 0;
  float median = 0;  // first level where the running share reaches 0.5
  float stddev = 0;
  std::array<float, 256> cdf{};  // share of samples at or below each level
};

LumaStatistics StatisticsOf(const std::array<uint32_t, 256>& counts);

// The identity mapping.
LumaMapping IdentityMapping();

// The curve of parameter x > 0: 255 ln(i / 255 (x - 1) + 1) / ln(x); x = 1
// is the identity, x > 1 brightens, x < 1 darkens; 0 and 255 stay fixed.
LumaMapping CurveMapping(double x);

// The curve parameter that takes level s0 (truncated) closest to t: x from
// 1 up in steps of 0.01 below 10 when t >= s0, else 1 / v for v likewise.
double SearchCurveParameter(double s0, double t);

// Method 1: the levels 16..235 spread by a flattened histogram: bins held
// to [0.0015625, median bin] (+0.0001), raised to 1 / weight, accumulated.
LumaMapping HistogramCdfMapping(const LumaStatistics& luma, double weight);

// Method 3 (the default): move the luma mean, or the skin mean, toward the
// comfortable band 115..145, by less the further it is in skin deviations.
LumaMapping HybridMapping(double lumaMean, double skinMean, double skinStddev, Logger* logger);

// Method 2: as method 3 but with luma and skin deviations, a confidence
// from `skinPercent` (the share of skin-tone pixels, in percent), and the
// curve relaxed toward the identity until it clips no more of the
// picture's ends than the picture itself does.
LumaMapping BetaMapping(const LumaStatistics& luma, const LumaStatistics& skin, double skinPercent, Logger* logger);

}  // namespace Lumaforge

#endif  // LUMAFORGE_ENHANCE_BRIGHTNESS_MAPPING_H_
