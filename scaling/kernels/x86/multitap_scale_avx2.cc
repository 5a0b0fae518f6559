// 256-bit multi-tap downscaling kernels. Same arithmetic and tap range as the
// 128-bit variants (see multitap_scale_128.h): 16-bit sums that cannot
// overflow for the taps accepted, then (32 + sum) >> 6 and a saturating pack.
#include <immintrin.h>

#include "scaling/kernels/multitap_scale.h"
#include "scaling/kernels/x86/multitap_tap_range.h"

namespace Lumaforge::avx2 {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

inline __m256i TapPair(int8_t first, int8_t second) {
  return _mm256_set1_epi16(static_cast<int16_t>(static_cast<uint8_t>(first) | (static_cast<uint8_t>(second) << 8)));
}

// (32 + sum) >> 6 on int16 sums. The add saturates: a sum it pushes past
// 32767 would clamp to 255 anyway, as the saturated 32767 >> 6 does. (Adds
// and shifts here run on more ports than pmulhrsw by 512, which is the same.)
inline __m256i Round6(__m256i sum) { return _mm256_srai_epi16(_mm256_adds_epi16(sum, _mm256_set1_epi16(32)), 6); }

// The same (32 + sum) >> 6 as one pmulhrsw by 512: ((sum >> 5) + 1) >> 1 is
// floor((sum + 32) / 64). Kernels round one half each way to spread the work
// over the multiply and the add/shift ports.
inline __m256i Round6Mul(__m256i sum) { return _mm256_mulhrs_epi16(sum, _mm256_set1_epi16(512)); }

inline uint8_t Clamp6(int32_t sum) {
  const int32_t v = (32 + sum) >> 6;
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

// Sixteen outputs of one row from the six-tap windows at p (lane 0) and p + 16 (lane 1).
inline __m256i SixTapsAcross(const uint8_t* p, __m256i w01, __m256i w23, __m256i w45) {
  return _mm256_add_epi16(_mm256_add_epi16(_mm256_maddubs_epi16(Load(p), w01), _mm256_maddubs_epi16(Load(p + 2), w23)),
                          _mm256_maddubs_epi16(Load(p + 4), w45));
}

}  // namespace

void HalfBandVertical(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                      int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount) {
  if (!SixTapsFit(taps)) {
    HalfBandVertical_c(src, srcStride, width, height, dst, dstStride, taps, firstRow, rowCount);
    return;
  }
  const __m256i w01 = TapPair(taps[5], taps[4]), w23 = TapPair(taps[3], taps[2]), w45 = TapPair(taps[1], taps[0]);
  const int32_t vecWidth = width & ~31;
  const int32_t outRows = firstRow + rowCount < height / 2 ? firstRow + rowCount : height / 2;
  // Output row j weights the row pairs starting at 2j - 2, 2j and 2j + 2, so
  // walking down a 32-column strip loads and interleaves each pair once and
  // reuses it for three output rows. Short bands (measured best) keep the
  // twelve rows a band reads streaming through the cache together.
  constexpr int32_t kBand = 4;
  const uint8_t* rows[2 * kBand + 4];
  for (int32_t j0 = firstRow; j0 < outRows && vecWidth > 0; j0 += kBand) {
    const int32_t bandRows = (j0 + kBand < outRows ? j0 + kBand : outRows) - j0;
    for (int32_t k = 0; k < 2 * bandRows + 4; ++k) {
      int32_t y = 2 * j0 - 2 + k;
      y = y < 0 ? 0 : (y > height - 1 ? height - 1 : y);
      rows[k] = src + static_cast<ptrdiff_t>(y) * srcStride;
    }
    for (int32_t x = 0; x < vecWidth; x += 32) {
      const auto pair = [&](int32_t k, __m256i* lo, __m256i* hi) {
        const __m256i a = Load(rows[k] + x), b = Load(rows[k + 1] + x);
        *lo = _mm256_unpacklo_epi8(a, b);
        *hi = _mm256_unpackhi_epi8(a, b);
      };
      __m256i lo0, hi0, lo1, hi1, lo2, hi2;
      pair(0, &lo0, &hi0);
      pair(2, &lo1, &hi1);
      uint8_t* out = dst + static_cast<ptrdiff_t>(j0 - firstRow) * dstStride + x;
      for (int32_t j = 0; j < bandRows; ++j, out += dstStride) {
        pair(2 * j + 4, &lo2, &hi2);
        const __m256i lo =
            _mm256_add_epi16(_mm256_add_epi16(_mm256_maddubs_epi16(lo0, w01), _mm256_maddubs_epi16(lo1, w23)),
                             _mm256_maddubs_epi16(lo2, w45));
        const __m256i hi =
            _mm256_add_epi16(_mm256_add_epi16(_mm256_maddubs_epi16(hi0, w01), _mm256_maddubs_epi16(hi1, w23)),
                             _mm256_maddubs_epi16(hi2, w45));
        // unpacklo/hi split each 128-bit lane and packus joins them back in place.
        Store(out, _mm256_packus_epi16(Round6(lo), Round6Mul(hi)));
        lo0 = lo1, hi0 = hi1, lo1 = lo2, hi1 = hi2;
      }
    }
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
  const __m256i w01 = TapPair(taps[5], taps[4]), w23 = TapPair(taps[3], taps[2]), w45 = TapPair(taps[1], taps[0]);
  // Thirty-two outputs read src[2i - 2 .. 2i + 65], exactly the samples they use.
  const int32_t vecOut = (width / 2) & ~31;
  for (int32_t j = 0; j < rows && vecOut > 0; ++j) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(j) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(j) * dstStride;
    for (int32_t i = 0; i < vecOut; i += 32) {
      const __m256i a = Round6(SixTapsAcross(line + 2 * i - 2, w01, w23, w45));
      const __m256i b = Round6Mul(SixTapsAcross(line + 2 * i + 30, w01, w23, w45));
      // Lanes hold outputs (0-7, 8-15) and (16-23, 24-31); packus interleaves them by lane.
      Store(out + i, _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8));
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
  const __m256i w01 = TapPair(taps[0], taps[1]), w23 = TapPair(taps[2], taps[3]);
  int32_t x = 0;
  for (; x + 32 <= width; x += 32) {
    const __m256i a = Load(r0 + x), b = Load(r1 + x), c = Load(r2 + x), d = Load(r3 + x);
    // Pairs are exact in int16; the saturating add between them keeps the clamp.
    const __m256i lo = _mm256_adds_epi16(_mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), w01),
                                         _mm256_maddubs_epi16(_mm256_unpacklo_epi8(c, d), w23));
    const __m256i hi = _mm256_adds_epi16(_mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), w01),
                                         _mm256_maddubs_epi16(_mm256_unpackhi_epi8(c, d), w23));
    Store(line + x, _mm256_packus_epi16(Round6(lo), Round6(hi)));
  }
  FourTapVertical_c(r0 + x, r1 + x, r2 + x, r3 + x, line + x, width - x, taps);
}

