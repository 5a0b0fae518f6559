// 128-bit packed 4:2:2 kernels, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built
// with that level's flags, so the same source becomes the SSE2, SSSE3,
// SSE4.2 and (VEX-encoded) AVX variants.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include "color/kernels/packed422.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

// The parity forms below serve the four pair layouts: permutations of 0..3
// with both lumas on one byte parity, y0 first. Any other layout goes to the
// plain routine, which defines the result for it.
enum class PairShape { kLumaEven, kLumaOdd, kOther };

[[gnu::always_inline]] inline PairShape ClassifyPair(const Packed422Layout& l) {
  const uint32_t all = static_cast<uint32_t>(l.y0 | l.u | l.y1 | l.v);
  if (all > 3u || ((1u << l.y0) | (1u << l.u) | (1u << l.y1) | (1u << l.v)) != 15u) return PairShape::kOther;
  if (l.y0 == 0 && l.y1 == 2) return PairShape::kLumaEven;
  if (l.y0 == 1 && l.y1 == 3) return PairShape::kLumaOdd;
  return PairShape::kOther;
}

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline __m128i Load8(const uint8_t* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }
inline void Store8(uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

#if defined(__SSSE3__)
// Gathers each 16-byte group of four pairs into Y0 Y1 x4 | U x4 | V x4:
// pair offsets plus the in-pair positions (0..3, so no byte carries). Any
// in-pair layout works, so this mask is the whole layout dispatch.
inline __m128i SplitMask(const Packed422Layout& l) {
  const int32_t lumaPair = (l.y0 | (l.y1 << 8)) * 0x10001;
  const __m128i positions = _mm_setr_epi32(lumaPair, lumaPair, l.u * 0x01010101, l.v * 0x01010101);
  return _mm_add_epi8(_mm_setr_epi8(0, 0, 4, 4, 8, 8, 12, 12, 0, 4, 8, 12, 0, 4, 8, 12), positions);
}

// Returns the pixels done (a multiple of 16).
[[gnu::always_inline]] inline int32_t SplitRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v,
                                               const Packed422Layout& layout, int32_t width) {
  const uint32_t all = static_cast<uint32_t>(layout.y0 | layout.u | layout.y1 | layout.v);
  if (all > 3u) return 0;
  const __m128i mask = SplitMask(layout);
  int32_t x = 0;
  for (; x + 32 <= width; x += 32) {
    const __m128i a = _mm_shuffle_epi8(Load(src + 2 * x), mask);
    const __m128i b = _mm_shuffle_epi8(Load(src + 2 * x + 16), mask);
    const __m128i c = _mm_shuffle_epi8(Load(src + 2 * x + 32), mask);
    const __m128i d = _mm_shuffle_epi8(Load(src + 2 * x + 48), mask);
    Store(y + x, _mm_unpacklo_epi64(a, b));
    Store(y + x + 16, _mm_unpacklo_epi64(c, d));
    // Ua Ub Va Vb and Uc Ud Vc Vd (dwords): the 64-bit unpacks finish the split.
    const __m128i abChroma = _mm_unpackhi_epi32(a, b);
    const __m128i cdChroma = _mm_unpackhi_epi32(c, d);
    Store(u + x / 2, _mm_unpacklo_epi64(abChroma, cdChroma));
    Store(v + x / 2, _mm_unpackhi_epi64(abChroma, cdChroma));
  }
  for (; x + 16 <= width; x += 16) {
    const __m128i a = _mm_shuffle_epi8(Load(src + 2 * x), mask);
    const __m128i b = _mm_shuffle_epi8(Load(src + 2 * x + 16), mask);
    Store(y + x, _mm_unpacklo_epi64(a, b));
    const __m128i chroma = _mm_unpackhi_epi32(a, b);
    Store8(u + x / 2, chroma);
    Store8(v + x / 2, _mm_unpackhi_epi64(chroma, chroma));
  }
  return x;
}
#else
// Luma bytes are the low (kLumaOdd false) or high halves of the 16-bit
// lanes, chroma the other halves: masking or shifting leaves 0..255 in each
// lane, so packus is an exact narrowing. c0 takes the first chroma byte of a
// pair, c1 the second.
template <bool kLumaOdd>
[[gnu::always_inline]] inline int32_t SplitParity(const uint8_t* src, uint8_t* y, uint8_t* c0, uint8_t* c1,
                                                  int32_t width) {
  const __m128i low = _mm_set1_epi16(0x00ff);
  auto luma = [&](__m128i s) { return kLumaOdd ? _mm_srli_epi16(s, 8) : _mm_and_si128(s, low); };
  auto chroma = [&](__m128i s) { return kLumaOdd ? _mm_and_si128(s, low) : _mm_srli_epi16(s, 8); };
  int32_t x = 0;
  for (; x + 32 <= width; x += 32) {
    const __m128i a = Load(src + 2 * x), b = Load(src + 2 * x + 16);
    const __m128i c = Load(src + 2 * x + 32), d = Load(src + 2 * x + 48);
    Store(y + x, _mm_packus_epi16(luma(a), luma(b)));
    Store(y + x + 16, _mm_packus_epi16(luma(c), luma(d)));
    const __m128i pairs0 = _mm_packus_epi16(chroma(a), chroma(b));
    const __m128i pairs1 = _mm_packus_epi16(chroma(c), chroma(d));
    Store(c0 + x / 2, _mm_packus_epi16(_mm_and_si128(pairs0, low), _mm_and_si128(pairs1, low)));
    Store(c1 + x / 2, _mm_packus_epi16(_mm_srli_epi16(pairs0, 8), _mm_srli_epi16(pairs1, 8)));
  }
  for (; x + 16 <= width; x += 16) {
    const __m128i a = Load(src + 2 * x), b = Load(src + 2 * x + 16);
    Store(y + x, _mm_packus_epi16(luma(a), luma(b)));
    const __m128i pairs = _mm_packus_epi16(chroma(a), chroma(b));
    const __m128i first = _mm_and_si128(pairs, low), second = _mm_srli_epi16(pairs, 8);
    Store8(c0 + x / 2, _mm_packus_epi16(first, first));
    Store8(c1 + x / 2, _mm_packus_epi16(second, second));
  }
  return x;
}

