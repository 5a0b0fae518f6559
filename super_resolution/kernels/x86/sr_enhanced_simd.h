// Vector form of the enhanced 2x kernel, written once over a double-lane
// trait: the 3x3 ranges of 16 pixels at a time with byte min/max (the
// flatness test), and each trained pixel's four positions as four double
// lanes, summed k = 0..8 in the plain routine's order so every lane lands on
// the plain routine's bits. Classification stays scalar per pixel.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_

#include <immintrin.h>

#include "super_resolution/kernels/sr_enhanced.h"
#include "super_resolution/kernels/sr_enhanced_rows.h"

namespace Lumaforge::x86 {
namespace {

using namespace sr_enhanced;

// Four doubles: two SSE2 registers.
struct Doubles128 {
  __m128d lo, hi;
  static Doubles128 Zero() { return {_mm_setzero_pd(), _mm_setzero_pd()}; }
  static Doubles128 Load(const double* p) { return {_mm_loadu_pd(p), _mm_loadu_pd(p + 2)}; }
  static Doubles128 MulAdd(Doubles128 acc, double p, Doubles128 w) {
    const __m128d s = _mm_set1_pd(p);
    return {_mm_add_pd(acc.lo, _mm_mul_pd(s, w.lo)), _mm_add_pd(acc.hi, _mm_mul_pd(s, w.hi))};
  }
  // Held to 0..255 (NaN to 0) and truncated, as SrClampToByte.
  static void ToBytes(Doubles128 v, int32_t out[4]) {
    const __m128d zero = _mm_setzero_pd(), top = _mm_set1_pd(255.0);
    const __m128i lo = _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(v.lo, zero), top));
    const __m128i hi = _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(v.hi, zero), top));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi64(lo, hi));
  }
};

#if defined(__AVX2__)
struct Doubles256 {
  __m256d v;
  static Doubles256 Zero() { return {_mm256_setzero_pd()}; }
  static Doubles256 Load(const double* p) { return {_mm256_loadu_pd(p)}; }
  static Doubles256 MulAdd(Doubles256 acc, double p, Doubles256 w) {
    return {_mm256_add_pd(acc.v, _mm256_mul_pd(_mm256_set1_pd(p), w.v))};
  }
  static void ToBytes(Doubles256 v, int32_t out[4]) {
    const __m256d held = _mm256_min_pd(_mm256_max_pd(v.v, _mm256_setzero_pd()), _mm256_set1_pd(255.0));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_cvttpd_epi32(held));
  }
};
#endif

// 3x3 ranges (max - min) of pixels x .. x + 15 of `rows`, which must have
// columns x - 1 .. x + 16.
inline void Ranges16(const RowTriple& rows, int32_t x, uint8_t* ranges) {
  __m128i lo = _mm_set1_epi8(-1), hi = _mm_setzero_si128();
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
    for (int32_t dx = -1; dx <= 1; ++dx) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + x + dx));
      lo = _mm_min_epu8(lo, v);
      hi = _mm_max_epu8(hi, v);
    }
  }
  _mm_storeu_si128(reinterpret_cast<__m128i*>(ranges), _mm_sub_epi8(hi, lo));
}

template <typename D>
void TrainedPixel(const uint8_t p[kSrTaps], const double* byTap, uint8_t* out0, uint8_t* out1, int32_t x) {
  D acc = D::Zero();
  for (int32_t k = 0; k < kSrTaps; ++k) acc = D::MulAdd(acc, p[k], D::Load(byTap + k * kSrPositions));
  alignas(16) int32_t block[4];
  D::ToBytes(acc, block);
  out0[2 * x] = static_cast<uint8_t>(block[0]);
  out0[2 * x + 1] = static_cast<uint8_t>(block[1]);
  out1[2 * x] = static_cast<uint8_t>(block[2]);
  out1[2 * x + 1] = static_cast<uint8_t>(block[3]);
}

// The variance level of each variance index, looked up instead of searched.
inline const uint8_t* LevelOfIndex() {
  static const auto table = [] {
    struct Table {
      uint8_t level[256];
    } t{};
    for (int32_t i = 0; i < 256; ++i) t.level[i] = static_cast<uint8_t>(SrVarianceLevel(i));
    return t;
  }();
  return table.level;
}

