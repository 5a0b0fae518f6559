// 128-bit chroma interleave kernels, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built
// with that level's flags, so the same source becomes the SSE2, SSSE3,
// SSE4.2 and (VEX-encoded) AVX variants.
#include <emmintrin.h>

#include "color/kernels/chroma_interleave.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {

void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width) {
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    const __m128i us = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
    const __m128i vs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(uv + 2 * i), _mm_unpacklo_epi8(us, vs));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(uv + 2 * i + 16), _mm_unpackhi_epi8(us, vs));
  }
  MergeUVRow_c(u + i, v + i, uv + 2 * i, width - i);
}

void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(uv + 2 * i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(uv + 2 * i + 16));
    // Each 16-bit lane holds one pair; its low byte is U, its high byte V.
    const __m128i us = _mm_packus_epi16(_mm_and_si128(a, lowBytes), _mm_and_si128(b, lowBytes));
    const __m128i vs = _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(u + i), us);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(v + i), vs);
  }
  SplitUVRow_c(uv + 2 * i, u + i, v + i, width - i);
}

void EvenSamplesRow(const uint8_t* src, uint8_t* dst, int32_t width) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  int32_t i = 0;
  for (; i + 16 <= width; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * i + 16));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i),
                     _mm_packus_epi16(_mm_and_si128(a, lowBytes), _mm_and_si128(b, lowBytes)));
  }
  EvenSamplesRow_c(src + 2 * i, dst + i, width - i);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
