// 256-bit multi-tap kernels: the shared bodies at 256 bits, and a horizontal
// four-tap walk of its own that keeps positions and phases in vectors and
// gathers taps and samples, which 128-bit levels cannot.
#include "scaling/kernels/x86/multitap_scale_simd.h"

namespace Lumaforge::x86 {
namespace {

void FourTapHorizontal16(const uint8_t* line, uint8_t* dst, int32_t width, int32_t posX, int32_t stepX,
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
  ForEachStep<16>(
      width,
      [&](int32_t i) {
        const int32_t pos = posX + i * stepX;
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
        // The window test comes before the tap gathers, so its scalar work
        // overlaps them (measurably faster where the samples are gathered too).
        const int32_t x0 = pos >> 16, x7 = (pos + 7 * stepX) >> 16;
        const int32_t x8 = (pos + 8 * stepX) >> 16, x15 = (pos + 15 * stepX) >> 16;
        const bool inWindows = x7 - x0 <= 12 && x15 - x8 <= 12 && x8 + 14 <= lastX + 2;
        const __m256i ta = _mm256_i32gather_epi32(table, ia, 4), tb = _mm256_i32gather_epi32(table, ib, 4);
        const __m256i xa = _mm256_srai_epi32(pa, 16), xb = _mm256_srai_epi32(pb, 16);
        __m256i pxa, pxb;
        if (inWindows) {
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
      },
      [&](int32_t i) { FourTapHorizontalRest(line, dst, width, posX, stepX, phases, cycleLength, i); });
}

}  // namespace
}  // namespace Lumaforge::x86

namespace Lumaforge::avx2 {

void Install(MultiTapScaleKernels* kernels) {
  kernels->halfBandVertical = x86::HalfBandVertical<x86::Vec256>;
  kernels->halfBandHorizontal = x86::HalfBandHorizontal<x86::Vec256>;
  kernels->fourTapVertical = x86::FourTapVertical<x86::Vec256>;
  kernels->fourTapHorizontal = x86::FourTapHorizontal16;
}

}  // namespace Lumaforge::avx2
