// SSE2 has no byte multiply-add: the products come from zero-extended words.
#include "color/kernels/x86/yuv_to_rgb_simd.h"

namespace Lumaforge::sse2 {
namespace {

// Chroma terms are formed once per sample and then doubled. The luma offset
// -1184 is folded into them: B gets 129u - 16512 - 1184, G subtracts
// 25u + 52v - 9856 + 1184, R gets 102v - 13056 - 1184; each result fits
// int16 (u * 129 alone may wrap, but the wrap cancels in the sum).
void I422ToBgraRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width) {
  const __m128i zero = _mm_setzero_si128();
  ForEachStep<16>(
      width,
      [&](int32_t x) {
        const __m128i ys = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x));
        const __m128i lumaLo = _mm_mullo_epi16(_mm_unpacklo_epi8(ys, zero), _mm_set1_epi16(74));
        const __m128i lumaHi = _mm_mullo_epi16(_mm_unpackhi_epi8(ys, zero), _mm_set1_epi16(74));
        const __m128i us = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(u + x / 2)), zero);
        const __m128i vs = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(v + x / 2)), zero);
        const __m128i cb = _mm_add_epi16(_mm_mullo_epi16(us, _mm_set1_epi16(129)), _mm_set1_epi16(-17696));
        const __m128i cg = _mm_add_epi16(
            _mm_add_epi16(_mm_mullo_epi16(us, _mm_set1_epi16(25)), _mm_mullo_epi16(vs, _mm_set1_epi16(52))),
            _mm_set1_epi16(-8672));
        const __m128i cr = _mm_add_epi16(_mm_mullo_epi16(vs, _mm_set1_epi16(102)), _mm_set1_epi16(-14240));
        x86::StoreBgra<x86::Vec128>(
            _mm_adds_epi16(lumaLo, _mm_unpacklo_epi16(cb, cb)), _mm_adds_epi16(lumaHi, _mm_unpackhi_epi16(cb, cb)),
            _mm_sub_epi16(lumaLo, _mm_unpacklo_epi16(cg, cg)), _mm_sub_epi16(lumaHi, _mm_unpackhi_epi16(cg, cg)),
            _mm_add_epi16(lumaLo, _mm_unpacklo_epi16(cr, cr)), _mm_add_epi16(lumaHi, _mm_unpackhi_epi16(cr, cr)),
            bgra + 4 * x);
      },
      [&](int32_t x) { I422ToBgraRow_c(y + x, u + x / 2, v + x / 2, bgra + 4 * x, width - x); });
}

}  // namespace

void Install(YuvToRgbKernels* kernels) { kernels->i422ToBgraRow = I422ToBgraRow; }

}  // namespace Lumaforge::sse2
