// 256-bit YUV to BGRA kernel, 32 pixels per step. The arithmetic is the one
// of yuv_to_rgb_128.h (pmaddubsw products in int16 lanes, saturating B sum,
// mulhi by 1024 as the floor shift, packus as the clamp); see there why it is
// exact.
//
// Pack and unpack work within 128-bit lanes, so instead of fixing the order
// at the end the pixels are brought in already permuted: with the words of
// one vector holding pixels 0-3, 8-11 | 4-7, 12-15 and of the other
// 16-19, 24-27 | 20-23, 28-31, one packus, one byte unpack and one word
// unpack per channel land on four stores of pixels 0-7, 8-15, 16-23, 24-31.
#include <immintrin.h>

#include "color/kernels/yuv_to_rgb.h"

namespace Lumaforge::avx2 {
namespace {

// A pmaddubsw operand holding `lo` in the even and `hi` in the odd bytes.
constexpr int16_t BytePair(int lo, int hi) { return static_cast<int16_t>((hi << 8) | (lo & 0xff)); }

}  // namespace

void I422ToBgraRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width) {
  const __m256i sixteen = _mm256_set1_epi8(16);
  const __m256i signFlip = _mm256_set1_epi8(-128);
  const __m256i opaque = _mm256_set1_epi8(-1);
  const __m256i shift6 = _mm256_set1_epi16(1 << 10);
  const __m256i yCoef = _mm256_set1_epi16(BytePair(74, -74));
  const __m256i bCoef = _mm256_set1_epi16(BytePair(129, 0));
  const __m256i gCoef = _mm256_set1_epi16(BytePair(25, 52));
  const __m256i rCoef = _mm256_set1_epi16(BytePair(0, 102));
  // Luma dwords (4 pixels each) 0, 2, 4, 6 to the low lane, 1, 3, 5, 7 to the high one.
  const __m256i lumaOrder = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
  // From u0-7 (bytes 0-7) and v0-7 (bytes 8-15) in both lanes: the (u, v)
  // pair of every pixel, in the pixel order above (chroma 0,0,1,1,4,4,5,5 | 2,2,3,3,6,6,7,7).
  const __m256i chromaOrder = _mm256_setr_epi8(0, 8, 0, 8, 1, 9, 1, 9, 4, 12, 4, 12, 5, 13, 5, 13,  //
                                               2, 10, 2, 10, 3, 11, 3, 11, 6, 14, 6, 14, 7, 15, 7, 15);

  // ys: luma 0-31; us, vs: chroma 0-7 in the low and 8-15 in the high
  // quadword of both lanes. Stores the first `count` (16 or 32) pixels.
  const auto convert = [&](__m256i ys, __m256i us, __m256i vs, uint8_t* dst, int32_t count) {
    ys = _mm256_permutevar8x32_epi32(ys, lumaOrder);
    // (y, 16) pairs times (74, -74): (y - 16) * 74.
    const __m256i luma0 = _mm256_maddubs_epi16(_mm256_unpacklo_epi8(ys, sixteen), yCoef);
    const __m256i luma1 = _mm256_maddubs_epi16(_mm256_unpackhi_epi8(ys, sixteen), yCoef);
    // Signed (u - 128, v - 128) pairs; chroma 0-7 serve luma0, 8-15 luma1.
    const __m256i uv0 = _mm256_shuffle_epi8(_mm256_xor_si256(_mm256_unpacklo_epi64(us, vs), signFlip), chromaOrder);
    const __m256i uv1 = _mm256_shuffle_epi8(_mm256_xor_si256(_mm256_unpackhi_epi64(us, vs), signFlip), chromaOrder);
    const __m256i b0 = _mm256_mulhi_epi16(_mm256_adds_epi16(luma0, _mm256_maddubs_epi16(bCoef, uv0)), shift6);
    const __m256i b1 = _mm256_mulhi_epi16(_mm256_adds_epi16(luma1, _mm256_maddubs_epi16(bCoef, uv1)), shift6);
    const __m256i g0 = _mm256_mulhi_epi16(_mm256_sub_epi16(luma0, _mm256_maddubs_epi16(gCoef, uv0)), shift6);
    const __m256i g1 = _mm256_mulhi_epi16(_mm256_sub_epi16(luma1, _mm256_maddubs_epi16(gCoef, uv1)), shift6);
    const __m256i r0 = _mm256_mulhi_epi16(_mm256_add_epi16(luma0, _mm256_maddubs_epi16(rCoef, uv0)), shift6);
    const __m256i r1 = _mm256_mulhi_epi16(_mm256_add_epi16(luma1, _mm256_maddubs_epi16(rCoef, uv1)), shift6);
    const __m256i b = _mm256_packus_epi16(b0, b1), g = _mm256_packus_epi16(g0, g1), r = _mm256_packus_epi16(r0, r1);
    const __m256i bgLo = _mm256_unpacklo_epi8(b, g), raLo = _mm256_unpacklo_epi8(r, opaque);
    __m256i* out = reinterpret_cast<__m256i*>(dst);
    _mm256_storeu_si256(out + 0, _mm256_unpacklo_epi16(bgLo, raLo));
    _mm256_storeu_si256(out + 1, _mm256_unpackhi_epi16(bgLo, raLo));
    if (count == 32) {
      const __m256i bgHi = _mm256_unpackhi_epi8(b, g), raHi = _mm256_unpackhi_epi8(r, opaque);
      _mm256_storeu_si256(out + 2, _mm256_unpacklo_epi16(bgHi, raHi));
      _mm256_storeu_si256(out + 3, _mm256_unpackhi_epi16(bgHi, raHi));
    }
  };

  int32_t x = 0;
  for (; x + 32 <= width; x += 32) {
    convert(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y + x)),
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(u + x / 2))),
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(v + x / 2))), bgra + 4 * x,
            32);
  }
  if (x + 16 <= width) {
    // Half a step: luma dwords 0-3 and chroma 0-7 are all the first 16 pixels use.
    convert(_mm256_zextsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x))),
            _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(u + x / 2))),
            _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(v + x / 2))), bgra + 4 * x, 16);
    x += 16;
  }
  I422ToBgraRow_c(y + x, u + x / 2, v + x / 2, bgra + 4 * x, width - x);
}

}  // namespace Lumaforge::avx2
