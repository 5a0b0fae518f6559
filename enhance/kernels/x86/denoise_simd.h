// Vector forms of the denoise kernels, one body for every level: pixels in
// 16-bit lanes, eight per 128-bit register or sixteen per 256-bit one. The
// spatial kernels fit unsigned 16 bits throughout: the weights sum to at
// most 256, so ((256 - sum w) * c + 128 + sum w * n) stays below 2^16.
// Runs of a width other than 16, 8 or 7 and the statistics' final division
// go to the plain pieces in denoise_rows.h.
#ifndef LUMAFORGE_ENHANCE_KERNELS_X86_DENOISE_SIMD_H_
#define LUMAFORGE_ENHANCE_KERNELS_X86_DENOISE_SIMD_H_

#include <immintrin.h>

#include <climits>
#include <cstring>
#include <type_traits>

#include "enhance/kernels/denoise.h"
#include "enhance/kernels/denoise_rows.h"

namespace Lumaforge::x86 {
namespace {

using namespace denoise;

// Eight pixels in 16-bit lanes.
struct Lanes8 {
  using V = __m128i;
  static constexpr int32_t kWidth = 8;
  static V Load(const uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
  }
  static V Set(int16_t v) { return _mm_set1_epi16(v); }
  static V Add(V a, V b) { return _mm_add_epi16(a, b); }
  static V Sub(V a, V b) { return _mm_sub_epi16(a, b); }
  static V SubSat(V a, V b) { return _mm_subs_epu16(a, b); }
  static V Mul(V a, V b) { return _mm_mullo_epi16(a, b); }
  template <int kBits>
  static V Shift(V v) {
    return _mm_srli_epi16(v, kBits);
  }
  static V ShiftLeft8(V v) { return _mm_slli_epi16(v, 8); }
  static V Abs(V v) {
#if defined(__SSSE3__)
    return _mm_abs_epi16(v);
#else
    return _mm_max_epi16(v, _mm_sub_epi16(_mm_setzero_si128(), v));
#endif
  }
  // The lanes as bytes (each 0..255) into 8 bytes at p.
  static void Store(uint8_t* p, V v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(v, v)); }
};

#if defined(__AVX2__)
// Sixteen pixels in 16-bit lanes.
struct Lanes16 {
  using V = __m256i;
  static constexpr int32_t kWidth = 16;
  static V Load(const uint8_t* p) { return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
  static V Set(int16_t v) { return _mm256_set1_epi16(v); }
  static V Add(V a, V b) { return _mm256_add_epi16(a, b); }
  static V Sub(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V SubSat(V a, V b) { return _mm256_subs_epu16(a, b); }
  static V Mul(V a, V b) { return _mm256_mullo_epi16(a, b); }
  template <int kBits>
  static V Shift(V v) {
    return _mm256_srli_epi16(v, kBits);
  }
  static V ShiftLeft8(V v) { return _mm256_slli_epi16(v, 8); }
  static V Abs(V v) { return _mm256_abs_epi16(v); }
  static void Store(uint8_t* p, V v) {
    const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
  }
};
#endif

// Kernel A's weight: max(32 - d, 0)^2 >> 5.
struct WeighA {
  template <typename L>
  static typename L::V Of(typename L::V d) {
    const typename L::V t = L::SubSat(L::Set(32), d);
    return L::template Shift<5>(L::Mul(t, t));
  }
};
// Kernel B's weight: max(28 - (d >> 2), 0).
struct WeighB {
  template <typename L>
  static typename L::V Of(typename L::V d) {
    return L::SubSat(L::Set(28), L::template Shift<2>(d));
  }
};

// The spatial result of L::kWidth pixels from their nine neighbourhood
// rows: above-left, above, above-right, left, centre, right, below-left,
// below, below-right. Written as (256 c + 128 + sum w (n - c)) >> 8, the
// same number: sum w (n - c) stays within +-1216 for kernel A and +-6272
// for kernel B, and the total within 0 .. 65408, so 16-bit lanes wrapping
// modulo 2^16 hold it exactly. The three neighbours above (the previous
// row's results) are added last, to keep them off the start of the chain.
template <typename L, typename Weigh>
typename L::V SpatialLanes(const typename L::V (&n)[9]) {
  using V = typename L::V;
  const V c = n[4];
  V sum = L::Add(L::Set(128), L::ShiftLeft8(c));
  constexpr int32_t kOrder[8] = {3, 5, 6, 7, 8, 0, 1, 2};
#pragma GCC unroll 8
  for (const int32_t i : kOrder) {
    const V difference = L::Sub(n[i], c);
    const V w = Weigh::template Of<L>(L::Abs(difference));
    sum = L::Add(sum, L::Mul(w, difference));
  }
  return L::template Shift<8>(sum);
}

// Each row's result stays in registers as the next row's above row: a load
// of the row just stored, one byte to the side, would wait for the store to
// complete. Only the above row's outer columns (-1 and the width), which no
// run of this kernel writes, come from memory.

// Eight pixels per row.
template <typename Weigh>
void SpatialRun8(uint8_t* p, ptrdiff_t stride, int32_t rows) {
  __m128i above = Lanes8::Load(p - stride);
  for (int32_t y = 0; y < rows; ++y, p += stride) {
    const __m128i n[9] = {_mm_insert_epi16(_mm_slli_si128(above, 2), p[-stride - 1], 0),
                          above,
                          _mm_insert_epi16(_mm_srli_si128(above, 2), p[-stride + 8], 7),
                          Lanes8::Load(p - 1),
                          Lanes8::Load(p),
                          Lanes8::Load(p + 1),
                          Lanes8::Load(p + stride - 1),
                          Lanes8::Load(p + stride),
                          Lanes8::Load(p + stride + 1)};
    above = SpatialLanes<Lanes8, Weigh>(n);
    Lanes8::Store(p, above);
  }
}

// Sixteen pixels per row in two 128-bit halves.
template <typename Weigh>
void SpatialRun16Halves(uint8_t* p, ptrdiff_t stride, int32_t rows) {
  __m128i left = Lanes8::Load(p - stride), right = Lanes8::Load(p - stride + 8);
  for (int32_t y = 0; y < rows; ++y, p += stride) {
    const __m128i middle = _mm_or_si128(_mm_srli_si128(left, 2), _mm_slli_si128(right, 14));
    const __m128i leftN[9] = {_mm_insert_epi16(_mm_slli_si128(left, 2), p[-stride - 1], 0),
                              left,
                              middle,
                              Lanes8::Load(p - 1),
                              Lanes8::Load(p),
                              Lanes8::Load(p + 1),
                              Lanes8::Load(p + stride - 1),
                              Lanes8::Load(p + stride),
                              Lanes8::Load(p + stride + 1)};
    const __m128i rightN[9] = {_mm_or_si128(_mm_slli_si128(right, 2), _mm_srli_si128(left, 14)),
                               right,
                               _mm_insert_epi16(_mm_srli_si128(right, 2), p[-stride + 16], 7),
                               Lanes8::Load(p + 7),
                               Lanes8::Load(p + 8),
                               Lanes8::Load(p + 9),
                               Lanes8::Load(p + stride + 7),
                               Lanes8::Load(p + stride + 8),
                               Lanes8::Load(p + stride + 9)};
    left = SpatialLanes<Lanes8, Weigh>(leftN);
    right = SpatialLanes<Lanes8, Weigh>(rightN);
    Lanes8::Store(p, left);
    Lanes8::Store(p + 8, right);
  }
}

#if defined(__AVX2__)
// Sixteen pixels per row in one 256-bit register. The lane shifts cross the
// register's halves: permute the neighbouring half in, then alignr.
template <typename Weigh>
void SpatialRun16(uint8_t* p, ptrdiff_t stride, int32_t rows) {
  __m256i above = Lanes16::Load(p - stride);
  for (int32_t y = 0; y < rows; ++y, p += stride) {
    const __m256i up = _mm256_alignr_epi8(above, _mm256_permute2x128_si256(above, above, 0x08), 14);
    const __m256i down = _mm256_alignr_epi8(_mm256_permute2x128_si256(above, above, 0x81), above, 2);
    const __m256i n[9] = {_mm256_or_si256(up, _mm256_zextsi128_si256(_mm_cvtsi32_si128(p[-stride - 1]))),
                          above,
                          _mm256_insert_epi16(down, p[-stride + 16], 15),
                          Lanes16::Load(p - 1),
                          Lanes16::Load(p),
                          Lanes16::Load(p + 1),
                          Lanes16::Load(p + stride - 1),
                          Lanes16::Load(p + stride),
                          Lanes16::Load(p + stride + 1)};
    above = SpatialLanes<Lanes16, Weigh>(n);
    Lanes16::Store(p, above);
  }
}
#endif

// Sixteen- and eight-pixel runs; other widths take the plain routine.
template <typename Lanes, typename Weigh>
void Spatial(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows) {
  if (width == 8) {
    SpatialRun8<Weigh>(p, stride, rows);
  } else if (width == 16) {
#if defined(__AVX2__)
    if constexpr (Lanes::kWidth == 16) {
      SpatialRun16<Weigh>(p, stride, rows);
      return;
    }
#endif
    SpatialRun16Halves<Weigh>(p, stride, rows);
  } else if (std::is_same_v<Weigh, WeighA>) {
    DenoiseSpatialA_c(p, stride, width, rows);
  } else {
    DenoiseSpatialB_c(p, stride, width, rows);
  }
}

// The edge smoother runs seven pixels wide: eight lanes are computed from
// loads that stay within columns -1 .. 7 (the right neighbours come from
// the centre row shifted), and seven bytes stored.
void EdgeSmoother(uint8_t* p, ptrdiff_t stride, int32_t width, int32_t rows) {
  if (width != 7) {
    DenoiseEdgeSmoother_c(p, stride, width, rows);
    return;
  }
  const __m128i zero = _mm_setzero_si128();
  auto row = [&](const uint8_t* q) {
    const __m128i centre = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(q));
    const __m128i left = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(q - 1)), zero);
    const __m128i middle = _mm_unpacklo_epi8(centre, zero);
    const __m128i right = _mm_unpacklo_epi8(_mm_srli_si128(centre, 1), zero);
    return _mm_add_epi16(_mm_add_epi16(left, right), _mm_add_epi16(middle, middle));
  };
  for (int32_t y = 0; y < rows; ++y, p += stride) {
    const __m128i middle = row(p);
    const __m128i sum = _mm_add_epi16(_mm_add_epi16(row(p - stride), row(p + stride)), _mm_add_epi16(middle, middle));
    const __m128i v = _mm_srli_epi16(_mm_add_epi16(sum, _mm_set1_epi16(8)), 4);
    uint8_t bytes[8];
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), _mm_packus_epi16(v, v));
    std::memcpy(p, bytes, 7);
  }
}

