// Vector form of the deband kernel over a lane trait: eight 16-bit lanes
// per 128-bit register, sixteen per 256-bit one. Both directions work on
// sums below 2^12, so 16-bit lanes hold every value; a run of 32 columns
// reads 32 consecutive dither entries, so the noise of a step is one load.
// The edge columns of the horizontal pass and the columns a step leaves
// over take the plain rules. From SSE4.2 the generator uses the crc32
// instruction: its byte step is the table's, so the states are the same.
#ifndef LUMAFORGE_ENHANCE_KERNELS_X86_DEBAND_SIMD_H_
#define LUMAFORGE_ENHANCE_KERNELS_X86_DEBAND_SIMD_H_

#include <immintrin.h>

#include "enhance/kernels/deband.h"
#include "enhance/kernels/deband_rows.h"

namespace Lumaforge::x86 {
namespace {

using namespace deband;

struct Lanes8 {
  using V = __m128i;
  static constexpr int32_t kWidth = 8;
  static V Bytes(const uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
  }
  static V Words(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
  static void StoreWords(void* p, V v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
  static void StoreBytes(uint8_t* p, V v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(v, v)); }
  static V Set(int16_t v) { return _mm_set1_epi16(v); }
  static V Add(V a, V b) { return _mm_add_epi16(a, b); }
  static V Sub(V a, V b) { return _mm_sub_epi16(a, b); }
  static V And(V a, V b) { return _mm_and_si128(a, b); }
  static V Greater(V a, V b) { return _mm_cmpgt_epi16(a, b); }
  static V ShiftLeft2(V v) { return _mm_slli_epi16(v, 2); }
  static V ShiftRight4(V v) { return _mm_srai_epi16(v, 4); }
  static V Abs(V v) {
#if defined(__SSSE3__)
    return _mm_abs_epi16(v);
#else
    return _mm_max_epi16(v, _mm_sub_epi16(_mm_setzero_si128(), v));
#endif
  }
};

#if defined(__AVX2__)
struct Lanes16 {
  using V = __m256i;
  static constexpr int32_t kWidth = 16;
  static V Bytes(const uint8_t* p) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  }
  static V Words(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
  static void StoreWords(void* p, V v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
  static void StoreBytes(uint8_t* p, V v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                     _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
  }
  static V Set(int16_t v) { return _mm256_set1_epi16(v); }
  static V Add(V a, V b) { return _mm256_add_epi16(a, b); }
  static V Sub(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V And(V a, V b) { return _mm256_and_si256(a, b); }
  static V Greater(V a, V b) { return _mm256_cmpgt_epi16(a, b); }
  static V ShiftLeft2(V v) { return _mm256_slli_epi16(v, 2); }
  static V ShiftRight4(V v) { return _mm256_srai_epi16(v, 4); }
  static V Abs(V v) { return _mm256_abs_epi16(v); }
};
#endif

inline uint32_t NextStateOfLevel(uint32_t s) {
#if defined(__SSE4_2__)
  const uint32_t t = _mm_crc32_u8(s, static_cast<uint8_t>(s >> 16));
  return _mm_crc32_u8(t, static_cast<uint8_t>(s >> 24));
#else
  return NextState(s);
#endif
}

// The tap v kept when |v - c| < below (below = limit + 1), else c.
template <typename L>
typename L::V TapLanes(typename L::V v, typename L::V c, typename L::V below) {
  const typename L::V difference = L::Sub(v, c);
  return L::Add(c, L::And(difference, L::Greater(below, L::Abs(difference))));
}

template <typename L>
void DebandPlane(const DebandJob& job) {
  using V = typename L::V;
  constexpr int32_t kStep = L::kWidth;
  const int32_t kh = HoldSpan(job.spanH), kv = HoldSpan(job.spanV);
  const int32_t hx = (1 << kh) / 2, rows = 1 << kv, hv = rows / 2;
  const int32_t t = HeldStrength(job.strength);
  const int32_t* oh = kOffsets[kh];
  const int32_t* ov = kOffsets[kv];
  const V belowH = L::Set(static_cast<int16_t>(t + 1)), belowV = L::Set(static_cast<int16_t>(4 * t + 1));
  uint32_t state = FillDitherTable(job.dither, job.seed, job.ditherTable, NextStateOfLevel);
  const int32_t width = job.width;
  for (int32_t r = -hv; r < job.height + hv; ++r) {
    if (r + job.firstRow >= 0 && r + job.firstRow < job.rowLimit) {
      const uint8_t* s = job.src + r * job.srcStride;
      uint16_t* ring = job.ring + static_cast<ptrdiff_t>(r & (rows - 1)) * width;
      const int32_t innerEnd = width - hx;
      int32_t x = 0;
      for (; x < width && (x < hx || x >= innerEnd); ++x) ring[x] = static_cast<uint16_t>(4 * s[x]);
      for (; x + kStep <= innerEnd; x += kStep) {
        const V c = L::Bytes(s + x);
        V sum = TapLanes<L>(L::Bytes(s + x + oh[0]), c, belowH);
        for (int32_t i = 1; i < 4; ++i) sum = L::Add(sum, TapLanes<L>(L::Bytes(s + x + oh[i]), c, belowH));
        L::StoreWords(ring + x, sum);
      }
      for (; x < innerEnd; ++x) {
        const int32_t c = s[x];
        int32_t sum = 0;
        for (int32_t i = 0; i < 4; ++i) sum += Tap(s[x + oh[i]], c, t);
        ring[x] = static_cast<uint16_t>(sum);
      }
      for (x = innerEnd > hx ? innerEnd : x; x < width; ++x) ring[x] = static_cast<uint16_t>(4 * s[x]);
    }
    const int32_t y = r + 1 - hv;
    if (y < 0) continue;
    if (y + job.firstRow >= job.rowLimit) break;
    const bool inner = hv <= y + job.firstRow && y + hv + job.firstRow < job.rowLimit;
    const uint16_t* centre = job.ring + static_cast<ptrdiff_t>(y & (rows - 1)) * width;
    const uint16_t* taps[4];
    for (int32_t i = 0; i < 4; ++i) taps[i] = job.ring + static_cast<ptrdiff_t>((y + ov[i]) & (rows - 1)) * width;
    uint8_t* out = job.dst + y * job.dstStride;
    int32_t x = 0;
    for (; x + kStep <= width; x += kStep) {
      if ((x & 31) == 0) state = NextStateOfLevel(state);
      const V noise = L::Words(job.ditherTable + (state & 0x7FF) + (x & 31));
      const V c = L::Words(centre + x);
      V sum = L::ShiftLeft2(c);
      if (inner) {
        sum = TapLanes<L>(L::Words(taps[0] + x), c, belowV);
        for (int32_t i = 1; i < 4; ++i) sum = L::Add(sum, TapLanes<L>(L::Words(taps[i] + x), c, belowV));
      }
      L::StoreBytes(out + x, L::ShiftRight4(L::Add(sum, noise)));
    }
    for (; x < width; ++x) {
      if ((x & 31) == 0) state = NextStateOfLevel(state);
      const int32_t noise = job.ditherTable[(state & 0x7FF) + (x & 31)];
      const int32_t c = centre[x];
      int32_t sum = 4 * c;
      if (inner) {
        sum = 0;
        for (int32_t i = 0; i < 4; ++i) sum += Tap(taps[i][x], c, 4 * t);
      }
      out[x] = ToByte((sum + noise) >> 4);
    }
  }
}

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_ENHANCE_KERNELS_X86_DEBAND_SIMD_H_
