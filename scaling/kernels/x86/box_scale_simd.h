// Box and bilinear downscaling bodies. The plane bilinears and packed halving
// are written over a vector-width trait and serve 128 and 256 bits; the box
// steps and packed bilinear are 128-bit. Forms built on SSSE3 shuffles exist
// only in builds that have them. Every row runs its vector body over whole
// steps and hands the rest to the plain routine.
//
// The box average is pavg(pavg(a, b), pavg(c, d)): pavg rounds up exactly
// like (x + y + 1) >> 1, and the outer average takes the rounded halves in
// either order.
#include <immintrin.h>

#include <cstring>

#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"
#include "scaling/kernels/bilinear_rows.h"
#include "scaling/kernels/box_scale.h"

namespace Lumaforge::x86 {
namespace {

inline __m128i LoadU(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

inline int64_t Load64(const uint8_t* p) {
  int64_t v;
  std::memcpy(&v, p, sizeof(v));
  return v;
}

// The low 12 bytes of v.
inline void Store12(uint8_t* out, __m128i v) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), v);
  const int32_t last = _mm_cvtsi128_si32(_mm_srli_si128(v, 8));
  std::memcpy(out + 8, &last, sizeof(last));
}

// ---- Operations the trait lacks, at both widths ----

inline __m128i AvgU8(__m128i a, __m128i b) { return _mm_avg_epu8(a, b); }
inline __m128i Or(__m128i a, __m128i b) { return _mm_or_si128(a, b); }
inline __m128i MulHiU16(__m128i a, __m128i b) { return _mm_mulhi_epu16(a, b); }
inline __m128i MaddWords(__m128i a, __m128i b) { return _mm_madd_epi16(a, b); }
inline __m128i PackS32(__m128i a, __m128i b) { return _mm_packs_epi32(a, b); }
template <int kBits>
__m128i ShiftRight32(__m128i v) {
  return _mm_srli_epi32(v, kBits);
}
// Dwords 0 and 2 (1 and 3) of a, then of b, within each 128-bit lane.
inline __m128i EvenDwordsLanes(__m128i a, __m128i b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
}
inline __m128i OddDwordsLanes(__m128i a, __m128i b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
}
// After per-lane work on a from the first half and b from the second half of
// the samples, lanes hold a0 b0 | a1 b1 (64-bit pieces); memory order is a0 a1 b0 b1.
inline __m128i LanePiecesInOrder(__m128i v) { return v; }
// The low half of v, the first kBytes / 2 bytes of the output.
inline void StoreLowHalf(uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

#if defined(__AVX2__)
inline __m256i AvgU8(__m256i a, __m256i b) { return _mm256_avg_epu8(a, b); }
inline __m256i Or(__m256i a, __m256i b) { return _mm256_or_si256(a, b); }
inline __m256i MulHiU16(__m256i a, __m256i b) { return _mm256_mulhi_epu16(a, b); }
inline __m256i MaddWords(__m256i a, __m256i b) { return _mm256_madd_epi16(a, b); }
inline __m256i PackS32(__m256i a, __m256i b) { return _mm256_packs_epi32(a, b); }
template <int kBits>
__m256i ShiftRight32(__m256i v) {
  return _mm256_srli_epi32(v, kBits);
}
inline __m256i EvenDwordsLanes(__m256i a, __m256i b) {
  return _mm256_castps_si256(
      _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
}
inline __m256i OddDwordsLanes(__m256i a, __m256i b) {
  return _mm256_castps_si256(
      _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
}
inline __m256i LanePiecesInOrder(__m256i v) { return _mm256_permute4x64_epi64(v, _MM_SHUFFLE(3, 1, 2, 0)); }
inline void StoreLowHalf(uint8_t* p, __m256i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(v));
}
#endif

template <typename T>
typename T::V Set1Epi32(int32_t value) {
  if constexpr (T::kBytes == 16) {
    return _mm_set1_epi32(value);
  } else {
    return _mm256_set1_epi32(value);
  }
}

// ---- Box steps: 16 outputs per block from two rows ----

// Each 16-bit lane holds a horizontal pair; returns its rounded mean.
inline __m128i PairAverage16(__m128i v) {
  return _mm_avg_epu16(_mm_and_si128(v, _mm_set1_epi16(0x00FF)), _mm_srli_epi16(v, 8));
}

constexpr BoxScaleKernel* PlainBox(int32_t step) {
  return step == 2 ? BoxHalf_c : step == 3 ? BoxThird_c : BoxQuarter_c;
}

// One output row of `count` box-step outputs. Rows run out of line: inlined
// into the row loop, the compiler keeps a second counter for the step test,
// which these short bodies measurably feel.
template <typename Block>
[[gnu::noinline]] void BoxRow(const uint8_t* top, int32_t srcStride, uint8_t* out, int32_t count) {
  constexpr int32_t kStep = Block::kStep;
  ForEachStep<16>(
      count, [&](int32_t x) { Vec128::Store(out + x, Block::Run(top + kStep * x, top + srcStride + kStep * x)); },
      [&](int32_t x) { PlainBox(kStep)(top + kStep * x, srcStride, out + x, 0, kStep * (count - x), kStep); });
}

template <typename Block>
void BoxScale(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height) {
  constexpr int32_t kStep = Block::kStep;
  for (int32_t y = 0; y < height / kStep; ++y) {
    BoxRow<Block>(src + static_cast<ptrdiff_t>(kStep * y) * srcStride, srcStride,
                  dst + static_cast<ptrdiff_t>(y) * dstStride, width / kStep);
  }
}

// Step 2 on 16-bit pair means: 32 source bytes of two rows.
struct HalfByWords {
  static constexpr int32_t kStep = 2;
  static __m128i Run(const uint8_t* top, const uint8_t* bottom) {
    const __m128i lo = _mm_avg_epu16(PairAverage16(LoadU(bottom)), PairAverage16(LoadU(top)));
    const __m128i hi = _mm_avg_epu16(PairAverage16(LoadU(bottom + 16)), PairAverage16(LoadU(top + 16)));
    return _mm_packus_epi16(lo, hi);
  }
};

// Step 4: the pair mean of bytes 4x, 4x + 1 sits in the low 16 bits of each
// dword; clearing the high half lets the signed dword pack keep it unchanged.
struct QuarterByWords {
  static constexpr int32_t kStep = 4;
  static __m128i Run(const uint8_t* top, const uint8_t* bottom) {
    const __m128i lowWord = _mm_set1_epi32(0xFFFF);
    const auto quad = [&](int32_t i) {
      return _mm_and_si128(_mm_avg_epu16(PairAverage16(LoadU(bottom + 16 * i)), PairAverage16(LoadU(top + 16 * i))),
                           lowWord);
    };
    const __m128i q[4] = {quad(0), quad(1), quad(2), quad(3)};
    return _mm_packus_epi16(_mm_packs_epi32(q[0], q[1]), _mm_packs_epi32(q[2], q[3]));
  }
};

#if defined(__SSSE3__)
// Step 2: evens to the low half, odds to the high half of each register.
struct HalfByShuffle {
  static constexpr int32_t kStep = 2;
  static __m128i Run(const uint8_t* top, const uint8_t* bottom) {
    const __m128i split = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    const __m128i t0 = _mm_shuffle_epi8(LoadU(top), split), t1 = _mm_shuffle_epi8(LoadU(top + 16), split);
    const __m128i b0 = _mm_shuffle_epi8(LoadU(bottom), split), b1 = _mm_shuffle_epi8(LoadU(bottom + 16), split);
    const __m128i t = _mm_avg_epu8(_mm_unpacklo_epi64(t0, t1), _mm_unpackhi_epi64(t0, t1));
    const __m128i b = _mm_avg_epu8(_mm_unpacklo_epi64(b0, b1), _mm_unpackhi_epi64(b0, b1));
    return _mm_avg_epu8(b, t);
  }
};

// Step 3: bytes 3x and 3x + 1 of 48 source bytes gathered by three shuffles each.
struct ThirdByShuffle {
  static constexpr int32_t kStep = 3;
  static __m128i Run(const uint8_t* top, const uint8_t* bottom) {
    const __m128i a0 = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i a1 = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
    const __m128i a2 = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
    const __m128i b0 = _mm_setr_epi8(1, 4, 7, 10, 13, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i b1 = _mm_setr_epi8(-1, -1, -1, -1, -1, 0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1);
    const __m128i b2 = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14);
    const auto rowMean = [&](const uint8_t* p) {
      const __m128i s0 = LoadU(p), s1 = LoadU(p + 16), s2 = LoadU(p + 32);
      const __m128i a =
          _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(s0, a0), _mm_shuffle_epi8(s1, a1)), _mm_shuffle_epi8(s2, a2));
      const __m128i b =
          _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(s0, b0), _mm_shuffle_epi8(s1, b1)), _mm_shuffle_epi8(s2, b2));
      return _mm_avg_epu8(a, b);
    };
    const __m128i avg[2] = {rowMean(top), rowMean(bottom)};
    return _mm_avg_epu8(avg[1], avg[0]);
  }
};

