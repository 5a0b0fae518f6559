// 128-bit box and bilinear downscaling, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace), is built with
// that level's flags and defines the entry points its level provides by
// calling the *Impl routines here. SSSE3 shuffles replace SSE2 shift/mask
// sequences where the build allows them; with -mavx the same source becomes
// VEX-encoded.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include <algorithm>
#include <cstring>

#include "scaling/kernels/box_scale.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {

inline __m128i LoadU(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

inline uint16_t Load16(const uint8_t* p) {
  uint16_t v;
  std::memcpy(&v, p, sizeof(v));
  return v;
}

inline int64_t Load64(const uint8_t* p) {
  int64_t v;
  std::memcpy(&v, p, sizeof(v));
  return v;
}

// The box average is pavg(pavg(a, b), pavg(c, d)): pavg rounds up exactly
// like (x + y + 1) >> 1, and the outer average takes the rounded halves in
// either order.
inline __m128i PairAverage16(__m128i v) {
  // Each 16-bit lane holds a horizontal pair; returns its rounded mean.
  return _mm_avg_epu16(_mm_and_si128(v, _mm_set1_epi16(0x00FF)), _mm_srli_epi16(v, 8));
}

// Step 2: 32 source bytes of two rows give 16 outputs.
inline __m128i BoxHalf16(const uint8_t* top, const uint8_t* bottom) {
#if defined(__SSSE3__)
  // Evens to the low half, odds to the high half of each register.
  const __m128i split = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
  const __m128i t0 = _mm_shuffle_epi8(LoadU(top), split), t1 = _mm_shuffle_epi8(LoadU(top + 16), split);
  const __m128i b0 = _mm_shuffle_epi8(LoadU(bottom), split), b1 = _mm_shuffle_epi8(LoadU(bottom + 16), split);
  const __m128i t = _mm_avg_epu8(_mm_unpacklo_epi64(t0, t1), _mm_unpackhi_epi64(t0, t1));
  const __m128i b = _mm_avg_epu8(_mm_unpacklo_epi64(b0, b1), _mm_unpackhi_epi64(b0, b1));
  return _mm_avg_epu8(b, t);
#else
  const __m128i lo = _mm_avg_epu16(PairAverage16(LoadU(bottom)), PairAverage16(LoadU(top)));
  const __m128i hi = _mm_avg_epu16(PairAverage16(LoadU(bottom + 16)), PairAverage16(LoadU(top + 16)));
  return _mm_packus_epi16(lo, hi);
#endif
}

// Step 4: 64 source bytes of two rows give 16 outputs from bytes 4x, 4x + 1.
inline __m128i BoxQuarter16(const uint8_t* top, const uint8_t* bottom) {
#if defined(__SSSE3__)
  // Per register: a0..a3 then b0..b3; the unpacks gather 16 of each.
  const __m128i pick = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, -1, -1, -1, -1, -1, -1, -1, -1);
  const auto rowMean = [&](const uint8_t* p) {
    const __m128i u01 = _mm_unpacklo_epi32(_mm_shuffle_epi8(LoadU(p), pick), _mm_shuffle_epi8(LoadU(p + 16), pick));
    const __m128i u23 =
        _mm_unpacklo_epi32(_mm_shuffle_epi8(LoadU(p + 32), pick), _mm_shuffle_epi8(LoadU(p + 48), pick));
    return _mm_avg_epu8(_mm_unpacklo_epi64(u01, u23), _mm_unpackhi_epi64(u01, u23));
  };
  const __m128i avg[2] = {rowMean(top), rowMean(bottom)};
  return _mm_avg_epu8(avg[1], avg[0]);
#else
  // The pair mean of bytes 4x, 4x + 1 sits in the low 16 bits of each dword;
  // clearing the high half lets the signed dword pack keep it unchanged.
  const __m128i lowWord = _mm_set1_epi32(0xFFFF);
  const auto quad = [&](int32_t i) {
    return _mm_and_si128(_mm_avg_epu16(PairAverage16(LoadU(bottom + 16 * i)), PairAverage16(LoadU(top + 16 * i))),
                         lowWord);
  };
  const __m128i q[4] = {quad(0), quad(1), quad(2), quad(3)};
  return _mm_packus_epi16(_mm_packs_epi32(q[0], q[1]), _mm_packs_epi32(q[2], q[3]));
#endif
}

