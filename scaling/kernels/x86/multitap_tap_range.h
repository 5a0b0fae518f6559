// The tap sets the vector multi-tap kernels accept; other sets run the plain
// routines. The vector paths keep sums in 16-bit lanes, which is exact when:
//  - half-band kernels: sum of |taps| <= 128, so every partial sum stays
//    within 128 * 255 = 32640 and nothing in int16 can overflow;
//  - four-tap kernels: |t0| + |t1| <= 128 and |t2| + |t3| <= 128, so each
//    pair stays within int16 and only the final pair + pair add may leave it;
//    that add saturates, and a saturated sum is past +-32767 exactly when the
//    true one is, where (32 + sum) >> 6 clamps to the same 0 or 255.
// The half-band taps (-1, 8, 25, 25, 8, -1) and four-tap phases with lobes
// down to about -60 are all inside.
//
// Internal linkage: each including file keeps its own copy, compiled with
// its own instruction-set flags.
#ifndef LUMAFORGE_SCALING_KERNELS_X86_MULTITAP_TAP_RANGE_H_
#define LUMAFORGE_SCALING_KERNELS_X86_MULTITAP_TAP_RANGE_H_

#include <cstdint>

namespace Lumaforge {
namespace {

inline int32_t Abs8(int8_t t) { return t < 0 ? -t : t; }

inline bool SixTapsFit(const int8_t* taps) {
  int32_t total = 0;
  for (int32_t k = 0; k < 6; ++k) total += Abs8(taps[k]);
  return total <= 128;
}

inline bool FourTapPairsFit(const int8_t* t) {
  return Abs8(t[0]) + Abs8(t[1]) <= 128 && Abs8(t[2]) + Abs8(t[3]) <= 128;
}

// Whether a horizontal four-tap row suits the vector walk: positions move
// forward and stay in int32, and every phase it uses fits the pair range.
// Sets the position of the last output.
inline bool FourTapRowFits(int32_t width, int32_t posX, int32_t stepX, const int8_t (*phases)[4], int32_t cycleLength,
                           int64_t* lastPos) {
  *lastPos = static_cast<int64_t>(posX) + static_cast<int64_t>(width - 1) * stepX;
  bool fits = width > 0 && stepX > 0 && cycleLength >= 0 && cycleLength <= 64 && *lastPos + stepX <= INT32_MAX;
  const int32_t used = cycleLength ? cycleLength : 64;
  for (int32_t p = 0; fits && p < used; ++p) fits = FourTapPairsFit(phases[p]);
  return fits;
}

}  // namespace
}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_KERNELS_X86_MULTITAP_TAP_RANGE_H_
