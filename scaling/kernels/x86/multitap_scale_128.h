// 128-bit multi-tap downscaling kernels, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built
// with that level's flags, so the same source becomes the SSE2, SSSE3,
// SSE4.2 and (VEX-encoded) AVX variants.
//
// Tap range. The vector paths keep sums in 16-bit lanes, which is exact only
// for taps whose magnitudes are small enough; each kernel checks its taps and
// hands sets outside that range to the plain routine:
//  - half-band kernels: sum of |taps| <= 128, so every partial sum stays
//    within 128 * 255 = 32640 and nothing in int16 can overflow;
//  - four-tap kernels: |t0| + |t1| <= 128 and |t2| + |t3| <= 128, so each
//    pair stays within int16 and only the final pair + pair add may leave it;
//    that add saturates, and a saturated sum is past +-32767 exactly when the
//    true one is, where (32 + sum) >> 6 clamps to the same 0 or 255.
// The half-band taps (-1, 8, 25, 25, 8, -1) and four-tap phases with lobes
// down to about -60 are all inside.
#include <emmintrin.h>
#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include <cstring>

#include "scaling/kernels/multitap_scale.h"
#include "scaling/kernels/x86/multitap_tap_range.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

inline int32_t Load32(const void* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}

// Four dwords in order through unpacks: with SSE4.1 enabled the compiler
// would otherwise chain pinsrd, which is slower here.
inline __m128i Dwords(int32_t a, int32_t b, int32_t c, int32_t d) {
  const __m128i ab = _mm_unpacklo_epi32(_mm_cvtsi32_si128(a), _mm_cvtsi32_si128(b));
  const __m128i cd = _mm_unpacklo_epi32(_mm_cvtsi32_si128(c), _mm_cvtsi32_si128(d));
  return _mm_unpacklo_epi64(ab, cd);
}

#if defined(__SSSE3__)
// Two taps as the signed byte pair pmaddubsw weights (a, b) byte pairs with.
inline __m128i TapPair(int8_t first, int8_t second) {
  return _mm_set1_epi16(static_cast<int16_t>(static_cast<uint8_t>(first) | (static_cast<uint8_t>(second) << 8)));
}

// (32 + sum) >> 6 in one step: pmulhrsw by 512 is ((sum >> 5) + 1) >> 1, the
// same floor((sum + 32) / 64) with the arithmetic shifts.
inline __m128i Round6(__m128i sum) { return _mm_mulhrs_epi16(sum, _mm_set1_epi16(512)); }
#else
inline __m128i Round6(__m128i sum) { return _mm_srai_epi16(_mm_adds_epi16(sum, _mm_set1_epi16(32)), 6); }
inline __m128i Widen(__m128i v, bool high) {
  return high ? _mm_unpackhi_epi8(v, _mm_setzero_si128()) : _mm_unpacklo_epi8(v, _mm_setzero_si128());
}
#endif

// Six rows weighted by taps[5 - k], 16 columns.
inline __m128i SixRows(const uint8_t* const* rows, int32_t x, const int8_t* taps) {
  const __m128i r0 = Load(rows[0] + x), r1 = Load(rows[1] + x), r2 = Load(rows[2] + x);
  const __m128i r3 = Load(rows[3] + x), r4 = Load(rows[4] + x), r5 = Load(rows[5] + x);
#if defined(__SSSE3__)
  const __m128i w01 = TapPair(taps[5], taps[4]), w23 = TapPair(taps[3], taps[2]), w45 = TapPair(taps[1], taps[0]);
  const __m128i lo = _mm_add_epi16(_mm_add_epi16(_mm_maddubs_epi16(_mm_unpacklo_epi8(r0, r1), w01),
                                                 _mm_maddubs_epi16(_mm_unpacklo_epi8(r2, r3), w23)),
                                   _mm_maddubs_epi16(_mm_unpacklo_epi8(r4, r5), w45));
  const __m128i hi = _mm_add_epi16(_mm_add_epi16(_mm_maddubs_epi16(_mm_unpackhi_epi8(r0, r1), w01),
                                                 _mm_maddubs_epi16(_mm_unpackhi_epi8(r2, r3), w23)),
                                   _mm_maddubs_epi16(_mm_unpackhi_epi8(r4, r5), w45));
  return _mm_packus_epi16(Round6(lo), Round6(hi));
#else
  const __m128i r[6] = {r0, r1, r2, r3, r4, r5};
  __m128i half[2];
  for (int32_t h = 0; h < 2; ++h) {
    __m128i sum = _mm_mullo_epi16(Widen(r[0], h), _mm_set1_epi16(taps[5]));
    for (int32_t k = 1; k < 6; ++k)
      sum = _mm_add_epi16(sum, _mm_mullo_epi16(Widen(r[k], h), _mm_set1_epi16(taps[5 - k])));
    half[h] = Round6(sum);
  }
  return _mm_packus_epi16(half[0], half[1]);
#endif
}

