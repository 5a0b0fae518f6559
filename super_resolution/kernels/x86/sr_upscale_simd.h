// Vector form of the standard 2x upscaler. The horizontal pass makes eight
// source columns' sixteen outputs at a time: each phase is three byte-pair
// multiply-adds of the blended row with its taps (partial sums stay within
// 16 bits: the taps' magnitudes add up to at most 102). The vertical pass
// makes eight outputs at a time from six rows of the first pass with 32-bit
// multiply-adds of row pairs. Runs of eight never cross a quantiser block
// (16 or 8 source columns), so one table row serves each run; columns whose
// taps reach past the plane take the shared per-output code.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_UPSCALE_SIMD_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_UPSCALE_SIMD_H_

#include <immintrin.h>

#include <cstring>

#include "super_resolution/kernels/sr_upscale.h"
#include "super_resolution/kernels/sr_upscale_rows.h"

namespace Lumaforge::x86 {
namespace {

using namespace sr_rows;

// Taps a, a + 1 as one signed byte pair per 16-bit lane.
inline __m128i BytePair(const int32_t* taps, int32_t a) {
  return _mm_set1_epi16(static_cast<int16_t>((taps[a] & 0xFF) | (taps[a + 1] << 8)));
}
inline __m128i WordPair(const int32_t* taps, int32_t b) {
  return _mm_set1_epi32((taps[b] & 0xFFFF) | (taps[b + 1] * 65536));
}

// One phase of eight outputs: sum over a of taps[a] * row[x + a + first].
inline __m128i Phase8(const uint8_t* row, int32_t x, int32_t first, const int32_t* taps) {
  __m128i sum = _mm_setzero_si128();
  for (int32_t a = 0; a < kSrStandardTaps; a += 2) {
    const __m128i s0 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + x + first + a));
    const __m128i s1 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + x + first + a + 1));
    sum = _mm_add_epi16(sum, _mm_maddubs_epi16(_mm_unpacklo_epi8(s0, s1), BytePair(taps, a)));
  }
  return sum;
}

inline void BlendRow(const uint8_t* row, const uint8_t* before, int32_t width, uint8_t* blended) {
  int32_t x = 0;
  const __m128i two = _mm_set1_epi8(2);
  for (; x + 16 <= width; x += 16) {
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + x));
    const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(before + x));
    const __m128i distance = _mm_or_si128(_mm_subs_epu8(c, p), _mm_subs_epu8(p, c));
    const __m128i near = _mm_cmpeq_epi8(_mm_subs_epu8(distance, two), _mm_setzero_si128());
    const __m128i result = _mm_or_si128(_mm_and_si128(near, _mm_avg_epu8(c, p)), _mm_andnot_si128(near, c));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(blended + x), result);
  }
  for (; x < width; ++x) blended[x] = Blended(row[x], before[x]);
}

// Eight outputs of one vertical run: sum over b of taps[b] * rows[b][X..X+7].
inline __m128i Vertical8(const int16_t* const rows[kSrStandardTaps], int32_t X, const int32_t taps[kSrStandardTaps]) {
  __m128i lo = _mm_set1_epi32(2048), hi = lo;
  for (int32_t b = 0; b < kSrStandardTaps; b += 2) {
    const __m128i r0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[b] + X));
    const __m128i r1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[b + 1] + X));
    const __m128i pair = WordPair(taps, b);
    lo = _mm_add_epi32(lo, _mm_madd_epi16(_mm_unpacklo_epi16(r0, r1), pair));
    hi = _mm_add_epi32(hi, _mm_madd_epi16(_mm_unpackhi_epi16(r0, r1), pair));
  }
  const __m128i words = _mm_packs_epi32(_mm_srai_epi32(lo, 12), _mm_srai_epi32(hi, 12));
  return _mm_packus_epi16(words, words);
}