// Step 4: per register a0..a3 then b0..b3 (bytes 4x, 4x + 1); the unpacks gather 16 of each.
struct QuarterByShuffle {
  static constexpr int32_t kStep = 4;
  static __m128i Run(const uint8_t* top, const uint8_t* bottom) {
    const __m128i pick = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, -1, -1, -1, -1, -1, -1, -1, -1);
    const auto rowMean = [&](const uint8_t* p) {
      const __m128i u01 = _mm_unpacklo_epi32(_mm_shuffle_epi8(LoadU(p), pick), _mm_shuffle_epi8(LoadU(p + 16), pick));
      const __m128i u23 =
          _mm_unpacklo_epi32(_mm_shuffle_epi8(LoadU(p + 32), pick), _mm_shuffle_epi8(LoadU(p + 48), pick));
      return _mm_avg_epu8(_mm_unpacklo_epi64(u01, u23), _mm_unpackhi_epi64(u01, u23));
    };
    const __m128i avg[2] = {rowMean(top), rowMean(bottom)};
    return _mm_avg_epu8(avg[1], avg[0]);
  }
};
#endif

// ---- Packed halving: rows first, then neighbouring pixels ----

// One output row of `count` packed-halving outputs, out of line like the box rows.
template <typename Pixels>
[[gnu::noinline]] void PackedHalfRow(const uint8_t* top, int32_t srcStride, uint8_t* out, int32_t count) {
  constexpr int32_t k = Pixels::kPixelBytes;
  ForEachStep<Pixels::kOutputs>(
      count, [&](int32_t x) { Pixels::Run(top + 2 * k * x, top + srcStride + 2 * k * x, out + k * x); },
      [&](int32_t x) { PackedHalf_c(top + 2 * k * x, srcStride, out + k * x, 0, 2 * (count - x), 2, k); });
}

