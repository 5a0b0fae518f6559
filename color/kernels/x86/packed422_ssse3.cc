#include "color/kernels/x86/packed422_simd.h"

namespace Lumaforge::ssse3 {
namespace {

// Gathers each 16-byte group of four pairs into Y0 Y1 x4 | U x4 | V x4:
// pair offsets plus the in-pair positions (0..3, so no byte carries). Any
// in-pair layout works, so this mask is the whole layout dispatch.
void ShuffleSplitRow(const uint8_t* src, uint8_t* y, uint8_t* u, uint8_t* v, Packed422Layout layout, int32_t width) {
  using V = x86::Vec128;
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

}  // namespace

// Merging and averaging need no byte shuffle: their SSE2 builds stay.
void Install(Packed422Kernels* kernels) { kernels->packed422ToPlanesRow = ShuffleSplitRow; }

}  // namespace Lumaforge::ssse3