#if defined(__AVX2__)
// Sixteen source columns as two lanes of eight, each lane with the taps of
// its own quantiser block: one phase of sixteen outputs.
inline __m256i Phase16(const uint8_t* row, int32_t x, int32_t first, const int32_t tapsA[kSrStandardTaps],
                       const int32_t tapsB[kSrStandardTaps]) {
  auto halves = [&](int32_t at) {
    const __m128i a = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + at));
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + at + 8));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(a), b, 1);
  };
  __m256i sum = _mm256_setzero_si256();
  for (int32_t a = 0; a < kSrStandardTaps; a += 2) {
    const __m256i s0 = halves(x + first + a), s1 = halves(x + first + a + 1);
    const __m256i pair = _mm256_inserti128_si256(_mm256_castsi128_si256(BytePair(tapsA, a)), BytePair(tapsB, a), 1);
    sum = _mm256_add_epi16(sum, _mm256_maddubs_epi16(_mm256_unpacklo_epi8(s0, s1), pair));
  }
  return sum;
}

// Sixteen outputs of one vertical run (one quantiser block).
inline __m128i Vertical16(const int16_t* const rows[kSrStandardTaps], int32_t X, const int32_t taps[kSrStandardTaps]) {
  __m256i lo = _mm256_set1_epi32(2048), hi = lo;
  for (int32_t b = 0; b < kSrStandardTaps; b += 2) {
    const __m256i r0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[b] + X));
    const __m256i r1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[b + 1] + X));
    const __m256i pair = _mm256_broadcastsi128_si256(WordPair(taps, b));
    lo = _mm256_add_epi32(lo, _mm256_madd_epi16(_mm256_unpacklo_epi16(r0, r1), pair));
    hi = _mm256_add_epi32(hi, _mm256_madd_epi16(_mm256_unpackhi_epi16(r0, r1), pair));
  }
  // Within each lane the packs keep column order; the two lanes' low halves
  // hold columns X..X+7 and X+8..X+15.
  const __m256i words = _mm256_packs_epi32(_mm256_srai_epi32(lo, 12), _mm256_srai_epi32(hi, 12));
  const __m256i bytes = _mm256_packus_epi16(words, words);
  return _mm256_castsi256_si128(_mm256_permute4x64_epi64(bytes, 0x08));
}
#endif

// kWide: 16-column runs (AVX2) before the 8-column ones.
template <bool kWide>
void SrStandard2x(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst, int32_t dstStride,
                  const SrQpMap& qp, const uint8_t* previous, int32_t previousStride, int32_t detailDivisor,
                  const SrStandardTable& table, int16_t* scratch) {
  auto* blended = reinterpret_cast<uint8_t*>(scratch + static_cast<size_t>(height) * 2 * width);
  const bool temporal = previous && previousStride != 0;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    BlendRow(row, temporal ? previous + static_cast<ptrdiff_t>(y) * previousStride : row, width, blended);
    int16_t* out = scratch + static_cast<size_t>(y) * 2 * width;
    int32_t x = 0;
    auto scalar = [&](int32_t end) {
      for (; x < end; ++x) {
        const int32_t e = EntryAt(qp, x, y, detailDivisor);
        for (int32_t i = 0; i < 2; ++i) out[2 * x + i] = HorizontalOutput(blended, width, x, i, table.rows[e][i]);
      }
    };
    // Vector runs start at column 8 (their taps reach three left) and end
    // where the taps would reach past the last column.
    scalar(width < 8 ? width : 8);
#if defined(__AVX2__)
    for (; kWide && x + 16 + 3 <= width; x += 16) {
      int32_t left[2][kSrStandardTaps], right[2][kSrStandardTaps];
      for (int32_t h = 0; h < 2; ++h) {
        const int32_t e = EntryAt(qp, x + 8 * h, y, detailDivisor);
        SrStandardTaps(table.rows[e][0], 0, left[h]);
        SrStandardTaps(table.rows[e][1], 0, right[h]);
      }
      const __m256i l = Phase16(blended, x, -3, left[0], left[1]);
      const __m256i r = Phase16(blended, x, -2, right[0], right[1]);
      const __m256i lo = _mm256_unpacklo_epi16(l, r), hi = _mm256_unpackhi_epi16(l, r);
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 2 * x), _mm256_permute2x128_si256(lo, hi, 0x20));
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 2 * x + 16), _mm256_permute2x128_si256(lo, hi, 0x31));
    }
