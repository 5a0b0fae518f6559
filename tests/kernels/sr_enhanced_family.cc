// Registers the enhanced 2x super-resolution kernel with the variant harness:
// each vector form must give the plain routine's bytes, trained sums
// included, for a table in which half the classes have weights (some large,
// so the last bits of the double sums decide output bytes).
#include <vector>

#include "super_resolution/kernels/sr_enhanced.h"
#include "super_resolution/sr_coefficients.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = SrEnhancedKernels;

struct Filters {
  std::vector<double> table, byTap;
  std::vector<uint8_t> valid;
  SrTrainedFilters view;
};

const Filters& TestFilters() {
  static const Filters filters = [] {
    Filters f;
    f.table.assign(kSrTableDoubles, 0.0);
    f.byTap.assign(size_t{kSrClasses} * kSrTaps * kSrPositions, 0.0);
    f.valid.assign(kSrClasses, 0);
    uint32_t state = 12345;
    auto next = [&state] {
      state = state * 1664525u + 1013904223u;
      return state >> 8;
    };
    for (int32_t c = 1; c < kSrClasses; ++c) {
      if (next() & 1) continue;
      f.valid[c] = 1;
      const double scale = next() % 16 == 0 ? 1e6 : 1.0;
      for (int32_t n = 0; n < kSrPositions; ++n) {
        for (int32_t k = 0; k < kSrTaps; ++k) {
          const double w = (static_cast<double>(next() % 2001) - 1000.0) / 4000.0 * scale + (k == 4 ? 1.0 : 0.0);
          f.table[SrWeightIndex(c, n, k)] = w;
          f.byTap[(static_cast<size_t>(c) * kSrTaps + k) * kSrPositions + n] = w;
        }
      }
    }
    f.view = {f.table.data(), f.valid.data(), f.byTap.data()};
    return f;
  }();
  return filters;
}

KernelEntry<Table> PlaneEntry() {
  ShapeRules rules;
  rules.maxHeight = 7;  // row pairs and an odd last row
  rules.benchWidth = 640;
  rules.benchHeight = 360;
  return Entry<Table, SrEnhancedPlaneKernel*>(
      "plane", &Table::plane,
      [](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width, s.height);
        b.AddOutput("dst", 2 * s.width, 2 * s.height);
      },
      [](SrEnhancedPlaneKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, b[1].Row(0), b[1].Stride(), TestFilters().view);
      },
      rules);
}

const FamilyRegistration<Table> kRegistration{"sr_enhanced", InitSrEnhancedKernels, {PlaneEntry()}};

}  // namespace
}  // namespace Lumaforge::test
