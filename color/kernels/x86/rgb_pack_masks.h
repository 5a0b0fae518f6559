// Byte patterns as pshufb masks, shared by the 128-bit and 256-bit RGB
// packing kernels. Everything here has internal linkage, so each including
// file keeps its own copy compiled with its own instruction-set flags.
#ifndef LUMAFORGE_COLOR_KERNELS_X86_RGB_PACK_MASKS_H_
#define LUMAFORGE_COLOR_KERNELS_X86_RGB_PACK_MASKS_H_

#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include <cstring>

#include "color/kernels/rgb_pack.h"

namespace Lumaforge {
namespace {

// The pattern as a little-endian word: byte k is index[k].
inline uint32_t PatternWord(BytePattern pattern) {
  uint32_t word;
  std::memcpy(&word, pattern.index, sizeof(word));
  return word;
}

// index[0..2] name bytes of a 3-byte pixel.
inline bool Fits24(BytePattern p) { return p.index[0] < 3 && p.index[1] < 3 && p.index[2] < 3; }

#if defined(__SSSE3__)

// pshufb mask moving byte index[k] of each 4-byte pixel to byte k.
inline __m128i Shuffle4Mask(uint32_t word) {
  return _mm_add_epi8(_mm_set1_epi32(static_cast<int>(word)),
                      _mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12));
}

// pshufb mask taking four 3-byte pixels from bytes 0..11 to four 4-byte
// pixels; byte 3 of each gets 0x80 plus an offset, which keeps the high bit
// set, so pshufb zeroes it for the alpha OR.
inline __m128i Expand24Mask(uint32_t word) {
  return _mm_add_epi8(_mm_set1_epi32(static_cast<int>((word & 0x00ffffffu) | 0x80000000u)),
                      _mm_setr_epi8(0, 0, 0, 0, 3, 3, 3, 3, 6, 6, 6, 6, 9, 9, 9, 9));
}

// pshufb mask packing four 4-byte pixels into bytes 0..11; bytes 12..15 are
// zeroed (high bit set).
inline __m128i Pack24Mask(uint32_t word) {
  const __m128i spread = _mm_shuffle_epi8(_mm_cvtsi32_si128(static_cast<int>(word)),
                                          _mm_setr_epi8(0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 0, 0, 0));
  return _mm_add_epi8(spread, _mm_setr_epi8(0, 0, 0, 4, 4, 4, 8, 8, 8, 12, 12, 12, -128, -128, -128, -128));
}

#endif  // __SSSE3__

}  // namespace
}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_X86_RGB_PACK_MASKS_H_