#endif
    for (; x + 8 + 3 <= width; x += 8) {
      const int32_t e = EntryAt(qp, x, y, detailDivisor);
      int32_t left[kSrStandardTaps], right[kSrStandardTaps];
      SrStandardTaps(table.rows[e][0], 0, left);
      SrStandardTaps(table.rows[e][1], 0, right);
      const __m128i l = Phase8(blended, x, -3, left), r = Phase8(blended, x, -2, right);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * x), _mm_unpacklo_epi16(l, r));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * x + 8), _mm_unpackhi_epi16(l, r));
    }
    scalar(width);
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t j = 0; j < 2; ++j) {
      const int16_t* rows[kSrStandardTaps];
      FirstPassRows(scratch, y, j, width, height, rows);
      uint8_t* out = dst + static_cast<ptrdiff_t>(2 * y + j) * dstStride;
      int32_t X = 0;
      int32_t taps[kSrStandardTaps];
#if defined(__AVX2__)
      for (; kWide && X + 16 <= 2 * width; X += 16) {
        SrStandardTaps(table.rows[EntryAt(qp, X >> 1, y, detailDivisor)][2 * j], 1, taps);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + X), Vertical16(rows, X, taps));
      }
#endif
      for (; X + 8 <= 2 * width; X += 8) {
        SrStandardTaps(table.rows[EntryAt(qp, X >> 1, y, detailDivisor)][2 * j], 1, taps);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + X), Vertical8(rows, X, taps));
      }
      for (; X < 2 * width; ++X)
        out[X] = VerticalOutput(rows, X, table.rows[EntryAt(qp, X >> 1, y, detailDivisor)][2 * j]);
    }
  }
}

// Eight 1.5x first-pass sums of one phase: for m = m0 .. m0 + 7, the six
// taps over source samples 2m + first .. 2m + first + 5. Each tap pair reads
// one sixteen-byte run whose byte pairs are exactly those samples' pairs.
// `low` and `high` are the taps of m0 .. m0 + 3 and m0 + 4 .. m0 + 7 (chroma
// quantiser blocks span four values of m).
inline __m128i Phase15Sums(const uint8_t* row, int32_t m0, int32_t first, const sr_taps::Taps6& low,
                           const sr_taps::Taps6& high) {
  __m128i sum = _mm_setzero_si128();
  for (int32_t a = 0; a < kSrStandardTaps; a += 2) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 2 * m0 + first + a));
    const __m128i pairs = _mm_unpacklo_epi64(BytePair(low.data(), a), BytePair(high.data(), a));
    sum = _mm_add_epi16(sum, _mm_maddubs_epi16(bytes, pairs));
  }
  return sum;
}

// Second-pass taps of eight outputs X .. X + 7 as word pairs per lane: one
// set when they share a quantiser block, else per output.
template <typename TapsAt>
inline void VerticalPairs15(int32_t X, int32_t Y, int32_t width, int32_t height, const TapsAt& tapsAt,
                            __m128i pairs[3][2]) {
  const sr_taps::Taps6 first = VerticalTaps15(X, Y, width, height, tapsAt);
  const sr_taps::Taps6 last = VerticalTaps15(X + 7, Y, width, height, tapsAt);
  if (first == last) {
    for (int32_t b = 0; b < kSrStandardTaps; b += 2) pairs[b / 2][0] = pairs[b / 2][1] = WordPair(first.data(), b);
    return;
  }
  alignas(16) int32_t lanes[3][8];
  for (int32_t i = 0; i < 8; ++i) {
    const sr_taps::Taps6 t = VerticalTaps15(X + i, Y, width, height, tapsAt);
    for (int32_t b = 0; b < kSrStandardTaps; b += 2) lanes[b / 2][i] = (t[b] & 0xFFFF) | (t[b + 1] * 65536);
  }
  for (int32_t p = 0; p < 3; ++p) {
    pairs[p][0] = _mm_load_si128(reinterpret_cast<const __m128i*>(lanes[p]));
    pairs[p][1] = _mm_load_si128(reinterpret_cast<const __m128i*>(lanes[p] + 4));
  }
}