template <typename Pixels>
void PackedHalfRows(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height) {
  for (int32_t y = 0; y < height / 2; ++y) {
    PackedHalfRow<Pixels>(src + static_cast<ptrdiff_t>(2 * y) * srcStride, srcStride,
                          dst + static_cast<ptrdiff_t>(y) * dstStride, width / 2);
  }
}

template <typename Pixels3, typename Pixels4>
void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel) {
  if (bytesPerPixel == 4) {
    PackedHalfRows<Pixels4>(src, srcStride, dst, dstStride, width, height);
  } else if (bytesPerPixel == 3) {
    PackedHalfRows<Pixels3>(src, srcStride, dst, dstStride, width, height);
  } else {
    PackedHalf_c(src, srcStride, dst, dstStride, width, height, bytesPerPixel);
  }
}

// 4-byte pixels: 2 kBytes source bytes of two rows give kBytes output bytes.
template <typename T>
struct Half32 {
  static constexpr int32_t kPixelBytes = 4, kOutputs = T::kBytes / 4;
  static void Run(const uint8_t* top, const uint8_t* bottom, uint8_t* out) {
    const typename T::V lo = AvgU8(T::Load(top), T::Load(bottom));
    const typename T::V hi = AvgU8(T::Load(top + T::kBytes), T::Load(bottom + T::kBytes));
    T::Store(out, LanePiecesInOrder(AvgU8(EvenDwordsLanes(lo, hi), OddDwordsLanes(lo, hi))));
  }
};

