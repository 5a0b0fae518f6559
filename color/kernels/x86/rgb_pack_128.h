// 128-bit RGB packing kernels, compiled once per 128-bit level: the including
// file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built with that
// level's flags, so the same source becomes the SSE2, SSSE3, SSE4.2 and
// (VEX-encoded) AVX variants.
//
// From SSSE3 on every pattern runs through pshufb masks built from the
// pattern once per call. SSE2 has no byte shuffle: Shuffle4Row picks one of
// 24 compiled forms, one per permutation, and the 24-bit kernels vectorise
// only the two patterns the converters use, {2, 1, 0} (swap the outer bytes)
// and {0, 1, 2} (keep them); any other pattern runs the plain routine at
// SSE2. At every level a pattern naming a byte outside the pixel runs the
// plain routine too.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif
#if defined(__SSE4_1__)
#include <smmintrin.h>
#endif

#include <array>
#include <cstring>
#include <utility>

#include "color/kernels/rgb_pack.h"
#include "color/kernels/x86/rgb_pack_masks.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

inline __m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void Store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

#if !defined(__SSSE3__)

// Four pixels widened to 16 bits fill a register as two 64-bit halves, which
// pshuflw/pshufhw reorder with the immediate kCode (2 bits per output byte).
// Values stay <= 255, so the saturating pack returns them unchanged.
template <int kCode>
int32_t Shuffle4Words(const uint8_t* src, uint8_t* dst, int32_t width) {
  const __m128i zero = _mm_setzero_si128();
  int32_t i = 0;
  for (; i + 8 <= width; i += 8) {
    const __m128i v0 = Load(src + 4 * i), v1 = Load(src + 4 * i + 16);
    __m128i a = _mm_unpacklo_epi8(v0, zero), b = _mm_unpackhi_epi8(v0, zero);
    __m128i c = _mm_unpacklo_epi8(v1, zero), d = _mm_unpackhi_epi8(v1, zero);
    a = _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, kCode), kCode);
    b = _mm_shufflehi_epi16(_mm_shufflelo_epi16(b, kCode), kCode);
    c = _mm_shufflehi_epi16(_mm_shufflelo_epi16(c, kCode), kCode);
    d = _mm_shufflehi_epi16(_mm_shufflelo_epi16(d, kCode), kCode);
    Store(dst + 4 * i, _mm_packus_epi16(a, b));
    Store(dst + 4 * i + 16, _mm_packus_epi16(c, d));
  }
  return i;
}

using Shuffle4Body = int32_t (*)(const uint8_t*, uint8_t*, int32_t);

constexpr bool IsPermutationCode(int code) {
  int seen = 0;
  for (int k = 0; k < 4; ++k) seen |= 1 << ((code >> (2 * k)) & 3);
  return seen == 15;
}

constexpr std::array<uint8_t, 24> kPermutationCodes = [] {
  std::array<uint8_t, 24> codes{};
  int n = 0;
  for (int code = 0; code < 256; ++code) {
    if (IsPermutationCode(code)) codes[n++] = static_cast<uint8_t>(code);
  }
  return codes;
}();

// Slot of each code in kShuffle4Bodies, 0xff for codes that are no permutation.
constexpr std::array<uint8_t, 256> kShuffle4Slot = [] {
  std::array<uint8_t, 256> slot{};
  for (auto& s : slot) s = 0xff;
  for (int k = 0; k < 24; ++k) slot[kPermutationCodes[k]] = static_cast<uint8_t>(k);
  return slot;
}();

template <size_t... k>
constexpr std::array<Shuffle4Body, 24> MakeShuffle4Bodies(std::index_sequence<k...>) {
  return {&Shuffle4Words<kPermutationCodes[k]>...};
}
constexpr std::array<Shuffle4Body, 24> kShuffle4Bodies = MakeShuffle4Bodies(std::make_index_sequence<24>{});

// Exchanges bytes 0 and 2 of every 32-bit pixel and clears byte 3: as
// 16-bit words the masked bytes 0 and 2 become word halves, swapped by
// shifting each one by 16 bits.
inline __m128i SwapOuterBytes(__m128i d) {
  const __m128i rb = _mm_and_si128(d, _mm_set1_epi32(0x00ff00ff));
  const __m128i g = _mm_and_si128(d, _mm_set1_epi32(0x0000ff00));
  return _mm_or_si128(g, _mm_or_si128(_mm_srli_epi32(rb, 16), _mm_slli_epi32(rb, 16)));
}