// Classes of pixels x .. x + 7 (columns x - 1 .. x + 8 must exist), as
// SrClass gives them: ranges, patterns and sums in 16-bit lanes, sums of
// squares in 32 bits, the variance in doubles in SrVarianceIndex's order.
inline void Classes8(const RowTriple& rows, int32_t x, int16_t* classes) {
  const __m128i zero = _mm_setzero_si128();
  __m128i v[kSrTaps];
  int32_t k = 0;
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
    for (int32_t dx = -1; dx <= 1; ++dx)
      v[k++] = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + x + dx)), zero);
  }
  __m128i lo = v[0], hi = v[0], sum = zero, squaresLo = zero, squaresHi = zero;
  for (k = 0; k < kSrTaps; ++k) {
    lo = _mm_min_epi16(lo, v[k]);
    hi = _mm_max_epi16(hi, v[k]);
    sum = _mm_add_epi16(sum, v[k]);
    const __m128i square = _mm_mullo_epi16(v[k], v[k]);  // below 2^16, unsigned
    squaresLo = _mm_add_epi32(squaresLo, _mm_unpacklo_epi16(square, zero));
    squaresHi = _mm_add_epi32(squaresHi, _mm_unpackhi_epi16(square, zero));
  }
  const __m128i threshold = _mm_srli_epi16(_mm_add_epi16(lo, hi), 1);
  __m128i pattern = zero;
  for (k = 0; k < kSrTaps; ++k)
    pattern = _mm_or_si128(pattern, _mm_and_si128(_mm_cmpgt_epi16(v[k], threshold), _mm_set1_epi16(1 << k)));
  const __m128i flat = _mm_cmplt_epi16(_mm_sub_epi16(hi, lo), _mm_set1_epi16(kSrFlatRange));
  alignas(16) int32_t sums[8], squares[8];
  _mm_store_si128(reinterpret_cast<__m128i*>(sums), _mm_unpacklo_epi16(sum, zero));
  _mm_store_si128(reinterpret_cast<__m128i*>(sums + 4), _mm_unpackhi_epi16(sum, zero));
  _mm_store_si128(reinterpret_cast<__m128i*>(squares), squaresLo);
  _mm_store_si128(reinterpret_cast<__m128i*>(squares + 4), squaresHi);
  alignas(16) int32_t index[8];
  const __m128d nine = _mm_set1_pd(9.0), scale = _mm_set1_pd(255.0), range = _mm_set1_pd(16244.0);
  for (int32_t i = 0; i < 8; i += 2) {
    const __m128d mean = _mm_div_pd(_mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(sums + i))), nine);
    const __m128d meanOfSquares =
        _mm_div_pd(_mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(squares + i))), nine);
    const __m128d variance = _mm_sub_pd(meanOfSquares, _mm_mul_pd(mean, mean));
    const __m128d scaled = _mm_max_pd(_mm_div_pd(_mm_mul_pd(variance, scale), range), _mm_setzero_pd());
    _mm_storel_epi64(reinterpret_cast<__m128i*>(index + i), _mm_cvttpd_epi32(scaled));
  }
  alignas(16) int16_t patterns[8], flats[8];
  _mm_store_si128(reinterpret_cast<__m128i*>(patterns), pattern);
  _mm_store_si128(reinterpret_cast<__m128i*>(flats), flat);
  const uint8_t* level = LevelOfIndex();
  for (int32_t i = 0; i < 8; ++i) {
    classes[i] = static_cast<int16_t>(flats[i] ? kSrFlatClass
                                               : patterns[i] * kSrLevels + level[index[i] < 255 ? index[i] : 255]);
  }
}

