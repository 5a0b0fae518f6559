#include "scaling/downsample_taps.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace Lumaforge {
namespace {

constexpr double kPi = 3.14159265358979323846;

double Sinc(double t) { return t == 0.0 ? 1.0 : std::sin(kPi * t) / (kPi * t); }

// Rows: ratio index 0..6, nine phases each (index 0 unused).
constexpr int8_t kSpecialPhases[7][9][4] = {
    {},
    {{5, 50, 10, -1},
     {2, 48, 16, -2},
     {-1, 45, 22, -2},
     {-2, 41, 28, -3},
     {-3, 35, 35, -3},
     {-3, 28, 41, -2},
     {-2, 22, 45, -1},
     {-2, 16, 48, 2},
     {-1, 10, 50, 5}},
    {{3, 50, 13, -2},
     {-2, 41, 28, -3},
     {-3, 28, 41, -2},
     {-2, 13, 50, 3},
     {3, 50, 13, -2},
     {-2, 41, 28, -3},
     {-3, 28, 41, -2},
     {-2, 13, 50, 3}},
    {{5, 40, 21, -2},
     {-2, 27, 38, 1},
     {9, 43, 14, -2},
     {-1, 33, 33, -1},
     {-2, 14, 43, 9},
     {1, 38, 27, -2},
     {-2, 21, 40, 5}},
    {{6, 33, 25, 0}, {15, 36, 15, -2}, {0, 25, 33, 6}, {6, 33, 25, 0}, {15, 36, 15, -2}, {0, 25, 33, 6}},
    {{5, 39, 22, -2},
     {-2, 22, 39, 5},
     {5, 39, 22, -2},
     {-2, 22, 39, 5},
     {5, 39, 22, -2},
     {-2, 22, 39, 5},
     {5, 39, 22, -2},
     {-2, 22, 39, 5}},
    {{4, 45, 17, -2}, {-2, 34, 34, -2}, {-2, 17, 45, 4}, {4, 45, 17, -2}, {-2, 34, 34, -2}},
};
constexpr int32_t kSpecialPhaseCounts[7] = {-1, 9, 8, 7, 6, 2, 3};

}  // namespace

void GenerateTaps(int32_t n, int32_t count, double ratio, double cutoff, double phaseParam, int32_t bits,
                  int32_t* taps) {
  const double a = count / ratio;
  const double offset = count * phaseParam / ratio;
  const int32_t half = n / 2;
  const int32_t unity = 1 << bits;
  std::vector<double> real(static_cast<size_t>(n));
  for (int32_t phase = 0; phase < count; ++phase) {
    const double x = (phase + offset) / a;
    double d = x - std::floor(x) - half;
    int32_t k = 0;
    for (; d < half && k < n; d += 1.0, ++k) {
      real[k] = Sinc(d * cutoff * a) * Sinc(2.0 * (d * cutoff + half) / (2.0 * half) - 1.0);
    }
    double sum = 0.0;
    for (int32_t i = 0; i < k; ++i) sum += real[i];
    int32_t* out = taps + static_cast<ptrdiff_t>(phase) * n;
    int32_t total = 0;
    for (int32_t i = 0; i < n; ++i) {
      // std::lround rounds halves away from zero.
      out[i] = i < k ? static_cast<int32_t>(std::lround(real[i] / sum * unity)) : 0;
      total += out[i];
    }
    // Push the rounding error into the largest tap, one step at a time.
    const int32_t error = total - unity;
    for (int32_t step = 0; step < std::abs(error); ++step) {
      int32_t largest = 0;
      for (int32_t i = 1; i < n; ++i) {
        if (std::abs(out[i]) > std::abs(out[largest])) largest = i;
      }
      out[largest] += error < 1 ? 1 : -1;
    }
  }
}

void MakeHalfBandTaps(int8_t taps[6]) {
  int32_t wide[6];
  GenerateTaps(6, 1, 2.0, 0.9, 0.5, 6, wide);
  for (int32_t i = 0; i < 6; ++i) taps[i] = static_cast<int8_t>(wide[i] & 0xff);
}

void MakeFourTapPhaseTable(int8_t table[64][4]) {
  for (int32_t p = 0; p < 64; ++p) {
    int32_t wide[4];
    GenerateTaps(4, 1, 1.0, 1.0, p / 64.0, 6, wide);
    for (int32_t k = 0; k < 4; ++k) table[p][k] = static_cast<int8_t>(wide[3 - k]);
  }
}

int32_t SpecialRatioIndex(int32_t outSize, int32_t inSize) {
  if (outSize * 10 == inSize * 9) return 1;
  if (outSize * 10 == inSize * 8) return 2;
  if (outSize * 10 == inSize * 7) return 3;
  if (outSize * 10 == inSize * 6) return 4;
  if (outSize * 3 == inSize * 2) return 5;
  if (outSize * 4 == inSize * 3) return 6;
  return 0;
}

const int8_t (*SpecialRatioPhases(int32_t index))[4] { return kSpecialPhases[index]; }

int32_t SpecialRatioPhaseCount(int32_t index) { return kSpecialPhaseCounts[index]; }

}  // namespace Lumaforge
