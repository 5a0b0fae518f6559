// 128-bit YUV to BGRA kernel, compiled once per 128-bit level: the including
// file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built with that
// level's flags. SSE2 multiplies zero-extended words; SSSE3 and up let
// pmaddubsw do the products and the luma offset in one instruction.
//
// All sums live in signed 16-bit lanes. (y - 16) * 74 is in [-1184, 17686],
// the R and G sums in [-14240, 30640] and [-10963, 27542], so only the B sum
// can pass 32767 (34069 at y = u = 255): it is added with saturation, and any
// sum >= 32767 still gives >= 511 after the shift, which packus clamps to 255
// exactly as the plain routine does. The shift is mulhi by 1 << 10: the high
// half of x * 2^10 is floor(x / 64), the arithmetic shift by 6, issued on
// the multiplier ports rather than beside the shuffles (a few percent faster
// than srai). packus_epi16 is the same clamp to 0..255.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include "color/kernels/yuv_to_rgb.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

// Shifts, clamps and interleaves 16 pixels (lo = pixels 0..7, hi = 8..15)
// into B, G, R, 255 bytes.
inline void StoreBgra16(__m128i bLo, __m128i bHi, __m128i gLo, __m128i gHi, __m128i rLo, __m128i rHi, uint8_t* bgra) {
  const __m128i opaque = _mm_set1_epi8(-1);
  const __m128i shift6 = _mm_set1_epi16(1 << 10);
  const __m128i b = _mm_packus_epi16(_mm_mulhi_epi16(bLo, shift6), _mm_mulhi_epi16(bHi, shift6));
  const __m128i g = _mm_packus_epi16(_mm_mulhi_epi16(gLo, shift6), _mm_mulhi_epi16(gHi, shift6));
  const __m128i r = _mm_packus_epi16(_mm_mulhi_epi16(rLo, shift6), _mm_mulhi_epi16(rHi, shift6));
  const __m128i bgLo = _mm_unpacklo_epi8(b, g), bgHi = _mm_unpackhi_epi8(b, g);
  const __m128i raLo = _mm_unpacklo_epi8(r, opaque), raHi = _mm_unpackhi_epi8(r, opaque);
  __m128i* out = reinterpret_cast<__m128i*>(bgra);
  _mm_storeu_si128(out + 0, _mm_unpacklo_epi16(bgLo, raLo));
  _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(bgLo, raLo));
  _mm_storeu_si128(out + 2, _mm_unpacklo_epi16(bgHi, raHi));
  _mm_storeu_si128(out + 3, _mm_unpackhi_epi16(bgHi, raHi));
}

#if defined(__SSSE3__)
// A pmaddubsw operand holding `lo` in the even and `hi` in the odd bytes.
constexpr int16_t BytePair(int lo, int hi) { return static_cast<int16_t>((hi << 8) | (lo & 0xff)); }
#endif

}  // namespace

void I422ToBgraRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width) {
  int32_t x = 0;
#if defined(__SSSE3__)
  // Luma pairs (y, 16) times (74, -74) give (y - 16) * 74; chroma pairs
  // (u - 128, v - 128) as signed bytes times unsigned coefficients give
  // each chroma term exactly (|sum| <= 16512, no pmaddubsw saturation).
  const __m128i sixteen = _mm_set1_epi8(16);
  const __m128i signFlip = _mm_set1_epi8(-128);
  const __m128i yCoef = _mm_set1_epi16(BytePair(74, -74));
  const __m128i bCoef = _mm_set1_epi16(BytePair(129, 0));
  const __m128i gCoef = _mm_set1_epi16(BytePair(25, 52));
  const __m128i rCoef = _mm_set1_epi16(BytePair(0, 102));
  for (; x + 16 <= width; x += 16) {
    const __m128i ys = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x));
    const __m128i lumaLo = _mm_maddubs_epi16(_mm_unpacklo_epi8(ys, sixteen), yCoef);
    const __m128i lumaHi = _mm_maddubs_epi16(_mm_unpackhi_epi8(ys, sixteen), yCoef);
    const __m128i us = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(u + x / 2));
    const __m128i vs = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(v + x / 2));
    // u, v pairs for chroma 0..7, each pair repeated for its two pixels.
    const __m128i uv = _mm_xor_si128(_mm_unpacklo_epi8(us, vs), signFlip);
    const __m128i uvLo = _mm_unpacklo_epi16(uv, uv), uvHi = _mm_unpackhi_epi16(uv, uv);
    StoreBgra16(
        _mm_adds_epi16(lumaLo, _mm_maddubs_epi16(bCoef, uvLo)), _mm_adds_epi16(lumaHi, _mm_maddubs_epi16(bCoef, uvHi)),
        _mm_sub_epi16(lumaLo, _mm_maddubs_epi16(gCoef, uvLo)), _mm_sub_epi16(lumaHi, _mm_maddubs_epi16(gCoef, uvHi)),
        _mm_add_epi16(lumaLo, _mm_maddubs_epi16(rCoef, uvLo)), _mm_add_epi16(lumaHi, _mm_maddubs_epi16(rCoef, uvHi)),
        bgra + 4 * x);
  }
#else
  // Chroma terms are formed once per sample and then doubled. The luma
  // offset -1184 is folded into them: B gets 129u - 16512 - 1184, G subtracts
  // 25u + 52v - 9856 + 1184, R gets 102v - 13056 - 1184; each result fits
  // int16 (u * 129 alone may wrap, but the wrap cancels in the sum).
  const __m128i zero = _mm_setzero_si128();
  for (; x + 16 <= width; x += 16) {
    const __m128i ys = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x));
    const __m128i lumaLo = _mm_mullo_epi16(_mm_unpacklo_epi8(ys, zero), _mm_set1_epi16(74));
    const __m128i lumaHi = _mm_mullo_epi16(_mm_unpackhi_epi8(ys, zero), _mm_set1_epi16(74));
    const __m128i us = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(u + x / 2)), zero);
    const __m128i vs = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(v + x / 2)), zero);
    const __m128i cb = _mm_add_epi16(_mm_mullo_epi16(us, _mm_set1_epi16(129)), _mm_set1_epi16(-17696));
    const __m128i cg =
        _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(us, _mm_set1_epi16(25)), _mm_mullo_epi16(vs, _mm_set1_epi16(52))),
                      _mm_set1_epi16(-8672));
    const __m128i cr = _mm_add_epi16(_mm_mullo_epi16(vs, _mm_set1_epi16(102)), _mm_set1_epi16(-14240));
    StoreBgra16(_mm_adds_epi16(lumaLo, _mm_unpacklo_epi16(cb, cb)), _mm_adds_epi16(lumaHi, _mm_unpackhi_epi16(cb, cb)),
                _mm_sub_epi16(lumaLo, _mm_unpacklo_epi16(cg, cg)), _mm_sub_epi16(lumaHi, _mm_unpackhi_epi16(cg, cg)),
                _mm_add_epi16(lumaLo, _mm_unpacklo_epi16(cr, cr)), _mm_add_epi16(lumaHi, _mm_unpackhi_epi16(cr, cr)),
                bgra + 4 * x);
  }
#endif
  I422ToBgraRow_c(y + x, u + x / 2, v + x / 2, bgra + 4 * x, width - x);
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
