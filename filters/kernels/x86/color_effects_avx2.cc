// 256-bit colour effect kernels. Same arithmetic as the 128-bit header; the
// in-lane unpacks and packs are each other's inverse, so only the sepia
// byte rotations need to cross lanes.
#include <immintrin.h>

#include "filters/kernels/color_effects.h"

namespace Lumaforge::avx2 {
namespace {

// Eight zero-extended samples minus 128 as floats: 0x4B00 above a word
// spells 2^23 + x, and subtracting 2^23 + 128 is exact.
template <bool kHigh>
inline __m256 Centered(__m256i words) {
  const __m256i magic = _mm256_set1_epi16(0x4B00);
  const __m256i bits = kHigh ? _mm256_unpackhi_epi16(words, magic) : _mm256_unpacklo_epi16(words, magic);
  return _mm256_sub_ps(_mm256_castsi256_ps(bits), _mm256_set1_ps(8388736.0f));
}

// U' and V' of eight samples in the plain order. The packs do the clamp:
// cvttps maps everything below 0 to a value <= 0 that saturates to 0, and
// truncation commutes with clamping to 0 and 255 (with |c|, |s| <= 1 no sum
// comes near the 2^31 that would convert wrongly).
inline void RotateEight(__m256 du, __m256 dv, __m256 c, __m256 s, __m256i* uOut, __m256i* vOut) {
  const __m256 k128 = _mm256_set1_ps(128.0f);
  const __m256 uf = _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(du, c), _mm256_mul_ps(dv, s)), k128);
  const __m256 vf = _mm256_add_ps(_mm256_sub_ps(_mm256_mul_ps(dv, c), _mm256_mul_ps(du, s)), k128);
  *uOut = _mm256_cvttps_epi32(uf);
  *vOut = _mm256_cvttps_epi32(vf);
}

// Whole vectors of RotateHue; returns the samples done.
size_t RotateHueVectors(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256 vc = _mm256_set1_ps(c);
  const __m256 vs = _mm256_set1_ps(s);
  size_t i = 0;
  for (; i + 32 <= count; i += 32) {
    const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u + i));
    const __m256i vsamp = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v + i));
    const __m256i uLo = _mm256_unpacklo_epi8(us, zero), uHi = _mm256_unpackhi_epi8(us, zero);
    const __m256i vLo = _mm256_unpacklo_epi8(vsamp, zero), vHi = _mm256_unpackhi_epi8(vsamp, zero);
    __m256i uq[4], vq[4];
    RotateEight(Centered<false>(uLo), Centered<false>(vLo), vc, vs, &uq[0], &vq[0]);
    RotateEight(Centered<true>(uLo), Centered<true>(vLo), vc, vs, &uq[1], &vq[1]);
    RotateEight(Centered<false>(uHi), Centered<false>(vHi), vc, vs, &uq[2], &vq[2]);
    RotateEight(Centered<true>(uHi), Centered<true>(vHi), vc, vs, &uq[3], &vq[3]);
    // The packs undo the unpacks lane by lane, so samples come back in order.
    const __m256i uOut = _mm256_packus_epi16(_mm256_packs_epi32(uq[0], uq[1]), _mm256_packs_epi32(uq[2], uq[3]));
    const __m256i vOut = _mm256_packus_epi16(_mm256_packs_epi32(vq[0], vq[1]), _mm256_packs_epi32(vq[2], vq[3]));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(u + i), uOut);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(v + i), vOut);
  }
  return i;
}

// min((cr r + cg g + cb b + 128) >> 8, 255) on words holding bytes. Every
// product fits 16 bits; the saturating sum is exact below 65536 and, at or
// above it, the plain result clamps to 255 = 65535 >> 8.
inline __m256i Tone(__m256i r, __m256i g, __m256i b, short cr, short cg, short cb) {
  __m256i sum =
      _mm256_adds_epu16(_mm256_mullo_epi16(r, _mm256_set1_epi16(cr)), _mm256_mullo_epi16(g, _mm256_set1_epi16(cg)));
  sum = _mm256_adds_epu16(sum, _mm256_mullo_epi16(b, _mm256_set1_epi16(cb)));
  return _mm256_srli_epi16(_mm256_adds_epu16(sum, _mm256_set1_epi16(128)), 8);
}

