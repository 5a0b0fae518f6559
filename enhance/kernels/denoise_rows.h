// The per-pixel and per-block arithmetic every variant of the denoise
// kernels shares. Header-only so each level's file inlines it with its own
// flags; the vector forms use it for the pixels their steps leave over.
#ifndef LUMAFORGE_ENHANCE_KERNELS_DENOISE_ROWS_H_
#define LUMAFORGE_ENHANCE_KERNELS_DENOISE_ROWS_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace Lumaforge::denoise {

inline constexpr int32_t kMaxRunWidth = 16;

// Kernel A's weight of a neighbour at distance d, or 0.
inline int32_t WeightA(int32_t d) { return d <= 32 ? ((32 - d) * (32 - d)) >> 5 : 0; }
// Kernel B's weight.
inline int32_t WeightB(int32_t d) {
  const int32_t w = 28 - (d >> 2);
  return w > 0 ? w : 0;
}

// The spatial result of the pixel at p (its 3x3 neighbourhood as it stands).
template <int32_t (*Weight)(int32_t)>
inline uint8_t SpatialPixel(const uint8_t* p, ptrdiff_t stride) {
  const int32_t c = *p;
  int32_t sumW = 0, sumWn = 0;
  for (const ptrdiff_t offset :
       {-stride - 1, -stride, -stride + 1, ptrdiff_t{-1}, ptrdiff_t{1}, stride - 1, stride, stride + 1}) {
    const int32_t n = p[offset];
    const int32_t w = Weight(std::abs(n - c));
    sumW += w;
    sumWn += w * n;
  }
  return static_cast<uint8_t>(((256 - sumW) * c + 128 + sumWn) >> 8);
}

// The edge smoother's result of the pixel at p.
inline uint8_t SmoothedPixel(const uint8_t* p, ptrdiff_t stride) {
  const uint8_t* a = p - stride;
  const uint8_t* b = p + stride;
  const int32_t sum = a[-1] + 2 * a[0] + a[1] + 2 * p[-1] + 4 * p[0] + 2 * p[1] + b[-1] + 2 * b[0] + b[1];
  return static_cast<uint8_t>((sum + 8) >> 4);
}