void FourTapHorizontal(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                       const int8_t (*phases)[4], int32_t cycleLength) {
  int64_t lastPos = 0;
  if (!FourTapRowFits(width, posX, stepX, phases, cycleLength, &lastPos)) {
    FourTapHorizontal_c(line, dst, width, posX, stepX, phases, cycleLength);
    return;
  }
  const int32_t lastX = static_cast<int32_t>(lastPos >> 16);
  // Sixteen outputs per step: vector A holds outputs 0-3 | 8-11 and B 4-7 |
  // 12-15, so after pmaddubsw each lane's phaddsw yields 0-7 | 8-15 in order.
  const __m256i order = _mm256_setr_epi32(0, 1, 2, 3, 8, 9, 10, 11);
  const __m256i step = _mm256_set1_epi32(stepX);
  const __m256i offA = _mm256_mullo_epi32(order, step);
  const __m256i offB = _mm256_add_epi32(offA, _mm256_slli_epi32(step, 2));
  const __m256i phaseMask = _mm256_set1_epi32(63), one = _mm256_set1_epi32(1);
  const __m256i quadBytes = _mm256_set1_epi32(0x03020100);
  const __m256i firstByte = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12, 0, 0, 0, 0, 4, 4, 4, 4,
                                             8, 8, 8, 8, 12, 12, 12, 12);
  const int32_t cycle = cycleLength ? cycleLength : 1;
  const __m256i cycleV = _mm256_set1_epi32(cycle), cycleMax = _mm256_set1_epi32(cycle - 1);
  const __m256i cycleStep = _mm256_set1_epi32(16 % cycle);
  __m256i cycA = _mm256_setr_epi32(0, 1 % cycle, 2 % cycle, 3 % cycle, 8 % cycle, 9 % cycle, 10 % cycle, 11 % cycle);
  __m256i cycB =
      _mm256_setr_epi32(4 % cycle, 5 % cycle, 6 % cycle, 7 % cycle, 12 % cycle, 13 % cycle, 14 % cycle, 15 % cycle);
  const int* table = reinterpret_cast<const int*>(phases);
  int32_t i = 0, pos = posX;
  for (; i + 16 <= width; i += 16, pos += 16 * stepX) {
    const __m256i base = _mm256_set1_epi32(pos);
    const __m256i pa = _mm256_add_epi32(base, offA), pb = _mm256_add_epi32(base, offB);
    __m256i ia, ib;
    if (cycleLength == 0) {
      ia = _mm256_and_si256(_mm256_srli_epi32(pa, 10), phaseMask);
      ib = _mm256_and_si256(_mm256_srli_epi32(pb, 10), phaseMask);
    } else {
      ia = cycA;
      ib = cycB;
      cycA = _mm256_add_epi32(cycA, cycleStep);
      cycB = _mm256_add_epi32(cycB, cycleStep);
      cycA = _mm256_sub_epi32(cycA, _mm256_and_si256(_mm256_cmpgt_epi32(cycA, cycleMax), cycleV));
      cycB = _mm256_sub_epi32(cycB, _mm256_and_si256(_mm256_cmpgt_epi32(cycB, cycleMax), cycleV));
    }
    const __m256i ta = _mm256_i32gather_epi32(table, ia, 4), tb = _mm256_i32gather_epi32(table, ib, 4);
    const __m256i xa = _mm256_srai_epi32(pa, 16), xb = _mm256_srai_epi32(pb, 16);
    const int32_t x0 = pos >> 16, x7 = (pos + 7 * stepX) >> 16;
    const int32_t x8 = (pos + 8 * stepX) >> 16, x15 = (pos + 15 * stepX) >> 16;
    __m256i pxa, pxb;
    if (x7 - x0 <= 12 && x15 - x8 <= 12 && x8 + 14 <= lastX + 2) {
      // Each lane's eight quads lie in a 16-byte window from its first
      // output's x - 1, ending inside the readable line: pick them with pshufb.
      const __m256i window = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(line + x8 - 1),
                                                 reinterpret_cast<const __m128i*>(line + x0 - 1));
      const __m256i start = _mm256_shuffle_epi32(xa, 0);
      const __m256i ca = _mm256_add_epi32(_mm256_shuffle_epi8(_mm256_sub_epi32(xa, start), firstByte), quadBytes);
      const __m256i cb = _mm256_add_epi32(_mm256_shuffle_epi8(_mm256_sub_epi32(xb, start), firstByte), quadBytes);
      pxa = _mm256_shuffle_epi8(window, ca);
      pxb = _mm256_shuffle_epi8(window, cb);
    } else {
      const int* samples = reinterpret_cast<const int*>(line);
      pxa = _mm256_i32gather_epi32(samples, _mm256_sub_epi32(xa, one), 1);
      pxb = _mm256_i32gather_epi32(samples, _mm256_sub_epi32(xb, one), 1);
    }
    // Pair sums are exact in int16; phaddsw is the one add that may saturate.
    const __m256i sums = Round6(_mm256_hadds_epi16(_mm256_maddubs_epi16(pxa, ta), _mm256_maddubs_epi16(pxb, tb)));
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(sums, sums), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), _mm256_castsi256_si128(packed));
  }
  for (; i < width; ++i, pos += stepX) {
    const int8_t* t = cycleLength ? phases[i % cycleLength] : phases[(pos >> 10) & 63];
    const uint8_t* p = line + (pos >> 16) - 1;
    dst[i] = Clamp6(t[0] * p[0] + t[1] * p[1] + t[2] * p[2] + t[3] * p[3]);
  }
}

}  // namespace Lumaforge::avx2
