// Vector form of the enhanced 2x kernel, written once over a double-lane
// trait: the classes (which also answer the flatness test) of eight or
// sixteen pixels at a time, and each trained pixel's four positions as four
// double lanes, summed k = 0..8 in the plain routine's order so every lane
// lands on the plain routine's bits. The trained pixels of a chunk are
// listed, then filtered four at a time.
#ifndef LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_
#define LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_

#include <immintrin.h>

#include <cstring>

#include "super_resolution/kernels/sr_enhanced.h"
#include "super_resolution/kernels/sr_enhanced_rows.h"

namespace Lumaforge::x86 {
namespace {

using namespace sr_enhanced;

// Four 32-bit lanes holding 0..255 as four bytes, lane 0 lowest.
inline uint32_t PackBytes(__m128i v) {
  const __m128i words = _mm_packs_epi32(v, v);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

// Four doubles: two SSE2 registers.
struct Doubles128 {
  __m128d lo, hi;
  static Doubles128 Zero() { return {_mm_setzero_pd(), _mm_setzero_pd()}; }
  static Doubles128 Load(const double* p) { return {_mm_loadu_pd(p), _mm_loadu_pd(p + 2)}; }
  static Doubles128 MulAdd(Doubles128 acc, const double* p, Doubles128 w) {
    const __m128d s = _mm_load1_pd(p);
    return {_mm_add_pd(acc.lo, _mm_mul_pd(s, w.lo)), _mm_add_pd(acc.hi, _mm_mul_pd(s, w.hi))};
  }
  // Held to 0..255 (NaN to 0) and truncated, as SrClampToByte; the four
  // bytes in position order.
  static uint32_t ToBytes(Doubles128 v) {
    const __m128d zero = _mm_setzero_pd(), top = _mm_set1_pd(255.0);
    const __m128i lo = _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(v.lo, zero), top));
    const __m128i hi = _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(v.hi, zero), top));
    return PackBytes(_mm_unpacklo_epi64(lo, hi));
  }
};

#if defined(__AVX2__)
struct Doubles256 {
  __m256d v;
  static Doubles256 Zero() { return {_mm256_setzero_pd()}; }
  static Doubles256 Load(const double* p) { return {_mm256_loadu_pd(p)}; }
  static Doubles256 MulAdd(Doubles256 acc, const double* p, Doubles256 w) {
    return {_mm256_add_pd(acc.v, _mm256_mul_pd(_mm256_broadcast_sd(p), w.v))};
  }
  static uint32_t ToBytes(Doubles256 v) {
    const __m256d held = _mm256_min_pd(_mm256_max_pd(v.v, _mm256_setzero_pd()), _mm256_set1_pd(255.0));
    return PackBytes(_mm256_cvttpd_epi32(held));
  }
};
#endif

// Every byte value as a double: a tap is broadcast straight from memory
// instead of converted in a register.
struct ByteDoubles {
  double value[256];
};
inline constexpr ByteDoubles kByteDoubles = [] {
  ByteDoubles t{};
  for (int32_t i = 0; i < 256; ++i) t.value[i] = i;
  return t;
}();

// A trained pixel waiting for its filter: its row of the pair, its column
// and its class.
struct TrainedEntry {
  int32_t row, x, cls;
};

