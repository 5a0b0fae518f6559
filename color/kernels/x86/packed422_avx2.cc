// 256-bit packed 4:2:2 kernels. Same contracts as the 128-bit header; the
// vector bodies cover 64 pixels, then 16, then the plain routine finishes.
#include <immintrin.h>

#include "color/kernels/packed422.h"

namespace Lumaforge::avx2 {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
inline __m128i Load16(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store16(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void Store8(uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

// The four pair layouts have both lumas on one byte parity, y0 first, and
// the chroma bytes on the other; c0 is the chroma row of the first chroma
// byte. Masking or shifting a 16-bit lane leaves 0..255, so packus narrows
// exactly. (A pshufb gather measured slower here than these in-lane packs.)
template <bool kLumaOdd>
[[gnu::always_inline]] inline int32_t SplitParity(const uint8_t* src, uint8_t* y, uint8_t* c0, uint8_t* c1,
                                                  int32_t width) {
  const __m256i low = _mm256_set1_epi16(0x00ff);
  auto luma = [&](__m256i s) { return kLumaOdd ? _mm256_srli_epi16(s, 8) : _mm256_and_si256(s, low); };
  auto chroma = [&](__m256i s) { return kLumaOdd ? _mm256_and_si256(s, low) : _mm256_srli_epi16(s, 8); };
  // packus interleaves 64-bit runs of its two sources lane by lane; after
  // two rounds the 4-byte chroma runs sit in order 0 2 4 6 | 1 3 5 7.
  const __m256i chromaOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  int32_t x = 0;
  for (; x + 64 <= width; x += 64) {
    const uint8_t* s = src + 2 * x;
    const __m256i a = Load(s), b = Load(s + 32), c = Load(s + 64), d = Load(s + 96);
    Store(y + x, _mm256_permute4x64_epi64(_mm256_packus_epi16(luma(a), luma(b)), 0xD8));
    Store(y + x + 32, _mm256_permute4x64_epi64(_mm256_packus_epi16(luma(c), luma(d)), 0xD8));
    const __m256i pairs0 = _mm256_packus_epi16(chroma(a), chroma(b));
    const __m256i pairs1 = _mm256_packus_epi16(chroma(c), chroma(d));
    const __m256i first = _mm256_packus_epi16(_mm256_and_si256(pairs0, low), _mm256_and_si256(pairs1, low));
    const __m256i second = _mm256_packus_epi16(_mm256_srli_epi16(pairs0, 8), _mm256_srli_epi16(pairs1, 8));
    Store(c0 + x / 2, _mm256_permutevar8x32_epi32(first, chromaOrder));
    Store(c1 + x / 2, _mm256_permutevar8x32_epi32(second, chromaOrder));
  }
  const __m128i low128 = _mm256_castsi256_si128(low);
  for (; x + 16 <= width; x += 16) {
    const __m128i a = Load16(src + 2 * x), b = Load16(src + 2 * x + 16);
    const __m128i lumaA = kLumaOdd ? _mm_srli_epi16(a, 8) : _mm_and_si128(a, low128);
    const __m128i lumaB = kLumaOdd ? _mm_srli_epi16(b, 8) : _mm_and_si128(b, low128);
    const __m128i chromaA = kLumaOdd ? _mm_and_si128(a, low128) : _mm_srli_epi16(a, 8);
    const __m128i chromaB = kLumaOdd ? _mm_and_si128(b, low128) : _mm_srli_epi16(b, 8);
    Store16(y + x, _mm_packus_epi16(lumaA, lumaB));
    const __m128i pairs = _mm_packus_epi16(chromaA, chromaB);
    const __m128i first = _mm_and_si128(pairs, low128), second = _mm_srli_epi16(pairs, 8);
    Store8(c0 + x / 2, _mm_packus_epi16(first, first));
    Store8(c1 + x / 2, _mm_packus_epi16(second, second));
  }
  return x;
}

// Which of the layout forms a layout is; kOther goes to the plain routine.
enum class PairShape { kLumaEven, kLumaOdd, kOther };

[[gnu::always_inline]] inline PairShape ClassifyPair(const Packed422Layout& l) {
  const uint32_t all = static_cast<uint32_t>(l.y0 | l.u | l.y1 | l.v);
  if (all > 3u || ((1u << l.y0) | (1u << l.u) | (1u << l.y1) | (1u << l.v)) != 15u) return PairShape::kOther;
  if (l.y0 == 0 && l.y1 == 2) return PairShape::kLumaEven;
  if (l.y0 == 1 && l.y1 == 3) return PairShape::kLumaOdd;
  return PairShape::kOther;
}

// Returns the pixels done (a multiple of 16).
[[gnu::always_inline]] inline int32_t SplitRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v,
                                               const Packed422Layout& l, int32_t width) {
  switch (ClassifyPair(l)) {
    case PairShape::kLumaEven:
      return l.u == 1 ? SplitParity<false>(src, y, u, v, width) : SplitParity<false>(src, y, v, u, width);
    case PairShape::kLumaOdd:
      return l.u == 0 ? SplitParity<true>(src, y, u, v, width) : SplitParity<true>(src, y, v, u, width);
    default: return 0;
  }
}

// Interleaving the chroma rows and then luma with the chroma pairs yields
// every layout, as in the 128-bit form. kShifted is for a destination 16
// bytes past a 32-byte boundary (common with 16-byte aligned pictures): its
// stores are arranged to stay aligned instead of splitting cache lines.
template <bool kLumaOdd, bool kShifted>
[[gnu::always_inline]] inline int32_t MergeParity(const uint8_t* y, const uint8_t* c0, const uint8_t* c1, uint8_t* dst,
                                                  int32_t width) {
  auto lo = [](__m256i luma, __m256i pairs) {
    return kLumaOdd ? _mm256_unpacklo_epi8(pairs, luma) : _mm256_unpacklo_epi8(luma, pairs);
  };
  auto hi = [](__m256i luma, __m256i pairs) {
    return kLumaOdd ? _mm256_unpackhi_epi8(pairs, luma) : _mm256_unpackhi_epi8(luma, pairs);
  };
  int32_t x = 0;
  if (kShifted) {
    for (; x + 64 <= width; x += 64) {
      // Chroma qwords 0 2 | 1 3: the pairs of pixels 0..15 | 16..31 and
      // 32..47 | 48..63, lined up with the luma lanes.
      const __m256i first = _mm256_permute4x64_epi64(Load(c0 + x / 2), 0xD8);
      const __m256i second = _mm256_permute4x64_epi64(Load(c1 + x / 2), 0xD8);
      const __m256i pairs0 = _mm256_unpacklo_epi8(first, second);
      const __m256i pairs1 = _mm256_unpackhi_epi8(first, second);
      const __m256i luma0 = Load(y + x), luma1 = Load(y + x + 32);
      // 8-pixel runs 0 2 | 1 3 | 4 6 | 5 7: a 16-byte head, three aligned
      // 32-byte stores stitched from neighbouring halves, a 16-byte tail.
      const __m256i out0 = lo(luma0, pairs0), out1 = hi(luma0, pairs0);
      const __m256i out2 = lo(luma1, pairs1), out3 = hi(luma1, pairs1);
      uint8_t* d = dst + 2 * x;
      Store16(d, _mm256_castsi256_si128(out0));
      Store(d + 16, _mm256_blend_epi32(out1, out0, 0xF0));
      Store(d + 48, _mm256_permute2x128_si256(out1, out2, 0x21));
      Store(d + 80, _mm256_blend_epi32(out3, out2, 0xF0));
      Store16(d + 112, _mm256_extracti128_si256(out3, 1));
    }
  } else {
    // Chroma dwords (4 samples = 8 pixels) 0 2 4 6 | 1 3 5 7, and luma qwords
    // 0 2 | 1 3: then the in-lane unpacks emit whole 32-byte runs in order.
    const __m256i chromaOrder = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
    for (; x + 64 <= width; x += 64) {
      const __m256i first = _mm256_permutevar8x32_epi32(Load(c0 + x / 2), chromaOrder);
      const __m256i second = _mm256_permutevar8x32_epi32(Load(c1 + x / 2), chromaOrder);
      const __m256i pairs0 = _mm256_unpacklo_epi8(first, second);
      const __m256i pairs1 = _mm256_unpackhi_epi8(first, second);
      const __m256i luma0 = _mm256_permute4x64_epi64(Load(y + x), 0xD8);
      const __m256i luma1 = _mm256_permute4x64_epi64(Load(y + x + 32), 0xD8);
      Store(dst + 2 * x, lo(luma0, pairs0));
      Store(dst + 2 * x + 32, hi(luma0, pairs0));
      Store(dst + 2 * x + 64, lo(luma1, pairs1));
      Store(dst + 2 * x + 96, hi(luma1, pairs1));
    }
  }
  for (; x + 16 <= width; x += 16) {
    const __m128i luma = Load16(y + x);
    const __m128i pairs = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(c0 + x / 2)),
                                            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(c1 + x / 2)));
    Store16(dst + 2 * x, kLumaOdd ? _mm_unpacklo_epi8(pairs, luma) : _mm_unpacklo_epi8(luma, pairs));
    Store16(dst + 2 * x + 16, kLumaOdd ? _mm_unpackhi_epi8(pairs, luma) : _mm_unpackhi_epi8(luma, pairs));
  }
  return x;
}

