// RGB to YUV over a vector-width trait. From SSSE3 on pmaddubsw does the
// widening multiply-adds, with one body for 128 and 256 bits: the shuffles,
// horizontal adds and packs act per 128-bit lane, so at 256 bits each
// kernel restores sample order once, just before its stores.
//
// Chroma numerators are formed with the coefficients scaled by
// 2^(16 - shift), so each sample lands in the high half of its 32-bit lane
// for both the 4:2:0 (shift 10) and the 4:2:2 (shift 9) rows; the bias is
// the rounding term plus (128 << shift), scaled alike, and keeps every lane
// positive.
#include <immintrin.h>

#include "color/kernels/rgb_to_yuv.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

// (512 + (128 << 10)) << 6 == (256 + (128 << 9)) << 7.
constexpr int32_t kChromaBias = 8421376;

// The scale that puts a sample of the given shift in the high 16 bits.
constexpr int16_t ChromaScale(int kShift) { return static_cast<int16_t>(1 << (16 - kShift)); }

// The U samples of eight blocks in the low half, the V samples in the high
// half, from the biased, scaled numerators of blocks 0-3 and 4-7; samples
// lie in 16..240, so neither pack saturates.
inline __m128i PackUV(__m128i u0, __m128i u1, __m128i v0, __m128i v1) {
  return _mm_packus_epi16(_mm_packs_epi32(_mm_srli_epi32(u0, 16), _mm_srli_epi32(u1, 16)),
                          _mm_packs_epi32(_mm_srli_epi32(v0, 16), _mm_srli_epi32(v1, 16)));
}

// Sixteen U and sixteen V samples from two packed vectors.
inline void StoreUV(__m128i first, __m128i second, uint8_t* u, uint8_t* v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(u), _mm_unpacklo_epi64(first, second));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(v), _mm_unpackhi_epi64(first, second));
}

#if defined(__AVX2__)
// Sixteen blocks: u0 holds the numerators of blocks 0 1 4 5 | 2 3 6 7 and u1
// the same plus 8 (the lane order of the sums). The samples of u0 go to the
// low halves, next to those of u1, so one pack leaves, per lane, U then V
// of blocks 0 8 1 9 4 12 5 13 | 2 10 3 11 6 14 7 15.
inline __m256i PackUV(__m256i u0, __m256i u1, __m256i v0, __m256i v1) {
  return _mm256_packus_epi16(_mm256_blend_epi16(_mm256_srli_epi32(u0, 16), u1, 0xAA),
                             _mm256_blend_epi16(_mm256_srli_epi32(v0, 16), v1, 0xAA));
}

// Thirty-two U and V samples from two packed vectors: the lanes of both
// are regrouped by plane, then one shuffle per plane restores block order.
inline void StoreUV(__m256i first, __m256i second, uint8_t* u, uint8_t* v) {
  const __m256i low = _mm256_permute2x128_si256(first, second, 0x20);
  const __m256i high = _mm256_permute2x128_si256(first, second, 0x31);
  const __m256i order = _mm256_setr_epi8(0, 2, 8, 10, 4, 6, 12, 14, 1, 3, 9, 11, 5, 7, 13, 15,  //
                                         0, 2, 8, 10, 4, 6, 12, 14, 1, 3, 9, 11, 5, 7, 13, 15);
  Vec256::Store(u, _mm256_shuffle_epi8(_mm256_unpacklo_epi64(low, high), order));
  Vec256::Store(v, _mm256_shuffle_epi8(_mm256_unpackhi_epi64(low, high), order));
}
#endif

#if defined(__SSSE3__)

template <typename T>
typename T::V WordPair(int16_t lo, int16_t hi) {
  return Lanes<T>(_mm_set1_epi32(
      static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(hi)) << 16 | static_cast<uint16_t>(lo))));
}

inline __m128i MulAdd16(__m128i a, __m128i b) { return _mm_madd_epi16(a, b); }
inline __m128i HorizontalAdd16(__m128i a, __m128i b) { return _mm_hadd_epi16(a, b); }

#if defined(__AVX2__)
inline __m256i MulAdd16(__m256i a, __m256i b) { return _mm256_madd_epi16(a, b); }
inline __m256i HorizontalAdd16(__m256i a, __m256i b) { return _mm256_hadd_epi16(a, b); }
#endif

// Luma numerator of four pixels less 28160, two 16-bit partials per pixel.
// The coefficients are the unsigned operand and the pixels, flipped to
// p - 128, the signed one, so 129 is representable and
// 25 (B - 128) + 129 (G - 128) stays within int16 without saturating.
template <typename T>
typename T::V LumaPartials(typename T::V px) {
  const typename T::V coef = Lanes<T>(_mm_set1_epi32(66 << 16 | 129 << 8 | 25));
  return MulAddBytes(coef, Xor(px, Lanes<T>(_mm_set1_epi8(static_cast<char>(0x80)))));
}

// phaddw adds the partials to N - 28160 with N the plain numerator; adding
// 32384 gives N + 128 + (16 << 8) <= 60324, exact as an unsigned 16-bit
// lane, so a logical shift yields Y.
template <typename T>
void BgraToYRow(const uint8_t* bgra, uint8_t* y, int32_t width) {
  using V = typename T::V;
  const V bias = T::Set1Epi16(32384);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const uint8_t* p = bgra + 4 * i;
        // At 256 bits lo holds, per lane, pixels 0-3 8-11 | 4-7 12-15, hi the same plus 16.
        const V lo = HorizontalAdd16(LumaPartials<T>(T::Load(p)), LumaPartials<T>(T::Load(p + T::kBytes)));
        const V hi =
            HorizontalAdd16(LumaPartials<T>(T::Load(p + 2 * T::kBytes)), LumaPartials<T>(T::Load(p + 3 * T::kBytes)));
        T::Store(y + i, GatherWords(T::PackUs16Lanes(T::template ShiftRight16<8>(T::Add16(lo, bias)),
                                                     T::template ShiftRight16<8>(T::Add16(hi, bias)))));
      },
      [&](int32_t i) { BgraToYRow_c(bgra + 4 * i, y + i, width - i); });
}