// Trained pixels four at a time: four independent sums in flight, each
// still taken k = 0..8 in order, so the adds' latency overlaps.
template <typename D, int32_t kCount>
void TrainedPixels(const TrainedEntry* entries, const RowTriple rows[2], uint8_t* const out[2][2],
                   const double* byTap) {
  uint8_t p[kCount][kSrTaps];
  const double* w[kCount];
  D acc[kCount];
#pragma GCC unroll 4
  for (int32_t j = 0; j < kCount; ++j) {
    Neighbourhood(rows[entries[j].row], entries[j].x, p[j]);
    w[j] = byTap + static_cast<size_t>(entries[j].cls) * kSrTaps * kSrPositions;
    acc[j] = D::Zero();
  }
#pragma GCC unroll 9
  for (int32_t k = 0; k < kSrTaps; ++k) {
#pragma GCC unroll 4
    for (int32_t j = 0; j < kCount; ++j)
      acc[j] = D::MulAdd(acc[j], &kByteDoubles.value[p[j][k]], D::Load(w[j] + k * kSrPositions));
  }
#pragma GCC unroll 4
  for (int32_t j = 0; j < kCount; ++j) {
    // Positions 0 and 1 go to the upper output row, 2 and 3 to the lower.
    const uint32_t block = D::ToBytes(acc[j]);
    const auto upper = static_cast<uint16_t>(block), lower = static_cast<uint16_t>(block >> 16);
    const int32_t x = entries[j].x;
    std::memcpy(out[entries[j].row][0] + 2 * x, &upper, 2);
    std::memcpy(out[entries[j].row][1] + 2 * x, &lower, 2);
  }
}

// Levels of eight pixels from their sums (16-bit lanes) and sums of squares
// (32-bit lanes, pixels 0-3 and 4-7), as SrVarianceLevelOfMoments gives
// them: each boundary crossed adds one.
inline __m128i Levels8(__m128i sum, __m128i squaresLo, __m128i squaresHi) {
  const __m128i zero = _mm_setzero_si128();
  auto scaled = [](__m128i sums, __m128i squares) {
    const __m128i n = _mm_sub_epi32(_mm_add_epi32(_mm_slli_epi32(squares, 3), squares), _mm_madd_epi16(sums, sums));
    return _mm_sub_epi32(_mm_slli_epi32(n, 8), n);
  };
  const __m128i lo = scaled(_mm_unpacklo_epi16(sum, zero), squaresLo);
  const __m128i hi = scaled(_mm_unpackhi_epi16(sum, zero), squaresHi);
  __m128i levelLo = zero, levelHi = zero;
#pragma GCC unroll 15
  for (int32_t level = 0; level < kSrLevels - 1; ++level) {
    const __m128i below = _mm_set1_epi32(SrLevelBoundary(level) - 1);
    levelLo = _mm_sub_epi32(levelLo, _mm_cmpgt_epi32(lo, below));
    levelHi = _mm_sub_epi32(levelHi, _mm_cmpgt_epi32(hi, below));
  }
  return _mm_packs_epi32(levelLo, levelHi);
}

// Classes of pixels x .. x + 7 (columns x - 1 .. x + 8 must exist), as
// SrClass gives them: ranges, patterns and sums in 16-bit lanes, sums of
// squares and the variance levels in 32 bits.
inline void Classes8(const RowTriple& rows, int32_t x, int16_t* classes) {
  const __m128i zero = _mm_setzero_si128();
  __m128i v[kSrTaps];
  int32_t k = 0;
#pragma GCC unroll 3
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
#pragma GCC unroll 3
    for (int32_t dx = -1; dx <= 1; ++dx)
      v[k++] = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(row + x + dx)), zero);
  }
  __m128i lo = v[0], hi = v[0], sum = zero, squaresLo = zero, squaresHi = zero;
#pragma GCC unroll 9
  for (k = 0; k < kSrTaps; ++k) {
    lo = _mm_min_epi16(lo, v[k]);
    hi = _mm_max_epi16(hi, v[k]);
    sum = _mm_add_epi16(sum, v[k]);
    const __m128i square = _mm_mullo_epi16(v[k], v[k]);  // below 2^16, unsigned
    squaresLo = _mm_add_epi32(squaresLo, _mm_unpacklo_epi16(square, zero));
    squaresHi = _mm_add_epi32(squaresHi, _mm_unpackhi_epi16(square, zero));
  }
  const __m128i threshold = _mm_srli_epi16(_mm_add_epi16(lo, hi), 1);
  __m128i cls = Levels8(sum, squaresLo, squaresHi);