// Eight outputs of one row from the six-tap window starting at p = src + 2i - 2.
inline __m128i SixTapsAcross(const uint8_t* p, const int8_t* taps) {
  // Word w of the load at p + 2m holds the samples tap pair m weights for output i + w.
  const __m128i a = Load(p), b = Load(p + 2), c = Load(p + 4);
#if defined(__SSSE3__)
  return _mm_add_epi16(
      _mm_add_epi16(_mm_maddubs_epi16(a, TapPair(taps[5], taps[4])), _mm_maddubs_epi16(b, TapPair(taps[3], taps[2]))),
      _mm_maddubs_epi16(c, TapPair(taps[1], taps[0])));
#else
  const __m128i lowBytes = _mm_set1_epi16(0x00ff);
  const __m128i v[3] = {a, b, c};
  __m128i sum = _mm_setzero_si128();
  for (int32_t m = 0; m < 3; ++m) {
    sum = _mm_add_epi16(sum, _mm_mullo_epi16(_mm_and_si128(v[m], lowBytes), _mm_set1_epi16(taps[5 - 2 * m])));
    sum = _mm_add_epi16(sum, _mm_mullo_epi16(_mm_srli_epi16(v[m], 8), _mm_set1_epi16(taps[4 - 2 * m])));
  }
  return sum;
#endif
}

inline uint8_t Clamp6(int32_t sum) {
  const int32_t v = (32 + sum) >> 6;
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

// Eight outputs' sums from their sample quads (x - 1 .. x + 2, four outputs
// per vector) and matching tap quads, as eight int16 lanes in output order.
inline __m128i Dot8(__m128i pxA, __m128i pxB, __m128i tA, __m128i tB) {
#if defined(__SSSE3__)
  // Each pair sum fits int16 (see the tap range above); the saturating
  // horizontal add is the one add that may leave it.
  return _mm_hadds_epi16(_mm_maddubs_epi16(pxA, tA), _mm_maddubs_epi16(pxB, tB));
#else
  const __m128i zero = _mm_setzero_si128();
  const auto pairs = [&](__m128i px, __m128i t) {
    // pmaddwd on zero-extended samples and sign-extended taps: exact in 32 bits.
    const __m128i lo = _mm_madd_epi16(_mm_unpacklo_epi8(px, zero), _mm_srai_epi16(_mm_unpacklo_epi8(t, t), 8));
    const __m128i hi = _mm_madd_epi16(_mm_unpackhi_epi8(px, zero), _mm_srai_epi16(_mm_unpackhi_epi8(t, t), 8));
    const __m128 l = _mm_castsi128_ps(lo), h = _mm_castsi128_ps(hi);
    return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(l, h, _MM_SHUFFLE(2, 0, 2, 0))),
                         _mm_castps_si128(_mm_shuffle_ps(l, h, _MM_SHUFFLE(3, 1, 3, 1))));
  };
  // packs keeps the clamp: a saturated 32-bit sum is beyond +-32767 only
  // when the output clamps anyway.
  return _mm_packs_epi32(pairs(pxA, tA), pairs(pxB, tB));
#endif
}

}  // namespace

