// The tap sets the vector multi-tap kernels accept: within these bounds
// their 16-bit sums cannot overflow; other sets run the plain routines.
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
