// RGB packing over a vector-width trait. From SSSE3 on every pattern runs
// through pshufb masks built from the pattern once per call; pshufb works
// within 128-bit lanes, so a 256-bit mask is the 128-bit one in both lanes.
//
// The shuffle and the planar kernels are one body for both widths: where
// 256-bit unpacks would mix the lanes, the inputs or outputs are regrouped
// by 32-bit words once (identity at 128 bits). The 24-bit kernels need
// different word moves per width, so each width has its own step.
#include <immintrin.h>

#include <cstring>

#include "color/kernels/rgb_pack.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

// The pattern as a little-endian word: byte k is index[k].
inline uint32_t PatternWord(BytePattern pattern) {
  uint32_t word;
  std::memcpy(&word, pattern.index, sizeof(word));
  return word;
}

// index[0..3] name bytes of a 4-byte pixel.
inline bool Fits32(BytePattern p) { return (PatternWord(p) & 0xfcfcfcfcu) == 0; }
// index[0..2] name bytes of a 3-byte pixel.
inline bool Fits24(BytePattern p) { return p.index[0] < 3 && p.index[1] < 3 && p.index[2] < 3; }
// index[0..2] name bytes of a 4-byte pixel.
inline bool Fits24Of32(BytePattern p) { return (PatternWord(p) & 0x00fcfcfcu) == 0; }

template <typename T>
void PlanesToBgraRow(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* bgra, int32_t width) {
  using V = typename T::V;
  const V opaque = T::Set1Epi16(-1);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const V rs = SpreadWords(T::Load(r + i)), gs = SpreadWords(T::Load(g + i)), bs = SpreadWords(T::Load(b + i));
        const V bg0 = T::UnpackLow8(bs, gs), bg1 = T::UnpackHigh8(bs, gs);
        const V ra0 = T::UnpackLow8(rs, opaque), ra1 = T::UnpackHigh8(rs, opaque);
        uint8_t* d = bgra + 4 * i;
        T::Store(d, UnpackLow16(bg0, ra0));
        T::Store(d + T::kBytes, UnpackHigh16(bg0, ra0));
        T::Store(d + 2 * T::kBytes, UnpackLow16(bg1, ra1));
        T::Store(d + 3 * T::kBytes, UnpackHigh16(bg1, ra1));
      },
      [&](int32_t i) { PlanesToBgraRow_c(r + i, g + i, b + i, bgra + 4 * i, width - i); });
}

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

template <typename T>
void Shuffle4Row(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  if (!Fits32(pattern)) return Shuffle4Row_c(src, dst, pattern, width);
  const typename T::V mask = Lanes<T>(Shuffle4Mask(PatternWord(pattern)));
  // Four vectors a step: the loop is short enough for its overhead to show.
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const uint8_t* s = src + 4 * i;
        uint8_t* d = dst + 4 * i;
        const typename T::V v0 = T::Load(s), v1 = T::Load(s + T::kBytes);
        const typename T::V v2 = T::Load(s + 2 * T::kBytes), v3 = T::Load(s + 3 * T::kBytes);
        T::Store(d, ShuffleBytes(v0, mask));
        T::Store(d + T::kBytes, ShuffleBytes(v1, mask));
        T::Store(d + 2 * T::kBytes, ShuffleBytes(v2, mask));
        T::Store(d + 3 * T::kBytes, ShuffleBytes(v3, mask));
      },
      [&](int32_t i) { Shuffle4Row_c(src + 4 * i, dst + 4 * i, pattern, width - i); });
}

