// Multi-tap downscaling bodies. The half-band passes and the vertical four-tap
// rows are written over a vector-width trait (pmaddubsw on byte pairs, so
// SSSE3 and up) and serve 128 and 256 bits. The horizontal four-tap walks
// differ by width and live in their level files.
//
// Sums stay in 16-bit lanes; multitap_tap_range.h gives the tap sets for which
// that is exact, and the kernels hand other sets to the plain routines.
#include <immintrin.h>

#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"
#include "scaling/kernels/multitap_scale.h"
#include "scaling/kernels/x86/multitap_tap_range.h"

namespace Lumaforge::x86 {
namespace {

// (32 + sum) >> 6 on int16 sums. The add saturates: a sum it pushes past
// 32767 would clamp to 255 anyway, as the saturated 32767 >> 6 does.
inline __m128i Round6(__m128i sum) { return _mm_srai_epi16(_mm_adds_epi16(sum, _mm_set1_epi16(32)), 6); }

// The rest of a horizontal row from output i, by the plain routine. It counts
// the phase cycle from its own first output, so the rest finishes the current
// cycle with the table advanced to it, then restarts on a cycle boundary.
inline void FourTapHorizontalRest(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
                                  const int8_t (*phases)[4], int32_t cycleLength, int32_t i) {
  const int32_t pos = posX + i * stepX;
  if (cycleLength == 0) {
    FourTapHorizontal_c(line, dst + i, width - i, pos, stepX, phases, 0);
    return;
  }
  const int32_t phase = i % cycleLength;
  const int32_t first = phase == 0 ? 0 : (width - i < cycleLength - phase ? width - i : cycleLength - phase);
  FourTapHorizontal_c(line, dst + i, first, pos, stepX, phases + phase, cycleLength);
  FourTapHorizontal_c(line, dst + i + first, width - i - first, pos + first * stepX, stepX, phases, cycleLength);
}

#if defined(__SSSE3__)

// ---- Operations the trait lacks, at both widths ----

inline __m128i MaddUbs(__m128i bytes, __m128i taps) { return _mm_maddubs_epi16(bytes, taps); }
inline __m128i AddSat16(__m128i a, __m128i b) { return _mm_adds_epi16(a, b); }
// The same (32 + sum) >> 6 as one pmulhrsw by 512: ((sum >> 5) + 1) >> 1 is
// floor((sum + 32) / 64). The half-band kernels round one half each way, to
// spread the work over the multiply and the add/shift ports.
inline __m128i Round6Mul(__m128i sum) { return _mm_mulhrs_epi16(sum, _mm_set1_epi16(512)); }
#if defined(__AVX2__)
inline __m256i MaddUbs(__m256i bytes, __m256i taps) { return _mm256_maddubs_epi16(bytes, taps); }
inline __m256i AddSat16(__m256i a, __m256i b) { return _mm256_adds_epi16(a, b); }
inline __m256i Round6(__m256i sum) { return _mm256_srai_epi16(_mm256_adds_epi16(sum, _mm256_set1_epi16(32)), 6); }
inline __m256i Round6Mul(__m256i sum) { return _mm256_mulhrs_epi16(sum, _mm256_set1_epi16(512)); }
#endif

// Two taps as the signed byte pair pmaddubsw weights (a, b) byte pairs with.
template <typename T>
typename T::V TapPair(int8_t first, int8_t second) {
  return T::Set1Epi16(static_cast<int16_t>(static_cast<uint8_t>(first) | (static_cast<uint8_t>(second) << 8)));
}

// Output row j weights the row pairs starting at 2j - 2, 2j and 2j + 2, so a
// strip of kBytes columns walked down a band of rows loads and interleaves
// each pair once and uses it for three output rows. Short bands keep the
// rows a band reads streaming through the cache together.
template <typename T>
void HalfBandVertical(const uint8_t* src, int32_t srcStride, int32_t width, int32_t height, uint8_t* dst,
                      int32_t dstStride, const int8_t* taps, int32_t firstRow, int32_t rowCount) {
  using V = typename T::V;
  if (!SixTapsFit(taps)) {
    HalfBandVertical_c(src, srcStride, width, height, dst, dstStride, taps, firstRow, rowCount);
    return;
  }
  const V w01 = TapPair<T>(taps[5], taps[4]), w23 = TapPair<T>(taps[3], taps[2]), w45 = TapPair<T>(taps[1], taps[0]);
  const int32_t endRow = firstRow + rowCount < height / 2 ? firstRow + rowCount : height / 2;
  constexpr int32_t kBand = 4;
  const uint8_t* rows[2 * kBand + 4];
  for (int32_t j0 = firstRow; j0 < endRow; j0 += kBand) {
    const int32_t bandRows = (j0 + kBand < endRow ? j0 + kBand : endRow) - j0;
    HalfBandSourceRows(src, srcStride, height, j0, 2 * bandRows + 4, rows);
    uint8_t* band = dst + static_cast<ptrdiff_t>(j0 - firstRow) * dstStride;
    ForEachStep<T::kBytes>(
        width,
        [&](int32_t x) {
          const auto pair = [&](int32_t k, V* lo, V* hi) {
            const V a = T::Load(rows[k] + x), b = T::Load(rows[k + 1] + x);
            *lo = T::UnpackLow8(a, b);
            *hi = T::UnpackHigh8(a, b);
          };
          V lo0, hi0, lo1, hi1, lo2, hi2;
          pair(0, &lo0, &hi0);
          pair(2, &lo1, &hi1);
          uint8_t* out = band + x;
          for (int32_t j = 0; j < bandRows; ++j, out += dstStride) {
            pair(2 * j + 4, &lo2, &hi2);
            const V lo = T::Add16(T::Add16(MaddUbs(lo0, w01), MaddUbs(lo1, w23)), MaddUbs(lo2, w45));
            const V hi = T::Add16(T::Add16(MaddUbs(hi0, w01), MaddUbs(hi1, w23)), MaddUbs(hi2, w45));
            T::Store(out, T::PackUs16Lanes(Round6(lo), Round6Mul(hi)));
            lo0 = lo1, hi0 = hi1, lo1 = lo2, hi1 = hi2;
          }
        },
        [&](int32_t x) {
          HalfBandVertical_c(src + x, srcStride, width - x, height, band + x, dstStride, taps, j0, bandRows);
        });
  }
}

// kBytes / 2 outputs from the six-tap windows starting at p: word w of the
// load at p + 2m holds the samples tap pair m weighs for output w.
template <typename T>
typename T::V SixTapsAcross(const uint8_t* p, typename T::V w01, typename T::V w23, typename T::V w45) {
  return T::Add16(T::Add16(MaddUbs(T::Load(p), w01), MaddUbs(T::Load(p + 2), w23)), MaddUbs(T::Load(p + 4), w45));
}

template <typename T>
void HalfBandHorizontal(const uint8_t* src, int32_t srcStride, int32_t width, int32_t rows, uint8_t* dst,
                        int32_t dstStride, const int8_t* taps) {
  using V = typename T::V;
  if (!SixTapsFit(taps)) {
    HalfBandHorizontal_c(src, srcStride, width, rows, dst, dstStride, taps);
    return;
  }
  const V w01 = TapPair<T>(taps[5], taps[4]), w23 = TapPair<T>(taps[3], taps[2]), w45 = TapPair<T>(taps[1], taps[0]);
  for (int32_t j = 0; j < rows; ++j) {
    const uint8_t* line = src + static_cast<ptrdiff_t>(j) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(j) * dstStride;
    // kBytes outputs read line[2i - 2 .. 2i + 2 kBytes + 1], exactly the samples they use.
    ForEachStep<T::kBytes>(
        width / 2,
        [&](int32_t i) {
          const V a = Round6(SixTapsAcross<T>(line + 2 * i - 2, w01, w23, w45));
          const V b = Round6Mul(SixTapsAcross<T>(line + 2 * i - 2 + T::kBytes, w01, w23, w45));
          T::Store(out + i, T::PackUs16(a, b));
        },
        [&](int32_t i) { HalfBandHorizontal_c(line + 2 * i, srcStride, width - 2 * i, 1, out + i, dstStride, taps); });
  }
}

template <typename T>
void FourTapVertical(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3, uint8_t* line,
                     int32_t width, const int8_t* taps) {
  using V = typename T::V;
  if (!FourTapPairsFit(taps)) {
    FourTapVertical_c(r0, r1, r2, r3, line, width, taps);
    return;
  }
  const V w01 = TapPair<T>(taps[0], taps[1]), w23 = TapPair<T>(taps[2], taps[3]);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t x) {
        const V a = T::Load(r0 + x), b = T::Load(r1 + x), c = T::Load(r2 + x), d = T::Load(r3 + x);
        // Pairs are exact in int16; the saturating add between them keeps the clamp.
        const V lo = AddSat16(MaddUbs(T::UnpackLow8(a, b), w01), MaddUbs(T::UnpackLow8(c, d), w23));
        const V hi = AddSat16(MaddUbs(T::UnpackHigh8(a, b), w01), MaddUbs(T::UnpackHigh8(c, d), w23));
        T::Store(line + x, T::PackUs16Lanes(Round6Mul(lo), Round6Mul(hi)));
      },
      [&](int32_t x) { FourTapVertical_c(r0 + x, r1 + x, r2 + x, r3 + x, line + x, width - x, taps); });
}

#endif  // __SSSE3__

}  // namespace
}  // namespace Lumaforge::x86
