// 256-bit RGB to YUV kernels. Same arithmetic as the 128-bit SSSE3 path (see
// rgb_to_yuv_128.h for why it is exact); the shuffles, horizontal adds and
// packs act per 128-bit lane, so each kernel restores sample order once,
// just before its stores. A remainder under 32 pixels goes to the 128-bit
// AVX form, which runs 16-pixel vectors and ends with the plain routine.
#include <immintrin.h>

#include "color/kernels/rgb_to_yuv.h"

namespace Lumaforge::avx2 {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

inline __m256i WordPair(int16_t lo, int16_t hi) { return _mm256_set1_epi32((hi * 65536) | static_cast<uint16_t>(lo)); }

// Luma numerator less 28160 as two int16 partials per pixel: coefficients
// unsigned, pixels flipped to p - 128 as the signed operand.
inline __m256i LumaPartials(__m256i px) {
  const __m256i coef = _mm256_set1_epi32(66 << 16 | 129 << 8 | 25);
  return _mm256_maddubs_epi16(coef, _mm256_xor_si256(px, _mm256_set1_epi8(static_cast<char>(0x80))));
}

// Per lane, B0 B1 R0 R1 B2 B3 R2 R3 G0 G1 G0 G1 G2 G3 G2 G3 of its four
// pixels, summed by ones: (sB, sR) of both pairs low, (sG, sG) high.
inline __m256i PairSums(__m256i px) {
  const __m256i order = _mm256_setr_epi8(0, 4, 2, 6, 8, 12, 10, 14, 1, 5, 1, 5, 9, 13, 9, 13,  //
                                         0, 4, 2, 6, 8, 12, 10, 14, 1, 5, 1, 5, 9, 13, 9, 13);
  return _mm256_maddubs_epi16(_mm256_shuffle_epi8(px, order), _mm256_set1_epi8(1));
}

// (sG - sB, sG - sR) per block from two pair-sum vectors: with them
//   112 sB - 74 sG - 38 sR = -112 (sG - sB) + 38 (sG - sR)
//   112 sR - 94 sG - 18 sB =   18 (sG - sB) - 112 (sG - sR)
// so one pmaddwd per chroma plane forms the exact 32-bit numerator.
inline __m256i Differences(__m256i s0, __m256i s1) {
  return _mm256_sub_epi16(_mm256_unpackhi_epi64(s0, s1), _mm256_unpacklo_epi64(s0, s1));
}

// Pair sums of the four vectors of one 32-pixel step.
struct StepSums {
  __m256i s0, s1, s2, s3;
};

// Both rows added: pair sums are at most 510 per row, 1020 for the block.
inline StepSums BlockSums(const uint8_t* a, const uint8_t* b) {
  return {_mm256_add_epi16(PairSums(Load(a)), PairSums(Load(b))),
          _mm256_add_epi16(PairSums(Load(a + 32)), PairSums(Load(b + 32))),
          _mm256_add_epi16(PairSums(Load(a + 64)), PairSums(Load(b + 64))),
          _mm256_add_epi16(PairSums(Load(a + 96)), PairSums(Load(b + 96)))};
}

// One row (4:2:2); the second pointer is unused.
inline StepSums RowSums(const uint8_t* a, const uint8_t*) {
  return {PairSums(Load(a)), PairSums(Load(a + 32)), PairSums(Load(a + 64)), PairSums(Load(a + 96))};
}

// Sixteen U and V samples from the sums of pixels 0-7 .. 24-31.
// Coefficients are scaled by kScale = 2^(16 - shift) so each sample lands in
// the high half of its 32-bit lane; the bias is the rounding term plus
// (128 << shift), scaled alike, and keeps every lane positive.
template <int kScale>
inline void StoreUV16(const StepSums& sums, uint8_t* u, uint8_t* v) {
  const __m256i uCoef = WordPair(-112 * kScale, 38 * kScale);
  const __m256i vCoef = WordPair(18 * kScale, -112 * kScale);
  const __m256i bias = _mm256_set1_epi32(8421376);  // (512 + (128 << 10)) << 6 == (256 + (128 << 9)) << 7
  // s0 holds blocks 0 1 | 2 3 (per lane), so d0 holds 0 1 4 5 | 2 3 6 7 and
  // d1 8 9 12 13 | 10 11 14 15.
  const __m256i d0 = Differences(sums.s0, sums.s1);
  const __m256i d1 = Differences(sums.s2, sums.s3);
  const __m256i u0 = _mm256_add_epi32(_mm256_madd_epi16(d0, uCoef), bias);
  const __m256i u1 = _mm256_add_epi32(_mm256_madd_epi16(d1, uCoef), bias);
  const __m256i v0 = _mm256_add_epi32(_mm256_madd_epi16(d0, vCoef), bias);
  const __m256i v1 = _mm256_add_epi32(_mm256_madd_epi16(d1, vCoef), bias);
  // Samples of d0 to the low halves, next to those of d1; all lie in 16..240.
  const __m256i us = _mm256_blend_epi16(_mm256_srli_epi32(u0, 16), u1, 0xAA);
  const __m256i vs = _mm256_blend_epi16(_mm256_srli_epi32(v0, 16), v1, 0xAA);
  // Lane 0: U then V of blocks 0 8 1 9 4 12 5 13; lane 1: 2 10 3 11 6 14 7 15.
  __m256i uv = _mm256_permute4x64_epi64(_mm256_packus_epi16(us, vs), 0xD8);
  const __m256i order = _mm256_setr_epi8(0, 2, 8, 10, 4, 6, 12, 14, 1, 3, 9, 11, 5, 7, 13, 15,  //
                                         0, 2, 8, 10, 4, 6, 12, 14, 1, 3, 9, 11, 5, 7, 13, 15);
  uv = _mm256_shuffle_epi8(uv, order);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(u), _mm256_castsi256_si128(uv));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(v), _mm256_extracti128_si256(uv, 1));
}