template <typename T>
void BgraToPlanesRow(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width) {
  using V = typename T::V;
  // Per lane: B of its 4 pixels in word 0, G in word 1, R in word 2.
  const V byChannel = Lanes<T>(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const uint8_t* s = bgra + 4 * i;
        const V v0 = ShuffleBytes(T::Load(s), byChannel), v1 = ShuffleBytes(T::Load(s + T::kBytes), byChannel);
        const V v2 = ShuffleBytes(T::Load(s + 2 * T::kBytes), byChannel);
        const V v3 = ShuffleBytes(T::Load(s + 3 * T::kBytes), byChannel);
        const V bg01 = UnpackLow32(v0, v1), ra01 = UnpackHigh32(v0, v1);
        const V bg23 = UnpackLow32(v2, v3), ra23 = UnpackHigh32(v2, v3);
        T::Store(b + i, GatherWords(UnpackLow64(bg01, bg23)));
        T::Store(g + i, GatherWords(UnpackHigh64(bg01, bg23)));
        T::Store(r + i, GatherWords(UnpackLow64(ra01, ra23)));
      },
      [&](int32_t i) { BgraToPlanesRow_c(bgra + 4 * i, r + i, g + i, b + i, width - i); });
}

// One step of Rgb24ToBgraRow: kBytes pixels from 3 kBytes input bytes.
template <typename T>
struct ExpandRgb24;

template <>
struct ExpandRgb24<Vec128> {
  explicit ExpandRgb24(uint32_t word) : mask(Expand24Mask(word)) {}
  void operator()(const uint8_t* s, uint8_t* d) const {
    const __m128i alpha = _mm_set1_epi32(static_cast<int>(0xff000000u));
    const __m128i a = Vec128::Load(s), b = Vec128::Load(s + 16), c = Vec128::Load(s + 32);
    // Realign so that each register starts at a pixel: 0, 4, 8, 12.
    const __m128i p1 = _mm_alignr_epi8(b, a, 12), p2 = _mm_alignr_epi8(c, b, 8), p3 = _mm_srli_si128(c, 4);
    Vec128::Store(d, _mm_or_si128(_mm_shuffle_epi8(a, mask), alpha));
    Vec128::Store(d + 16, _mm_or_si128(_mm_shuffle_epi8(p1, mask), alpha));
    Vec128::Store(d + 32, _mm_or_si128(_mm_shuffle_epi8(p2, mask), alpha));
    Vec128::Store(d + 48, _mm_or_si128(_mm_shuffle_epi8(p3, mask), alpha));
  }
  __m128i mask;
};

// One step of BgraToRgb24Row: kBytes pixels to 3 kBytes output bytes.
template <typename T>
struct PackRgb24;

// Each output register is the OR of two shuffles, each zeroing the bytes
// the other one fills (a mask byte with its high bit set yields 0).
template <>
struct PackRgb24<Vec128> {
  explicit PackRgb24(uint32_t word) : packA(Pack24Mask(word)) {
    const __m128i lowHalf = _mm_set_epi64x(0, static_cast<int64_t>(0x8080808080808080u));
    const __m128i highHalf = _mm_slli_si128(lowHalf, 8);
    packB0 = _mm_or_si128(_mm_slli_si128(packA, 12), _mm_or_si128(lowHalf, _mm_srli_si128(highHalf, 4)));
    packB1 = _mm_or_si128(_mm_srli_si128(packA, 4), highHalf);
    packC0 = _mm_or_si128(_mm_slli_si128(packA, 8), lowHalf);
    packC1 = _mm_or_si128(_mm_srli_si128(packA, 8), highHalf);
    packD = _mm_or_si128(_mm_slli_si128(packA, 4), _mm_cvtsi32_si128(static_cast<int>(0x80808080u)));
  }
  void operator()(const uint8_t* s, uint8_t* o) const {
    const __m128i a = Vec128::Load(s), b = Vec128::Load(s + 16), c = Vec128::Load(s + 32), d = Vec128::Load(s + 48);
    Vec128::Store(o, _mm_or_si128(_mm_shuffle_epi8(a, packA), _mm_shuffle_epi8(b, packB0)));
    Vec128::Store(o + 16, _mm_or_si128(_mm_shuffle_epi8(b, packB1), _mm_shuffle_epi8(c, packC0)));
    Vec128::Store(o + 32, _mm_or_si128(_mm_shuffle_epi8(c, packC1), _mm_shuffle_epi8(d, packD)));
  }
  __m128i packA, packB0, packB1, packC0, packC1, packD;
};

