// 256-bit bilinear planes and 4-byte packed halving. The bilinear kernels
// still fetch their byte pairs with scalar loads (each column has its own
// offset); the arithmetic runs on 16 outputs at once. 3-byte packed halving and packed
// bilinear keep the 128-bit code (built here VEX-encoded): their work is
// byte compaction and gathering that wider registers do not shorten.
#include <immintrin.h>

#define LUMAFORGE_SIMD_LEVEL avx2
#include "scaling/kernels/x86/box_scale_128.h"

namespace Lumaforge::avx2 {
namespace {

// Lane 0 holds columns 0..7 and lane 1 columns 8..15, so every in-lane
// unpack/pack below keeps a column in the same lane; the final permute
// gathers the two 8-byte results.
__m128i Finish16(__m256i words) {
  const __m256i bytes = _mm256_packus_epi16(words, words);
  return _mm256_castsi256_si128(_mm256_permute4x64_epi64(bytes, _MM_SHUFFLE(3, 1, 2, 0)));
}

__m256i Gather16(const uint8_t* line, int32_t x, int32_t stepX, int32_t xShift) {
  return _mm256_set_m128i(GatherPairs(line, x + 8 * stepX, stepX, xShift), GatherPairs(line, x, stepX, xShift));
}

__m256i Fractions16(int32_t x, int32_t stepX) {
  return _mm256_set_m128i(FractionLanes(x + 8 * stepX, stepX), FractionLanes(x, stepX));
}

// Same arithmetic as Luma8: pmulhuw weights, pmaddwd sums below 2^23.
__m128i Luma16(__m256i top, __m256i bottom, __m256i fx, __m256i wyTop, __m256i wyBottom) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i nfx = _mm256_xor_si256(fx, _mm256_set1_epi16(-1));
  const __m256i w00 = _mm256_mulhi_epu16(nfx, wyTop), w01 = _mm256_mulhi_epu16(fx, wyTop);
  const __m256i w10 = _mm256_mulhi_epu16(nfx, wyBottom), w11 = _mm256_mulhi_epu16(fx, wyBottom);
  const __m256i lo =
      _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi8(top, zero), _mm256_unpacklo_epi16(w00, w01)),
                       _mm256_madd_epi16(_mm256_unpacklo_epi8(bottom, zero), _mm256_unpacklo_epi16(w10, w11)));
  const __m256i hi =
      _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi8(top, zero), _mm256_unpackhi_epi16(w00, w01)),
                       _mm256_madd_epi16(_mm256_unpackhi_epi8(bottom, zero), _mm256_unpackhi_epi16(w10, w11)));
  const __m256i one = _mm256_set1_epi32(1);
  const __m256i rlo = _mm256_srli_epi32(_mm256_add_epi32(_mm256_srli_epi32(lo, 14), one), 1);
  const __m256i rhi = _mm256_srli_epi32(_mm256_add_epi32(_mm256_srli_epi32(hi, 14), one), 1);
  return Finish16(_mm256_packs_epi32(rlo, rhi));
}

// Same split as Chroma8: A = Ah * 2^15 + Al keeps every product in pmaddwd.
__m128i Chroma16(__m256i top, __m256i bottom, __m256i fx, __m256i wy) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i low15 = _mm256_set1_epi32(0x7FFF);
  const __m256i q0 = _mm256_unpacklo_epi8(top, bottom), q1 = _mm256_unpackhi_epi8(top, bottom);
  const __m256i ab0 = _mm256_madd_epi16(_mm256_unpacklo_epi8(q0, zero), wy);
  const __m256i ab1 = _mm256_madd_epi16(_mm256_unpackhi_epi8(q0, zero), wy);
  const __m256i ab2 = _mm256_madd_epi16(_mm256_unpacklo_epi8(q1, zero), wy);
  const __m256i ab3 = _mm256_madd_epi16(_mm256_unpackhi_epi8(q1, zero), wy);
  const __m256i f = _mm256_and_si256(fx, _mm256_set1_epi16(0x7FFF));
  const __m256i nf = _mm256_sub_epi16(_mm256_set1_epi16(32767), f);
  const __m256i round = _mm256_set1_epi32(1 << 29);
  const auto combine = [&](__m256i abLo, __m256i abHi, __m256i wx) {
    const __m256i h =
        _mm256_madd_epi16(_mm256_packs_epi32(_mm256_srli_epi32(abLo, 15), _mm256_srli_epi32(abHi, 15)), wx);
    const __m256i l =
        _mm256_madd_epi16(_mm256_packs_epi32(_mm256_and_si256(abLo, low15), _mm256_and_si256(abHi, low15)), wx);
    return _mm256_srli_epi32(_mm256_add_epi32(h, _mm256_srli_epi32(_mm256_add_epi32(l, round), 15)), 15);
  };
  return Finish16(_mm256_packs_epi32(combine(ab0, ab1, _mm256_unpacklo_epi16(nf, f)),
                                     combine(ab2, ab3, _mm256_unpackhi_epi16(nf, f))));
}