// Rgb24ToBgraRow for {0, 1, 2} (kSwap false) and {2, 1, 0} (kSwap true).
template <bool kSwap>
int32_t ExpandRgb24(const uint8_t* src, uint8_t* bgra, int32_t width) {
  const __m128i keepFirst = _mm_set1_epi64x(0x0000000000ffffff);
  const __m128i keepSecond = _mm_set1_epi64x(0x00ffffff00000000);
  const __m128i alpha = _mm_set1_epi32(static_cast<int>(0xff000000u));
  int32_t i = 0;
  // The loads reach byte 3i + 13, so stop while that stays in the row.
  for (; i + 5 <= width; i += 4) {
    // Pixels 0, 1 in the low half and 2, 3 in the high half, 6 bytes each.
    // (movq and movhps take any alignment.)
    const __m128 first = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + 3 * i)));
    const __m128i pairs = _mm_castps_si128(_mm_loadh_pi(first, reinterpret_cast<const __m64*>(src + 3 * i + 6)));
    // The second pixel of each half moves up one byte to fill its own word.
    __m128i d = _mm_or_si128(_mm_and_si128(pairs, keepFirst), _mm_and_si128(_mm_slli_epi64(pairs, 8), keepSecond));
    if constexpr (kSwap) d = SwapOuterBytes(d);
    Store(bgra + 4 * i, _mm_or_si128(d, alpha));
  }
  return i;
}

// BgraToRgb24Row for {0, 1, 2} (kSwap false) and {2, 1, 0} (kSwap true).
template <bool kSwap>
int32_t PackRgb24(const uint8_t* bgra, uint8_t* dst, int32_t width) {
  const __m128i keepFirst = _mm_set1_epi64x(0x0000000000ffffff);
  const __m128i keepSecond = _mm_set1_epi64x(0x0000ffffff000000);
  int32_t i = 0;
  // Each 8-byte store carries 6 bytes, its last 2 overwritten by the next
  // store; the last one ends at byte 3i + 13.
  for (; i + 5 <= width; i += 4) {
    __m128i d = Load(bgra + 4 * i);
    if constexpr (kSwap) d = SwapOuterBytes(d);
    // Each 64-bit half packs its two pixels into its low 6 bytes.
    const __m128i halves = _mm_or_si128(_mm_and_si128(d, keepFirst), _mm_and_si128(_mm_srli_epi64(d, 8), keepSecond));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 3 * i), halves);
    _mm_storeh_pi(reinterpret_cast<__m64*>(dst + 3 * i + 6), _mm_castsi128_ps(halves));
  }
  return i;
}

#endif  // !__SSSE3__

}  // namespace

void Shuffle4Row(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern);
  int32_t i = 0;
  if ((word & 0xfcfcfcfcu) == 0) {
#if defined(__SSSE3__)
    const __m128i mask = Shuffle4Mask(word);
    for (; i + 8 <= width; i += 8) {
      const __m128i v0 = Load(src + 4 * i), v1 = Load(src + 4 * i + 16);
      Store(dst + 4 * i, _mm_shuffle_epi8(v0, mask));
      Store(dst + 4 * i + 16, _mm_shuffle_epi8(v1, mask));
    }
    if (i + 4 <= width) {
      Store(dst + 4 * i, _mm_shuffle_epi8(Load(src + 4 * i), mask));
      i += 4;
    }
#else
    const int code = pattern.index[0] | pattern.index[1] << 2 | pattern.index[2] << 4 | pattern.index[3] << 6;
    const uint8_t slot = kShuffle4Slot[code];
    if (slot != 0xff) i = kShuffle4Bodies[slot](src, dst, width);
#endif
  }
  Shuffle4Row_c(src + 4 * i, dst + 4 * i, pattern, width - i);
}

