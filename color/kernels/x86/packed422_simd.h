// Packed 4:2:2 kernels over a vector-width trait.
//
// The parity forms serve the four pair layouts: luma bytes are the low or
// the high halves of the 16-bit lanes, chroma the other halves, so masks,
// shifts and packs split a row and byte unpacks merge one. Pack and unpack
// work within 128-bit lanes; at 256 bits the inputs or outputs are regrouped
// by 32- or 64-bit words once (identity at 128 bits).
#include <immintrin.h>

#include "color/kernels/packed422.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

enum class PairShape { kLumaEven, kLumaOdd, kOther };

inline PairShape ClassifyPair(const Packed422Layout& l) {
  const uint32_t all = static_cast<uint32_t>(l.y0 | l.u | l.y1 | l.v);
  if (all > 3u || ((1u << l.y0) | (1u << l.u) | (1u << l.y1) | (1u << l.v)) != 15u) return PairShape::kOther;
  if (l.y0 == 0 && l.y1 == 2) return PairShape::kLumaEven;
  if (l.y0 == 1 && l.y1 == 3) return PairShape::kLumaOdd;
  return PairShape::kOther;
}

inline __m128i Average8(__m128i a, __m128i b) { return _mm_avg_epu8(a, b); }
// 64-bit words 0, 2 to the low lane and 1, 3 to the high one.
inline __m128i SpreadQuads(__m128i v) { return v; }
#if defined(__SSSE3__)
// Gathers each 16-byte group of four pairs into Y0 Y1 x4 | U x4 | V x4:
// pair offsets plus the in-pair positions (0..3, so no byte carries). Any
// in-pair layout works, so this mask is the whole layout dispatch.
inline void ShuffleSplitRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                            int32_t width) {
  using V = Vec128;
  const uint32_t all = static_cast<uint32_t>(layout.y0 | layout.u | layout.y1 | layout.v);
  if (all > 3u) return Packed422ToPlanesRow_c(src, y, u, v, layout, width);
  const int32_t lumaPair = (layout.y0 | (layout.y1 << 8)) * 0x10001;
  const __m128i mask = _mm_add_epi8(_mm_setr_epi8(0, 0, 4, 4, 8, 8, 12, 12, 0, 4, 8, 12, 0, 4, 8, 12),
                                    _mm_setr_epi32(lumaPair, lumaPair, layout.u * 0x01010101, layout.v * 0x01010101));
  ForEachStep<32>(
      width,
      [&](int32_t x) {
        const uint8_t* s = src + 2 * x;
        const __m128i a = _mm_shuffle_epi8(V::Load(s), mask), b = _mm_shuffle_epi8(V::Load(s + 16), mask);
        const __m128i c = _mm_shuffle_epi8(V::Load(s + 32), mask), d = _mm_shuffle_epi8(V::Load(s + 48), mask);
        V::Store(y + x, _mm_unpacklo_epi64(a, b));
        V::Store(y + x + 16, _mm_unpacklo_epi64(c, d));
        // Ua Ub Va Vb and Uc Ud Vc Vd (dwords): the 64-bit unpacks finish the split.
        const __m128i abChroma = _mm_unpackhi_epi32(a, b), cdChroma = _mm_unpackhi_epi32(c, d);
        V::Store(u + x / 2, _mm_unpacklo_epi64(abChroma, cdChroma));
        V::Store(v + x / 2, _mm_unpackhi_epi64(abChroma, cdChroma));
      },
      [&](int32_t x) { Packed422ToPlanesRow_c(src + 2 * x, y + x, u + x / 2, v + x / 2, layout, width - x); });
}

#endif

#if defined(__AVX2__)
inline __m256i Average8(__m256i a, __m256i b) { return _mm256_avg_epu8(a, b); }
inline __m256i SpreadQuads(__m256i v) { return _mm256_permute4x64_epi64(v, 0xD8); }
#endif

// The chroma row of the first chroma byte of a pair, and of the second.
template <typename Byte>
inline void ChromaOrder(const Packed422Layout& layout, Byte* u, Byte* v, Byte** c0, Byte** c1) {
  *c0 = layout.u < layout.v ? u : v;
  *c1 = layout.u < layout.v ? v : u;
}

