// 256-bit alpha blending; the arithmetic of alpha_blend_128.h on 32 samples
// per step.
#include <immintrin.h>

#include "color/kernels/alpha_blend.h"

namespace Lumaforge::avx2 {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

inline __m256i Blend16Lanes(__m256i in, __m256i old, __m256i a) {
  const __m256i inverse = _mm256_sub_epi16(_mm256_set1_epi16(256), a);
  return _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(in, inverse), _mm256_mullo_epi16(old, a)), 8);
}

// Thirty-two bytes with their alphas; unpack and pack are both per 128-bit
// lane, so the bytes come back in place.
inline __m256i Blend32(__m256i in, __m256i old, __m256i a) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i lo =
      Blend16Lanes(_mm256_unpacklo_epi8(in, zero), _mm256_unpacklo_epi8(old, zero), _mm256_unpacklo_epi8(a, zero));
  const __m256i hi =
      Blend16Lanes(_mm256_unpackhi_epi8(in, zero), _mm256_unpackhi_epi8(old, zero), _mm256_unpackhi_epi8(a, zero));
  return _mm256_packus_epi16(lo, hi);
}

}  // namespace

void BlendRgb32Row(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  // Eight alphas widened to dwords, then each byte copied over its dword.
  const __m256i spread = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12,  //
                                          0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
  int32_t c = 0;
  for (; c + 16 <= width; c += 16) {
    const __m128i alphas = _mm_loadu_si128(reinterpret_cast<const __m128i*>(alpha + c));
    const __m256i a0 = _mm256_shuffle_epi8(_mm256_cvtepu8_epi32(alphas), spread);
    const __m256i a1 = _mm256_shuffle_epi8(_mm256_cvtepu8_epi32(_mm_srli_si128(alphas, 8)), spread);
    Store(out + 4 * c, Blend32(Load(in + 4 * c), Load(out + 4 * c), a0));
    Store(out + 4 * c + 32, Blend32(Load(in + 4 * c + 32), Load(out + 4 * c + 32), a1));
  }
  if (c + 8 <= width) {
    const __m256i a =
        _mm256_shuffle_epi8(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(alpha + c))), spread);
    Store(out + 4 * c, Blend32(Load(in + 4 * c), Load(out + 4 * c), a));
    c += 8;
  }
  if (c < width) BlendRgb32Row_c(in + 4 * c, out + 4 * c, alpha + c, width - c);
}

void BlendPlaneRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  int32_t c = 0;
  for (; c + 32 <= width; c += 32) Store(out + c, Blend32(Load(in + c), Load(out + c), Load(alpha + c)));
  if (c < width) BlendPlaneRow_c(in + c, out + c, alpha + c, width - c);
}

void BlendChromaRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  const __m256i zero = _mm256_setzero_si256(), lowBytes = _mm256_set1_epi16(0x00ff);
  int32_t c = 0;
  for (; c + 32 <= width; c += 32) {
    // Even alpha bytes as words: samples 0-15 and 16-31, regrouped to match
    // the per-lane unpacks (0-7 | 16-23 and 8-15 | 24-31).
    const __m256i a0 = _mm256_and_si256(Load(alpha + 2 * c), lowBytes);
    const __m256i a1 = _mm256_and_si256(Load(alpha + 2 * c + 32), lowBytes);
    const __m256i in32 = Load(in + c), old32 = Load(out + c);
    const __m256i lo = Blend16Lanes(_mm256_unpacklo_epi8(in32, zero), _mm256_unpacklo_epi8(old32, zero),
                                    _mm256_permute2x128_si256(a0, a1, 0x20));
    const __m256i hi = Blend16Lanes(_mm256_unpackhi_epi8(in32, zero), _mm256_unpackhi_epi8(old32, zero),
                                    _mm256_permute2x128_si256(a0, a1, 0x31));
    Store(out + c, _mm256_packus_epi16(lo, hi));
  }
  if (c < width) BlendChromaRow_c(in + c, out + c, alpha + 2 * c, width - c);
}

}  // namespace Lumaforge::avx2