void Rgb24ToBgraRow(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  int32_t i = 0;
  if (Fits24(pattern)) {
#if defined(__SSSE3__)
    const __m128i mask = Expand24Mask(PatternWord(pattern));
    const __m128i alpha = _mm_set1_epi32(static_cast<int>(0xff000000u));
    for (; i + 16 <= width; i += 16) {
      const uint8_t* s = src + 3 * i;
      const __m128i a = Load(s), b = Load(s + 16), c = Load(s + 32);
      // Realign so that each register starts at a pixel: 0, 4, 8, 12.
      const __m128i p0 = a, p1 = _mm_alignr_epi8(b, a, 12), p2 = _mm_alignr_epi8(c, b, 8), p3 = _mm_srli_si128(c, 4);
      uint8_t* d = bgra + 4 * i;
      Store(d, _mm_or_si128(_mm_shuffle_epi8(p0, mask), alpha));
      Store(d + 16, _mm_or_si128(_mm_shuffle_epi8(p1, mask), alpha));
      Store(d + 32, _mm_or_si128(_mm_shuffle_epi8(p2, mask), alpha));
      Store(d + 48, _mm_or_si128(_mm_shuffle_epi8(p3, mask), alpha));
    }
    // A 16-byte load covers 4 pixels and 4 bytes more, which must be in the row.
    for (; i + 6 <= width; i += 4) {
      Store(bgra + 4 * i, _mm_or_si128(_mm_shuffle_epi8(Load(src + 3 * i), mask), alpha));
    }
#else
    if (pattern.index[0] == 2 && pattern.index[1] == 1 && pattern.index[2] == 0) {
      i = ExpandRgb24<true>(src, bgra, width);
    } else if (pattern.index[0] == 0 && pattern.index[1] == 1 && pattern.index[2] == 2) {
      i = ExpandRgb24<false>(src, bgra, width);
    }
#endif
  }
  Rgb24ToBgraRow_c(src + 3 * i, bgra + 4 * i, pattern, width - i);
}

void BgraToRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern);
  int32_t i = 0;
  if ((word & 0x00fcfcfcu) == 0) {
#if defined(__SSSE3__)
    const __m128i packA = Pack24Mask(word);
#if defined(__SSE4_1__)
    // Each register packs its 12 bytes rotated to where they go in the output
    // (rotating the mask rotates the result); word blends join neighbours.
    const __m128i packB = _mm_alignr_epi8(packA, packA, 4);
    const __m128i packC = _mm_alignr_epi8(packA, packA, 8);
    const __m128i packD = _mm_alignr_epi8(packA, packA, 12);
    for (; i + 16 <= width; i += 16) {
      const uint8_t* s = bgra + 4 * i;
      const __m128i a = _mm_shuffle_epi8(Load(s), packA), b = _mm_shuffle_epi8(Load(s + 16), packB);
      const __m128i c = _mm_shuffle_epi8(Load(s + 32), packC), d = _mm_shuffle_epi8(Load(s + 48), packD);
      uint8_t* o = dst + 3 * i;
      Store(o, _mm_blend_epi16(a, b, 0xc0));
      Store(o + 16, _mm_blend_epi16(b, c, 0xf0));
      Store(o + 32, _mm_blend_epi16(c, d, 0xfc));
    }
#else
    // Each output register is the OR of two shuffles, each zeroing the bytes
    // the other one fills (a mask byte with its high bit set yields 0).
    const __m128i lowHalf = _mm_set_epi64x(0, static_cast<int64_t>(0x8080808080808080u));
    const __m128i highHalf = _mm_slli_si128(lowHalf, 8);
    const __m128i packB0 = _mm_or_si128(_mm_slli_si128(packA, 12), _mm_or_si128(lowHalf, _mm_srli_si128(highHalf, 4)));
    const __m128i packB1 = _mm_or_si128(_mm_srli_si128(packA, 4), highHalf);
    const __m128i packC0 = _mm_or_si128(_mm_slli_si128(packA, 8), lowHalf);
    const __m128i packC1 = _mm_or_si128(_mm_srli_si128(packA, 8), highHalf);
    const __m128i packD = _mm_or_si128(_mm_slli_si128(packA, 4), _mm_cvtsi32_si128(static_cast<int>(0x80808080u)));
    for (; i + 16 <= width; i += 16) {
      const uint8_t* s = bgra + 4 * i;
      const __m128i a = Load(s), b = Load(s + 16), c = Load(s + 32), d = Load(s + 48);
      uint8_t* o = dst + 3 * i;
      Store(o, _mm_or_si128(_mm_shuffle_epi8(a, packA), _mm_shuffle_epi8(b, packB0)));
      Store(o + 16, _mm_or_si128(_mm_shuffle_epi8(b, packB1), _mm_shuffle_epi8(c, packC0)));
      Store(o + 32, _mm_or_si128(_mm_shuffle_epi8(c, packC1), _mm_shuffle_epi8(d, packD)));
    }
#endif
    // Four pixels at a time: 12 bytes stored as 8 + 4.
    for (; i + 4 <= width; i += 4) {
      const __m128i p = _mm_shuffle_epi8(Load(bgra + 4 * i), packA);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 3 * i), p);
      const uint32_t last = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(p, 8)));
      std::memcpy(dst + 3 * i + 8, &last, sizeof(last));
    }