[[gnu::always_inline]] inline int32_t SplitRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v,
                                               const Packed422Layout& layout, int32_t width) {
  switch (ClassifyPair(layout)) {
    case PairShape::kLumaEven:
      return layout.u == 1 ? SplitParity<false>(src, y, u, v, width) : SplitParity<false>(src, y, v, u, width);
    case PairShape::kLumaOdd:
      return layout.u == 0 ? SplitParity<true>(src, y, u, v, width) : SplitParity<true>(src, y, v, u, width);
    default: return 0;
  }
}
#endif

// Interleaving the chroma rows and then luma with the chroma pairs yields
// every layout: which chroma row goes first, and whether luma is the even
// or odd byte, are the only differences between them. A shuffle-mask form
// would spend more shuffles for the same bytes.
template <bool kLumaOdd>
[[gnu::always_inline]] inline int32_t MergeParity(const uint8_t* y, const uint8_t* c0, const uint8_t* c1, uint8_t* dst,
                                                  int32_t width) {
  auto lo = [](__m128i luma, __m128i pairs) {
    return kLumaOdd ? _mm_unpacklo_epi8(pairs, luma) : _mm_unpacklo_epi8(luma, pairs);
  };
  auto hi = [](__m128i luma, __m128i pairs) {
    return kLumaOdd ? _mm_unpackhi_epi8(pairs, luma) : _mm_unpackhi_epi8(luma, pairs);
  };
  int32_t x = 0;
  for (; x + 32 <= width; x += 32) {
    const __m128i luma0 = Load(y + x), luma1 = Load(y + x + 16);
    const __m128i first = Load(c0 + x / 2), second = Load(c1 + x / 2);
    const __m128i pairs0 = _mm_unpacklo_epi8(first, second);
    const __m128i pairs1 = _mm_unpackhi_epi8(first, second);
    Store(dst + 2 * x, lo(luma0, pairs0));
    Store(dst + 2 * x + 16, hi(luma0, pairs0));
    Store(dst + 2 * x + 32, lo(luma1, pairs1));
    Store(dst + 2 * x + 48, hi(luma1, pairs1));
  }
  for (; x + 16 <= width; x += 16) {
    const __m128i luma = Load(y + x);
    const __m128i pairs = _mm_unpacklo_epi8(Load8(c0 + x / 2), Load8(c1 + x / 2));
    Store(dst + 2 * x, lo(luma, pairs));
    Store(dst + 2 * x + 16, hi(luma, pairs));
  }
  return x;
}

[[gnu::always_inline]] inline int32_t MergeRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                                               const Packed422Layout& layout, int32_t width) {
  switch (ClassifyPair(layout)) {
    case PairShape::kLumaEven:
      return layout.u == 1 ? MergeParity<false>(y, u, v, dst, width) : MergeParity<false>(y, v, u, dst, width);
    case PairShape::kLumaOdd:
      return layout.u == 0 ? MergeParity<true>(y, u, v, dst, width) : MergeParity<true>(y, v, u, dst, width);
    default: return 0;
  }
}

}  // namespace

void Packed422ToPlanesRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                          int32_t width) {
  const int32_t x = SplitRow(src, y, u, v, layout, width);
  // Skipping the empty plain call matters: these run once per row.
  if (x < width) Packed422ToPlanesRow_c(src + 2 * x, y + x, u + x / 2, v + x / 2, layout, width - x);
}

void PlanesToPacked422Row(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst, Packed422Layout layout,
                          int32_t width) {
  const int32_t x = MergeRow(y, u, v, dst, layout, width);
  if (x < width) PlanesToPacked422Row_c(y + x, u + x / 2, v + x / 2, dst + 2 * x, layout, width - x);
}

// pavgb computes (a + b + 1) >> 1 in nine bits, exactly the plain formula.
void AverageRows(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count) {
  int32_t i = 0;
  for (; i + 32 <= count; i += 32) {
    Store(dst + i, _mm_avg_epu8(Load(a + i), Load(b + i)));
    Store(dst + i + 16, _mm_avg_epu8(Load(a + i + 16), Load(b + i + 16)));
  }
  for (; i + 16 <= count; i += 16) Store(dst + i, _mm_avg_epu8(Load(a + i), Load(b + i)));
  if (i < count) AverageRows_c(a + i, b + i, dst + i, count - i);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
