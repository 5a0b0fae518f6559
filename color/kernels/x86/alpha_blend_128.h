// 128-bit alpha blending, compiled once per 128-bit level (the including
// file defines LUMAFORGE_SIMD_LEVEL). in * (256 - a) + old * a <= 255 * 256,
// so 16-bit multiplies and adds are exact and a logical shift by 8 gives
// the plain result.
#include <emmintrin.h>

#include "color/kernels/alpha_blend.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Eight samples in 16-bit lanes with their alphas.
inline __m128i Blend8(__m128i in, __m128i old, __m128i a) {
  const __m128i inverse = _mm_sub_epi16(_mm_set1_epi16(256), a);
  return _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(in, inverse), _mm_mullo_epi16(old, a)), 8);
}

// Sixteen samples (bytes) with sixteen alphas (bytes).
inline __m128i Blend16(__m128i in, __m128i old, __m128i a) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i lo = Blend8(_mm_unpacklo_epi8(in, zero), _mm_unpacklo_epi8(old, zero), _mm_unpacklo_epi8(a, zero));
  const __m128i hi = Blend8(_mm_unpackhi_epi8(in, zero), _mm_unpackhi_epi8(old, zero), _mm_unpackhi_epi8(a, zero));
  return _mm_packus_epi16(lo, hi);
}

}  // namespace

void BlendRgb32Row(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  int32_t c = 0;
  for (; c + 16 <= width; c += 16) {
    // Each alpha byte spread over the four bytes of its pixel.
    const __m128i a = Load(alpha + c);
    const __m128i pairs[2] = {_mm_unpacklo_epi8(a, a), _mm_unpackhi_epi8(a, a)};
    for (int32_t q = 0; q < 4; ++q) {
      const __m128i pair = pairs[q / 2];
      const __m128i spread = (q & 1) ? _mm_unpackhi_epi16(pair, pair) : _mm_unpacklo_epi16(pair, pair);
      uint8_t* o = out + 4 * c + 16 * q;
      Store(o, Blend16(Load(in + 4 * c + 16 * q), Load(o), spread));
    }
  }
  if (c < width) BlendRgb32Row_c(in + 4 * c, out + 4 * c, alpha + c, width - c);
}

void BlendPlaneRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  int32_t c = 0;
  for (; c + 16 <= width; c += 16) Store(out + c, Blend16(Load(in + c), Load(out + c), Load(alpha + c)));
  if (c < width) BlendPlaneRow_c(in + c, out + c, alpha + c, width - c);
}

void BlendChromaRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  const __m128i zero = _mm_setzero_si128(), lowBytes = _mm_set1_epi16(0x00ff);
  int32_t c = 0;
  // The even alpha bytes are the low bytes of the 16-bit lanes: a mask
  // leaves exactly the alphas of eight samples.
  for (; c + 16 <= width; c += 16) {
    const __m128i in16 = Load(in + c), old16 = Load(out + c);
    const __m128i lo = Blend8(_mm_unpacklo_epi8(in16, zero), _mm_unpacklo_epi8(old16, zero),
                              _mm_and_si128(Load(alpha + 2 * c), lowBytes));
    const __m128i hi = Blend8(_mm_unpackhi_epi8(in16, zero), _mm_unpackhi_epi8(old16, zero),
                              _mm_and_si128(Load(alpha + 2 * c + 16), lowBytes));
    Store(out + c, _mm_packus_epi16(lo, hi));
  }
  // The vector loop reads alpha[2c .. 2c + 31]; the plain tail only the even ones it needs.
  if (c < width) BlendChromaRow_c(in + c, out + c, alpha + 2 * c, width - c);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
