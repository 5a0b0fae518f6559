// SSE2 multi-tap kernels: without pmaddubsw, samples are widened to 16-bit
// lanes and weighed with pmullw (pmaddwd for the horizontal four-tap sums).
#include <cstring>

#include "scaling/kernels/x86/multitap_scale_simd.h"

namespace Lumaforge::x86 {
namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

inline __m128i Widen(__m128i v, bool high) {
  return high ? _mm_unpackhi_epi8(v, _mm_setzero_si128()) : _mm_unpacklo_epi8(v, _mm_setzero_si128());
}

void HalfBandVerticalSse2(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                          int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount) {
  if (!SixTapsFit(taps)) {
    HalfBandVertical_c(src, srcStride, width, height, dst, dstStride, taps, firstRow, rowCount);
    return;
  }
  const int32_t endRow = firstRow + rowCount < height / 2 ? firstRow + rowCount : height / 2;
  for (int32_t j = firstRow; j < endRow; ++j) {
    const uint8_t* rows[6];
    HalfBandSourceRows(src, srcStride, height, j, 6, rows);
    uint8_t* out = dst + static_cast<ptrdiff_t>(j - firstRow) * dstStride;
    ForEachStep<16>(
        width,
        [&](int32_t x) {
          const __m128i r[6] = {Load(rows[0] + x), Load(rows[1] + x), Load(rows[2] + x),
                                Load(rows[3] + x), Load(rows[4] + x), Load(rows[5] + x)};
          __m128i half[2];
          for (int32_t h = 0; h < 2; ++h) {
            __m128i sum = _mm_mullo_epi16(Widen(r[0], h), _mm_set1_epi16(taps[5]));
            for (int32_t k = 1; k < 6; ++k) {
              sum = _mm_add_epi16(sum, _mm_mullo_epi16(Widen(r[k], h), _mm_set1_epi16(taps[5 - k])));
            }
            half[h] = Round6(sum);
          }
          Store(out + x, _mm_packus_epi16(half[0], half[1]));
        },
        [&](int32_t x) { HalfBandVertical_c(src + x, srcStride, width - x, height, out + x, dstStride, taps, j, 1); });
  }
}

// Eight outputs of one row from the six-tap windows starting at p.
inline __m128i SixTapsAcross8(const uint8_t* p, const int8_t* taps) {
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  __m128i sum = _mm_setzero_si128();
  for (int32_t m = 0; m < 3; ++m) {
    // Word w of the load at p + 2m holds the samples tap pair m weighs for output w.
    const __m128i v = Load(p + 2 * m);
    sum = _mm_add_epi16(sum, _mm_mullo_epi16(_mm_and_si128(v, lowBytes), _mm_set1_epi16(taps[5 - 2 * m])));
    sum = _mm_add_epi16(sum, _mm_mullo_epi16(_mm_srli_epi16(v, 8), _mm_set1_epi16(taps[4 - 2 * m])));
  }
  return sum;
}

void HalfBandHorizontalSse2(const uint8_t* src, int32_t srcStride, int32_t width, int32_t rows, uint8_t* dst,
                            int32_t dstStride, const int8_t* taps) {
  if (!SixTapsFit(taps)) {
    HalfBandHorizontal_c(src, srcStride, width, rows, dst, dstStride, taps);
    return;
  }
  for (int32_t j = 0; j < rows; ++j) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(j) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(j) * dstStride;
    ForEachStep<16>(
        width / 2,
        [&](int32_t i) {
          Store(out + i, _mm_packus_epi16(Round6(SixTapsAcross8(line + 2 * i - 2, taps)),
                                          Round6(SixTapsAcross8(line + 2 * i + 14, taps))));
        },
        [&](int32_t i) { HalfBandHorizontal_c(line + 2 * i, srcStride, width - 2 * i, 1, out + i, dstStride, taps); });
  }
}

