// What every variant of the deband kernel shares: the sampling offsets, the
// CRC-32C generator and dither table, and the per-sample rules. Header-only
// so each level's file inlines it with its own flags.
#ifndef LUMAFORGE_ENHANCE_KERNELS_DEBAND_ROWS_H_
#define LUMAFORGE_ENHANCE_KERNELS_DEBAND_ROWS_H_

#include <array>
#include <cstdint>

#include "enhance/kernels/deband.h"

namespace Lumaforge::deband {

// The four tap offsets of a span of 2^k (k = 3..6): those of 64 divided by
// 2^(6 - k), truncated toward zero.
inline constexpr int32_t kOffsets[7][4] = {
    {}, {}, {}, {-3, -1, 1, 3}, {-7, -2, 2, 7}, {-15, -5, 5, 15}, {-31, -10, 10, 31}};

inline int32_t HoldSpan(int32_t span) { return span < 3 ? 3 : span > 6 ? 6 : span; }

// The reflected CRC-32C (Castagnoli) table.
inline constexpr std::array<uint32_t, 256> kCrcTable = [] {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t c = i;
    for (int bit = 0; bit < 8; ++bit) c = c & 1 ? (c >> 1) ^ 0x82F63B78u : c >> 1;
    table[i] = c;
  }
  return table;
}();

// One generator step: two CRC-32C byte steps fed with bytes of the state.
inline uint32_t NextState(uint32_t s) {
  const uint32_t t = (s >> 8) ^ kCrcTable[(s ^ (s >> 16)) & 255];
  return (t >> 8) ^ kCrcTable[((s >> 24) ^ t) & 255];
}

// The dither table for `dither`, built with `step` from the seed (0 counts
// as 1); returns the state after the table, where the pixel loop goes on.
template <typename Step>
uint32_t FillDitherTable(int32_t dither, uint32_t seed, int16_t* table, Step step) {
  const int32_t d = dither > 2 ? dither : 2;
  int32_t mask = 2047, offset = 1016;
  if (d < 14) {
    mask = (1 << (d - 2)) - 1;
    offset = (d == 2 ? 0 : 1 << (d - 3)) - 8;
  }
  uint32_t state = seed ? seed : 1;
  for (int32_t i = 0; i < kDebandDitherEntries; ++i) {
    state = step(state);
    table[i] = static_cast<int16_t>(static_cast<int32_t>(state & static_cast<uint32_t>(mask)) - offset);
  }
  return state;
}

// The strength as the kernels use it: a tap is accepted when its distance
// from the centre is at most this (horizontally, in levels) or four times
// this (vertically, in sums). Distances never exceed 255 levels, so larger
// strengths act as 255 and negative ones accept nothing.
inline int32_t HeldStrength(int32_t strength) { return strength < -1 ? -1 : strength > 255 ? 255 : strength; }

// A tap v of centre c, kept when |v - c| <= limit, else replaced by c.
inline int32_t Tap(int32_t v, int32_t c, int32_t limit) { return (v - c <= limit && c - v <= limit) ? v : c; }

inline uint8_t ToByte(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

}  // namespace Lumaforge::deband

#endif  // LUMAFORGE_ENHANCE_KERNELS_DEBAND_ROWS_H_