// Runs whole 32-pixel steps, software-pipelined: the sums of the next step
// are formed while the current one is finished, which keeps enough
// independent work in flight to cover the multiply and permute latencies.
// Returns the pixels done.
template <int kScale, StepSums (*kSums)(const uint8_t*, const uint8_t*)>
inline int32_t ChromaSteps(const uint8_t* a, const uint8_t* b, uint8_t* u, uint8_t* v, int32_t width) {
  const int32_t steps = width / 32;
  if (steps == 0) return 0;
  StepSums current = kSums(a, b);
  for (int32_t s = 1; s < steps; ++s) {
    const StepSums next = kSums(a + 128 * s, b + 128 * s);
    StoreUV16<kScale>(current, u + 16 * (s - 1), v + 16 * (s - 1));
    current = next;
  }
  StoreUV16<kScale>(current, u + 16 * (steps - 1), v + 16 * (steps - 1));
  return 32 * steps;
}

}  // namespace

void BgraToYRow(const uint8_t* bgra, uint8_t* y, int32_t width) {
  // N - 28160 + 32384 = N + 128 + (16 << 8) <= 60324: exact as unsigned 16-bit.
  const __m256i bias = _mm256_set1_epi16(32384);
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  int32_t i = 0;
  for (; i + 32 <= width; i += 32) {
    const uint8_t* p = bgra + 4 * i;
    // Per lane, lo holds pixels 0-3 8-11 | 4-7 12-15, hi the same plus 16.
    const __m256i lo = _mm256_hadd_epi16(LumaPartials(Load(p)), LumaPartials(Load(p + 32)));
    const __m256i hi = _mm256_hadd_epi16(LumaPartials(Load(p + 64)), LumaPartials(Load(p + 96)));
    const __m256i packed = _mm256_packus_epi16(_mm256_srli_epi16(_mm256_add_epi16(lo, bias), 8),
                                               _mm256_srli_epi16(_mm256_add_epi16(hi, bias), 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(y + i), _mm256_permutevar8x32_epi32(packed, order));
  }
  avx::BgraToYRow(bgra + 4 * i, y + i, width - i);
}

void BgraToUV420Row(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width) {
  const int32_t i = ChromaSteps<64, BlockSums>(bgra0, bgra1, u, v, width);
  avx::BgraToUV420Row(bgra0 + 4 * i, bgra1 + 4 * i, u + i / 2, v + i / 2, width - i);
}

void BgraToUV422Row(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width) {
  const int32_t i = ChromaSteps<128, RowSums>(bgra, bgra, u, v, width);
  avx::BgraToUV422Row(bgra + 4 * i, u + i / 2, v + i / 2, width - i);
}

}  // namespace Lumaforge::avx2