template <typename Lanes>
void Blend(uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride, int32_t width, int32_t rows,
           int32_t weight) {
  if (width != 8 && width != 16) {
    DenoiseBlend_c(cur, curStride, ref, refStride, width, rows, weight);
    return;
  }
  const __m128i w = _mm_set1_epi16(static_cast<int16_t>(weight)),
                rest = _mm_set1_epi16(static_cast<int16_t>(32 - weight));
  const __m128i zero = _mm_setzero_si128(), half = _mm_set1_epi16(16);
  auto mix = [&](__m128i c, __m128i r) {
    return _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(c, w), _mm_mullo_epi16(r, rest)), half), 5);
  };
  for (int32_t y = 0; y < rows; ++y, cur += curStride, ref += refStride) {
    if (width == 8) {
      Lanes8::Store(cur, mix(Lanes8::Load(cur), Lanes8::Load(ref)));
      continue;
    }
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cur));
    const __m128i r = _mm_loadu_si128(reinterpret_cast<const __m128i*>(ref));
    const __m128i lo = mix(_mm_unpacklo_epi8(c, zero), _mm_unpacklo_epi8(r, zero));
    const __m128i hi = mix(_mm_unpackhi_epi8(c, zero), _mm_unpackhi_epi8(r, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cur), _mm_packus_epi16(lo, hi));
  }
}