// 3-byte pixels: each 16-byte row mean averaged with itself shifted by one
// pixel holds the means of two output pixels at bytes 0..2 and 6..8 (second
// load, 8 bytes on: 4..6 and 10..12); 24 source bytes give 4 outputs and no
// byte past them is read.
inline __m128i ShiftMean24(__m128i v) { return _mm_avg_epu8(v, _mm_srli_si128(v, 3)); }

struct Half24ByMasks {
  static constexpr int32_t kPixelBytes = 3, kOutputs = 4;
  static void Run(const uint8_t* top, const uint8_t* bottom, uint8_t* out) {
    const __m128i m0 = ShiftMean24(_mm_avg_epu8(LoadU(top), LoadU(bottom)));
    const __m128i m1 = ShiftMean24(_mm_avg_epu8(LoadU(top + 8), LoadU(bottom + 8)));
    const __m128i first = _mm_setr_epi8(-1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i second = _mm_setr_epi8(0, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i c0 = _mm_or_si128(_mm_and_si128(m0, first), _mm_and_si128(_mm_srli_si128(m0, 3), second));
    const __m128i c1 =
        _mm_or_si128(_mm_and_si128(_mm_srli_si128(m1, 4), first), _mm_and_si128(_mm_srli_si128(m1, 7), second));
    Store12(out, _mm_or_si128(c0, _mm_slli_si128(c1, 6)));
  }
};

#if defined(__SSSE3__)
inline __m128i ShuffleLanes(__m128i v, __m128i pattern) { return _mm_shuffle_epi8(v, pattern); }
// The low 12 bytes of each lane, lane after lane.
inline void StoreLanes12(uint8_t* out, __m128i v) { Store12(out, v); }
#if defined(__AVX2__)
inline __m256i ShiftMean24(__m256i v) { return _mm256_avg_epu8(v, _mm256_srli_si256(v, 3)); }
inline __m256i ShuffleLanes(__m256i v, __m128i pattern) {
  return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(pattern));
}
inline void StoreLanes12(uint8_t* out, __m256i v) {
  const __m256i packed = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(packed, 1));
}
#endif

// 16 bytes per 128-bit lane, the lanes 24 bytes (4 output pixels) apart.
template <typename T>
typename T::V LoadPixelGroups(const uint8_t* p) {
  if constexpr (T::kBytes == 16) {
    return LoadU(p);
  } else {
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(p + 24), reinterpret_cast<const __m128i*>(p));
  }
}

template <typename T>
struct Half24ByShuffle {
  static constexpr int32_t kPixelBytes = 3, kOutputs = T::kBytes / 4;
  static void Run(const uint8_t* top, const uint8_t* bottom, uint8_t* out) {
    using V = typename T::V;
    const V m0 = ShiftMean24(AvgU8(LoadPixelGroups<T>(top), LoadPixelGroups<T>(bottom)));
    const V m1 = ShiftMean24(AvgU8(LoadPixelGroups<T>(top + 8), LoadPixelGroups<T>(bottom + 8)));
    StoreLanes12(out, Or(ShuffleLanes(m0, _mm_setr_epi8(0, 1, 2, 6, 7, 8, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                         ShuffleLanes(m1, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 4, 5, 6, 10, 11, 12, -1, -1, -1, -1))));
  }
};
#endif

// ---- Bilinear ----
// The vector forms keep the plain routine's integer positions (x + i * step)
// and only change how the per-column arithmetic is grouped.

inline uint16_t Load16(const uint8_t* p) {
  uint16_t v;
  std::memcpy(&v, p, sizeof(v));
  return v;
}

// The 16-bit pairs p[0] | p[1] << 8 of 8 columns at x + i * step.
inline __m128i GatherPairs8(const uint8_t* line, int32_t x, int32_t stepX, int32_t xShift) {
  return _mm_setr_epi16(static_cast<int16_t>(Load16(line + (x >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 2 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 3 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 4 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 5 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 6 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 7 * stepX) >> xShift))));
}