// b where mb is set, c where mc is set, a elsewhere.
inline __m256i Pick3(__m256i a, __m256i b, __m256i c, __m256i mb, __m256i mc) {
  return _mm256_blendv_epi8(_mm256_blendv_epi8(a, b, mb), c, mc);
}

// Whole-register byte rotations (modulo 32): alignr works per lane, so it
// takes the bytes crossing the middle from the lane-swapped copy.
template <int n>
inline __m256i Up(__m256i x) {
  return _mm256_alignr_epi8(x, _mm256_permute2x128_si256(x, x, 0x01), 16 - n);
}
template <int n>
inline __m256i Down(__m256i x) {
  return _mm256_alignr_epi8(_mm256_permute2x128_si256(x, x, 0x01), x, n);
}

}  // namespace

void RotateHue(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  const size_t i = RotateHueVectors(u, v, count, c, s);
  RotateHue_c(u + i, v + i, count - i, c, s);
}

// Thirty-two pixels are three registers; byte p of register k is channel
// (32k + p) % 3 = (2k + p) % 3, so one blend per channel gathers it, and
// moving green down one byte and blue two lines each pixel's channels up
// with its red. The output is the same blend run backwards; a block is
// loaded whole before it is stored, so in == out also works.
void Sepia(const uint8_t* in, uint8_t* out, size_t pixels) {
  // m[j]: positions p with p % 3 == j.
  const __m256i m0 = _mm256_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0,
                                      -1, 0, 0, -1, 0, 0, -1, 0);
  const __m256i m1 = _mm256_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0,
                                      -1, 0, 0, -1, 0, 0, -1);
  const __m256i m2 = _mm256_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0,
                                      0, -1, 0, 0, -1, 0, 0);
  const __m256i zero = _mm256_setzero_si256();
  size_t i = 0;
  for (; i + 32 <= pixels; i += 32) {
    const uint8_t* src = in + 3 * i;
    const __m256i x0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
    const __m256i x1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 32));
    const __m256i x2 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 64));
    // Channel c of register k sits where p % 3 == (c + k) % 3.
    const __m256i r = Pick3(x0, x1, x2, m1, m2);
    const __m256i g = Down<1>(Pick3(x0, x1, x2, m2, m0));
    const __m256i b = Down<2>(Pick3(x0, x1, x2, m0, m1));
    const __m256i rLo = _mm256_unpacklo_epi8(r, zero), rHi = _mm256_unpackhi_epi8(r, zero);
    const __m256i gLo = _mm256_unpacklo_epi8(g, zero), gHi = _mm256_unpackhi_epi8(g, zero);
    const __m256i bLo = _mm256_unpacklo_epi8(b, zero), bHi = _mm256_unpackhi_epi8(b, zero);
    const __m256i red = _mm256_packus_epi16(Tone(rLo, gLo, bLo, 101, 197, 48), Tone(rHi, gHi, bHi, 101, 197, 48));
    const __m256i green =
        Up<1>(_mm256_packus_epi16(Tone(rLo, gLo, bLo, 89, 176, 43), Tone(rHi, gHi, bHi, 89, 176, 43)));
    const __m256i blue = Up<2>(_mm256_packus_epi16(Tone(rLo, gLo, bLo, 70, 137, 34), Tone(rHi, gHi, bHi, 70, 137, 34)));
    uint8_t* dst = out + 3 * i;
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), Pick3(red, green, blue, m1, m2));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 32), Pick3(red, green, blue, m2, m0));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 64), Pick3(red, green, blue, m0, m1));
  }
  Sepia_c(in + 3 * i, out + 3 * i, pixels - i);
}

}  // namespace Lumaforge::avx2
