// 256-bit RGB packing kernels. pshufb works within 128-bit lanes, so the
// 24-bit forms move whole 32-bit words across lanes with vpermd first (input)
// or after (output); a lane holds four pixels either way. Masks are built
// from the pattern once per call; a pattern naming a byte outside the pixel
// runs the plain routine.
#include <immintrin.h>

#include <cstring>

#include "color/kernels/rgb_pack.h"
#include "color/kernels/x86/rgb_pack_masks.h"

namespace Lumaforge::avx2 {
namespace {

inline __m256i Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void Store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
inline __m128i Load128(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void Store128(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

inline __m256i Broadcast(__m128i v) { return _mm256_broadcastsi128_si256(v); }

}  // namespace

void Shuffle4Row(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern);
  int32_t i = 0;
  if ((word & 0xfcfcfcfcu) == 0) {
    const __m128i mask = Shuffle4Mask(word);
    const __m256i mask2 = Broadcast(mask);
    for (; i + 16 <= width; i += 16) {
      const __m256i v0 = Load(src + 4 * i), v1 = Load(src + 4 * i + 32);
      Store(dst + 4 * i, _mm256_shuffle_epi8(v0, mask2));
      Store(dst + 4 * i + 32, _mm256_shuffle_epi8(v1, mask2));
    }
    if (i + 8 <= width) {
      Store(dst + 4 * i, _mm256_shuffle_epi8(Load(src + 4 * i), mask2));
      i += 8;
    }
    if (i + 4 <= width) {
      Store128(dst + 4 * i, _mm_shuffle_epi8(Load128(src + 4 * i), mask));
      i += 4;
    }
  }
  Shuffle4Row_c(src + 4 * i, dst + 4 * i, pattern, width - i);
}

void Rgb24ToBgraRow(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  int32_t i = 0;
  if (pattern.index[0] < 3 && pattern.index[1] < 3 && pattern.index[2] < 3) {
    const __m128i mask = Expand24Mask(PatternWord(pattern));
    const __m256i mask2 = Broadcast(mask);
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    // Word gathers putting pixels 0..3 of each 8 in the low lane, 4..7 in the
    // high one (pixel 4 starts at word 3); unused words are don't-cares.
    const __m256i gather0 = _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6);
    const __m256i gather1 = _mm256_setr_epi32(6, 7, 0, 1, 1, 2, 3, 4);
    const __m256i gather2 = _mm256_setr_epi32(4, 5, 6, 7, 7, 0, 1, 2);
    const __m256i gather3 = _mm256_setr_epi32(2, 3, 4, 5, 5, 6, 7, 0);
    for (; i + 32 <= width; i += 32) {
      const uint8_t* s = src + 3 * i;
      const __m256i a = Load(s), b = Load(s + 32), c = Load(s + 64);
      // Pixels 8..15 span a and b, 16..23 span b and c: blend the needed words in.
      const __m256i ab = _mm256_blend_epi32(a, b, 0x0f), bc = _mm256_blend_epi32(b, c, 0x03);
      uint8_t* d = bgra + 4 * i;
      Store(d, _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(a, gather0), mask2), alpha));
      Store(d + 32, _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(ab, gather1), mask2), alpha));
      Store(d + 64, _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(bc, gather2), mask2), alpha));
      Store(d + 96, _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(c, gather3), mask2), alpha));
    }
    // Eight pixels from a 32-byte load, whose last 8 bytes must be in the row.
    for (; i + 11 <= width; i += 8) {
      const __m256i v = _mm256_permutevar8x32_epi32(Load(src + 3 * i), gather0);
      Store(bgra + 4 * i, _mm256_or_si256(_mm256_shuffle_epi8(v, mask2), alpha));
    }
    for (; i + 6 <= width; i += 4) {
      const __m128i v = _mm_shuffle_epi8(Load128(src + 3 * i), mask);
      Store128(bgra + 4 * i, _mm_or_si128(v, _mm256_castsi256_si128(alpha)));
    }
  }
  Rgb24ToBgraRow_c(src + 3 * i, bgra + 4 * i, pattern, width - i);
}

void BgraToRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern);
  int32_t i = 0;
  if ((word & 0x00fcfcfcu) == 0) {
    const __m128i mask = Pack24Mask(word);
    const __m256i mask2 = Broadcast(mask);
    // After the shuffle a register of 8 pixels holds its 24 bytes in words
    // 0..2 and 4..6; vpermd moves them to their place in the output register
    // (don't-care words repeat others) and word blends join neighbours.
    const __m256i place0 = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0);
    const __m256i place1 = _mm256_setr_epi32(2, 4, 5, 6, 0, 0, 0, 1);
    const __m256i place2 = _mm256_setr_epi32(5, 6, 0, 0, 0, 1, 2, 4);
    const __m256i place3 = _mm256_setr_epi32(0, 0, 0, 1, 2, 4, 5, 6);
    for (; i + 32 <= width; i += 32) {
      const uint8_t* s = bgra + 4 * i;
      const __m256i a = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(s), mask2), place0);
      const __m256i b = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(s + 32), mask2), place1);
      const __m256i c = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(s + 64), mask2), place2);
      const __m256i d = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(s + 96), mask2), place3);
      uint8_t* o = dst + 3 * i;
      Store(o, _mm256_blend_epi32(a, b, 0xc0));
      Store(o + 32, _mm256_blend_epi32(b, c, 0xf0));
      Store(o + 64, _mm256_blend_epi32(c, d, 0xfc));
    }
    // Eight pixels: 24 bytes stored as 16 + 8.
    for (; i + 8 <= width; i += 8) {
      const __m256i p = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(bgra + 4 * i), mask2), place0);
      Store128(dst + 3 * i, _mm256_castsi256_si128(p));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 3 * i + 16), _mm256_extracti128_si256(p, 1));
    }
    // Four pixels: 12 bytes stored as 8 + 4.
    if (i + 4 <= width) {
      const __m128i p = _mm_shuffle_epi8(Load128(bgra + 4 * i), mask);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 3 * i), p);
      const uint32_t last = static_cast<uint32_t>(_mm_extract_epi32(p, 2));
      std::memcpy(dst + 3 * i + 8, &last, sizeof(last));
      i += 4;
    }
  }
  BgraToRgb24Row_c(bgra + 4 * i, dst + 3 * i, pattern, width - i);
}