// Low 16 bits of x + i * step for 8 columns.
inline __m128i Fractions8(int32_t x, int32_t stepX) {
  return _mm_setr_epi16(static_cast<int16_t>(x), static_cast<int16_t>(x + stepX), static_cast<int16_t>(x + 2 * stepX),
                        static_cast<int16_t>(x + 3 * stepX), static_cast<int16_t>(x + 4 * stepX),
                        static_cast<int16_t>(x + 5 * stepX), static_cast<int16_t>(x + 6 * stepX),
                        static_cast<int16_t>(x + 7 * stepX));
}

// kBytes / 2 columns: 8 per 128-bit lane, in order.
template <typename T>
typename T::V GatherPairs(const uint8_t* line, int32_t x, int32_t stepX, int32_t xShift) {
  if constexpr (T::kBytes == 16) {
    return GatherPairs8(line, x, stepX, xShift);
  } else {
    return _mm256_set_m128i(GatherPairs8(line, x + 8 * stepX, stepX, xShift), GatherPairs8(line, x, stepX, xShift));
  }
}

template <typename T>
typename T::V Fractions(int32_t x, int32_t stepX) {
  if constexpr (T::kBytes == 16) {
    return Fractions8(x, stepX);
  } else {
    return _mm256_set_m128i(Fractions8(x + 8 * stepX, stepX), Fractions8(x, stepX));
  }
}

// Luma: every weight is ((a * b) >> 16) of two 16-bit factors, which is
// exactly pmulhuw; each is below 2^15, so pmaddwd forms the weight-times-
// sample sums (below 2^23) without overflow. Returns the results as words.
template <typename T>
typename T::V LumaWords(typename T::V top, typename T::V bottom, typename T::V fx, typename T::V wyTop,
                        typename T::V wyBottom) {
  using V = typename T::V;
  const V zero = T::Zero();
  const V nfx = Xor(fx, T::Set1Epi16(-1));  // 65535 - fx
  const V w00 = MulHiU16(nfx, wyTop), w01 = MulHiU16(fx, wyTop);
  const V w10 = MulHiU16(nfx, wyBottom), w11 = MulHiU16(fx, wyBottom);
  const V lo = Add32(MaddWords(T::UnpackLow8(top, zero), UnpackLow16(w00, w01)),
                     MaddWords(T::UnpackLow8(bottom, zero), UnpackLow16(w10, w11)));
  const V hi = Add32(MaddWords(T::UnpackHigh8(top, zero), UnpackHigh16(w00, w01)),
                     MaddWords(T::UnpackHigh8(bottom, zero), UnpackHigh16(w10, w11)));
  // v = sum >> 14, then (v + 1) >> 1 (0 stays 0); the byte pack clamps at 255.
  const V one = Set1Epi32<T>(1);
  return PackS32(ShiftRight32<1>(Add32(ShiftRight32<14>(lo), one)), ShiftRight32<1>(Add32(ShiftRight32<14>(hi), one)));
}