// Masking or shifting a 16-bit lane leaves 0..255, so packus narrows
// exactly. The first packs leave the chroma pairs as 16-bit lanes, the
// second ones part them; at 256 bits those two rounds leave the 4-byte
// chroma runs in the order 0 2 4 6 | 1 3 5 7.
template <typename T, bool kLumaOdd>
void SplitParity(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout, int32_t width) {
  using V = typename T::V;
  constexpr int32_t k = T::kBytes;
  uint8_t *c0, *c1;
  ChromaOrder(layout, u, v, &c0, &c1);
  const V low = T::Set1Epi16(0x00ff);
  auto luma = [&](V s) { return kLumaOdd ? T::template ShiftRight16<8>(s) : T::And(s, low); };
  auto chroma = [&](V s) { return kLumaOdd ? T::And(s, low) : T::template ShiftRight16<8>(s); };
  ForEachStep<2 * k>(
      width,
      [&](int32_t x) {
        const uint8_t* s = src + 2 * x;
        const V a = T::Load(s), b = T::Load(s + k), c = T::Load(s + 2 * k), d = T::Load(s + 3 * k);
        T::Store(y + x, T::PackUs16(luma(a), luma(b)));
        T::Store(y + x + k, T::PackUs16(luma(c), luma(d)));
        const V pairs0 = T::PackUs16Lanes(chroma(a), chroma(b)), pairs1 = T::PackUs16Lanes(chroma(c), chroma(d));
        T::Store(c0 + x / 2, GatherWords(T::PackUs16Lanes(T::And(pairs0, low), T::And(pairs1, low))));
        T::Store(c1 + x / 2, GatherWords(T::PackUs16Lanes(T::template ShiftRight16<8>(pairs0),
                                                          T::template ShiftRight16<8>(pairs1))));
      },
      [&](int32_t x) { Packed422ToPlanesRow_c(src + 2 * x, y + x, u + x / 2, v + x / 2, layout, width - x); });
}

template <typename T>
void Packed422ToPlanesRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout,
                          int32_t width) {
  switch (ClassifyPair(layout)) {
    case PairShape::kLumaEven: return SplitParity<T, false>(src, y, u, v, layout, width);
    case PairShape::kLumaOdd: return SplitParity<T, true>(src, y, u, v, layout, width);
    default: return Packed422ToPlanesRow_c(src, y, u, v, layout, width);
  }
}

// Interleaving the chroma rows and then luma with the chroma pairs yields
// every layout: which chroma row goes first, and whether luma is the even
// or odd byte, are the only differences between them. At 256 bits chroma
// words 0 2 4 6 | 1 3 5 7 and luma quads 0 2 | 1 3 make the in-lane unpacks
// emit whole vectors in order.
template <typename T, bool kLumaOdd>
void MergeParity(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst, Packed422Layout layout,
                 int32_t width) {
  using V = typename T::V;
  constexpr int32_t k = T::kBytes;
  const uint8_t *c0, *c1;
  ChromaOrder(layout, u, v, &c0, &c1);
  auto lo = [](V luma, V pairs) { return kLumaOdd ? T::UnpackLow8(pairs, luma) : T::UnpackLow8(luma, pairs); };
  auto hi = [](V luma, V pairs) { return kLumaOdd ? T::UnpackHigh8(pairs, luma) : T::UnpackHigh8(luma, pairs); };
  ForEachStep<2 * k>(
      width,
      [&](int32_t x) {
        const V first = SpreadWords(T::Load(c0 + x / 2)), second = SpreadWords(T::Load(c1 + x / 2));
        const V pairs0 = T::UnpackLow8(first, second), pairs1 = T::UnpackHigh8(first, second);
        const V luma0 = SpreadQuads(T::Load(y + x)), luma1 = SpreadQuads(T::Load(y + x + k));
        uint8_t* d = dst + 2 * x;
        T::Store(d, lo(luma0, pairs0));
        T::Store(d + k, hi(luma0, pairs0));
        T::Store(d + 2 * k, lo(luma1, pairs1));
        T::Store(d + 3 * k, hi(luma1, pairs1));
      },
      [&](int32_t x) { PlanesToPacked422Row_c(y + x, u + x / 2, v + x / 2, dst + 2 * x, layout, width - x); });
}

template <typename T>
void PlanesToPacked422Row(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* dst, Packed422Layout layout,
                          int32_t width) {
  switch (ClassifyPair(layout)) {
    case PairShape::kLumaEven: return MergeParity<T, false>(y, u, v, dst, layout, width);
    case PairShape::kLumaOdd: return MergeParity<T, true>(y, u, v, dst, layout, width);
    default: return PlanesToPacked422Row_c(y, u, v, dst, layout, width);
  }
}

// pavgb computes (a + b + 1) >> 1 in nine bits, exactly the plain formula.
template <typename T>
void AverageRows(const uint8_t* a, const uint8_t* b, uint8_t* dst, int32_t count) {
  // Two vectors a step: the loop is short enough for its overhead to show.
  ForEachStep<2 * T::kBytes>(
      count,
      [&](int32_t i) {
        const typename T::V v0 = Average8(T::Load(a + i), T::Load(b + i));
        const typename T::V v1 = Average8(T::Load(a + i + T::kBytes), T::Load(b + i + T::kBytes));
        T::Store(dst + i, v0);
        T::Store(dst + i + T::kBytes, v1);
      },
      [&](int32_t i) { AverageRows_c(a + i, b + i, dst + i, count - i); });
}

}  // namespace
}  // namespace Lumaforge::x86
