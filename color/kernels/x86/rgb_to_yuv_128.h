// 128-bit RGB to YUV kernels, compiled once per 128-bit level: the including
// file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built with that
// level's flags, so the same source becomes the SSE2, SSSE3, SSE4.2 and
// (VEX-encoded) AVX variants. SSE2 widens with masks and shifts; SSSE3 and
// up let pmaddubsw do the widening multiply-adds.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include "color/kernels/rgb_to_yuv.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

inline __m128i WordPair(int16_t lo, int16_t hi) { return _mm_setr_epi16(lo, hi, lo, hi, lo, hi, lo, hi); }

// Eight U and V samples from the 32-bit numerators of blocks 0-3 and 4-7.
// The bias is the rounding term plus (128 << kShift): it keeps every lane
// positive, so a logical shift yields the sample, and samples lie in
// 16..240, so neither pack saturates.
template <int kShift>
inline void StoreUV8(__m128i u0, __m128i u1, __m128i v0, __m128i v1, uint8_t* u, uint8_t* v) {
  const __m128i bias = _mm_set1_epi32((1 << (kShift - 1)) + (128 << kShift));
  u0 = _mm_srli_epi32(_mm_add_epi32(u0, bias), kShift);
  u1 = _mm_srli_epi32(_mm_add_epi32(u1, bias), kShift);
  v0 = _mm_srli_epi32(_mm_add_epi32(v0, bias), kShift);
  v1 = _mm_srli_epi32(_mm_add_epi32(v1, bias), kShift);
  const __m128i uv = _mm_packus_epi16(_mm_packs_epi32(u0, u1), _mm_packs_epi32(v0, v1));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(u), uv);
  _mm_storeh_pi(reinterpret_cast<__m64*>(v), _mm_castsi128_ps(uv));
}

#if defined(__SSSE3__)

// Luma numerator of four pixels less 28160, two 16-bit partials per pixel.
// The coefficients are the unsigned operand and the pixels, flipped to
// p - 128, the signed one, so 129 is representable and
// 25 (B - 128) + 129 (G - 128) stays within int16 without saturating.
inline __m128i LumaPartials(__m128i px) {
  const __m128i coef = _mm_set1_epi32(66 << 16 | 129 << 8 | 25);
  return _mm_maddubs_epi16(coef, _mm_xor_si128(px, _mm_set1_epi8(static_cast<char>(0x80))));
}

// Sixteen luma samples. phaddw adds the partials to N - 28160 with N the
// plain numerator; adding 32384 gives N + 128 + (16 << 8) <= 60324, exact
// as an unsigned 16-bit lane, so a logical shift yields Y.
inline __m128i Luma16(const uint8_t* p) {
  const __m128i bias = _mm_set1_epi16(32384);
  const __m128i lo = _mm_hadd_epi16(LumaPartials(Load(p)), LumaPartials(Load(p + 16)));
  const __m128i hi = _mm_hadd_epi16(LumaPartials(Load(p + 32)), LumaPartials(Load(p + 48)));
  return _mm_packus_epi16(_mm_srli_epi16(_mm_add_epi16(lo, bias), 8), _mm_srli_epi16(_mm_add_epi16(hi, bias), 8));
}

// Orders a 4-pixel vector as B0 B1 R0 R1 B2 B3 R2 R3 G0 G1 G0 G1 G2 G3 G2 G3,
// so that pmaddubsw by ones yields (sB, sR) of both pairs in the low half
// and (sG, sG) in the high half.
inline __m128i PairSums(__m128i px) {
  const __m128i order = _mm_setr_epi8(0, 4, 2, 6, 8, 12, 10, 14, 1, 5, 1, 5, 9, 13, 9, 13);
  return _mm_maddubs_epi16(_mm_shuffle_epi8(px, order), _mm_set1_epi8(1));
}

// U and V numerators of four blocks from the pair sums of blocks 0-1 and
// 2-3. With d = (sG - sB, sG - sR) per block,
//   112 sB - 74 sG - 38 sR = -112 (sG - sB) + 38 (sG - sR)
//   112 sR - 94 sG - 18 sB =   18 (sG - sB) - 112 (sG - sR)
// so one pmaddwd per plane forms each exact 32-bit numerator.
inline void ChromaNumerators(__m128i s01, __m128i s23, __m128i* u, __m128i* v) {
  const __m128i d = _mm_sub_epi16(_mm_unpackhi_epi64(s01, s23), _mm_unpacklo_epi64(s01, s23));
  *u = _mm_madd_epi16(d, WordPair(-112, 38));
  *v = _mm_madd_epi16(d, WordPair(18, -112));
}

// Numerators of blocks 0-3 of one row (4:2:2) or of two rows (4:2:0); pair
// sums are at most 510 per row, 1020 for a 2x2 block.
inline void RowNumerators(const uint8_t* a, __m128i* u, __m128i* v) {
  ChromaNumerators(PairSums(Load(a)), PairSums(Load(a + 16)), u, v);
}
inline void BlockNumerators(const uint8_t* a, const uint8_t* b, __m128i* u, __m128i* v) {
  ChromaNumerators(_mm_add_epi16(PairSums(Load(a)), PairSums(Load(b))),
                   _mm_add_epi16(PairSums(Load(a + 16)), PairSums(Load(b + 16))), u, v);
}

