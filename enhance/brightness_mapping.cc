#include "enhance/brightness_mapping.h"

#include <algorithm>
#include <cmath>

namespace Lumaforge {
namespace {

// The comfortable band of the hybrid method.
constexpr double kLow = 115, kHigh = 145;

double CurveValue(double level, double x) {
  if (x == 1.0) return level;
  return 255.0 * std::log(level / 255.0 * (x - 1.0) + 1.0) / std::log(x);
}

// Method 2's weighting of the reference against the target: the share of
// a normal spread within the target's distance, erf(diff / 4). Near the
// reference (diff 0) the target is taken in full; a target several skin
// deviations away is approached with caution, as the hybrid method's
// 1 / (diff + 1) does, but smoothly on both sides.
double ReferenceWeight(double diff) { return std::erf(diff / 4.0); }

// The input level the curve of parameter x takes to `output`, rounded: the
// curve inverted in closed form.
int32_t InverseCurve(double x, double output) {
  const double level = x == 1.0 ? output : 255.0 * (std::pow(x, output / 255.0) - 1.0) / (x - 1.0);
  return static_cast<int32_t>(std::lround(std::clamp(level, 0.0, 255.0)));
}

}  // namespace

LumaStatistics StatisticsOf(const std::array<uint32_t, 256>& counts) {
  LumaStatistics s;
  double total = 0;
  for (const uint32_t c : counts) total += c;
  if (total == 0) return s;
  double sum = 0, squares = 0, running = 0;
  bool first = true, medianFound = false;
  for (int32_t i = 0; i < 256; ++i) {
    s.histogram[i] = static_cast<float>(counts[i] / total);
    if (counts[i]) {
      if (first) s.min = static_cast<float>(i), first = false;
      s.max = static_cast<float>(i);
    }
    sum += i * s.histogram[i];
    squares += double(i) * i * s.histogram[i];
    running += s.histogram[i];
    s.cdf[i] = static_cast<float>(running);
    if (!medianFound && running >= 0.5) s.median = static_cast<float>(i), medianFound = true;
  }
  s.mean = static_cast<float>(sum / running);
  s.stddev = static_cast<float>(std::sqrt(std::max(squares / running - (sum / running) * (sum / running), 0.0)));
  return s;
}

LumaMapping IdentityMapping() {
  LumaMapping map;
  for (int32_t i = 0; i < 256; ++i) map[i] = static_cast<float>(i);
  return map;
}

LumaMapping CurveMapping(double x) {
  LumaMapping map;
  for (int32_t i = 0; i < 256; ++i) map[i] = static_cast<float>(CurveValue(i, x));
  return map;
}

double SearchCurveParameter(double s0, double t) {
  const double s = std::trunc(s0);
  double bestX = 1.0, bestError = 1024.0;
  // Steps counted in hundredths, so the candidates are exact multiples.
  for (int32_t step = 100; step < 1000; ++step) {
    const double v = step / 100.0;
    const double x = t >= s0 ? v : 1.0 / v;
    const double error = std::fabs(CurveValue(s, x) - t);
    if (error < bestError) bestError = error, bestX = x;
  }
  return bestX;
}

LumaMapping HistogramCdfMapping(const LumaStatistics& luma, double weight) {
  constexpr double kFloor = 0.0015625;
  std::array<float, 256> sorted = luma.histogram;
  std::sort(sorted.begin(), sorted.end());
  const double ceiling = std::max((double(sorted[127]) + sorted[128]) / 2.0, kFloor);
  double weights[256] = {}, total = 0;
  for (int32_t i = 16; i <= 235; ++i) {
    const double h = std::min(std::max(double(luma.histogram[i]), kFloor), ceiling) + 0.0001;
    weights[i] = std::pow(h, 1.0 / weight);
    total += weights[i];
  }
  LumaMapping map = IdentityMapping();
  double cdf = 0;
  for (int32_t i = 16; i <= 235; ++i) {
    // The share up to and including level i.
    cdf += weights[i] / total;
    map[i] = static_cast<float>(219.0 * cdf + 16.0);
  }
  return map;
}

LumaMapping HybridMapping(double lumaMean, double skinMean, double skinStddev, Logger* logger) {
  double s0 = 0, t = 0;
  bool identity = false;
  if (lumaMean > skinMean) {
    if (lumaMean < kLow) {
      s0 = lumaMean, t = kLow;
    } else if (skinMean < kLow) {
      s0 = skinMean;
      t = lumaMean < kHigh ? 122.5 : std::min(kLow, std::max(260.0 - lumaMean, skinMean));
    } else if (skinMean < kHigh) {
      identity = true;
    } else {
      s0 = skinMean, t = kHigh;
    }
  } else if (skinMean < kLow) {
    s0 = skinMean, t = 130;
  } else if (skinMean < kHigh) {
    identity = true;
  } else {
    t = kHigh;
    s0 = lumaMean < kHigh ? skinMean : lumaMean;
  }
  if (identity) return IdentityMapping();
  const double diff = std::fabs(t - s0) / (std::sqrt(2.0) * (skinStddev + 0.01));
  const double wt = 1.0 / (diff + 1.0);
  const double tv = (1.0 - wt) * s0 + wt * t;
  if (logger) {
    logger->Info("%s start_val=%f mean_target_wt0=%f target_val=%f ymean_skin=%f stddev_skin=%f diff=%f confidence=%f",
                 "brightness_hybrid_mapping", s0, wt, tv, skinMean, skinStddev, diff, 1.0);
  }
  return CurveMapping(SearchCurveParameter(s0, tv));
}

LumaMapping BetaMapping(const LumaStatistics& luma, const LumaStatistics& skin, double skinPercent, Logger* logger) {
  const double lm = luma.mean, sm = skin.mean;
  double r = 0, d = 0, t = 0;
  if (sm <= std::min(115.0, lm)) {
    r = sm, d = skin.stddev, t = std::min(115.0, lm);
  } else if (sm < std::max(150.0, lm)) {
    if (lm >= 115 && lm <= 150) return IdentityMapping();
    r = lm, d = luma.stddev, t = lm < 115 ? 115 : 150;
  } else {
    r = sm, d = skin.stddev, t = std::max(150.0, lm);
  }
  const double diff = std::fabs(t - r) / (std::sqrt(2.0) * (d + 0.01));
  const double wt = ReferenceWeight(diff);
  // Full confidence once skin covers 7.5% of the picture.
  const double c = std::min(std::sqrt(std::max(skinPercent, 0.0) / 7.5), 1.0);
  const double tv = (1.0 - c) * r + c * ((1.0 - wt) * t + wt * r);
  if (logger) {
    logger->Info(
        "%s start_va =%f mean_target_wt0=%f target_val=%f ymean=%f stddev=%f ymean_skin=%f stddev_skin=%f diff=%f "
        "confidence=%f",
        "brightness_beta_mapping", r, wt, tv, lm, double(luma.stddev), sm, double(skin.stddev), diff, c);
  }
  const double beta0 = SearchCurveParameter(r, tv);
  // The picture's own shares at the ends: below level 24 and above 227.
  const double ownLow = 100.0 * luma.cdf[23], ownHigh = 100.0 * (1.0 - luma.cdf[227]);
  // The last candidate is beta = 1, the identity.
  for (int32_t k = 0; k <= 10; ++k) {
    const double beta = beta0 + k * (1.0 - beta0) / 10.0;
    const int32_t lo = InverseCurve(beta, 24), hi = InverseCurve(beta, 227);
    const double low = lo > 0 ? 100.0 * luma.cdf[lo - 1] : 0.0;
    const double high = 100.0 * (1.0 - luma.cdf[hi]);
    if (logger) {
      logger->Info("%s beta=%f beta0=%f inval_lo=%d inval_hi=%d low percent=%f high percent=%f",
                   "brightness_beta_mapping", beta, beta0, lo, hi, low, high);
    }
    if ((high < 2 || high < ownHigh + 2) && (low < 2 || low < ownLow + 2)) return CurveMapping(beta);
  }
  return IdentityMapping();
}

}  // namespace Lumaforge