void HalfBandVertical(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                      int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount) {
  if (!SixTapsFit(taps)) {
    HalfBandVertical_c(src, srcStride, width, height, dst, dstStride, taps, firstRow, rowCount);
    return;
  }
  const int32_t vecWidth = width & ~15;
  const int32_t endRow = firstRow + rowCount < height / 2 ? firstRow + rowCount : height / 2;
  for (int32_t j = firstRow; j < endRow && vecWidth > 0; ++j) {
    const uint8_t* rows[6];
    for (int32_t k = 0; k < 6; ++k) {
      int32_t y = 2 * j - 2 + k;
      y = y < 0 ? 0 : (y > height - 1 ? height - 1 : y);
      rows[k] = src + static_cast<ptrdiff_t>(y) * srcStride;
    }
    uint8_t* out = dst + static_cast<ptrdiff_t>(j - firstRow) * dstStride;
    for (int32_t x = 0; x < vecWidth; x += 16) Store(out + x, SixRows(rows, x, taps));
  }
  // The plain tail walks its rows even without columns: skip it when empty.
  if (vecWidth == width) return;
  HalfBandVertical_c(src + vecWidth, srcStride, width - vecWidth, height, dst + vecWidth, dstStride, taps, firstRow,
                     rowCount);
}

void HalfBandHorizontal(const uint8_t* src, int32_t srcStride, int32_t width, int32_t rows, uint8_t* dst,
                        int32_t dstStride, const int8_t* taps) {
  if (!SixTapsFit(taps)) {
    HalfBandHorizontal_c(src, srcStride, width, rows, dst, dstStride, taps);
    return;
  }
  // Sixteen outputs read src[2i - 2 .. 2i + 33], exactly the samples they use.
  const int32_t vecOut = (width / 2) & ~15;
  for (int32_t j = 0; j < rows && vecOut > 0; ++j) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(j) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(j) * dstStride;
    for (int32_t i = 0; i < vecOut; i += 16) {
      const __m128i lo = SixTapsAcross(line + 2 * i - 2, taps);
      const __m128i hi = SixTapsAcross(line + 2 * i + 14, taps);
      Store(out + i, _mm_packus_epi16(Round6(lo), Round6(hi)));
    }
  }
  if (2 * vecOut == width) return;
  HalfBandHorizontal_c(src + 2 * vecOut, srcStride, width - 2 * vecOut, rows, dst + vecOut, dstStride, taps);
}

void FourTapVertical(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3, uint8_t* line,
                     int32_t width, const int8_t* taps) {
  if (!FourTapPairsFit(taps)) {
    FourTapVertical_c(r0, r1, r2, r3, line, width, taps);
    return;
  }
  int32_t x = 0;
#if defined(__SSSE3__)
  const __m128i w01 = TapPair(taps[0], taps[1]), w23 = TapPair(taps[2], taps[3]);
  for (; x + 16 <= width; x += 16) {
    const __m128i a = Load(r0 + x), b = Load(r1 + x), c = Load(r2 + x), d = Load(r3 + x);
    // Pairs are exact in int16; the saturating add between them keeps the clamp.
    const __m128i lo = _mm_adds_epi16(_mm_maddubs_epi16(_mm_unpacklo_epi8(a, b), w01),
                                      _mm_maddubs_epi16(_mm_unpacklo_epi8(c, d), w23));
    const __m128i hi = _mm_adds_epi16(_mm_maddubs_epi16(_mm_unpackhi_epi8(a, b), w01),
                                      _mm_maddubs_epi16(_mm_unpackhi_epi8(c, d), w23));
    Store(line + x, _mm_packus_epi16(Round6(lo), Round6(hi)));
  }
#else
  const __m128i t0 = _mm_set1_epi16(taps[0]), t1 = _mm_set1_epi16(taps[1]);
  const __m128i t2 = _mm_set1_epi16(taps[2]), t3 = _mm_set1_epi16(taps[3]);
  for (; x + 16 <= width; x += 16) {
    const __m128i a = Load(r0 + x), b = Load(r1 + x), c = Load(r2 + x), d = Load(r3 + x);
    __m128i half[2];
    for (int32_t h = 0; h < 2; ++h) {
      // Each product and each pair fits int16; only pair + pair saturates.
      const __m128i p01 = _mm_add_epi16(_mm_mullo_epi16(Widen(a, h), t0), _mm_mullo_epi16(Widen(b, h), t1));
      const __m128i p23 = _mm_add_epi16(_mm_mullo_epi16(Widen(c, h), t2), _mm_mullo_epi16(Widen(d, h), t3));
      half[h] = Round6(_mm_adds_epi16(p01, p23));
    }
    Store(line + x, _mm_packus_epi16(half[0], half[1]));
  }
#endif
  FourTapVertical_c(r0 + x, r1 + x, r2 + x, r3 + x, line + x, width - x, taps);
}

