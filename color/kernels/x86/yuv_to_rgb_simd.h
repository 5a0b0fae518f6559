// YUV to BGRA over a vector-width trait.
//
// All sums live in signed 16-bit lanes. (y - 16) * 74 is in [-1184, 17686],
// the R and G sums in [-14240, 30640] and [-10963, 27542], so only the B sum
// can pass 32767 (34069 at y = u = 255): it is added with saturation, and any
// sum >= 32767 still gives >= 511 after the shift, which packus clamps to 255
// exactly as the plain routine does. The shift is mulhi by 1 << 10: the high
// half of x * 2^10 is floor(x / 64), the arithmetic shift by 6, issued on
// the multiplier ports rather than beside the shuffles (a few percent faster
// than srai). packus_epi16 is the same clamp to 0..255.
//
// From SSSE3 on pmaddubsw forms the products, with one body for 128 and 256
// bits. Pack and unpack work within 128-bit lanes, so at 256 bits the
// pixels are brought in already permuted: with the words of one vector
// holding pixels 0-3, 8-11 | 4-7, 12-15 and of the other 16-19, 24-27 |
// 20-23, 28-31, one packus, one byte unpack and one word unpack per channel
// land on four stores of pixels 0-7, 8-15, 16-23, 24-31.
#include <immintrin.h>

#include "color/kernels/yuv_to_rgb.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

inline __m128i MulHigh16(__m128i a, __m128i b) { return _mm_mulhi_epi16(a, b); }
#if defined(__AVX2__)
inline __m256i MulHigh16(__m256i a, __m256i b) { return _mm256_mulhi_epi16(a, b); }
#endif

// Shifts, clamps and interleaves kBytes pixels (the sums of the first and
// the second half, in lane order) into B, G, R, 255 bytes.
template <typename T>
void StoreBgra(typename T::V b0, typename T::V b1, typename T::V g0, typename T::V g1, typename T::V r0,
               typename T::V r1, uint8_t* bgra) {
  using V = typename T::V;
  const V opaque = T::Set1Epi16(-1);
  const V shift6 = T::Set1Epi16(1 << 10);
  const V b = T::PackUs16Lanes(MulHigh16(b0, shift6), MulHigh16(b1, shift6));
  const V g = T::PackUs16Lanes(MulHigh16(g0, shift6), MulHigh16(g1, shift6));
  const V r = T::PackUs16Lanes(MulHigh16(r0, shift6), MulHigh16(r1, shift6));
  const V bgLo = T::UnpackLow8(b, g), bgHi = T::UnpackHigh8(b, g);
  const V raLo = T::UnpackLow8(r, opaque), raHi = T::UnpackHigh8(r, opaque);
  T::Store(bgra, UnpackLow16(bgLo, raLo));
  T::Store(bgra + T::kBytes, UnpackHigh16(bgLo, raLo));
  T::Store(bgra + 2 * T::kBytes, UnpackLow16(bgHi, raHi));
  T::Store(bgra + 3 * T::kBytes, UnpackHigh16(bgHi, raHi));
}

#if defined(__SSSE3__)

// A pmaddubsw operand holding `lo` in the even and `hi` in the odd bytes.
constexpr int16_t BytePair(int lo, int hi) { return static_cast<int16_t>((hi << 8) | (lo & 0xff)); }

inline __m128i AddSaturate16(__m128i a, __m128i b) { return _mm_adds_epi16(a, b); }

// Luma 0-15 and the signed (u - 128, v - 128) pair of each pixel, pixels
// 0-7 in uv0 and 8-15 in uv1.
inline void LoadPixels(const uint8_t* y, const uint8_t* u, const uint8_t* v, __m128i* ys, __m128i* uv0, __m128i* uv1) {
  *ys = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y));
  const __m128i us = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(u));
  const __m128i vs = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(v));
  const __m128i uv = _mm_xor_si128(_mm_unpacklo_epi8(us, vs), _mm_set1_epi8(-128));
  *uv0 = _mm_unpacklo_epi16(uv, uv);
  *uv1 = _mm_unpackhi_epi16(uv, uv);
}

#if defined(__AVX2__)
inline __m256i AddSaturate16(__m256i a, __m256i b) { return _mm256_adds_epi16(a, b); }

// Luma 0-31 with its 4-pixel groups 0, 2, 4, 6 in the low lane and 1, 3, 5,
// 7 in the high one; chroma pairs in the same pixel order.
inline void LoadPixels(const uint8_t* y, const uint8_t* u, const uint8_t* v, __m256i* ys, __m256i* uv0, __m256i* uv1) {
  *ys = _mm256_permutevar8x32_epi32(Vec256::Load(y), _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
  // u0-7 (bytes 0-7) and v0-7 (bytes 8-15) in both lanes to the (u, v) pair
  // of every pixel: chroma 0,0,1,1,4,4,5,5 | 2,2,3,3,6,6,7,7.
  const __m256i chromaOrder = _mm256_setr_epi8(0, 8, 0, 8, 1, 9, 1, 9, 4, 12, 4, 12, 5, 13, 5, 13,  //
                                               2, 10, 2, 10, 3, 11, 3, 11, 6, 14, 6, 14, 7, 15, 7, 15);
  const __m256i signFlip = _mm256_set1_epi8(-128);
  const __m256i us = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(u)));
  const __m256i vs = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(v)));
  *uv0 = _mm256_shuffle_epi8(_mm256_xor_si256(_mm256_unpacklo_epi64(us, vs), signFlip), chromaOrder);
  *uv1 = _mm256_shuffle_epi8(_mm256_xor_si256(_mm256_unpackhi_epi64(us, vs), signFlip), chromaOrder);
}
#endif

// Luma pairs (y, 16) times (74, -74) give (y - 16) * 74; chroma pairs
// (u - 128, v - 128) as signed bytes times unsigned coefficients give each
// chroma term exactly (|sum| <= 16512, no pmaddubsw saturation).
template <typename T>
void I422ToBgraRow(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width) {
  using V = typename T::V;
  const V sixteen = T::Set1Epi16(0x1010);
  const V yCoef = T::Set1Epi16(BytePair(74, -74));
  const V bCoef = T::Set1Epi16(BytePair(129, 0));
  const V gCoef = T::Set1Epi16(BytePair(25, 52));
  const V rCoef = T::Set1Epi16(BytePair(0, 102));
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t x) {
        V ys, uv0, uv1;
        LoadPixels(y + x, u + x / 2, v + x / 2, &ys, &uv0, &uv1);
        const V luma0 = MulAddBytes(T::UnpackLow8(ys, sixteen), yCoef);
        const V luma1 = MulAddBytes(T::UnpackHigh8(ys, sixteen), yCoef);
        StoreBgra<T>(AddSaturate16(luma0, MulAddBytes(bCoef, uv0)), AddSaturate16(luma1, MulAddBytes(bCoef, uv1)),
                     T::Sub16(luma0, MulAddBytes(gCoef, uv0)), T::Sub16(luma1, MulAddBytes(gCoef, uv1)),
                     T::Add16(luma0, MulAddBytes(rCoef, uv0)), T::Add16(luma1, MulAddBytes(rCoef, uv1)), bgra + 4 * x);
      },
      [&](int32_t x) { I422ToBgraRow_c(y + x, u + x / 2, v + x / 2, bgra + 4 * x, width - x); });
}

#endif  // __SSSE3__

}  // namespace
}  // namespace Lumaforge::x86