// kWide: sixteen outputs down the columns at a time (AVX2) where one set of
// taps serves them.
template <bool kWide, typename TapsAt>
void Separable15(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst, int32_t dstStride,
                 int16_t* scratch, const TapsAt& tapsAt) {
  const int32_t outWidth = 3 * width / 2, outHeight = 3 * height / 2;
  // Phase q of output 3m + q: its taps' phase and where they start from 2m.
  static constexpr int32_t kPhase[3] = {2, 1, 0}, kFirst[3] = {-3, -2, -1};
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    int16_t* out = scratch + static_cast<size_t>(y) * outWidth;
    // Vector runs of eight m from m = 8 (their taps reach three samples left
    // of 2m) while the last sample read, 2m + 18, lies inside the row.
    int32_t X = 0;
    const int32_t vectorStart = outWidth < 24 ? outWidth : 24;
    for (; X < vectorStart; ++X) out[X] = HorizontalOutput15(row, width, X, y, tapsAt);
    for (int32_t m0 = 8; 2 * m0 + 19 <= width; m0 += 8, X += 24) {
      alignas(16) int16_t sums[3][8];
      for (int32_t q = 0; q < 3; ++q) {
        const sr_taps::Taps6 low = tapsAt(kPhase[q], 2 * m0, y), high = tapsAt(kPhase[q], 2 * m0 + 8, y);
        _mm_store_si128(reinterpret_cast<__m128i*>(sums[q]), Phase15Sums(row, m0, kFirst[q], low, high));
      }
      for (int32_t i = 0; i < 8; ++i) {
        for (int32_t q = 0; q < 3; ++q) out[3 * (m0 + i) + q] = sums[q][i];
      }
    }
    for (; X < outWidth; ++X) out[X] = HorizontalOutput15(row, width, X, y, tapsAt);
  }
  for (int32_t Y = 0; Y < outHeight; ++Y) {
    const int16_t* rows[kSrStandardTaps];
    FirstPassRows15(scratch, Y, outWidth, height, rows);
    uint8_t* out = dst + static_cast<ptrdiff_t>(Y) * dstStride;
    int32_t X = 0;
#if defined(__AVX2__)
    // Sixteen outputs at once where they share their taps.
    while (kWide && X + 16 <= outWidth) {
      const sr_taps::Taps6 taps = VerticalTaps15(X, Y, width, height, tapsAt);
      if (taps != VerticalTaps15(X + 15, Y, width, height, tapsAt)) break;
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + X), Vertical16(rows, X, taps.data()));
      X += 16;
    }
#endif
    for (; X + 8 <= outWidth; X += 8) {
      __m128i pairs[3][2];
      VerticalPairs15(X, Y, width, height, tapsAt, pairs);
      __m128i lo = _mm_set1_epi32(2048), hi = lo;
      for (int32_t b = 0; b < kSrStandardTaps; b += 2) {
        const __m128i r0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[b] + X));
        const __m128i r1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[b + 1] + X));
        lo = _mm_add_epi32(lo, _mm_madd_epi16(_mm_unpacklo_epi16(r0, r1), pairs[b / 2][0]));
        hi = _mm_add_epi32(hi, _mm_madd_epi16(_mm_unpackhi_epi16(r0, r1), pairs[b / 2][1]));
      }
      const __m128i words = _mm_packs_epi32(_mm_srai_epi32(lo, 12), _mm_srai_epi32(hi, 12));
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out + X), _mm_packus_epi16(words, words));
    }
    for (; X < outWidth; ++X) out[X] = VerticalOutput15(rows, X, VerticalTaps15(X, Y, width, height, tapsAt));
  }
}

template <bool kWide>
void SrStandard15(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst, int32_t dstStride,
                  const SrQpMap& qp, int32_t strength, int32_t /*chroma*/, int16_t* scratch) {
  Separable15<kWide>(src, srcStride, width, height, dst, dstStride, scratch, StandardTaps15{qp, strength});
}