inline uint8_t BlendPixel(int32_t cur, int32_t ref, int32_t weight) {
  const int32_t v = (cur * weight + ref * (32 - weight) + 16) >> 5;
  return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

struct BlockStats {
  int32_t weight;    // 0 .. 256: how directional the block's differences are
  int32_t variance;  // sum of squared deviations * 256 / 24
};

// Structure weight from the ratio R = 256 * largest / smallest non-zero
// energy (truncated; 0 for no such energy): 0 up to 282 (about 1.1), rising
// to 256 at 666 (about 2.6). Energies stay below 5.3 million, so 256 times
// one fits 31 bits and the two ends are found by multiplying. In between,
// R is the quotient in double, truncated: it is exact there, as a quotient
// below 666 of numbers below 2^31 lies at least 2^-41 of itself from the
// next integer, far more than a double's rounding. Written without
// branches: blocks of noise fall on both sides of the ends at random.
inline int32_t StructureWeight(uint32_t largest, uint32_t smallest) {
  const uint32_t scaled = largest * 256;
  const double quotient = static_cast<double>(scaled) / static_cast<double>(smallest ? smallest : 1);
  const auto ratio = static_cast<int32_t>(quotient < 666.0 ? quotient : 666.0);
  const int32_t rising = (ratio - 282) * 256 / 383;
  const int32_t weight = scaled < 283 * smallest ? 0 : scaled >= 666 * smallest ? 256 : rising;
  return smallest ? weight : 0;
}

// A block's statistics from the sum of squared deviations from its
// truncated mean and its largest and smallest non-zero energy (0 if none).
inline BlockStats StatsOfExtremes(int32_t squares, uint32_t largest, uint32_t smallest) {
  return {StructureWeight(largest, smallest), squares * 256 / 24};
}

// The same from the four directional sums of squared differences (rows and
// columns over 20 pairs each, the diagonals over 16), scaled to 80 pairs.
inline BlockStats StatsOfEnergies(int32_t squares, int32_t along, int32_t down, int32_t diagonal,
                                  int32_t antiDiagonal) {
  const uint32_t energies[4] = {4 * static_cast<uint32_t>(along), 4 * static_cast<uint32_t>(down),
                                5 * static_cast<uint32_t>(diagonal), 5 * static_cast<uint32_t>(antiDiagonal)};
  uint32_t largest = 0, smallest = 0;
  for (const uint32_t e : energies) {
    largest = e > largest ? e : largest;
    if (e > 0 && (smallest == 0 || e < smallest)) smallest = e;
  }
  return StatsOfExtremes(squares, largest, smallest);
}

// The statistics of one 5x5 block of differences d (each 0..255).
//
// The directional energies are the sums of squared differences between
// neighbouring samples along rows, along columns and along both diagonals,
// scaled to the same count of pairs (20 row and column pairs times 4, 16
// diagonal pairs times 5). The difference of two pictures of a still scene
// is sensor noise, which has no direction: all four energies come out
// alike and the ratio stays near 1. Texture or an edge that moved leaves a
// residue with a direction: the differences across it are large and those
// along it small, so the ratio grows and the block weighs less, or not at
// all, in the noise average.
inline BlockStats StatsOfDifferences(const int32_t d[5][5]) {
  int32_t sum = 0;
  for (int32_t r = 0; r < 5; ++r)
    for (int32_t c = 0; c < 5; ++c) sum += d[r][c];
  const int32_t mean = sum / 25;
  int32_t squares = 0;
  for (int32_t r = 0; r < 5; ++r)
    for (int32_t c = 0; c < 5; ++c) squares += (d[r][c] - mean) * (d[r][c] - mean);
  int32_t along = 0, down = 0, diagonal = 0, antiDiagonal = 0;
  for (int32_t r = 0; r < 5; ++r) {
    for (int32_t c = 0; c < 4; ++c) {
      along += (d[r][c + 1] - d[r][c]) * (d[r][c + 1] - d[r][c]);
      down += (d[c + 1][r] - d[c][r]) * (d[c + 1][r] - d[c][r]);
    }
  }
  for (int32_t r = 0; r < 4; ++r) {
    for (int32_t c = 0; c < 4; ++c) {
      diagonal += (d[r + 1][c + 1] - d[r][c]) * (d[r + 1][c + 1] - d[r][c]);
      antiDiagonal += (d[r + 1][c] - d[r][c + 1]) * (d[r + 1][c] - d[r][c + 1]);
    }
  }
  return StatsOfEnergies(squares, along, down, diagonal, antiDiagonal);
}

// The block test's answer without the transform, when the SAD alone
// decides: no larger than the last block's, tiny, or large.
inline bool QuickAnswer(int32_t sad, int32_t tac, int32_t cell) {
  return sad <= cell || sad <= tac / 8 || sad >= 7 * tac / 16;
}

// The 4-point transform's basis.
inline constexpr int32_t kBasis[4][4] = {{16, 16, 16, 16}, {-21, -9, 9, 21}, {16, -16, -16, 16}, {-9, 21, -21, 9}};

// Transforms the 4x4 differences (rows, then columns) and checks every
// coefficient: the DC one against tdc, the others against tac.
inline bool TransformPasses(const int32_t diff[4][4], int32_t tac, int32_t tdc) {
  int32_t rowT[4][4];
  for (int32_t r = 0; r < 4; ++r) {
    for (int32_t k = 0; k < 4; ++k) {
      int32_t s = 0;
      for (int32_t j = 0; j < 4; ++j) s += kBasis[k][j] * diff[r][j];
      rowT[r][k] = static_cast<int16_t>(s >> 6);
    }
  }
  for (int32_t k = 0; k < 4; ++k) {
    for (int32_t j = 0; j < 4; ++j) {
      int32_t s = 0;
      for (int32_t r = 0; r < 4; ++r) s += kBasis[k][r] * rowT[r][j];
      const auto magnitude = static_cast<int16_t>(s < 0 ? -s : s);
      if (magnitude > (k == 0 && j == 0 ? tdc : tac)) return false;
    }
  }
  return true;
}

}  // namespace Lumaforge::denoise

#endif  // LUMAFORGE_ENHANCE_KERNELS_DENOISE_ROWS_H_