#if defined(__AVX2__)
// vpermd moves whole 32-bit words across the lanes before the in-lane
// shuffle: word gathers put pixels 0..3 of each 8 in the low lane, 4..7 in
// the high one (pixel 4 starts at word 3); unused words are don't-cares.
template <>
struct ExpandRgb24<Vec256> {
  explicit ExpandRgb24(uint32_t word) : mask(_mm256_broadcastsi128_si256(Expand24Mask(word))) {}
  __m256i Expand(__m256i v, __m256i gather) const {
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(0xff000000u));
    return _mm256_or_si256(_mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(v, gather), mask), alpha);
  }
  void operator()(const uint8_t* s, uint8_t* d) const {
    const __m256i a = Vec256::Load(s), b = Vec256::Load(s + 32), c = Vec256::Load(s + 64);
    // Pixels 8..15 span a and b, 16..23 span b and c: blend the needed words in.
    const __m256i ab = _mm256_blend_epi32(a, b, 0x0f), bc = _mm256_blend_epi32(b, c, 0x03);
    // The outer vectors are formed and stored before the middle ones: this
    // order measured a few percent faster than the plain one.
    const __m256i first = Expand(a, _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6));
    const __m256i last = Expand(c, _mm256_setr_epi32(2, 3, 4, 5, 5, 6, 7, 0));
    Vec256::Store(d + 96, last);
    Vec256::Store(d, first);
    Vec256::Store(d + 32, Expand(ab, _mm256_setr_epi32(6, 7, 0, 1, 1, 2, 3, 4)));
    Vec256::Store(d + 64, Expand(bc, _mm256_setr_epi32(4, 5, 6, 7, 7, 0, 1, 2)));
  }
  __m256i mask;
};

// After the in-lane shuffle a register of 8 pixels holds its 24 bytes in
// words 0..2 and 4..6; vpermd moves them to their place in the output
// register (don't-care words repeat others) and word blends join neighbours.
template <>
struct PackRgb24<Vec256> {
  explicit PackRgb24(uint32_t word) : mask(_mm256_broadcastsi128_si256(Pack24Mask(word))) {}
  __m256i Pack(const uint8_t* s, __m256i place) const {
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Vec256::Load(s), mask), place);
  }
  void operator()(const uint8_t* s, uint8_t* o) const {
    const __m256i a = Pack(s, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
    const __m256i b = Pack(s + 32, _mm256_setr_epi32(2, 4, 5, 6, 0, 0, 0, 1));
    const __m256i c = Pack(s + 64, _mm256_setr_epi32(5, 6, 0, 0, 0, 1, 2, 4));
    const __m256i d = Pack(s + 96, _mm256_setr_epi32(0, 0, 0, 1, 2, 4, 5, 6));
    Vec256::Store(o, _mm256_blend_epi32(a, b, 0xc0));
    Vec256::Store(o + 32, _mm256_blend_epi32(b, c, 0xf0));
    Vec256::Store(o + 64, _mm256_blend_epi32(c, d, 0xfc));
  }
  __m256i mask;
};
#endif

template <typename T>
void Rgb24ToBgraRow(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  if (!Fits24(pattern)) return Rgb24ToBgraRow_c(src, bgra, pattern, width);
  const ExpandRgb24<T> expand(PatternWord(pattern));
  ForEachStep<T::kBytes>(
      width, [&](int32_t i) { expand(src + 3 * i, bgra + 4 * i); },
      [&](int32_t i) { Rgb24ToBgraRow_c(src + 3 * i, bgra + 4 * i, pattern, width - i); });
}

template <typename T>
void BgraToRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  if (!Fits24Of32(pattern)) return BgraToRgb24Row_c(bgra, dst, pattern, width);
  const PackRgb24<T> pack(PatternWord(pattern));
  ForEachStep<T::kBytes>(
      width, [&](int32_t i) { pack(bgra + 4 * i, dst + 3 * i); },
      [&](int32_t i) { BgraToRgb24Row_c(bgra + 4 * i, dst + 3 * i, pattern, width - i); });
}

#endif  // __SSSE3__

}  // namespace
}  // namespace Lumaforge::x86
