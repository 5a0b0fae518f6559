// Registers the multi-tap downscaling kernels with the variant harness.
#include "scaling/kernels/multitap_scale.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = MultiTapScaleKernels;

constexpr int8_t kHalfBandTaps[6] = {-1, 8, 25, 25, 8, -1};

// 64 phases of four taps summing to 64, with negative lobes and values that
// push sums past 0..255 so the clamps are exercised.
struct PhaseTable {
  int8_t taps[64][4];
  PhaseTable() {
    for (int p = 0; p < 64; ++p) {
      const int8_t a = static_cast<int8_t>(-(p % 11)), d = static_cast<int8_t>(-((63 - p) % 9));
      const int8_t b = static_cast<int8_t>(64 - p), c = static_cast<int8_t>(64 - a - b - d);
      taps[p][0] = a;
      taps[p][1] = b;
      taps[p][2] = c;
      taps[p][3] = d;
    }
  }
};
const PhaseTable kPhases;

// The filter's horizontal geometry for an output of `w` from `W` samples.
int32_t StepX(int32_t w, int32_t W) { return static_cast<int32_t>((w / 2 + (static_cast<int64_t>(W) << 16)) / w); }
int32_t SourceWidth(int32_t w, uint32_t seed) { return w + 1 + w * static_cast<int32_t>(seed % 6 + 1) / 3; }

KernelEntry<Table> HorizontalEntry(const char* name, int32_t cycleLength) {
  return Entry<Table, FourTapHorizontalKernel*>(
      name, &Table::fourTapHorizontal,
      [](const Shape& s, Buffers& b) {
        b.AddInput("line", SourceWidth(s.width, s.seed), s.height);
        b.AddOutput("dst", s.width, s.height);
      },
      [cycleLength](FourTapHorizontalKernel* kernel, Buffers& b) {
        const int32_t w = b[1].RowBytes(), W = b[0].RowBytes();
        const int32_t step = StepX(w, W);
        for (int32_t y = 0; y < b[0].Rows(); ++y) {
          kernel(b[0].Row(y), b[1].Row(y), w, (step >> 1) - 32768, step, kPhases.taps, cycleLength);
        }
      });
}

std::vector<KernelEntry<Table>> Entries() {
  std::vector<KernelEntry<Table>> entries;
  entries.push_back(Entry<Table, HalfBandVerticalKernel*>(
      "half_band_vertical", &Table::halfBandVertical,
      [](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width, s.height);
        b.AddOutput("dst", s.width, s.height / 2);
      },
      [](HalfBandVerticalKernel* kernel, Buffers& b) {
        // The top rows in one call, the rest in bands of three, as the filter bands them.
        const int32_t rows = b[1].Rows(), first = rows / 3;
        kernel(b[0].Row(0), b[0].Stride(), b[0].RowBytes(), b[0].Rows(), b[1].Row(0), b[1].Stride(), kHalfBandTaps, 0,
               first);
        for (int32_t j = first; j < rows; j += 3) {
          kernel(b[0].Row(0), b[0].Stride(), b[0].RowBytes(), b[0].Rows(), b[1].Row(j), b[1].Stride(), kHalfBandTaps, j,
                 3);
        }
      },
      {.maxHeight = 12}));
  entries.push_back(Entry<Table, HalfBandHorizontalKernel*>(
      "half_band_horizontal", &Table::halfBandHorizontal,
      [](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width, s.height);
        b.AddOutput("dst", s.width / 2, s.height);
      },
      [](HalfBandHorizontalKernel* kernel, Buffers& b) {
        kernel(b[0].Row(0), b[0].Stride(), b[0].RowBytes(), b[0].Rows(), b[1].Row(0), b[1].Stride(), kHalfBandTaps);
      }));
  entries.push_back(Entry<Table, FourTapVerticalKernel*>(
      "four_tap_vertical", &Table::fourTapVertical,
      [](const Shape& s, Buffers& b) {
        b.AddInput("rows", s.width, 4);
        b.AddOutput("line", s.width, 1);
      },
      [](FourTapVerticalKernel* kernel, Buffers& b) {
        for (int32_t p = 0; p < 64; p += 9) {
          kernel(b[0].Row(0), b[0].Row(1), b[0].Row(2), b[0].Row(3), b[1].Row(0), b[0].RowBytes(), kPhases.taps[p]);
        }
      }));
  entries.push_back(HorizontalEntry("four_tap_horizontal", 0));
  entries.push_back(HorizontalEntry("four_tap_horizontal_cycle9", 9));
  entries.push_back(HorizontalEntry("four_tap_horizontal_cycle2", 2));
  return entries;
}

const FamilyRegistration<Table> kRegistration{"multitap_scale", InitMultiTapScaleKernels, Entries()};

}  // namespace
}  // namespace Lumaforge::test