#if defined(__SSSE3__)
// Step 3: 48 source bytes of two rows give 16 outputs from bytes 3x, 3x + 1.
inline __m128i BoxThird16(const uint8_t* top, const uint8_t* bottom) {
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
#endif

// Runs `block` over whole 16-output blocks of every row, then finishes the
// remaining columns of all rows with the plain routine.
template <int Step, typename Block>
inline void BoxRows(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                    int32_t height, Block block, BoxScaleFn plain) {
  const int32_t vectorOut = width / Step / 16 * 16;
  for (int32_t y = 0; y < height / Step; ++y) {
    const uint8_t* top = src + static_cast<ptrdiff_t>(Step * y) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStride;
    for (int32_t x = 0; x < vectorOut; x += 16) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), block(top + Step * x, top + srcStride + Step * x));
    }
  }
  if (vectorOut < width / Step) {
    plain(src + Step * vectorOut, srcStride, dst + vectorOut, dstStride, width - Step * vectorOut, height);
  }
}

inline void BoxHalfImpl(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                        int32_t height) {
  BoxRows<2>(
      src, srcStride, dst, dstStride, width, height, [](const uint8_t* t, const uint8_t* b) { return BoxHalf16(t, b); },
      BoxHalf_c);
}

inline void BoxQuarterImpl(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                           int32_t height) {
  BoxRows<4>(
      src, srcStride, dst, dstStride, width, height,
      [](const uint8_t* t, const uint8_t* b) { return BoxQuarter16(t, b); }, BoxQuarter_c);
}

#if defined(__SSSE3__)
inline void BoxThirdImpl(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                         int32_t height) {
  BoxRows<3>(
      src, srcStride, dst, dstStride, width, height,
      [](const uint8_t* t, const uint8_t* b) { return BoxThird16(t, b); }, BoxThird_c);
}
#endif

// Packed step 2, 4-byte pixels: 8 source pixels of two rows give 4 outputs.
// Packed halving averages the two rows first, then neighbouring pixels.
inline __m128i PackedHalf4x32(const uint8_t* top, const uint8_t* bottom) {
  const __m128 lo = _mm_castsi128_ps(_mm_avg_epu8(LoadU(top), LoadU(bottom)));
  const __m128 hi = _mm_castsi128_ps(_mm_avg_epu8(LoadU(top + 16), LoadU(bottom + 16)));
  return _mm_avg_epu8(_mm_castps_si128(_mm_shuffle_ps(lo, hi, _MM_SHUFFLE(2, 0, 2, 0))),
                      _mm_castps_si128(_mm_shuffle_ps(lo, hi, _MM_SHUFFLE(3, 1, 3, 1))));
}

// Packed step 2, 3-byte pixels: 8 source pixels (24 bytes) of two rows give
// 4 outputs in the low 12 bytes. Each 16-byte row mean averaged with itself
// shifted by one pixel holds the means of two output pixels at bytes 0..2
// and 6..8 (second load: 4..6 and 10..12), so no byte past byte 23 is read.
inline __m128i PackedHalf4x24(const uint8_t* top, const uint8_t* bottom) {
  const auto shiftMean = [](__m128i v) { return _mm_avg_epu8(v, _mm_srli_si128(v, 3)); };
  const __m128i m0 = shiftMean(_mm_avg_epu8(LoadU(top), LoadU(bottom)));
  const __m128i m1 = shiftMean(_mm_avg_epu8(LoadU(top + 8), LoadU(bottom + 8)));
#if defined(__SSSE3__)
  return _mm_or_si128(_mm_shuffle_epi8(m0, _mm_setr_epi8(0, 1, 2, 6, 7, 8, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                      _mm_shuffle_epi8(m1, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 4, 5, 6, 10, 11, 12, -1, -1, -1, -1)));
#else
  const __m128i first = _mm_setr_epi8(-1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m128i second = _mm_setr_epi8(0, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m128i c0 = _mm_or_si128(_mm_and_si128(m0, first), _mm_and_si128(_mm_srli_si128(m0, 3), second));
  const __m128i c1 =
      _mm_or_si128(_mm_and_si128(_mm_srli_si128(m1, 4), first), _mm_and_si128(_mm_srli_si128(m1, 7), second));
  return _mm_or_si128(c0, _mm_slli_si128(c1, 6));
#endif
}

inline void Store12(uint8_t* out, __m128i v) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), v);
  const int32_t last = _mm_cvtsi128_si32(_mm_srli_si128(v, 8));
  std::memcpy(out + 8, &last, sizeof(last));
}