// 16 source pixels of two rows give 8 outputs; shufps pairs pixels within
// lanes, so the results come out as outputs 0 1 4 5 | 2 3 6 7 until the permute.
__m256i PackedHalf8x32(const uint8_t* top, const uint8_t* bottom) {
  // Rows first, then neighbouring pixels, as the plain routine rounds.
  const auto rowMean = [top, bottom](int32_t offset) {
    const auto load = [](const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); };
    return _mm256_castsi256_ps(_mm256_avg_epu8(load(top + offset), load(bottom + offset)));
  };
  const __m256 lo = rowMean(0), hi = rowMean(32);
  const __m256i mean = _mm256_avg_epu8(_mm256_castps_si256(_mm256_shuffle_ps(lo, hi, _MM_SHUFFLE(2, 0, 2, 0))),
                                       _mm256_castps_si256(_mm256_shuffle_ps(lo, hi, _MM_SHUFFLE(3, 1, 3, 1))));
  return _mm256_permute4x64_epi64(mean, _MM_SHUFFLE(3, 1, 2, 0));
}

}  // namespace

void BilinearLuma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                  int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  BilinearPlaneRows<16, false>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight,
                               [srcStride](const uint8_t* line, uint32_t fy, int32_t x, int32_t stepX, uint8_t* out) {
                                 const __m256i wyTop = _mm256_set1_epi16(static_cast<int16_t>(32767 - fy));
                                 const __m256i wyBottom = _mm256_set1_epi16(static_cast<int16_t>(fy));
                                 const __m128i r =
                                     Luma16(Gather16(line, x, stepX, 16), Gather16(line + srcStride, x, stepX, 16),
                                            Fractions16(x, stepX), wyTop, wyBottom);
                                 _mm_storeu_si128(reinterpret_cast<__m128i*>(out), r);
                               });
}

void BilinearChroma(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight) {
  BilinearPlaneRows<16, true>(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight,
                              [srcStride](const uint8_t* line, uint32_t fy, int32_t x, int32_t stepX, uint8_t* out) {
                                const __m256i wy = _mm256_set1_epi32(static_cast<int32_t>((fy << 16) | (32767 - fy)));
                                const __m128i r =
                                    Chroma16(Gather16(line, x, stepX, 15), Gather16(line + srcStride, x, stepX, 15),
                                             Fractions16(x, stepX), wy);
                                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), r);
                              });
}

void PackedHalf(const uint8_t* src, int32_t srcStride, uint8_t* dst, int32_t dstStride, int32_t width, int32_t height,
                int32_t bytesPerPixel) {
  if (bytesPerPixel != 4) {
    PackedHalfImpl(src, srcStride, dst, dstStride, width, height, bytesPerPixel);
    return;
  }
  const int32_t vectorOut = width / 2 / 8 * 8;
  for (int32_t y = 0; y < height / 2; ++y) {
    const uint8_t* top = src + static_cast<ptrdiff_t>(2 * y) * srcStride;
    uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStride;
    for (int32_t x = 0; x < vectorOut; x += 8) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * x),
                          PackedHalf8x32(top + 8 * x, top + srcStride + 8 * x));
    }
  }
  if (vectorOut < width / 2) {
    PackedHalfImpl(src + 8 * vectorOut, srcStride, dst + 4 * vectorOut, dstStride, width - 2 * vectorOut, height, 4);
  }
}

void PackedBilinear(const uint8_t* src, int32_t srcStride, int32_t srcWidth, int32_t srcHeight, uint8_t* dst,
                    int32_t dstStride, int32_t dstWidth, int32_t dstHeight, int32_t bytesPerPixel) {
  PackedBilinearImpl(src, srcStride, srcWidth, srcHeight, dst, dstStride, dstWidth, dstHeight, bytesPerPixel);
}

}  // namespace Lumaforge::avx2