#pragma GCC unroll 9
  for (k = 0; k < kSrTaps; ++k)
    cls = _mm_or_si128(cls, _mm_and_si128(_mm_cmpgt_epi16(v[k], threshold), _mm_set1_epi16(kSrLevels << k)));
  const __m128i flat = _mm_cmplt_epi16(_mm_sub_epi16(hi, lo), _mm_set1_epi16(kSrFlatRange));
  cls = _mm_or_si128(_mm_andnot_si128(flat, cls), _mm_and_si128(flat, _mm_set1_epi16(kSrFlatClass)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(classes), cls);
}

#if defined(__AVX2__)
// Levels8 at sixteen pixels; the unpacks and the pack work within 128-bit
// lanes, so the levels come back in pixel order.
inline __m256i Levels16(__m256i sum, __m256i squaresLo, __m256i squaresHi) {
  const __m256i zero = _mm256_setzero_si256();
  auto scaled = [](__m256i sums, __m256i squares) {
    const __m256i n =
        _mm256_sub_epi32(_mm256_add_epi32(_mm256_slli_epi32(squares, 3), squares), _mm256_madd_epi16(sums, sums));
    return _mm256_sub_epi32(_mm256_slli_epi32(n, 8), n);
  };
  const __m256i lo = scaled(_mm256_unpacklo_epi16(sum, zero), squaresLo);
  const __m256i hi = scaled(_mm256_unpackhi_epi16(sum, zero), squaresHi);
  __m256i levelLo = zero, levelHi = zero;
#pragma GCC unroll 15
  for (int32_t level = 0; level < kSrLevels - 1; ++level) {
    const __m256i below = _mm256_set1_epi32(SrLevelBoundary(level) - 1);
    levelLo = _mm256_sub_epi32(levelLo, _mm256_cmpgt_epi32(lo, below));
    levelHi = _mm256_sub_epi32(levelHi, _mm256_cmpgt_epi32(hi, below));
  }
  return _mm256_packs_epi32(levelLo, levelHi);
}

// Classes8 at sixteen pixels (columns x - 1 .. x + 16 must exist).
inline void Classes16(const RowTriple& rows, int32_t x, int16_t* classes) {
  const __m256i zero = _mm256_setzero_si256();
  __m256i v[kSrTaps];
  int32_t k = 0;
#pragma GCC unroll 3
  for (const uint8_t* row : {rows.above, rows.row, rows.below}) {
#pragma GCC unroll 3
    for (int32_t dx = -1; dx <= 1; ++dx)
      v[k++] = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row + x + dx)));
  }
  __m256i lo = v[0], hi = v[0], sum = zero, squaresLo = zero, squaresHi = zero;
#pragma GCC unroll 9
  for (k = 0; k < kSrTaps; ++k) {
    lo = _mm256_min_epi16(lo, v[k]);
    hi = _mm256_max_epi16(hi, v[k]);
    sum = _mm256_add_epi16(sum, v[k]);
    const __m256i square = _mm256_mullo_epi16(v[k], v[k]);
    squaresLo = _mm256_add_epi32(squaresLo, _mm256_unpacklo_epi16(square, zero));
    squaresHi = _mm256_add_epi32(squaresHi, _mm256_unpackhi_epi16(square, zero));
  }
  const __m256i threshold = _mm256_srli_epi16(_mm256_add_epi16(lo, hi), 1);
  __m256i cls = Levels16(sum, squaresLo, squaresHi);
#pragma GCC unroll 9
  for (k = 0; k < kSrTaps; ++k)
    cls =
        _mm256_or_si256(cls, _mm256_and_si256(_mm256_cmpgt_epi16(v[k], threshold), _mm256_set1_epi16(kSrLevels << k)));
  const __m256i flat = _mm256_cmpgt_epi16(_mm256_set1_epi16(kSrFlatRange), _mm256_sub_epi16(hi, lo));
  cls = _mm256_blendv_epi8(cls, _mm256_set1_epi16(kSrFlatClass), flat);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(classes), cls);
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