inline void PackedHalfImpl(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width,
                           int32_t height, int32_t bytesPerPixel) {
  if (bytesPerPixel != 3 && bytesPerPixel != 4) {
    PackedHalf_c(src, srcStride, dst, dstStride, width, height, bytesPerPixel);
    return;
  }
  const int32_t k = bytesPerPixel;
  const int32_t vectorOut = width / 2 / 4 * 4;
  for (int32_t y = 0; y < height / 2; ++y) {
    const uint8_t* top = src + static_cast<ptrdiff_t>(2 * y) * srcStride;
    const uint8_t* bottom = top + srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStride;
    if (k == 4) {
      for (int32_t x = 0; x < vectorOut; x += 4) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * x), PackedHalf4x32(top + 8 * x, bottom + 8 * x));
      }
    } else {
      for (int32_t x = 0; x < vectorOut; x += 4) {
        Store12(out + 3 * x, PackedHalf4x24(top + 6 * x, bottom + 6 * x));
      }
    }
  }
  if (vectorOut < width / 2) {
    PackedHalf_c(src + 2 * k * vectorOut, srcStride, dst + k * vectorOut, dstStride, width - 2 * vectorOut, height, k);
  }
}

// ---- Bilinear ----
// The plain routines step x per output column; the vector forms keep the
// same integer positions (x + i * step) and only change how the per-column
// arithmetic is grouped. The final row and column copy the source sample.

inline uint8_t LumaSample(const uint8_t* p, int32_t s, uint32_t fx, uint32_t fy) {
  const uint32_t v = ((((fx * fy) >> 16) * p[s + 1] + (((32767 - fy) * fx) >> 16) * p[1] +
                       (((65535 - fx) * (32767 - fy)) >> 16) * p[0] + (((65535 - fx) * fy) >> 16) * p[s]) >>
                      14);
  return static_cast<uint8_t>(std::min<uint32_t>((v + 1) >> 1, 255));  // (0 + 1) >> 1 is already 0
}

inline uint8_t ChromaSample(const uint8_t* p, int32_t s, uint64_t fx, uint64_t fy) {
  const uint64_t v =
      ((p[s] * fy + p[0] * (32767 - fy)) * (32767 - fx) + (p[s + 1] * fy + (32767 - fy) * p[1]) * fx + 0x20000000) >>
      30;
  return static_cast<uint8_t>(std::min<uint64_t>(v, 255));
}

// Copies the source sample at each column position (the last output row).
inline void CopyRow(const uint8_t* line, uint8_t* out, int32_t dstWidth, int32_t startX, int32_t stepX, int32_t xShift,
                    int32_t bytes) {
  int32_t x = startX;
  for (int32_t col = 0; col < dstWidth; ++col, x += stepX) {
    std::memcpy(out + col * bytes, line + static_cast<ptrdiff_t>(x >> xShift) * bytes, bytes);
  }
}

// Gathers the 16-bit pairs p[0] | p[1] << 8 of 8 columns at x + i * step.
inline __m128i GatherPairs(const uint8_t* line, int32_t x, int32_t stepX, int32_t xShift) {
  return _mm_setr_epi16(static_cast<int16_t>(Load16(line + (x >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 2 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 3 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 4 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 5 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 6 * stepX) >> xShift))),
                        static_cast<int16_t>(Load16(line + ((x + 7 * stepX) >> xShift))));
}

// Low 16 bits of x + i * step for the 8 columns of a block.
inline __m128i FractionLanes(int32_t x, int32_t stepX) {
  return _mm_setr_epi16(static_cast<int16_t>(x), static_cast<int16_t>(x + stepX), static_cast<int16_t>(x + 2 * stepX),
                        static_cast<int16_t>(x + 3 * stepX), static_cast<int16_t>(x + 4 * stepX),
                        static_cast<int16_t>(x + 5 * stepX), static_cast<int16_t>(x + 6 * stepX),
                        static_cast<int16_t>(x + 7 * stepX));
}

