// 128-bit colour effect kernels, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built
// with that level's flags, so the same source becomes the SSE2, SSSE3,
// SSE4.2 and (VEX-encoded) AVX variants.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif
#if defined(__SSE4_1__)
#include <smmintrin.h>
#endif

#include "filters/kernels/color_effects.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

// The four samples in the low (kHigh: high) words of `words`, minus 128, as
// floats. Pairing each word with 0x4B00 spells the float 2^23 + x, and
// subtracting 2^23 + 128 is exact, so this equals float(x) - 128.0f.
template <bool kHigh>
inline __m128 Centered(__m128i words) {
  const __m128i magic = _mm_set1_epi16(0x4B00);
  const __m128i bits = kHigh ? _mm_unpackhi_epi16(words, magic) : _mm_unpacklo_epi16(words, magic);
  return _mm_sub_ps(_mm_castsi128_ps(bits), _mm_set1_ps(8388736.0f));
}

// U' and V' of four samples, before the byte conversion, in the plain order.
// The clamp is left to the packs: cvttps maps everything below 0 to a value
// <= 0 (-inf and overflow give INT_MIN) that saturates to 0, and truncation
// commutes with clamping to the integers 0 and 255 (with |c|, |s| <= 1 no
// sum comes near the 2^31 that would convert wrongly).
inline void RotateFour(__m128 du, __m128 dv, __m128 c, __m128 s, __m128i* uOut, __m128i* vOut) {
  const __m128 k128 = _mm_set1_ps(128.0f);
  const __m128 uf = _mm_add_ps(_mm_add_ps(_mm_mul_ps(du, c), _mm_mul_ps(dv, s)), k128);
  const __m128 vf = _mm_add_ps(_mm_sub_ps(_mm_mul_ps(dv, c), _mm_mul_ps(du, s)), k128);
  *uOut = _mm_cvttps_epi32(uf);
  *vOut = _mm_cvttps_epi32(vf);
}

// Whole vectors of RotateHue; returns the samples done.
size_t RotateHueVectors(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  const __m128i zero = _mm_setzero_si128();
  const __m128 vc = _mm_set1_ps(c);
  const __m128 vs = _mm_set1_ps(s);
  size_t i = 0;
  for (; i + 16 <= count; i += 16) {
    const __m128i us = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
    const __m128i vsamp = _mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i));
    const __m128i uLo = _mm_unpacklo_epi8(us, zero), uHi = _mm_unpackhi_epi8(us, zero);
    const __m128i vLo = _mm_unpacklo_epi8(vsamp, zero), vHi = _mm_unpackhi_epi8(vsamp, zero);
    __m128i uq[4], vq[4];
    RotateFour(Centered<false>(uLo), Centered<false>(vLo), vc, vs, &uq[0], &vq[0]);
    RotateFour(Centered<true>(uLo), Centered<true>(vLo), vc, vs, &uq[1], &vq[1]);
    RotateFour(Centered<false>(uHi), Centered<false>(vHi), vc, vs, &uq[2], &vq[2]);
    RotateFour(Centered<true>(uHi), Centered<true>(vHi), vc, vs, &uq[3], &vq[3]);
    // Signed then unsigned saturation: negatives become 0, above 255 becomes 255.
    const __m128i uOut = _mm_packus_epi16(_mm_packs_epi32(uq[0], uq[1]), _mm_packs_epi32(uq[2], uq[3]));
    const __m128i vOut = _mm_packus_epi16(_mm_packs_epi32(vq[0], vq[1]), _mm_packs_epi32(vq[2], vq[3]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(u + i), uOut);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(v + i), vOut);
  }
  return i;
}

// min((cr r + cg g + cb b + 128) >> 8, 255) on eight words holding bytes.
// Each product is below 2^16 (197 * 255 = 50235), so mullo gives it
// exactly; the saturating sum is min(true sum, 65535). Below 65536 that is
// exact; at or above it the plain result is >= 256, clamped to 255, which is
// also what 65535 >> 8 gives. Blue never gets there (241 * 255 + 128 = 61583).
inline __m128i Tone(__m128i r, __m128i g, __m128i b, short cr, short cg, short cb) {
  __m128i sum = _mm_adds_epu16(_mm_mullo_epi16(r, _mm_set1_epi16(cr)), _mm_mullo_epi16(g, _mm_set1_epi16(cg)));
  sum = _mm_adds_epu16(sum, _mm_mullo_epi16(b, _mm_set1_epi16(cb)));
  return _mm_srli_epi16(_mm_adds_epu16(sum, _mm_set1_epi16(128)), 8);
}