#else

// Four luma samples as 32-bit lanes: (B, R) and (G, A) split into 16-bit
// lanes by mask and shift, then pmaddwd forms the exact numerator.
inline __m128i Luma4(__m128i px) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  const __m128i n = _mm_add_epi32(_mm_madd_epi16(_mm_and_si128(px, lowBytes), WordPair(25, 66)),
                                  _mm_madd_epi16(_mm_srli_epi16(px, 8), WordPair(129, 0)));
  return _mm_srli_epi32(_mm_add_epi32(n, _mm_set1_epi32(128 + (16 << 8))), 8);
}

inline __m128i Luma16(const uint8_t* p) {
  return _mm_packus_epi16(_mm_packs_epi32(Luma4(Load(p)), Luma4(Load(p + 16))),
                          _mm_packs_epi32(Luma4(Load(p + 32)), Luma4(Load(p + 48))));
}

// Adds the 32-bit lanes (one pixel each) pairwise across x = pixels 0-3 and
// y = pixels 4-7, giving one lane per block.
inline __m128i AddPixelPairs(__m128i x, __m128i y) {
  const __m128 xs = _mm_castsi128_ps(x);
  const __m128 ys = _mm_castsi128_ps(y);
  return _mm_add_epi16(_mm_castps_si128(_mm_shuffle_ps(xs, ys, 0x88)), _mm_castps_si128(_mm_shuffle_ps(xs, ys, 0xDD)));
}

// U and V numerators of four blocks from `br` = (sB, sR) and `ga` = (sG, sA)
// as 16-bit pairs, one 32-bit lane per block; pmaddwd keeps them exact.
inline void ChromaNumerators(__m128i br, __m128i ga, __m128i* u, __m128i* v) {
  *u = _mm_add_epi32(_mm_madd_epi16(br, WordPair(112, -38)), _mm_madd_epi16(ga, WordPair(-74, 0)));
  *v = _mm_add_epi32(_mm_madd_epi16(br, WordPair(-18, 112)), _mm_madd_epi16(ga, WordPair(-94, 0)));
}

// Sums of (B, R) and (G, A) per pixel of one row, or of two rows added
// (at most 510 per lane).
inline void SplitRow(__m128i p, __m128i* br, __m128i* ga) {
  *br = _mm_and_si128(p, _mm_set1_epi16(0x00ff));
  *ga = _mm_srli_epi16(p, 8);
}
inline void SplitRows(__m128i p, __m128i q, __m128i* br, __m128i* ga) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  *br = _mm_add_epi16(_mm_and_si128(p, lowBytes), _mm_and_si128(q, lowBytes));
  *ga = _mm_add_epi16(_mm_srli_epi16(p, 8), _mm_srli_epi16(q, 8));
}

inline void RowNumerators(const uint8_t* a, __m128i* u, __m128i* v) {
  __m128i br0, ga0, br1, ga1;
  SplitRow(Load(a), &br0, &ga0);
  SplitRow(Load(a + 16), &br1, &ga1);
  ChromaNumerators(AddPixelPairs(br0, br1), AddPixelPairs(ga0, ga1), u, v);
}
inline void BlockNumerators(const uint8_t* a, const uint8_t* b, __m128i* u, __m128i* v) {
  __m128i br0, ga0, br1, ga1;
  SplitRows(Load(a), Load(b), &br0, &ga0);
  SplitRows(Load(a + 16), Load(b + 16), &br1, &ga1);
  ChromaNumerators(AddPixelPairs(br0, br1), AddPixelPairs(ga0, ga1), u, v);
}

#endif

}  // namespace

void BgraToYRow(const uint8_t* bgra, uint8_t* y, int32_t width) {
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(y + i), Luma16(bgra + 4 * i));
  BgraToYRow_c(bgra + 4 * i, y + i, width - i);
}

void BgraToUV420Row(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width) {
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    __m128i u0, v0, u1, v1;
    BlockNumerators(bgra0 + 4 * i, bgra1 + 4 * i, &u0, &v0);
    BlockNumerators(bgra0 + 4 * i + 32, bgra1 + 4 * i + 32, &u1, &v1);
    StoreUV8<10>(u0, u1, v0, v1, u + i / 2, v + i / 2);
  }
  BgraToUV420Row_c(bgra0 + 4 * i, bgra1 + 4 * i, u + i / 2, v + i / 2, width - i);
}

void BgraToUV422Row(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width) {
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    __m128i u0, v0, u1, v1;
    RowNumerators(bgra + 4 * i, &u0, &v0);
    RowNumerators(bgra + 4 * i + 32, &u1, &v1);
    StoreUV8<9>(u0, u1, v0, v1, u + i / 2, v + i / 2);
  }
  BgraToUV422Row_c(bgra + 4 * i, u + i / 2, v + i / 2, width - i);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