// Luma, 8 outputs. Every weight is ((a * b) >> 16) of two 16-bit factors,
// which is exactly pmulhuw; each is below 2^15, so pmaddwd forms the
// weight-times-sample sums (below 2^23) without overflow.
inline __m128i Luma8(__m128i top, __m128i bottom, __m128i fx, __m128i wyTop, __m128i wyBottom) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i nfx = _mm_xor_si128(fx, _mm_set1_epi16(-1));  // 65535 - fx
  const __m128i w00 = _mm_mulhi_epu16(nfx, wyTop), w01 = _mm_mulhi_epu16(fx, wyTop);
  const __m128i w10 = _mm_mulhi_epu16(nfx, wyBottom), w11 = _mm_mulhi_epu16(fx, wyBottom);
  const __m128i lo = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(top, zero), _mm_unpacklo_epi16(w00, w01)),
                                   _mm_madd_epi16(_mm_unpacklo_epi8(bottom, zero), _mm_unpacklo_epi16(w10, w11)));
  const __m128i hi = _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi8(top, zero), _mm_unpackhi_epi16(w00, w01)),
                                   _mm_madd_epi16(_mm_unpackhi_epi8(bottom, zero), _mm_unpackhi_epi16(w10, w11)));
  // v = sum >> 14, then (v + 1) >> 1 (0 stays 0); the byte pack clamps at 255.
  const __m128i one = _mm_set1_epi32(1);
  const __m128i rlo = _mm_srli_epi32(_mm_add_epi32(_mm_srli_epi32(lo, 14), one), 1);
  const __m128i rhi = _mm_srli_epi32(_mm_add_epi32(_mm_srli_epi32(hi, 14), one), 1);
  const __m128i words = _mm_packs_epi32(rlo, rhi);
  return _mm_packus_epi16(words, words);
}

// Walks the bilinear output of a plane, luma (columns in 16.16 from 32768)
// or chroma (17.15 from 16384); rows are 17.15 from 16384. The last row and
// the last column copy the source sample at their position; every other
// row runs `vectors(line, fy, x, stepX, out)` over whole groups of kGroup
// outputs starting at position x, then the scalar sample for the rest.
template <int32_t kGroup, bool kChroma, typename Vectors>
inline void BilinearPlaneRows(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                              int32_t dstStride, int32_t dstWidth, int32_t dstHeight, Vectors vectors) {
  const int32_t xShift = kChroma ? 15 : 16, startX = kChroma ? 16384 : 32768;
  const uint32_t fractionMask = kChroma ? 0x7FFF : 0xFFFF;
  const int32_t stepX = BilinearStep(srcWidth, dstWidth, kChroma ? 32768.0f : 65536.0f);
  const int32_t stepY = BilinearStep(srcHeight, dstHeight, 32768.0f);
  const int32_t s = srcStride;
  int32_t y = 16384;
  for (int32_t row = 0; row < dstHeight; ++row, y += stepY) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(y >> 15) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(row) * dstStride;
    if (row == dstHeight - 1) {
      CopyRow(line, out, dstWidth, startX, stepX, xShift, 1);
      break;
    }
    const uint32_t fy = static_cast<uint32_t>(y) & 0x7FFF;
    int32_t x = startX, col = 0;
    for (; col + kGroup <= dstWidth - 1; col += kGroup, x += kGroup * stepX) vectors(line, fy, x, stepX, out + col);
    for (; col < dstWidth - 1; ++col, x += stepX) {
      const uint32_t fx = static_cast<uint32_t>(x) & fractionMask;
      out[col] = kChroma ? ChromaSample(line + (x >> xShift), s, fx, fy) : LumaSample(line + (x >> xShift), s, fx, fy);
    }
    if (dstWidth > 0) out[dstWidth - 1] = line[x >> xShift];
  }
}