void PlanesToBgraRow(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width) {
  const __m256i opaque = _mm256_set1_epi8(-1);
  // Words 0, 2, 4, 6 to the low lane, 1, 3, 5, 7 to the high one, so that the
  // in-lane unpacks below yield pixels in order: lane 0 of each result holds
  // 4 pixels and lane 1 the 4 after them.
  const __m256i spread = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const __m256i rs = _mm256_permutevar8x32_epi32(Load(r + i), spread);
    const __m256i gs = _mm256_permutevar8x32_epi32(Load(g + i), spread);
    const __m256i bs = _mm256_permutevar8x32_epi32(Load(b + i), spread);
    const __m256i bg0 = _mm256_unpacklo_epi8(bs, gs), bg1 = _mm256_unpackhi_epi8(bs, gs);
    const __m256i ra0 = _mm256_unpacklo_epi8(rs, opaque), ra1 = _mm256_unpackhi_epi8(rs, opaque);
    uint8_t* d = bgra + 4 * i;
    Store(d, _mm256_unpacklo_epi16(bg0, ra0));
    Store(d + 32, _mm256_unpackhi_epi16(bg0, ra0));
    Store(d + 64, _mm256_unpacklo_epi16(bg1, ra1));
    Store(d + 96, _mm256_unpackhi_epi16(bg1, ra1));
  }
  if (i + 16 <= width) {
    const __m128i rs = Load128(r + i), gs = Load128(g + i), bs = Load128(b + i);
    const __m128i a = _mm256_castsi256_si128(opaque);
    const __m128i bg0 = _mm_unpacklo_epi8(bs, gs), bg1 = _mm_unpackhi_epi8(bs, gs);
    const __m128i ra0 = _mm_unpacklo_epi8(rs, a), ra1 = _mm_unpackhi_epi8(rs, a);
    uint8_t* d = bgra + 4 * i;
    Store128(d, _mm_unpacklo_epi16(bg0, ra0));
    Store128(d + 16, _mm_unpackhi_epi16(bg0, ra0));
    Store128(d + 32, _mm_unpacklo_epi16(bg1, ra1));
    Store128(d + 48, _mm_unpackhi_epi16(bg1, ra1));
    i += 16;
  }
  PlanesToBgraRow_c(r + i, g + i, b + i, bgra + 4 * i, width - i);
}

void BgraToPlanesRow(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width) {
  // Per lane: B of its 4 pixels in word 0, G in word 1, R in word 2.
  const __m128i byChannel = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const __m256i byChannel2 = Broadcast(byChannel);
  // The unpacks leave a channel's 4-pixel words in the order 0, 2, 4, 6, 1,
  // 3, 5, 7 (lane 0 from the even groups); this gather restores 0..7.
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const uint8_t* s = bgra + 4 * i;
    const __m256i v0 = _mm256_shuffle_epi8(Load(s), byChannel2), v1 = _mm256_shuffle_epi8(Load(s + 32), byChannel2);
    const __m256i v2 = _mm256_shuffle_epi8(Load(s + 64), byChannel2),
                  v3 = _mm256_shuffle_epi8(Load(s + 96), byChannel2);
    const __m256i bg01 = _mm256_unpacklo_epi32(v0, v1), ra01 = _mm256_unpackhi_epi32(v0, v1);
    const __m256i bg23 = _mm256_unpacklo_epi32(v2, v3), ra23 = _mm256_unpackhi_epi32(v2, v3);
    Store(b + i, _mm256_permutevar8x32_epi32(_mm256_unpacklo_epi64(bg01, bg23), order));
    Store(g + i, _mm256_permutevar8x32_epi32(_mm256_unpackhi_epi64(bg01, bg23), order));
    Store(r + i, _mm256_permutevar8x32_epi32(_mm256_unpacklo_epi64(ra01, ra23), order));
  }
  if (i + 16 <= width) {
    const uint8_t* s = bgra + 4 * i;
    const __m128i v0 = _mm_shuffle_epi8(Load128(s), byChannel), v1 = _mm_shuffle_epi8(Load128(s + 16), byChannel);
    const __m128i v2 = _mm_shuffle_epi8(Load128(s + 32), byChannel), v3 = _mm_shuffle_epi8(Load128(s + 48), byChannel);
    const __m128i bg01 = _mm_unpacklo_epi32(v0, v1), ra01 = _mm_unpackhi_epi32(v0, v1);
    const __m128i bg23 = _mm_unpacklo_epi32(v2, v3), ra23 = _mm_unpackhi_epi32(v2, v3);
    Store128(b + i, _mm_unpacklo_epi64(bg01, bg23));
    Store128(g + i, _mm_unpackhi_epi64(bg01, bg23));
    Store128(r + i, _mm_unpacklo_epi64(ra01, ra23));
    i += 16;
  }
  BgraToPlanesRow_c(bgra + 4 * i, r + i, g + i, b + i, width - i);
}

}  // namespace Lumaforge::avx2