#else
    if ((word & 0x00ffffffu) == 0x00000102u) {
      i = PackRgb24<true>(bgra, dst, width);
    } else if ((word & 0x00ffffffu) == 0x00020100u) {
      i = PackRgb24<false>(bgra, dst, width);
    }
#endif
  }
  BgraToRgb24Row_c(bgra + 4 * i, dst + 3 * i, pattern, width - i);
}

void PlanesToBgraRow(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width) {
  const __m128i opaque = _mm_set1_epi8(-1);
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    const __m128i rs = Load(r + i), gs = Load(g + i), bs = Load(b + i);
    const __m128i bg0 = _mm_unpacklo_epi8(bs, gs), bg1 = _mm_unpackhi_epi8(bs, gs);
    const __m128i ra0 = _mm_unpacklo_epi8(rs, opaque), ra1 = _mm_unpackhi_epi8(rs, opaque);
    uint8_t* d = bgra + 4 * i;
    Store(d, _mm_unpacklo_epi16(bg0, ra0));
    Store(d + 16, _mm_unpackhi_epi16(bg0, ra0));
    Store(d + 32, _mm_unpacklo_epi16(bg1, ra1));
    Store(d + 48, _mm_unpackhi_epi16(bg1, ra1));
  }
  PlanesToBgraRow_c(r + i, g + i, b + i, bgra + 4 * i, width - i);
}

void BgraToPlanesRow(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width) {
  int32_t i = 0;
#if defined(__SSSE3__)
  // Gathers each pixel's bytes by channel: B of pixels 0..3 in word 0, G in 1, R in 2.
  const __m128i byChannel = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  for (; i + 16 <= width; i += 16) {
    const uint8_t* s = bgra + 4 * i;
    const __m128i v0 = _mm_shuffle_epi8(Load(s), byChannel), v1 = _mm_shuffle_epi8(Load(s + 16), byChannel);
    const __m128i v2 = _mm_shuffle_epi8(Load(s + 32), byChannel), v3 = _mm_shuffle_epi8(Load(s + 48), byChannel);
    const __m128i bg01 = _mm_unpacklo_epi32(v0, v1), ra01 = _mm_unpackhi_epi32(v0, v1);
    const __m128i bg23 = _mm_unpacklo_epi32(v2, v3), ra23 = _mm_unpackhi_epi32(v2, v3);
    Store(b + i, _mm_unpacklo_epi64(bg01, bg23));
    Store(g + i, _mm_unpackhi_epi64(bg01, bg23));
    Store(r + i, _mm_unpacklo_epi64(ra01, ra23));
  }
#else
  // A pixel's even bytes are B and R, its odd bytes G and A; two rounds of
  // splitting 16-bit words into low and high bytes and packing them (every
  // word <= 255, so the saturating pack changes nothing) part the channels.
  const __m128i low = _mm_set1_epi16(0x00ff);
  for (; i + 16 <= width; i += 16) {
    const uint8_t* s = bgra + 4 * i;
    const __m128i v0 = Load(s), v1 = Load(s + 16), v2 = Load(s + 32), v3 = Load(s + 48);
    const __m128i br01 = _mm_packus_epi16(_mm_and_si128(v0, low), _mm_and_si128(v1, low));
    const __m128i br23 = _mm_packus_epi16(_mm_and_si128(v2, low), _mm_and_si128(v3, low));
    const __m128i ga01 = _mm_packus_epi16(_mm_srli_epi16(v0, 8), _mm_srli_epi16(v1, 8));
    const __m128i ga23 = _mm_packus_epi16(_mm_srli_epi16(v2, 8), _mm_srli_epi16(v3, 8));
    Store(b + i, _mm_packus_epi16(_mm_and_si128(br01, low), _mm_and_si128(br23, low)));
    Store(r + i, _mm_packus_epi16(_mm_srli_epi16(br01, 8), _mm_srli_epi16(br23, 8)));
    Store(g + i, _mm_packus_epi16(_mm_and_si128(ga01, low), _mm_and_si128(ga23, low)));
  }
#endif
  BgraToPlanesRow_c(bgra + 4 * i, r + i, g + i, b + i, width - i);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