#if defined(__AVX2__)
// Classes8 at sixteen pixels (columns x - 1 .. x + 16 must exist).
inline void Classes16(const RowTriple& rows, int32_t x, int16_t* classes) {
  const __m256i zero = _mm256_setzero_si256();
  __m256i v[kSrTaps];
  int32_t k = 0;
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
    for (int32_t dx = -1; dx <= 1; ++dx)
      v[k++] = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row + x + dx)));
  }
  __m256i lo = v[0], hi = v[0], sum = zero, squaresLo = zero, squaresHi = zero;
  for (k = 0; k < kSrTaps; ++k) {
    lo = _mm256_min_epi16(lo, v[k]);
    hi = _mm256_max_epi16(hi, v[k]);
    sum = _mm256_add_epi16(sum, v[k]);
    const __m256i square = _mm256_mullo_epi16(v[k], v[k]);
    squaresLo = _mm256_add_epi32(squaresLo, _mm256_unpacklo_epi16(square, zero));
    squaresHi = _mm256_add_epi32(squaresHi, _mm256_unpackhi_epi16(square, zero));
  }
  const __m256i threshold = _mm256_srli_epi16(_mm256_add_epi16(lo, hi), 1);
  __m256i pattern = zero;
  for (k = 0; k < kSrTaps; ++k)
    pattern =
        _mm256_or_si256(pattern, _mm256_and_si256(_mm256_cmpgt_epi16(v[k], threshold), _mm256_set1_epi16(1 << k)));
  const __m256i flat = _mm256_cmpgt_epi16(_mm256_set1_epi16(kSrFlatRange), _mm256_sub_epi16(hi, lo));
  // The unpacks work within 128-bit lanes: pixels 0-3, 8-11 in the low
  // halves and 4-7, 12-15 in the high ones; put them back in pixel order.
  alignas(32) int32_t lowHalves[8], highHalves[8], sums[16], squares[16];
  _mm256_store_si256(reinterpret_cast<__m256i*>(lowHalves), _mm256_unpacklo_epi16(sum, zero));
  _mm256_store_si256(reinterpret_cast<__m256i*>(highHalves), _mm256_unpackhi_epi16(sum, zero));
  for (int32_t i = 0; i < 4; ++i) {
    sums[i] = lowHalves[i], sums[4 + i] = highHalves[i], sums[8 + i] = lowHalves[4 + i],
    sums[12 + i] = highHalves[4 + i];
  }
  _mm256_store_si256(reinterpret_cast<__m256i*>(lowHalves), squaresLo);
  _mm256_store_si256(reinterpret_cast<__m256i*>(highHalves), squaresHi);
  for (int32_t i = 0; i < 4; ++i) {
    squares[i] = lowHalves[i], squares[4 + i] = highHalves[i], squares[8 + i] = lowHalves[4 + i],
    squares[12 + i] = highHalves[4 + i];
  }
  alignas(16) int32_t index[16];
  const __m256d nine = _mm256_set1_pd(9.0), scale = _mm256_set1_pd(255.0), range = _mm256_set1_pd(16244.0);
  for (int32_t i = 0; i < 16; i += 4) {
    const __m256d mean =
        _mm256_div_pd(_mm256_cvtepi32_pd(_mm_load_si128(reinterpret_cast<const __m128i*>(sums + i))), nine);
    const __m256d meanOfSquares =
        _mm256_div_pd(_mm256_cvtepi32_pd(_mm_load_si128(reinterpret_cast<const __m128i*>(squares + i))), nine);
    const __m256d variance = _mm256_sub_pd(meanOfSquares, _mm256_mul_pd(mean, mean));
    const __m256d scaled = _mm256_max_pd(_mm256_div_pd(_mm256_mul_pd(variance, scale), range), _mm256_setzero_pd());
    _mm_store_si128(reinterpret_cast<__m128i*>(index + i), _mm256_cvttpd_epi32(scaled));
  }
  alignas(32) int16_t patterns[16], flats[16];
  _mm256_store_si256(reinterpret_cast<__m256i*>(patterns), pattern);
  _mm256_store_si256(reinterpret_cast<__m256i*>(flats), flat);
  const uint8_t* level = LevelOfIndex();
  for (int32_t i = 0; i < 16; ++i) {
    classes[i] = static_cast<int16_t>(flats[i] ? kSrFlatClass
                                               : patterns[i] * kSrLevels + level[index[i] < 255 ? index[i] : 255]);
  }
}
#endif

// The plain formula for pixels x .. x + 7 (columns x - 1 .. x + 8 must
// exist) into both output rows, in 16-bit lanes.
inline void PlainRun8(const RowTriple& rows, int32_t x, uint8_t* out0, uint8_t* out1) {
  const __m128i zero = _mm_setzero_si128(), two = _mm_set1_epi16(2);
  auto load = [&](const uint8_t* row, int32_t dx) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + x + dx)), zero);
  };
  const __m128i c2 = _mm_add_epi16(_mm_slli_epi16(load(rows.row, 0), 1), two);
  const __m128i t = load(rows.above, 0), b = load(rows.below, 0), l = load(rows.row, -1), r = load(rows.row, 1);
  auto position = [&](__m128i vertical, __m128i side) {
    const __m128i v = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(c2, vertical), side), 2);
    return _mm_packus_epi16(v, v);
  };
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out0 + 2 * x), _mm_unpacklo_epi8(position(t, l), position(t, r)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out1 + 2 * x), _mm_unpacklo_epi8(position(b, l), position(b, r)));
}