// Chroma: the plain form needs 64-bit products: with the vertical sums A
// (left) and B (right), below 2^23, it computes (A * (32767 - fx) + B * fx +
// 2^29) >> 30. Splitting A = Ah * 2^15 + Al (and B alike) gives H = Ah *
// (32767 - fx) + Bh * fx < 2^23 and L = Al * (32767 - fx) + Bl * fx < 2^30,
// both pmaddwd sums, and the result is (H + ((L + 2^29) >> 15)) >> 15: the
// inner floor drops only bits the outer division by 2^15 would drop anyway.
template <typename T>
typename T::V ChromaWords(typename T::V top, typename T::V bottom, typename T::V fx, typename T::V wy) {
  using V = typename T::V;
  const V zero = T::Zero();
  const V low15 = Set1Epi32<T>(0x7FFF);
  const V q0 = T::UnpackLow8(top, bottom), q1 = T::UnpackHigh8(top, bottom);  // p0 ps p1 ps1 per column
  const V ab0 = MaddWords(T::UnpackLow8(q0, zero), wy);                       // A0 B0 A1 B1
  const V ab1 = MaddWords(T::UnpackHigh8(q0, zero), wy);
  const V ab2 = MaddWords(T::UnpackLow8(q1, zero), wy);
  const V ab3 = MaddWords(T::UnpackHigh8(q1, zero), wy);
  const V f = T::And(fx, T::Set1Epi16(0x7FFF));
  const V nf = T::Sub16(T::Set1Epi16(32767), f);
  const V round = Set1Epi32<T>(1 << 29);
  const auto combine = [&](V abLo, V abHi, V wx) {
    const V h = MaddWords(PackS32(ShiftRight32<15>(abLo), ShiftRight32<15>(abHi)), wx);
    const V l = MaddWords(PackS32(T::And(abLo, low15), T::And(abHi, low15)), wx);
    return ShiftRight32<15>(Add32(h, ShiftRight32<15>(Add32(l, round))));
  };
  return PackS32(combine(ab0, ab1, UnpackLow16(nf, f)), combine(ab2, ab3, UnpackHigh16(nf, f)));
}

// Bilinear plane over T: kBytes / 2 columns per step.
template <typename T, bool kChroma>
void BilinearPlane(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                   int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  using V = typename T::V;
  const BilinearColumns columns = kChroma ? ChromaColumns(srcWidth, dstWidth) : LumaColumns(srcWidth, dstWidth);
  const int32_t stepX = columns.stepX, xShift = columns.xShift;
  BilinearRows(src, srcStride, srcHeight, dst, dstStride, dstWidth, dstHeight, columns, 1,
               [&](const uint8_t* line, uint8_t* out, int32_t count, int32_t x0, uint32_t fy) {
                 // Chroma weighs (top, bottom) pairs with one pmaddwd; luma scales fx by each row weight.
                 const V wyPair = Set1Epi32<T>(static_cast<int32_t>((fy << 16) | (32767 - fy)));
                 const V wyTop = T::Set1Epi16(static_cast<int16_t>(32767 - fy));
                 const V wyBottom = T::Set1Epi16(static_cast<int16_t>(fy));
                 ForEachStep<T::kBytes / 2>(
                     count,
                     [&](int32_t col) {
                       const int32_t x = x0 + col * stepX;
                       const V top = GatherPairs<T>(line, x, stepX, xShift);
                       const V bottom = GatherPairs<T>(line + srcStride, x, stepX, xShift);
                       const V words = kChroma ? ChromaWords<T>(top, bottom, Fractions<T>(x, stepX), wyPair)
                                               : LumaWords<T>(top, bottom, Fractions<T>(x, stepX), wyTop, wyBottom);
                       StoreLowHalf(out + col, T::PackUs16(words, words));
                     },
                     [&](int32_t col) {
                       (kChroma ? BilinearChromaSpan_c : BilinearLumaSpan_c)(line, srcStride, out + col, count - col,
                                                                             x0 + col * stepX, stepX, fy);
                     });
               });
}

// Packed bilinear is pavg(pavg(p0, ps), pavg(pk, psk)) per channel: the
// plain (((p0 + ps + 1) >> 1) + 1 + ((pk + psk + 1) >> 1)) >> 1 with its
// t < 2 case giving 0 exactly when t >> 1 does. Two outputs per register:
// 8 bytes from each pixel pair, top and bottom; the low k bytes of each
// 64-bit half are the outputs.
template <int32_t k>
__m128i PackedPairMean(const uint8_t* p0, const uint8_t* p1, int32_t s) {
  const __m128i top = _mm_set_epi64x(Load64(p1), Load64(p0));
  const __m128i bottom = _mm_set_epi64x(Load64(p1 + s), Load64(p0 + s));
  const __m128i v = _mm_avg_epu8(top, bottom);
  return _mm_avg_epu8(v, _mm_srli_epi64(v, 8 * k));
}