// Orders each 4-pixel group as B0 B1 R0 R1 B2 B3 R2 R3 G0 G1 G0 G1 G2 G3 G2 G3,
// so that pmaddubsw by ones yields (sB, sR) of both pairs in the low half
// and (sG, sG) in the high half.
template <typename T>
typename T::V PairSums(typename T::V px) {
  const typename T::V order = Lanes<T>(_mm_setr_epi8(0, 4, 2, 6, 8, 12, 10, 14, 1, 5, 1, 5, 9, 13, 9, 13));
  return MulAddBytes(ShuffleBytes(px, order), Lanes<T>(_mm_set1_epi8(1)));
}

// Pair sums of one row (4:2:2), or of two rows added (4:2:0): at most 510
// per row, 1020 for a 2x2 block.
template <typename T, bool kTwoRows>
typename T::V BlockSums(const uint8_t* a, const uint8_t* b) {
  if constexpr (kTwoRows) {
    return T::Add16(PairSums<T>(T::Load(a)), PairSums<T>(T::Load(b)));
  } else {
    return PairSums<T>(T::Load(a));
  }
}

// (sG - sB, sG - sR) of kBytes / 2 blocks in 16-bit pairs: blocks 0 1 4 5
// | 2 3 6 7 at 256 bits (the lane order of the sums), 0-3 at 128 bits, and
// the same plus kBytes / 4 in the second vector.
template <typename T>
struct Differences {
  typename T::V d0, d1;
};

template <typename T, bool kTwoRows>
[[gnu::always_inline]] inline Differences<T> BlockDifferences(const uint8_t* a, const uint8_t* b) {
  using V = typename T::V;
  constexpr int32_t k = T::kBytes;
  const V s0 = BlockSums<T, kTwoRows>(a, b), s1 = BlockSums<T, kTwoRows>(a + k, b + k);
  const V s2 = BlockSums<T, kTwoRows>(a + 2 * k, b + 2 * k), s3 = BlockSums<T, kTwoRows>(a + 3 * k, b + 3 * k);
  return {T::Sub16(UnpackHigh64(s0, s1), UnpackLow64(s0, s1)), T::Sub16(UnpackHigh64(s2, s3), UnpackLow64(s2, s3))};
}

// kBytes / 2 U and V samples, packed, from the differences of their
// blocks. With d = (sG - sB, sG - sR) per block,
//   112 sB - 74 sG - 38 sR = -112 (sG - sB) + 38 (sG - sR)
//   112 sR - 94 sG - 18 sB =   18 (sG - sB) - 112 (sG - sR)
// so one pmaddwd per plane forms each exact 32-bit numerator.
template <typename T, int kShift>
[[gnu::always_inline]] inline typename T::V ChromaSamples(const Differences<T>& d) {
  using V = typename T::V;
  constexpr int16_t kScale = ChromaScale(kShift);
  const V uCoef = WordPair<T>(-112 * kScale, 38 * kScale), vCoef = WordPair<T>(18 * kScale, -112 * kScale);
  const V bias = Lanes<T>(_mm_set1_epi32(kChromaBias));
  return PackUV(Add32(MulAdd16(d.d0, uCoef), bias), Add32(MulAdd16(d.d1, uCoef), bias),
                Add32(MulAdd16(d.d0, vCoef), bias), Add32(MulAdd16(d.d1, vCoef), bias));
}

// Two vectors of pixels a step, both sums formed before the stores: the
// stores may alias the rows for all the compiler knows, so this is what
// keeps enough independent work in flight to cover the multiply and
// permute latencies; and the samples of both go out in one store per plane.
template <typename T, int kShift, bool kTwoRows>
void ChromaRow(const uint8_t* a, const uint8_t* b, uint8_t* u, uint8_t* v, int32_t width) {
  constexpr int32_t k = T::kBytes;
  ForEachStep<2 * k>(
      width,
      [&](int32_t i) {
        const Differences<T> first = BlockDifferences<T, kTwoRows>(a + 4 * i, b + 4 * i);
        const Differences<T> second = BlockDifferences<T, kTwoRows>(a + 4 * (i + k), b + 4 * (i + k));
        StoreUV(ChromaSamples<T, kShift>(first), ChromaSamples<T, kShift>(second), u + i / 2, v + i / 2);
      },
      [&](int32_t i) {
        if constexpr (kTwoRows) {
          BgraToUV420Row_c(a + 4 * i, b + 4 * i, u + i / 2, v + i / 2, width - i);
        } else {
          BgraToUV422Row_c(a + 4 * i, u + i / 2, v + i / 2, width - i);
        }
      });
}

template <typename T>
void BgraToUV420Row(const uint8_t* bgra0, const uint8_t* bgra1, uint8_t* u, uint8_t* v, int32_t width) {
  ChromaRow<T, 10, true>(bgra0, bgra1, u, v, width);
}

template <typename T>
void BgraToUV422Row(const uint8_t* bgra, uint8_t* u, uint8_t* v, int32_t width) {
  ChromaRow<T, 9, false>(bgra, bgra, u, v, width);
}

#endif  // __SSSE3__

}  // namespace
}  // namespace Lumaforge::x86