void FourTapVerticalSse2(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3, uint8_t* line,
                         int32_t width, const int8_t* taps) {
  if (!FourTapPairsFit(taps)) {
    FourTapVertical_c(r0, r1, r2, r3, line, width, taps);
    return;
  }
  const __m128i t0 = _mm_set1_epi16(taps[0]), t1 = _mm_set1_epi16(taps[1]);
  const __m128i t2 = _mm_set1_epi16(taps[2]), t3 = _mm_set1_epi16(taps[3]);
  ForEachStep<16>(
      width,
      [&](int32_t x) {
        const __m128i a = Load(r0 + x), b = Load(r1 + x), c = Load(r2 + x), d = Load(r3 + x);
        __m128i half[2];
        for (int32_t h = 0; h < 2; ++h) {
          // Each product and each pair fits int16; only pair + pair saturates.
          const __m128i p01 = _mm_add_epi16(_mm_mullo_epi16(Widen(a, h), t0), _mm_mullo_epi16(Widen(b, h), t1));
          const __m128i p23 = _mm_add_epi16(_mm_mullo_epi16(Widen(c, h), t2), _mm_mullo_epi16(Widen(d, h), t3));
          half[h] = Round6(_mm_adds_epi16(p01, p23));
        }
        Store(line + x, _mm_packus_epi16(half[0], half[1]));
      },
      [&](int32_t x) { FourTapVertical_c(r0 + x, r1 + x, r2 + x, r3 + x, line + x, width - x, taps); });
}

inline int32_t Load32(const void* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}

// Four dwords in order through unpacks.
inline __m128i Dwords(int32_t a, int32_t b, int32_t c, int32_t d) {
  const __m128i ab = _mm_unpacklo_epi32(_mm_cvtsi32_si128(a), _mm_cvtsi32_si128(b));
  const __m128i cd = _mm_unpacklo_epi32(_mm_cvtsi32_si128(c), _mm_cvtsi32_si128(d));
  return _mm_unpacklo_epi64(ab, cd);
}

// Eight outputs per step: their sample quads (x_i - 1 .. x_i + 2) and tap
// quads as dwords, weighed by pmaddwd on zero-extended samples and
// sign-extended taps, exact in 32 bits.
void FourTapHorizontalSse2(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                           const int8_t (*phases)[4], int32_t cycleLength) {
  int64_t lastPos = 0;
  if (!FourTapRowFits(width, posX, stepX, phases, cycleLength, &lastPos)) {
    FourTapHorizontal_c(line, dst, width, posX, stepX, phases, cycleLength);
    return;
  }
  const __m128i zero = _mm_setzero_si128();
  const auto pairSums = [&](__m128i px, __m128i t) {
    const __m128i lo = _mm_madd_epi16(_mm_unpacklo_epi8(px, zero), _mm_srai_epi16(_mm_unpacklo_epi8(t, t), 8));
    const __m128i hi = _mm_madd_epi16(_mm_unpackhi_epi8(px, zero), _mm_srai_epi16(_mm_unpackhi_epi8(t, t), 8));
    const __m128 l = _mm_castsi128_ps(lo), h = _mm_castsi128_ps(hi);
    return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(l, h, _MM_SHUFFLE(2, 0, 2, 0))),
                         _mm_castps_si128(_mm_shuffle_ps(l, h, _MM_SHUFFLE(3, 1, 3, 1))));
  };
  int32_t cycle = 0;  // the phase of the step's first output when cycling
  ForEachStep<8>(
      width,
      [&](int32_t i) {
        const int32_t pos = posX + i * stepX;
        int32_t px[8], tq[8];
        for (int32_t k = 0; k < 8; ++k) {
          const int32_t p = pos + k * stepX;
          px[k] = Load32(line + (p >> 16) - 1);
          const int32_t c = cycle + k;
          std::memcpy(&tq[k], cycleLength ? phases[c >= cycleLength ? c % cycleLength : c] : phases[(p >> 10) & 63], 4);
        }
        // packs keeps the clamp: a saturated 32-bit sum is beyond +-32767
        // only when the output clamps anyway.
        const __m128i sums =
            _mm_packs_epi32(pairSums(Dwords(px[0], px[1], px[2], px[3]), Dwords(tq[0], tq[1], tq[2], tq[3])),
                            pairSums(Dwords(px[4], px[5], px[6], px[7]), Dwords(tq[4], tq[5], tq[6], tq[7])));
        const __m128i rounded = Round6(sums);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + i), _mm_packus_epi16(rounded, rounded));
        if (cycleLength) cycle = (cycle + 8) % cycleLength;
      },
      [&](int32_t i) { FourTapHorizontalRest(line, dst, width, posX, stepX, phases, cycleLength, i); });
}

}  // namespace
}  // namespace Lumaforge::x86

namespace Lumaforge::sse2 {

void Install(MultiTapScaleKernels* kernels) {
  kernels->halfBandVertical = x86::HalfBandVerticalSse2;
  kernels->halfBandHorizontal = x86::HalfBandHorizontalSse2;
  kernels->fourTapVertical = x86::FourTapVerticalSse2;
  kernels->fourTapHorizontal = x86::FourTapHorizontalSse2;
}

}  // namespace Lumaforge::sse2