void FourTapHorizontal(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                       const int8_t (*phases)[4], int32_t cycleLength) {
  int64_t lastPos = 0;
  if (!FourTapRowFits(width, posX, stepX, phases, cycleLength, &lastPos)) {
    FourTapHorizontal_c(line, dst, width, posX, stepX, phases, cycleLength);
    return;
  }
  [[maybe_unused]] const int32_t lastX = static_cast<int32_t>(lastPos >> 16);
  int32_t i = 0, pos = posX, cycle = 0;
  const auto tapsOf = [&](int32_t k, int32_t p) -> const int8_t* {
    if (cycleLength == 0) return phases[(p >> 10) & 63];
    const int32_t c = cycle + k;
    return phases[c >= cycleLength ? c % cycleLength : c];
  };
  for (; i + 8 <= width; i += 8) {
    int32_t tq[8];
    const uint8_t* at[8];
    for (int32_t k = 0; k < 8; ++k) {
      const int32_t p = pos + k * stepX;
      at[k] = line + (p >> 16) - 1;
      std::memcpy(&tq[k], tapsOf(k, p), 4);
    }
    const __m128i tA = Dwords(tq[0], tq[1], tq[2], tq[3]), tB = Dwords(tq[4], tq[5], tq[6], tq[7]);
    __m128i pxA, pxB;
#if defined(__SSSE3__)
    const int32_t span = static_cast<int32_t>(at[7] - at[0]);
    if (span <= 12 && (at[0] - line) + 16 <= lastX + 3) {
      // The eight quads lie in one 16-byte window that ends inside the
      // readable line: pick them out with pshufb.
      const __m128i window = Load(at[0]);
      const auto quads = [&](int32_t k) {
        return Dwords(static_cast<int32_t>((at[k] - at[0]) * 0x01010101 + 0x03020100),
                      static_cast<int32_t>((at[k + 1] - at[0]) * 0x01010101 + 0x03020100),
                      static_cast<int32_t>((at[k + 2] - at[0]) * 0x01010101 + 0x03020100),
                      static_cast<int32_t>((at[k + 3] - at[0]) * 0x01010101 + 0x03020100));
      };
      pxA = _mm_shuffle_epi8(window, quads(0));
      pxB = _mm_shuffle_epi8(window, quads(4));
    } else
#endif
    {
      pxA = Dwords(Load32(at[0]), Load32(at[1]), Load32(at[2]), Load32(at[3]));
      pxB = Dwords(Load32(at[4]), Load32(at[5]), Load32(at[6]), Load32(at[7]));
    }
    const __m128i sums = Round6(Dot8(pxA, pxB, tA, tB));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + i), _mm_packus_epi16(sums, sums));
    pos += 8 * stepX;
    if (cycleLength) cycle = (cycle + 8) % cycleLength;
  }
  // The tail keeps the cycle where the vector part left it, which the plain
  // routine (counting from its own output 0) cannot.
  for (int32_t k = 0; i < width; ++i, ++k, pos += stepX) {
    const int8_t* t = tapsOf(k, pos);
    const uint8_t* p = line + (pos >> 16) - 1;
    dst[i] = Clamp6(t[0] * p[0] + t[1] * p[1] + t[2] * p[2] + t[3] * p[3]);
  }
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