inline void BilinearLumaImpl(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                             int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  BilinearPlaneRows<8, false>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight,
                              [srcStride](const uint8_t* line, uint32_t fy, int32_t x, int32_t stepX, uint8_t* out) {
                                const __m128i wyTop = _mm_set1_epi16(static_cast<int16_t>(32767 - fy));
                                const __m128i wyBottom = _mm_set1_epi16(static_cast<int16_t>(fy));
                                const __m128i r =
                                    Luma8(GatherPairs(line, x, stepX, 16), GatherPairs(line + srcStride, x, stepX, 16),
                                          FractionLanes(x, stepX), wyTop, wyBottom);
                                _mm_storel_epi64(reinterpret_cast<__m128i*>(out), r);
                              });
}

// Chroma, 8 outputs. The plain form needs 64-bit products: with the
// vertical sums A (left) and B (right), below 2^23, it computes
// (A * (32767 - fx) + B * fx + 2^29) >> 30. Splitting A = Ah * 2^15 + Al
// (and B alike) gives H = Ah*(32767-fx) + Bh*fx < 2^23 and
// L = Al*(32767-fx) + Bl*fx < 2^30, both pmaddwd sums, and the result is
// (H + ((L + 2^29) >> 15)) >> 15: the inner floor drops only bits that the
// outer division by 2^15 would drop anyway.
inline __m128i Chroma8(__m128i top, __m128i bottom, __m128i fx, __m128i wy) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i low15 = _mm_set1_epi32(0x7FFF);
  const __m128i q0 = _mm_unpacklo_epi8(top, bottom);                    // p0 ps p1 ps1 per output, outputs 0..3
  const __m128i q1 = _mm_unpackhi_epi8(top, bottom);                    // outputs 4..7
  const __m128i ab0 = _mm_madd_epi16(_mm_unpacklo_epi8(q0, zero), wy);  // A0 B0 A1 B1
  const __m128i ab1 = _mm_madd_epi16(_mm_unpackhi_epi8(q0, zero), wy);
  const __m128i ab2 = _mm_madd_epi16(_mm_unpacklo_epi8(q1, zero), wy);
  const __m128i ab3 = _mm_madd_epi16(_mm_unpackhi_epi8(q1, zero), wy);
  const __m128i f = _mm_and_si128(fx, _mm_set1_epi16(0x7FFF));
  const __m128i nf = _mm_sub_epi16(_mm_set1_epi16(32767), f);
  const __m128i wx01 = _mm_unpacklo_epi16(nf, f), wx23 = _mm_unpackhi_epi16(nf, f);
  const __m128i round = _mm_set1_epi32(1 << 29);
  const auto combine = [&](__m128i abLo, __m128i abHi, __m128i wx) {
    const __m128i h = _mm_madd_epi16(_mm_packs_epi32(_mm_srli_epi32(abLo, 15), _mm_srli_epi32(abHi, 15)), wx);
    const __m128i l = _mm_madd_epi16(_mm_packs_epi32(_mm_and_si128(abLo, low15), _mm_and_si128(abHi, low15)), wx);
    return _mm_srli_epi32(_mm_add_epi32(h, _mm_srli_epi32(_mm_add_epi32(l, round), 15)), 15);
  };
  const __m128i words = _mm_packs_epi32(combine(ab0, ab1, wx01), combine(ab2, ab3, wx23));
  return _mm_packus_epi16(words, words);
}

inline void BilinearChromaImpl(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                               int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  BilinearPlaneRows<8, true>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight,
                             [srcStride](const uint8_t* line, uint32_t fy, int32_t x, int32_t stepX, uint8_t* out) {
                               const __m128i wy = _mm_set1_epi32(static_cast<int32_t>((fy << 16) | (32767 - fy)));
                               const __m128i r =
                                   Chroma8(GatherPairs(line, x, stepX, 15), GatherPairs(line + srcStride, x, stepX, 15),
                                           FractionLanes(x, stepX), wy);
                               _mm_storel_epi64(reinterpret_cast<__m128i*>(out), r);
                             });
}