// Picks each byte from a, b or c: b where mb is set, c where mc is set
// (the masks never overlap), a elsewhere. blendv reads only each mask
// byte's top bit, which the all-ones/zero masks satisfy.
inline __m128i Pick3(__m128i a, __m128i b, __m128i c, __m128i mb, __m128i mc) {
#if defined(__SSE4_1__)
  return _mm_blendv_epi8(_mm_blendv_epi8(a, b, mb), c, mc);
#else
  const __m128i aOnly = _mm_andnot_si128(_mm_or_si128(mb, mc), a);
  return _mm_or_si128(_mm_or_si128(aOnly, _mm_and_si128(b, mb)), _mm_and_si128(c, mc));
#endif
}

// Byte rotations of a whole register: Up<n> moves byte j to j + n, Down<n>
// moves byte j to j - n (both modulo 16).
template <int n>
inline __m128i Up(__m128i x) {
#if defined(__SSSE3__)
  return _mm_alignr_epi8(x, x, 16 - n);
#else
  return _mm_or_si128(_mm_slli_si128(x, n), _mm_srli_si128(x, 16 - n));
#endif
}
template <int n>
inline __m128i Down(__m128i x) {
  return Up<16 - n>(x);
}

}  // namespace

void RotateHue(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  const size_t i = RotateHueVectors(u, v, count, c, s);
  RotateHue_c(u + i, v + i, count - i, c, s);
}

// Sixteen pixels are three registers. Byte p of register k is channel
// (16k + p) % 3 = (k + p) % 3, so for each channel the three registers hold
// it at disjoint positions and one blend gathers a channel per register. The
// blends put the red of a pixel at the same position in all three results
// once green is moved down one byte and blue two. The arithmetic is per
// position, and the output is the same blend run backwards. A block is
// loaded whole before it is stored, so in == out also works.
void Sepia(const uint8_t* in, uint8_t* out, size_t pixels) {
  // m[j]: positions p with p % 3 == j.
  const __m128i m0 = _mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1);
  const __m128i m1 = _mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0);
  const __m128i m2 = _mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0);
  const __m128i zero = _mm_setzero_si128();
  size_t i = 0;
  for (; i + 16 <= pixels; i += 16) {
    const uint8_t* src = in + 3 * i;
    const __m128i x0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    const __m128i x1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 16));
    const __m128i x2 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 32));
    // Channel c of register k sits where p % 3 == (c - k) % 3.
    const __m128i r = Pick3(x0, x1, x2, m2, m1);
    const __m128i g = Down<1>(Pick3(x0, x1, x2, m0, m2));
    const __m128i b = Down<2>(Pick3(x0, x1, x2, m1, m0));
    const __m128i rLo = _mm_unpacklo_epi8(r, zero), rHi = _mm_unpackhi_epi8(r, zero);
    const __m128i gLo = _mm_unpacklo_epi8(g, zero), gHi = _mm_unpackhi_epi8(g, zero);
    const __m128i bLo = _mm_unpacklo_epi8(b, zero), bHi = _mm_unpackhi_epi8(b, zero);
    const __m128i red = _mm_packus_epi16(Tone(rLo, gLo, bLo, 101, 197, 48), Tone(rHi, gHi, bHi, 101, 197, 48));
    const __m128i green = Up<1>(_mm_packus_epi16(Tone(rLo, gLo, bLo, 89, 176, 43), Tone(rHi, gHi, bHi, 89, 176, 43)));
    const __m128i blue = Up<2>(_mm_packus_epi16(Tone(rLo, gLo, bLo, 70, 137, 34), Tone(rHi, gHi, bHi, 70, 137, 34)));
    uint8_t* dst = out + 3 * i;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), Pick3(red, green, blue, m1, m2));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 16), Pick3(red, green, blue, m0, m1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 32), Pick3(red, green, blue, m2, m0));
  }
  Sepia_c(in + 3 * i, out + 3 * i, pixels - i);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