// The class of pixel x where the vector forms cannot reach its neighbours.
// The first and last columns never take a trained filter: they get the flat
// class or kSrClasses, which only says "not flat".
inline int16_t ScalarClass(const RowTriple& rows, int32_t x, int32_t width) {
  if (x == 0 || x == width - 1) return RangeAt(rows, x, width) < kSrFlatRange ? kSrFlatClass : kSrClasses;
  uint8_t p[kSrTaps];
  Neighbourhood(rows, x, p);
  return static_cast<int16_t>(SrClass(p));
}

// Columns per pass: the classes of one pass live on the stack.
constexpr int32_t kChunk = 256;

// kWide: classes sixteen pixels at a time (AVX2) before eight.
template <typename D, bool kWide>
void SrEnhancedPlane(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                     int32_t dstStride, const SrTrainedFilters& filters) {
  // A pixel is flat (its 3x3 range below 16) exactly when its class is the
  // flat class, so the classes also answer the flatness test.
  alignas(32) int16_t classes[2][kChunk + 32];
  TrainedEntry entries[2 * kChunk];
  const uint8_t* valid = filters.valid;
  const double* byTap = filters.byTap;
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
      const int32_t end = c0 + kChunk < width ? c0 + kChunk : width;
      // One column past the chunk: the last block's right pixel may need it.
      const int32_t limit = end < width ? end + 1 : end;
      for (int32_t r = 0; r < rowCount; ++r) {
        // Every pixel first gets the plain formula; trained ones are
        // written over it below.
        int32_t x = c0;
        for (; x < end && (x == 0 || x + 9 > width); ++x) PlainPixel(rows[r], x, width, out[r][0], out[r][1]);
        for (; x + 8 <= end && x + 9 <= width; x += 8) PlainRun8(rows[r], x, out[r][0], out[r][1]);
        for (; x < end; ++x) PlainPixel(rows[r], x, width, out[r][0], out[r][1]);
        // Classes in runs where the neighbours lie inside the row.
        int16_t* cls = classes[r] - c0;
        x = c0;
        for (; x < limit && (x == 0 || x + 9 > width); ++x) cls[x] = ScalarClass(rows[r], x, width);
#if defined(__AVX2__)
        for (; kWide && x + 16 <= limit && x + 17 <= width; x += 16) Classes16(rows[r], x, cls + x);
#endif
        for (; x + 8 <= limit && x + 9 <= width; x += 8) Classes8(rows[r], x, cls + x);
        for (; x < limit; ++x) cls[x] = ScalarClass(rows[r], x, width);
      }
      // The trained pixels of the chunk are listed first (without a branch
      // on the class's flag, which is hard to predict), then filtered.
      const int16_t* top = classes[0];
      const int16_t* bottom = classes[rowCount - 1];
      int32_t trained = 0;
      for (int32_t x = c0; x < end; x += 2) {
        const int32_t i = x - c0, i1 = x + 1 < width ? i + 1 : i;
        const bool flat = top[i] == kSrFlatClass && top[i1] == kSrFlatClass && bottom[i] == kSrFlatClass &&
                          bottom[i1] == kSrFlatClass;
        if (flat) continue;
        for (int32_t r = 0; r < rowCount; ++r) {
          for (int32_t px = x; px < x + 2 && px < width; ++px) {
            if (px == 0 || px == width - 1) continue;
            const int32_t cls = classes[r][px - c0];
            entries[trained] = {r, px, cls};
            trained += valid[cls];
          }
        }
      }
      int32_t e = 0;
      for (; e + 4 <= trained; e += 4) TrainedPixels<D, 4>(entries + e, rows, out, byTap);
      for (; e < trained; ++e) TrainedPixels<D, 1>(entries + e, rows, out, byTap);
    }
  }
}

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_SUPER_RESOLUTION_KERNELS_X86_SR_ENHANCED_SIMD_H_