// 32-bit lanes holding values that fit 16 bits, times a small constant:
// madd against (c, 0) pairs.
inline __m128i TimesConstant(__m128i v, int32_t c) { return _mm_madd_epi16(v, _mm_set1_epi32(c & 0xFFFF)); }

// The low 16 bits of each 32-bit lane, sign-extended: a value kept as a
// signed 16-bit one.
inline __m128i AsInt16(__m128i v) { return _mm_srai_epi32(_mm_slli_epi32(v, 16), 16); }

inline __m128i Abs32(__m128i v) {
#if defined(__SSSE3__)
  return _mm_abs_epi32(v);
#else
  const __m128i sign = _mm_srai_epi32(v, 31);
  return _mm_sub_epi32(_mm_xor_si128(v, sign), sign);
#endif
}

// Rows a, b, c, d of 32-bit lanes transposed in place.
inline void Transpose4(__m128i& a, __m128i& b, __m128i& c, __m128i& d) {
  const __m128i ab0 = _mm_unpacklo_epi32(a, b), ab1 = _mm_unpackhi_epi32(a, b);
  const __m128i cd0 = _mm_unpacklo_epi32(c, d), cd1 = _mm_unpackhi_epi32(c, d);
  a = _mm_unpacklo_epi64(ab0, cd0), b = _mm_unpackhi_epi64(ab0, cd0);
  c = _mm_unpacklo_epi64(ab1, cd1), d = _mm_unpackhi_epi64(ab1, cd1);
}