template <bool kLumaOdd>
[[gnu::always_inline]] inline int32_t MergeStores(const uint8_t* y, const uint8_t* c0, const uint8_t* c1, uint8_t* dst,
                                                  int32_t width) {
  const bool shifted = (reinterpret_cast<uintptr_t>(dst) & 31u) == 16u;
  return shifted ? MergeParity<kLumaOdd, true>(y, c0, c1, dst, width)
                 : MergeParity<kLumaOdd, false>(y, c0, c1, dst, width);
}

[[gnu::always_inline]] inline int32_t MergeRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                                               const Packed422Layout& l, int32_t width) {
  switch (ClassifyPair(l)) {
    case PairShape::kLumaEven:
      return l.u == 1 ? MergeStores<false>(y, u, v, dst, width) : MergeStores<false>(y, v, u, dst, width);
    case PairShape::kLumaOdd:
      return l.u == 0 ? MergeStores<true>(y, u, v, dst, width) : MergeStores<true>(y, v, u, dst, width);
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
  for (; i + 64 <= count; i += 64) {
    Store(dst + i, _mm256_avg_epu8(Load(a + i), Load(b + i)));
    Store(dst + i + 32, _mm256_avg_epu8(Load(a + i + 32), Load(b + i + 32)));
  }
  if (i + 32 <= count) {
    Store(dst + i, _mm256_avg_epu8(Load(a + i), Load(b + i)));
    i += 32;
  }
  if (i + 16 <= count) {
    Store16(dst + i, _mm_avg_epu8(Load16(a + i), Load16(b + i)));
    i += 16;
  }
  if (i < count) AverageRows_c(a + i, b + i, dst + i, count - i);
}

}  // namespace Lumaforge::avx2
