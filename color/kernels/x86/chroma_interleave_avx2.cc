#include <immintrin.h>

#include "color/kernels/chroma_interleave.h"

namespace Lumaforge::avx2 {

void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width) {
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u + i));
    const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v + i));
    // The unpacks work within 128-bit lanes; the permutes put the halves in order.
    const __m256i lo = _mm256_unpacklo_epi8(us, vs);
    const __m256i hi = _mm256_unpackhi_epi8(us, vs);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(uv + 2 * i), _mm256_permute2x128_si256(lo, hi, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(uv + 2 * i + 32), _mm256_permute2x128_si256(lo, hi, 0x31));
  }
  MergeUVRow_c(u + i, v + i, uv + 2 * i, width - i);
}

void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width) {
  const __m256i lowBytes = _mm256_set1_epi16(0x00ff);
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(uv + 2 * i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(uv + 2 * i + 32));
    // packus interleaves the 128-bit lanes of a and b; 0xD8 restores sample order.
    const __m256i us = _mm256_packus_epi16(_mm256_and_si256(a, lowBytes), _mm256_and_si256(b, lowBytes));
    const __m256i vs = _mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(u + i), _mm256_permute4x64_epi64(us, 0xD8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(v + i), _mm256_permute4x64_epi64(vs, 0xD8));
  }
  SplitUVRow_c(uv + 2 * i, u + i, v + i, width - i);
}

void EvenSamplesRow(const uint8_t* src, uint8_t* dst, int32_t width) {
  const __m256i lowBytes = _mm256_set1_epi16(0x00ff);
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * i + 32));
    const __m256i packed = _mm256_packus_epi16(_mm256_and_si256(a, lowBytes), _mm256_and_si256(b, lowBytes));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), _mm256_permute4x64_epi64(packed, 0xD8));
  }
  EvenSamplesRow_c(src + 2 * i, dst + i, width - i);
}

}  // namespace Lumaforge::avx2