// sum over i of kBasis[k][i] * v[i], lane by lane.
inline __m128i Combine(const __m128i v[4], int32_t k) {
  __m128i sum = TimesConstant(v[0], kBasis[k][0]);
#pragma GCC unroll 4
  for (int32_t i = 1; i < 4; ++i) sum = _mm_add_epi32(sum, TimesConstant(v[i], kBasis[k][i]));
  return sum;
}

// The 4x4 transform of TransformPasses on rows of differences, four lanes
// at a time: the row transform with the differences' columns as vectors,
// then the column transform on the transposed result.
inline bool TransformPassesVector(__m128i rows[4], int32_t tac, int32_t tdc) {
  Transpose4(rows[0], rows[1], rows[2], rows[3]);  // rows[j]: column j over r
  __m128i t[4];                                    // t[k]: T[r][k] over r
#pragma GCC unroll 4
  for (int32_t k = 0; k < 4; ++k) t[k] = AsInt16(_mm_srai_epi32(Combine(rows, k), 6));
  Transpose4(t[0], t[1], t[2], t[3]);  // t[r]: T[r][j] over j
  const __m128i acLimit = _mm_set1_epi32(tac);
  __m128i over = _mm_setzero_si128();
#pragma GCC unroll 4
  for (int32_t k = 0; k < 4; ++k) {
    const __m128i magnitude = AsInt16(Abs32(Combine(t, k)));
    const __m128i limit = k == 0 ? _mm_setr_epi32(tdc, tac, tac, tac) : acLimit;
    over = _mm_or_si128(over, _mm_cmpgt_epi32(magnitude, limit));
  }
  return _mm_movemask_epi8(over) == 0;
}

// The block test: rows halved with the byte average (which rounds up, as
// (a + b + 1) >> 1), the SAD with psadbw, the differences of pairs with
// madd, the transform four lanes at a time.
bool BlockTest(const uint8_t* ref, ptrdiff_t refStride, const uint8_t* cur, ptrdiff_t curStride, int32_t tac,
               int32_t tdc, int32_t* cell) {
  auto halved = [](const uint8_t* p, ptrdiff_t stride, int32_t r) {
    const __m128i a = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 2 * r * stride));
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + (2 * r + 1) * stride));
    return _mm_avg_epu8(a, b);
  };
  __m128i halfRef[4], halfCur[4];
  __m128i sadSum = _mm_setzero_si128();
#pragma GCC unroll 4
  for (int32_t r = 0; r < 4; ++r) {
    halfRef[r] = halved(ref, refStride, r);
    halfCur[r] = halved(cur, curStride, r);
    sadSum = _mm_add_epi64(sadSum, _mm_sad_epu8(halfRef[r], halfCur[r]));
  }
  const int32_t sad = _mm_cvtsi128_si32(sadSum);
  if (QuickAnswer(sad, tac, *cell)) return sad < ((7 * tac) >> 4);
  // Pair sums of ref - cur: madd of the differences against ones.
  const __m128i zero = _mm_setzero_si128(), ones = _mm_set1_epi16(1);
  __m128i diff[4];