// Columns per pass: the ranges of one pass live on the stack.
constexpr int32_t kChunk = 256;

// kWide: classes sixteen pixels at a time (AVX2) before eight.
template <typename D, bool kWide>
void SrEnhancedPlane(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                     int32_t dstStride, const SrTrainedFilters& filters) {
  alignas(16) uint8_t ranges[2][kChunk + 32];
  alignas(16) int16_t classes[2][kChunk + 32];
  for (int32_t y = 0; y < height; y += 2) {
    const int32_t y1 = y + 1 < height ? y + 1 : y;
    const int32_t rowCount = y1 != y ? 2 : 1;
    const RowTriple rows[2] = {RowsAround(src, srcStride, height, y), RowsAround(src, srcStride, height, y1)};
    uint8_t* out[2][2];
    out[0][0] = dst + static_cast<ptrdiff_t>(2 * y) * dstStride;
    out[0][1] = out[0][0] + dstStride;
    out[1][0] = out[0][0] + 2 * static_cast<ptrdiff_t>(dstStride);
    out[1][1] = out[1][0] + dstStride;
    for (int32_t c0 = 0; c0 < width; c0 += kChunk) {
      // One column past the chunk: the last block's right pixel may need it.
      const int32_t count = width - c0 < kChunk + 1 ? width - c0 : kChunk + 1;
      for (int32_t r = 0; r < 2; ++r) {
        const RowTriple shifted = {rows[r].above + c0, rows[r].row + c0, rows[r].below + c0};
        // Ranges of a chunk that does not start at column 0 or end at the
        // last column still need their outer neighbours: compute from the
        // full rows there.
        for (int32_t i = 0; i < count; ++i) {
          const int32_t x = c0 + i;
          if (x == 0 || x + 17 > width || (i & 15) != 0 || i + 16 > count) {
            ranges[r][i] = static_cast<uint8_t>(RangeAt(rows[r], x, width));
          } else {
            Ranges16(shifted, i, ranges[r] + i);
            i += 15;
          }
        }
      }
      const int32_t end = c0 + kChunk < width ? c0 + kChunk : width;
      // Classes in runs of eight where the neighbours lie inside the row;
      // -1 leaves a pixel to the scalar classification.
      for (int32_t r = 0; r < rowCount; ++r) {
        // Every pixel first gets the plain formula; trained ones are
        // written over it below.
        int32_t x = c0;
        for (; x < end && (x == 0 || x + 9 > width); ++x) PlainPixel(rows[r], x, width, out[r][0], out[r][1]);
        for (; x + 8 <= end && x + 9 <= width; x += 8) PlainRun8(rows[r], x, out[r][0], out[r][1]);
        for (; x < end; ++x) PlainPixel(rows[r], x, width, out[r][0], out[r][1]);
        x = c0;
        for (; x < end && (x == 0 || x + 9 > width); ++x) classes[r][x - c0] = -1;
#if defined(__AVX2__)
        for (; kWide && x + 16 <= end && x + 17 <= width; x += 16) Classes16(rows[r], x, classes[r] + (x - c0));
#endif
        for (; x + 8 <= end && x + 9 <= width; x += 8) Classes8(rows[r], x, classes[r] + (x - c0));
        for (; x < end; ++x) classes[r][x - c0] = -1;
      }
      for (int32_t x = c0; x < end; x += 2) {
        const int32_t i = x - c0, i1 = x + 1 < width ? i + 1 : i;
        const bool flat = ranges[0][i] < kSrFlatRange && ranges[0][i1] < kSrFlatRange && ranges[1][i] < kSrFlatRange &&
                          ranges[1][i1] < kSrFlatRange;
        for (int32_t r = 0; r < rowCount; ++r) {
          for (int32_t px = x; px < x + 2 && px < width; ++px) {
            uint8_t p[kSrTaps];
            const int32_t cls = TrainedClass(rows[r], px, width, flat, filters.valid, classes[r][px - c0], p);
            if (cls >= 0) {
              TrainedPixel<D>(p, filters.byTap + static_cast<size_t>(cls) * kSrTaps * kSrPositions, out[r][0],
                              out[r][1], px);
            }
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_