template <bool kWide>
void SrAlternative15(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                     int32_t dstStride, int16_t* scratch) {
  Separable15<kWide>(src, srcStride, width, height, dst, dstStride, scratch, AlternativeTaps15{});
}

#if defined(__SSE4_1__)
// The two-pass 2x at eight outputs a step: the cubic taps as six-tap windows
// with zero ends (so the standard 2x runs serve both passes), then the
// linear blend, the cored detail and its gain in 32 bits.
inline void SrTwoPass(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                      int32_t dstStride, int32_t gain, int32_t threshold, int32_t last, int16_t* scratch) {
  const int32_t* kLeft = kTwoPassLeft;
  const int32_t* kRight = kTwoPassRight;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = src + static_cast<ptrdiff_t>(y) * srcStride;
    int16_t* out = scratch + static_cast<size_t>(y) * 2 * width;
    int32_t x = 0;
    auto scalar = [&](int32_t end) {
      for (; x < end; ++x)
        out[2 * x] = TwoPassAcross(row, width, x, 0), out[2 * x + 1] = TwoPassAcross(row, width, x, 1);
    };
    scalar(width < 8 ? width : 8);
    for (; x + 8 + 3 <= width; x += 8) {
      const __m128i l = Phase8(row, x, -3, kLeft), r = Phase8(row, x, -2, kRight);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * x), _mm_unpacklo_epi16(l, r));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * x + 8), _mm_unpackhi_epi16(l, r));
    }
    scalar(width);
  }
  const __m128i limit = _mm_set1_epi32(threshold * 64), gains = _mm_set1_epi32(gain);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t j = 0; j < 2; ++j) {
      const int16_t* rows[kSrStandardTaps];
      FirstPassRows(scratch, y, j, width, height, rows);
      // The nearest first-pass row (y) and the next one toward the output.
      int32_t blend[kSrStandardTaps] = {};
      blend[3 - j] = 48;
      blend[j ? 3 : 2] = 16;
      const int32_t* cubic = j ? kRight : kLeft;
      uint8_t* out = dst + static_cast<ptrdiff_t>(2 * y + j) * dstStride;
      int32_t X = 0;
      for (; X + 4 <= 2 * width; X += 4) {
        __m128i sum = _mm_setzero_si128(), linear = _mm_setzero_si128();
        for (int32_t b = 0; b < kSrStandardTaps; b += 2) {
          const __m128i r0 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows[b] + X));
          const __m128i r1 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows[b + 1] + X));
          const __m128i pairs = _mm_unpacklo_epi16(r0, r1);
          sum = _mm_add_epi32(sum, _mm_madd_epi16(pairs, WordPair(cubic, b)));
          linear = _mm_add_epi32(linear, _mm_madd_epi16(pairs, WordPair(blend, b)));
        }
        __m128i detail = _mm_sub_epi32(sum, linear);
        if (!last)
          detail =
              _mm_and_si128(detail, _mm_cmplt_epi32(_mm_sub_epi32(limit, _mm_set1_epi32(1)), _mm_abs_epi32(detail)));
        // detail * gain / 16, rounded toward zero as the plain division.
        const __m128i scaled = _mm_mullo_epi32(detail, gains);
        const __m128i toward = _mm_add_epi32(scaled, _mm_and_si128(_mm_srai_epi32(scaled, 31), _mm_set1_epi32(15)));
        const __m128i total = _mm_add_epi32(_mm_add_epi32(linear, _mm_srai_epi32(toward, 4)), _mm_set1_epi32(2048));
        const __m128i words = _mm_packs_epi32(_mm_srai_epi32(total, 12), _mm_setzero_si128());
        const int32_t four = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out + X, &four, 4);
      }
      for (; X < 2 * width; ++X) out[X] = TwoPassDown(rows, X, j, gain, threshold, last);
    }
  }
}
#endif

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_UPSCALE_SIMD_H_