#pragma GCC unroll 4
  for (int32_t r = 0; r < 4; ++r) {
    const __m128i d = _mm_sub_epi16(_mm_unpacklo_epi8(halfRef[r], zero), _mm_unpacklo_epi8(halfCur[r], zero));
    diff[r] = _mm_madd_epi16(d, ones);
  }
  *cell = sad;
  return TransformPassesVector(diff, tac, tdc);
}

// Sum of the four 32-bit lanes.
inline int32_t SumLanes(__m128i v) {
  v = _mm_add_epi32(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
  v = _mm_add_epi32(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
  return _mm_cvtsi128_si32(v);
}

// The noise statistics' lanes: one 5x5 block in the low five 16-bit lanes
// of a 128-bit register, or two neighbouring blocks in the two halves of a
// 256-bit one (every operation used works within 128-bit halves). A row's
// load reaches three columns past its block, which the estimator's column
// limit leaves inside the row.
struct OneBlock {
  using V = __m128i;
  static constexpr int32_t kBlocks = 1;
  static V Row(const uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
  }
  static V Lanes(int16_t a, int16_t b, int16_t c, int16_t d, int16_t e) {
    return _mm_setr_epi16(a, b, c, d, e, 0, 0, 0);
  }
  static V Set(int16_t v) { return _mm_set1_epi16(v); }
  static V Zero() { return _mm_setzero_si128(); }
  static V And(V a, V b) { return _mm_and_si128(a, b); }
  static V Add16(V a, V b) { return _mm_add_epi16(a, b); }
  static V Sub16(V a, V b) { return _mm_sub_epi16(a, b); }
  static V Min16(V a, V b) { return _mm_min_epi16(a, b); }
  static V Max16(V a, V b) { return _mm_max_epi16(a, b); }
  static V Add32(V a, V b) { return _mm_add_epi32(a, b); }
  static V Madd(V a, V b) { return _mm_madd_epi16(a, b); }
  static V NextLane(V v) { return _mm_srli_si128(v, 2); }
  static void Sums(V v, int32_t* out) { out[0] = SumLanes(v); }
  static V UnpackLow32(V a, V b) { return _mm_unpacklo_epi32(a, b); }
  static V UnpackHigh32(V a, V b) { return _mm_unpackhi_epi32(a, b); }
  static V UnpackLow64(V a, V b) { return _mm_unpacklo_epi64(a, b); }
  static V UnpackHigh64(V a, V b) { return _mm_unpackhi_epi64(a, b); }
  static V Set32(int32_t a, int32_t b, int32_t c, int32_t d) { return _mm_setr_epi32(a, b, c, d); }
  static V ShiftLeft32(V v) { return _mm_slli_epi32(v, 2); }
  static V Or(V a, V b) { return _mm_or_si128(a, b); }
  static V IsZero32(V v) { return _mm_cmpeq_epi32(v, _mm_setzero_si128()); }
  template <int kOrder>
  static V Swap(V v) {
    return _mm_shuffle_epi32(v, kOrder);
  }
  // Signed 32-bit maximum and minimum (pmaxsd is SSE4.1).
  static V Max32(V a, V b) {
#if defined(__SSE4_1__)
    return _mm_max_epi32(a, b);
#else
    const V greater = _mm_cmpgt_epi32(a, b);
    return _mm_or_si128(_mm_and_si128(greater, a), _mm_andnot_si128(greater, b));
#endif
  }
  static V Min32(V a, V b) {
#if defined(__SSE4_1__)
    return _mm_min_epi32(a, b);
#else
    const V greater = _mm_cmpgt_epi32(a, b);
    return _mm_or_si128(_mm_and_si128(greater, b), _mm_andnot_si128(greater, a));
#endif
  }
  static void FirstLanes(V v, int32_t* out) { out[0] = _mm_cvtsi128_si32(v); }
};

#if defined(__AVX2__)
struct TwoBlocks {
  using V = __m256i;
  static constexpr int32_t kBlocks = 2;
  static V Row(const uint8_t* p) {
    const __m128i both = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 5)));
    return _mm256_cvtepu8_epi16(both);
  }
  static V Lanes(int16_t a, int16_t b, int16_t c, int16_t d, int16_t e) {
    return _mm256_setr_epi16(a, b, c, d, e, 0, 0, 0, a, b, c, d, e, 0, 0, 0);
  }
  static V Set(int16_t v) { return _mm256_set1_epi16(v); }
  static V Zero() { return _mm256_setzero_si256(); }
  static V And(V a, V b) { return _mm256_and_si256(a, b); }
  static V Add16(V a, V b) { return _mm256_add_epi16(a, b); }
  static V Sub16(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V Min16(V a, V b) { return _mm256_min_epi16(a, b); }
  static V Max16(V a, V b) { return _mm256_max_epi16(a, b); }
  static V Add32(V a, V b) { return _mm256_add_epi32(a, b); }
  static V Madd(V a, V b) { return _mm256_madd_epi16(a, b); }
  static V NextLane(V v) { return _mm256_srli_si256(v, 2); }
  static void Sums(V v, int32_t* out) {
    v = _mm256_add_epi32(v, _mm256_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
    v = _mm256_add_epi32(v, _mm256_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
    FirstLanes(v, out);
  }
  static V UnpackLow32(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
  static V UnpackHigh32(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
  static V UnpackLow64(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
  static V UnpackHigh64(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
  static V Set32(int32_t a, int32_t b, int32_t c, int32_t d) { return _mm256_setr_epi32(a, b, c, d, a, b, c, d); }
  static V ShiftLeft32(V v) { return _mm256_slli_epi32(v, 2); }
  static V Or(V a, V b) { return _mm256_or_si256(a, b); }
  static V IsZero32(V v) { return _mm256_cmpeq_epi32(v, _mm256_setzero_si256()); }
  template <int kOrder>
  static V Swap(V v) {
    return _mm256_shuffle_epi32(v, kOrder);
  }
  static V Max32(V a, V b) { return _mm256_max_epi32(a, b); }
  static V Min32(V a, V b) { return _mm256_min_epi32(a, b); }
  static void FirstLanes(V v, int32_t* out) {
    out[0] = _mm_cvtsi128_si32(_mm256_castsi256_si128(v));
    out[1] = _mm_cvtsi128_si32(_mm256_extracti128_si256(v, 1));
  }
};
#endif

// Each block's largest and smallest non-zero energy (0 if none) from the
// lane sums of its four directional sums, without leaving the registers:
// the four sums side by side (a transposing add), scaled to 80 pairs (x4,
// x4, x5, x5), then the extremes across the lanes. Energies stay below 2^31.
template <typename B>
void Extremes(typename B::V along, typename B::V down, typename B::V diagonal, typename B::V anti, int32_t* largest,
              int32_t* smallest) {
  using V = typename B::V;
  const V ab = B::Add32(B::UnpackLow32(along, down), B::UnpackHigh32(along, down));
  const V cd = B::Add32(B::UnpackLow32(diagonal, anti), B::UnpackHigh32(diagonal, anti));
  const V sums = B::Add32(B::UnpackLow64(ab, cd), B::UnpackHigh64(ab, cd));
  const V energies = B::Add32(B::ShiftLeft32(sums), B::And(sums, B::Set32(0, 0, -1, -1)));
  V most = B::Max32(energies, B::template Swap<_MM_SHUFFLE(1, 0, 3, 2)>(energies));
  most = B::Max32(most, B::template Swap<_MM_SHUFFLE(2, 3, 0, 1)>(most));
  // Zeros take part as the largest number, and a minimum of that means none.
  const V nonZero =
      B::Or(energies, B::And(B::IsZero32(energies), B::Set32(INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX)));
  V least = B::Min32(nonZero, B::template Swap<_MM_SHUFFLE(1, 0, 3, 2)>(nonZero));
  least = B::Min32(least, B::template Swap<_MM_SHUFFLE(2, 3, 0, 1)>(least));
  B::FirstLanes(most, largest);
  B::FirstLanes(least, smallest);
  for (int32_t k = 0; k < B::kBlocks; ++k) smallest[k] = smallest[k] == INT32_MAX ? 0 : smallest[k];
}

// The statistics of B::kBlocks blocks from column 0 of the band. The
// squared deviations come from the sums: with m the truncated mean,
// sum (d - m)^2 = sum d^2 - 2 m sum d + 25 m^2, exactly.
template <typename B>
void StatsOfBlocks(const uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride, int32_t* weights,
                   int32_t* variances) {
  using V = typename B::V;
  const V five = B::Lanes(-1, -1, -1, -1, -1), four = B::Lanes(-1, -1, -1, -1, 0);
  V d[5];
#pragma GCC unroll 5
  for (int32_t r = 0; r < 5; ++r) {
    const V difference = B::Add16(B::Sub16(B::Row(cur + r * curStride), B::Row(ref + r * refStride)), B::Set(128));
    d[r] = B::And(B::Max16(B::Min16(difference, B::Set(255)), B::Zero()), five);
  }
  auto squares = [](V v) { return B::Madd(v, v); };
  V sum = B::Zero(), sumSq = B::Zero(), along = B::Zero(), down = B::Zero(), diagonal = B::Zero(), anti = B::Zero();
#pragma GCC unroll 5
  for (int32_t r = 0; r < 5; ++r) {
    sum = B::Add16(sum, d[r]);
    sumSq = B::Add32(sumSq, squares(d[r]));
    along = B::Add32(along, squares(B::And(B::Sub16(B::NextLane(d[r]), d[r]), four)));
    if (r == 4) break;
    down = B::Add32(down, squares(B::Sub16(d[r + 1], d[r])));
    diagonal = B::Add32(diagonal, squares(B::And(B::Sub16(B::NextLane(d[r + 1]), d[r]), four)));
    anti = B::Add32(anti, squares(B::And(B::Sub16(d[r + 1], B::NextLane(d[r])), four)));
  }
  int32_t totals[2], sqs[2], largest[2], smallest[2];
  B::Sums(B::Madd(sum, B::Set(1)), totals);
  B::Sums(sumSq, sqs);
  Extremes<B>(along, down, diagonal, anti, largest, smallest);
  for (int32_t k = 0; k < B::kBlocks; ++k) {
    const int32_t mean = totals[k] / 25;
    const int32_t deviations = sqs[k] - 2 * mean * totals[k] + 25 * mean * mean;
    const BlockStats stats =
        StatsOfExtremes(deviations, static_cast<uint32_t>(largest[k]), static_cast<uint32_t>(smallest[k]));
    weights[k] = stats.weight;
    variances[k] = stats.variance;
  }
}

// Two blocks at a time where the level has 256-bit registers.
template <typename Lanes>
void NoiseBlockStats(const uint8_t* cur, ptrdiff_t curStride, const uint8_t* ref, ptrdiff_t refStride, int32_t blocks,
                     int32_t* weights, int32_t* variances) {
  int32_t i = 0;
#if defined(__AVX2__)
  if constexpr (Lanes::kWidth == 16) {
    for (; i + 2 <= blocks; i += 2)
      StatsOfBlocks<TwoBlocks>(cur + 5 * i, curStride, ref + 5 * i, refStride, weights + i, variances + i);
  }
#endif
  for (; i < blocks; ++i)
    StatsOfBlocks<OneBlock>(cur + 5 * i, curStride, ref + 5 * i, refStride, weights + i, variances + i);
}

// Every kernel at one level; Lanes is the spatial kernels' widest step.
template <typename Lanes>
void InstallDenoise(DenoiseKernels* kernels) {
  kernels->spatialA = Spatial<Lanes, WeighA>;
  kernels->spatialB = Spatial<Lanes, WeighB>;
  kernels->edgeSmoother = EdgeSmoother;
  kernels->blockStats = NoiseBlockStats<Lanes>;
  kernels->blend = Blend<Lanes>;
  kernels->blockTest = BlockTest;
}

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_ENHANCE_KERNELS_X86_DENOISE_SIMD_H_
