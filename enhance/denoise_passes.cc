#include "enhance/denoise_passes.h"

#include <algorithm>
#include <cmath>

namespace Lumaforge {
namespace {

// Temporal thresholds by level: the transform's AC and DC coefficients
// may not exceed them.
constexpr int32_t kAcThreshold[5] = {0, 300, 704, 704, 704};
constexpr int32_t kDcThreshold[5] = {0, 140, 420, 420, 420};
// Weight (of 32) of the current picture in the blend, by static count:
// the longer a block has been still, the more of the reference it keeps.
constexpr int32_t kCurrentWeight[8] = {16, 10, 8, 6, 5, 5, 4, 3};

// A run of `kernel` over columns [x0, x1) of rows [y0, y1), both held to
// the interior: the first and last rows and columns of a plane are never
// filtered, so every neighbour a kernel reads lies inside the plane.
struct Interior {
  uint8_t* plane;
  ptrdiff_t stride;
  int32_t width, height;

  void Run(DenoiseRunKernel* kernel, int32_t x0, int32_t x1, int32_t y0, int32_t y1) const {
    x0 = std::max(x0, 1), x1 = std::min(x1, width - 1);
    y0 = std::max(y0, 1), y1 = std::min(y1, height - 1);
    if (x0 >= x1 || y0 >= y1) return;
    kernel(plane + static_cast<ptrdiff_t>(y0) * stride + x0, stride, x1 - x0, y1 - y0);
  }
};

}  // namespace

void LumaSpatialPass(const DenoiseRunKernels& kernels, uint8_t* y, ptrdiff_t stride, int32_t width, int32_t height,
                     const StaticMap& map, bool everyBlock) {
  const Interior interior = {y, stride, width, height};
  const int32_t columns = (width + 15) / 16, rows = (height + 15) / 16;
  for (int32_t my = 0; my < rows; ++my) {
    // The first macroblock row starts below the top border row; the last
    // stops above the bottom row.
    const int32_t y0 = my == 0 ? 1 : 16 * my;
    const int32_t y1 = my == rows - 1 ? height - 1 : 16 * (my + 1);
    for (int32_t mx = 0; mx < columns; ++mx) {
      if (!everyBlock && map.At(mx, my) != 0) continue;
      const int32_t x0 = 16 * mx;
      if (mx == 0 || mx == columns - 1) {
        // Edge macroblocks mix two kernels on each row, row by row: the
        // smoother on the outer columns, the 8-wide kernel on the inner ones.
        for (int32_t row = y0; row < y1; ++row) {
          if (mx == 0) {
            interior.Run(kernels.edge, 1, 8, row, row + 1);
            interior.Run(kernels.luma, 8, 16, row, row + 1);
          } else {
            interior.Run(kernels.luma, x0, x0 + 8, row, row + 1);
            interior.Run(kernels.edge, x0 + 8, x0 + 15, row, row + 1);
          }
        }
      } else {
        interior.Run(kernels.luma, x0, x0 + 16, y0, y1);
      }
    }
  }
}

void ChromaSpatialPass(const DenoiseRunKernels& kernels, uint8_t* plane, ptrdiff_t stride, int32_t width,
                       int32_t height, const StaticMap& map, bool everyBlock) {
  const Interior interior = {plane, stride, width, height};
  const int32_t columns = (width + 7) / 8, rows = (height + 7) / 8;
  for (int32_t by = 0; by < rows; ++by) {
    const int32_t y1 = by == rows - 1 ? height - 1 : 8 * (by + 1);
    for (int32_t bx = 0; bx < columns; ++bx) {
      if (!everyBlock && map.At(bx, by) != 0) continue;
      const int32_t x0 = 8 * bx;
      if (bx == 0) {
        interior.Run(kernels.edge, 1, 8, by == 0 ? 1 : 8 * by, y1);
      } else if (bx == columns - 1) {
        interior.Run(kernels.edge, x0, x0 + 7, by == 0 ? 1 : 8 * by, y1);
      } else {
        // Inner blocks of the first block row start a row lower.
        interior.Run(kernels.chroma, x0, x0 + 8, by == 0 ? 2 : 8 * by, y1);
      }
    }
  }
}

void TemporalPass(const DenoiseKernels& kernels, const DenoisePlanes& current, const DenoisePlanes& reference,
                  int32_t width, int32_t height, const StaticMap& map, int32_t level) {
  auto at = [](const DenoisePlanes& planes, int32_t k, int32_t x, int32_t y) {
    return planes.plane[k] + static_cast<ptrdiff_t>(y) * planes.stride[k] + x;
  };
  for (int32_t y = 0; y < height - 15; y += 16) {
    for (int32_t x = 0; x < width - 15; x += 16) {
      const int32_t mx = x / 16, my = y / 16;
      // A block among moving ones is held to the first frame's terms.
      int32_t c = map.At(mx, my);
      if (my > 0) c = std::min<int32_t>(c, map.At(mx, my - 1));
      if (my + 1 < map.height) c = std::min<int32_t>(c, map.At(mx, my + 1));
      if (mx > 0) c = std::min<int32_t>(c, map.At(mx - 1, my));
      if (mx + 1 < map.width) c = std::min<int32_t>(c, map.At(mx + 1, my));
      // The thresholds tighten as a block stays static (s falls from 1 to
      // 0.75 at seven frames): its reference already averages many frames.
      const double s = std::sqrt((c + 2) * 0.5 / (c + 1));
      const auto tac = static_cast<int32_t>(std::floor(kAcThreshold[level] * s + 0.5));
      const auto tdc = static_cast<int32_t>(std::floor(kDcThreshold[level] * s + 0.5));
      int32_t cells[3] = {0, 0, 0};
      bool alike = true;
      for (const auto& [qx, qy] : {std::pair{0, 0}, std::pair{8, 0}, std::pair{0, 8}, std::pair{8, 8}}) {
        alike = alike && kernels.blockTest(at(reference, 0, x + qx, y + qy), reference.stride[0],
                                           at(current, 0, x + qx, y + qy), current.stride[0], tac, tdc, &cells[0]);
      }
      for (int32_t k = 1; k < 3; ++k) {
        alike = alike && kernels.blockTest(at(reference, k, x / 2, y / 2), reference.stride[k],
                                           at(current, k, x / 2, y / 2), current.stride[k], tac, tdc, &cells[k]);
      }
      uint8_t& cell = map.At(mx, my);
      if (!alike) {
        cell = 0;
        continue;
      }
      const int32_t weight = kCurrentWeight[c];
      kernels.blend(at(current, 0, x, y), current.stride[0], at(reference, 0, x, y), reference.stride[0], 16, 16,
                    weight);
      for (int32_t k = 1; k < 3; ++k) {
        kernels.blend(at(current, k, x / 2, y / 2), current.stride[k], at(reference, k, x / 2, y / 2),
                      reference.stride[k], 8, 8, weight);
      }
      cell = static_cast<uint8_t>(std::min(cell + 1, 7));
    }
  }
}

namespace {

// Block centres at 2, 7, 12, ... below `limit`.
int32_t CentreCount(int32_t limit) { return limit > 2 ? (limit - 3) / 5 + 1 : 0; }

}  // namespace

int32_t NoiseBlockCount(int32_t width, int32_t height) { return CentreCount(width - 6) * CentreCount(height - 2); }

int32_t EstimateNoise(const DenoiseKernels& kernels, const uint8_t* current, ptrdiff_t currentStride,
                      const uint8_t* reference, ptrdiff_t referenceStride, int32_t width, int32_t height,
                      int32_t* weights, int32_t* variances) {
  const int32_t columns = CentreCount(width - 6), rows = CentreCount(height - 2);
  for (int32_t r = 0; r < rows; ++r) {
    kernels.blockStats(current + static_cast<ptrdiff_t>(5 * r) * currentStride, currentStride,
                       reference + static_cast<ptrdiff_t>(5 * r) * referenceStride, referenceStride, columns,
                       weights + static_cast<ptrdiff_t>(r) * columns, variances + static_cast<ptrdiff_t>(r) * columns);
  }
  const int32_t count = rows * columns;
  // The noise floor: the smallest variance among blocks with no direction.
  int32_t floor = 1;
  bool floorSet = false;
  for (int32_t i = 0; i < count; ++i) {
    if (weights[i] != 0 || variances[i] == 0) continue;
    if (!floorSet || variances[i] < floor) floor = variances[i];
    floorSet = true;
  }
  // The average over mostly directionless blocks not far from the floor,
  // each weighing less the more direction it has.
  int64_t weighted = 0, weightSum = 0;
  for (int32_t i = 0; i < count; ++i) {
    if (weights[i] >= 128) continue;
    const float ratio = static_cast<float>(variances[i]) / static_cast<float>(floor);
    if (!(ratio > 0.5f && ratio < 550.0f)) continue;
    weighted += int64_t{256 - weights[i]} * variances[i];
    weightSum += 256 - weights[i];
  }
  return weightSum == 0 ? 0 : static_cast<int32_t>(weighted / weightSum);
}

}  // namespace Lumaforge
