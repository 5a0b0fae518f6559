// SSE2 has no byte multiply-add: pixels are widened by masks and shifts,
// and pmaddwd forms the exact numerators.
#include "color/kernels/x86/rgb_to_yuv_simd.h"

namespace Lumaforge::sse2 {
namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

inline __m128i WordPair(int16_t lo, int16_t hi) { return _mm_setr_epi16(lo, hi, lo, hi, lo, hi, lo, hi); }

// Four luma samples as 32-bit lanes: (B, R) and (G, A) split into 16-bit
// lanes by mask and shift, then pmaddwd forms the exact numerator.
inline __m128i Luma4(__m128i px) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  const __m128i n = _mm_add_epi32(_mm_madd_epi16(_mm_and_si128(px, lowBytes), WordPair(25, 66)),
                                  _mm_madd_epi16(_mm_srli_epi16(px, 8), WordPair(129, 0)));
  return _mm_srli_epi32(_mm_add_epi32(n, _mm_set1_epi32(128 + (16 << 8))), 8);
}

// Adds the 32-bit lanes (one pixel each) pairwise across x = pixels 0-3 and
// y = pixels 4-7, giving one lane per block.
inline __m128i AddPixelPairs(__m128i x, __m128i y) {
  const __m128 xs = _mm_castsi128_ps(x);
  const __m128 ys = _mm_castsi128_ps(y);
  return _mm_add_epi16(_mm_castps_si128(_mm_shuffle_ps(xs, ys, 0x88)), _mm_castps_si128(_mm_shuffle_ps(xs, ys, 0xDD)));
}

// (B, R) and (G, A) per pixel of one row, or of two rows added (at most 510
// per lane).
template <bool kTwoRows>
inline void Split(const uint8_t* a, const uint8_t* b, __m128i* br, __m128i* ga) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  const __m128i p = Load(a);
  *br = _mm_and_si128(p, lowBytes);
  *ga = _mm_srli_epi16(p, 8);
  if constexpr (kTwoRows) {
    const __m128i q = Load(b);
    *br = _mm_add_epi16(*br, _mm_and_si128(q, lowBytes));
    *ga = _mm_add_epi16(*ga, _mm_srli_epi16(q, 8));
  }
}

// Biased, scaled U and V numerators of the four blocks of pixels 0-7, one
// 32-bit lane per block: (sB, sR) and (sG, sA) pairs through pmaddwd.
template <int kShift, bool kTwoRows>
inline void Numerators(const uint8_t* a, const uint8_t* b, __m128i* u, __m128i* v) {
  constexpr int16_t kScale = x86::ChromaScale(kShift);
  __m128i br0, ga0, br1, ga1;
  Split<kTwoRows>(a, b, &br0, &ga0);
  Split<kTwoRows>(a + 16, b + 16, &br1, &ga1);
  const __m128i br = AddPixelPairs(br0, br1), ga = AddPixelPairs(ga0, ga1);
  const __m128i bias = _mm_set1_epi32(x86::kChromaBias);
  *u = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(br, WordPair(112 * kScale, -38 * kScale)),
                                   _mm_madd_epi16(ga, WordPair(-74 * kScale, 0))),
                     bias);
  *v = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(br, WordPair(-18 * kScale, 112 * kScale)),
                                   _mm_madd_epi16(ga, WordPair(-94 * kScale, 0))),
                     bias);
}

// The packed U and V samples of pixels 0-15.
template <int kShift, bool kTwoRows>
inline __m128i ChromaSamples(const uint8_t* a, const uint8_t* b) {
  __m128i u0, v0, u1, v1;
  Numerators<kShift, kTwoRows>(a, b, &u0, &v0);
  Numerators<kShift, kTwoRows>(a + 32, b + 32, &u1, &v1);
  return x86::PackUV(u0, u1, v0, v1);
}

void BgraToYRow(const uint8_t* bgra, uint8_t* y, int32_t width) {
  ForEachStep<16>(
      width,
      [&](int32_t i) {
        const uint8_t* p = bgra + 4 * i;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(y + i),
                         _mm_packus_epi16(_mm_packs_epi32(Luma4(Load(p)), Luma4(Load(p + 16))),
                                          _mm_packs_epi32(Luma4(Load(p + 32)), Luma4(Load(p + 48)))));
      },
      [&](int32_t i) { BgraToYRow_c(bgra + 4 * i, y + i, width - i); });
}

void BgraToUV420Row(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width) {
  ForEachStep<32>(
      width,
      [&](int32_t i) {
        const uint8_t *a = bgra0 + 4 * i, *b = bgra1 + 4 * i;
        x86::StoreUV(ChromaSamples<10, true>(a, b), ChromaSamples<10, true>(a + 64, b + 64), u + i / 2, v + i / 2);
      },
      [&](int32_t i) { BgraToUV420Row_c(bgra0 + 4 * i, bgra1 + 4 * i, u + i / 2, v + i / 2, width - i); });
}

void BgraToUV422Row(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width) {
  ForEachStep<32>(
      width,
      [&](int32_t i) {
        const uint8_t* a = bgra + 4 * i;
        x86::StoreUV(ChromaSamples<9, false>(a, a), ChromaSamples<9, false>(a + 64, a + 64), u + i / 2, v + i / 2);
      },
      [&](int32_t i) { BgraToUV422Row_c(bgra + 4 * i, u + i / 2, v + i / 2, width - i); });
}

}  // namespace

void Install(RgbToYuvKernels* kernels) {
  kernels->bgraToYRow = BgraToYRow;
  kernels->bgraToUV420Row = BgraToUV420Row;
  kernels->bgraToUV422Row = BgraToUV422Row;
}

}  // namespace Lumaforge::sse2