// Bytes 0..2 and 8..10 of each register, in order, in the low 12 bytes.
struct Pack3ByMasks {
  static __m128i Run(__m128i r0, __m128i r1) {
    const __m128i first = _mm_setr_epi8(-1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i second = _mm_setr_epi8(0, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i c0 = _mm_or_si128(_mm_and_si128(r0, first), _mm_and_si128(_mm_srli_si128(r0, 5), second));
    const __m128i c1 = _mm_or_si128(_mm_and_si128(r1, first), _mm_and_si128(_mm_srli_si128(r1, 5), second));
    return _mm_or_si128(c0, _mm_slli_si128(c1, 6));
  }
};

#if defined(__SSSE3__)
struct Pack3ByShuffle {
  static __m128i Run(__m128i r0, __m128i r1) {
    return _mm_or_si128(_mm_shuffle_epi8(r0, _mm_setr_epi8(0, 1, 2, 8, 9, 10, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                        _mm_shuffle_epi8(r1, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 0, 1, 2, 8, 9, 10, -1, -1, -1, -1)));
  }
};
#endif

// Four outputs per step of k-byte pixels.
template <int32_t k, typename Pack3>
void PackedBilinearPixels(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                          int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  const BilinearColumns columns = LumaColumns(srcWidth, dstWidth);
  const int32_t s = srcStride, stepX = columns.stepX;
  // The 8-byte loads cover pixels x and x + 1, and with 3-byte pixels two
  // bytes more: the body takes the columns whose loads stay in the row.
  const int64_t loadEnd = static_cast<int64_t>(k == 4 ? srcWidth - 1 : srcWidth - 2) << 16;
  BilinearRows(src, srcStride, srcHeight, dst, dstStride, dstWidth, dstHeight, columns, k,
               [&](const uint8_t* line, uint8_t* out, int32_t count, int32_t x0, uint32_t) {
                 const int64_t reach = stepX > 0 ? (loadEnd - x0 + stepX - 1) / stepX : 0;
                 const int32_t inRow = static_cast<int32_t>(reach < 0 ? 0 : (reach < count ? reach : count));
                 ForEachStep<4>(
                     inRow,
                     [&](int32_t col) {
                       const int32_t x = x0 + col * stepX;
                       const uint8_t* p0 = line + (x >> 16) * k;
                       const uint8_t* p1 = line + ((x + stepX) >> 16) * k;
                       const uint8_t* p2 = line + ((x + 2 * stepX) >> 16) * k;
                       const uint8_t* p3 = line + ((x + 3 * stepX) >> 16) * k;
                       const __m128i r0 = PackedPairMean<k>(p0, p1, s), r1 = PackedPairMean<k>(p2, p3, s);
                       if constexpr (k == 4) {
                         Vec128::Store(out + 4 * col, EvenDwordsLanes(r0, r1));
                       } else {
                         Store12(out + 3 * col, Pack3::Run(r0, r1));
                       }
                     },
                     [&](int32_t col) {
                       PackedBilinearSpan_c(line, s, out + k * col, inRow - col, x0 + col * stepX, stepX, k);
                     });
                 if (inRow < count) {
                   PackedBilinearSpan_c(line, s, out + k * inRow, count - inRow, x0 + inRow * stepX, stepX, k);
                 }
               });
}

template <typename Pack3>
void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  if (bytesPerPixel == 4) {
    PackedBilinearPixels<4, Pack3>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight);
  } else if (bytesPerPixel == 3) {
    PackedBilinearPixels<3, Pack3>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight);
  } else {
    PackedBilinear_c(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight, bytesPerPixel);
  }
}

}  // namespace
}  // namespace Lumaforge::x86