// Packed bilinear is pavg(pavg(p0, ps), pavg(pk, psk)) per channel: the
// plain (((p0 + ps + 1) >> 1) + 1 + ((pk + psk + 1) >> 1)) >> 1 with its
// t < 2 case giving 0 exactly when t >> 1 does.
// Two outputs per register: 8 bytes from each pixel pair, top and bottom;
// the low k bytes of each 64-bit half come out as the result.
inline __m128i PackedPairMean(const uint8_t* p0, const uint8_t* p1, int32_t s, int32_t k) {
  const __m128i top = _mm_set_epi64x(Load64(p1), Load64(p0));
  const __m128i bottom = _mm_set_epi64x(Load64(p1 + s), Load64(p0 + s));
  const __m128i v = _mm_avg_epu8(top, bottom);
  return _mm_avg_epu8(v, _mm_srl_epi64(v, _mm_cvtsi32_si128(8 * k)));
}

inline __m128i Pack3Pixels(__m128i r0, __m128i r1) {
  // Bytes 0..2 and 8..10 of each register, in order.
#if defined(__SSSE3__)
  return _mm_or_si128(_mm_shuffle_epi8(r0, _mm_setr_epi8(0, 1, 2, 8, 9, 10, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)),
                      _mm_shuffle_epi8(r1, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 0, 1, 2, 8, 9, 10, -1, -1, -1, -1)));
#else
  const __m128i first = _mm_setr_epi8(-1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m128i second = _mm_setr_epi8(0, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m128i c0 = _mm_or_si128(_mm_and_si128(r0, first), _mm_and_si128(_mm_srli_si128(r0, 5), second));
  const __m128i c1 = _mm_or_si128(_mm_and_si128(r1, first), _mm_and_si128(_mm_srli_si128(r1, 5), second));
  return _mm_or_si128(c0, _mm_slli_si128(c1, 6));
#endif
}

inline void PackedBilinearImpl(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                               int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  if (bytesPerPixel != 3 && bytesPerPixel != 4) {
    PackedBilinear_c(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight, bytesPerPixel);
    return;
  }
  const int32_t k = bytesPerPixel;
  const int32_t stepX = BilinearStep(srcWidth, dstWidth, 65536.0f);
  const int32_t stepY = BilinearStep(srcHeight, dstHeight, 32768.0f);
  const int32_t s = srcStride;
  // 8-byte loads cover pixels x and x + 1; with 3-byte pixels they also
  // read two more bytes, so the vector loop stops while those are in the row.
  const int32_t lastSafe = k == 4 ? srcWidth - 2 : srcWidth - 3;
  int32_t y = 16384;
  for (int32_t row = 0; row < dstHeight; ++row, y += stepY) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(y >> 15) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(row) * dstStride;
    if (row == dstHeight - 1) {
      CopyRow(line, out, dstWidth, 32768, stepX, 16, k);
      break;
    }
    int32_t x = 32768, col = 0;
    for (; col + 4 <= dstWidth - 1 && ((x + 3 * stepX) >> 16) <= lastSafe; col += 4, x += 4 * stepX) {
      const uint8_t* p0 = line + (x >> 16) * k;
      const uint8_t* p1 = line + ((x + stepX) >> 16) * k;
      const uint8_t* p2 = line + ((x + 2 * stepX) >> 16) * k;
      const uint8_t* p3 = line + ((x + 3 * stepX) >> 16) * k;
      const __m128i r0 = PackedPairMean(p0, p1, s, k), r1 = PackedPairMean(p2, p3, s, k);
      if (k == 4) {
        const __m128 packed = _mm_shuffle_ps(_mm_castsi128_ps(r0), _mm_castsi128_ps(r1), _MM_SHUFFLE(2, 0, 2, 0));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * col), _mm_castps_si128(packed));
      } else {
        Store12(out + 3 * col, Pack3Pixels(r0, r1));
      }
    }
    for (; col < dstWidth - 1; ++col, x += stepX) {
      const uint8_t* p = line + (x >> 16) * k;
      for (int32_t c = 0; c < k; ++c) {
        const int32_t t = ((p[c] + p[s + c] + 1) >> 1) + 1 + ((p[k + c] + p[s + k + c] + 1) >> 1);
        out[col * k + c] = static_cast<uint8_t>(t >> 1);
      }
    }
    if (dstWidth > 0) std::memcpy(out + (dstWidth - 1) * k, line + (x >> 16) * k, k);
  }
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
