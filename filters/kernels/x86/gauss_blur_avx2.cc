// AVX2 Gaussian passes: the four-channel body of gauss_blur_simd.h at 256
// bits, and the one-channel passes, where a ymm holds one sample of eight
// lines, moved in and out with 8x8 transposes.
#include "filters/kernels/x86/gauss_blur_simd.h"

namespace Lumaforge::x86 {
namespace {

using Wide = Floats256;
// Line-buffer floats per position a block fills.
constexpr int32_t kLineStride = kChains * Wide::kFloats;
static_assert(kLineStride <= static_cast<int32_t>(kGaussLineFloatsPerSample));

inline __m256 Load(const float* p) { return Wide::Load(p); }
inline void Store(float* p, __m256 v) { Wide::Store(p, v); }

// Columns 0 .. count - 1 of an 8x8 byte block (row r at p + r * stride,
// eight readable bytes each) as floats: column j, the eight rows in order,
// to out + j * kLineStride.
inline void WidenBlock(const uint8_t* p, ptrdiff_t stride, int32_t count, float* out) {
  __m128i r[8];
  for (int32_t i = 0; i < 8; ++i) r[i] = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + i * stride));
  const __m128i r01 = _mm_unpacklo_epi8(r[0], r[1]), r23 = _mm_unpacklo_epi8(r[2], r[3]);
  const __m128i r45 = _mm_unpacklo_epi8(r[4], r[5]), r67 = _mm_unpacklo_epi8(r[6], r[7]);
  // Columns 0-3 and 4-7 of rows 0-3, then of rows 4-7.
  const __m128i lo03 = _mm_unpacklo_epi16(r01, r23), hi03 = _mm_unpackhi_epi16(r01, r23);
  const __m128i lo47 = _mm_unpacklo_epi16(r45, r67), hi47 = _mm_unpackhi_epi16(r45, r67);
  // Column 2i in the low eight bytes of cols[i], column 2i + 1 in the high.
  const __m128i cols[4] = {_mm_unpacklo_epi32(lo03, lo47), _mm_unpackhi_epi32(lo03, lo47),
                           _mm_unpacklo_epi32(hi03, hi47), _mm_unpackhi_epi32(hi03, hi47)};
  for (int32_t j = 0; j < count; ++j) {
    const __m128i bytes = (j & 1) ? _mm_srli_si128(cols[j >> 1], 8) : cols[j >> 1];
    Store(out + j * kLineStride, _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes)));
  }
}

// Rows y0 .. y0 + 8 * chains - 1, eight per vector. The bytes are first
// transposed into the line buffer as floats (32 per column); the causal
// results go straight to the transposed image, where the eight rows of a
// column are eight consecutive floats, and the anti-causal pass adds to them.
template <int32_t chains>
void RowBlock1(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0,
               const Coefficients<Wide>& k, float* line, float* transposed) {
  const uint8_t* const base = src + y0 * srcStride;
  int32_t x = 0;
  for (; x + 8 <= width; x += 8) {
    for (int32_t c = 0; c < chains; ++c)
      WidenBlock(base + 8 * c * srcStride + x, srcStride, 8, line + x * kLineStride + 8 * c);
  }
  if (x < width) {
    // The last columns through a zero-padded copy: nothing past the rows is read.
    const int32_t count = width - x;
    for (int32_t c = 0; c < chains; ++c) {
      alignas(16) uint8_t block[64] = {};
      for (int32_t r = 0; r < 8; ++r) std::memcpy(block + 8 * r, base + (8 * c + r) * srcStride + x, count);
      WidenBlock(block, 8, count, line + x * kLineStride + 8 * c);
    }
  }

  float* const out = transposed + y0;
  __m256 yp[chains], yb[chains];
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefp, Load(line + 8 * c));
    yb[c] = yp[c];
  }
  for (int32_t i = 0; i < width; ++i) {
    const float* xv = line + i * kLineStride;
    const float* xpv = line + std::max(i - 1, 0) * kLineStride;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 v = Step<Wide>(k.a0, Load(xv + 8 * c), k.a1, Load(xpv + 8 * c), k.b1, yp[c], k.b2, yb[c]);
      Store(out + static_cast<size_t>(i) * height + 8 * c, v);
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  // Anti-causal: step i reads samples i + 1 and i + 2, or the start sample
  // (four before the end) where those fall past the row, as the plain
  // recursion does.
  const int32_t last = width - 1;
  const int32_t start = width >= 4 ? width - 4 : 0;
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefn, Load(line + start * kLineStride + 8 * c));
    yb[c] = yp[c];
  }
  for (int32_t i = last; i >= 0; --i) {
    const float* xn = line + (i + 1 <= last ? i + 1 : start) * kLineStride;
    const float* xa = line + (i + 2 <= last ? i + 2 : start) * kLineStride;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 v = Step<Wide>(k.a2, Load(xn + 8 * c), k.a3, Load(xa + 8 * c), k.b1, yp[c], k.b2, yb[c]);
      float* o = out + static_cast<size_t>(i) * height + 8 * c;
      Store(o, _mm256_add_ps(Load(o), v));
      yb[c] = yp[c];
      yp[c] = v;
    }
  }
}

// In-lane 4x4 transpose of r0..r3, rows of the result kLineStride apart.
inline void TransposeStore(__m256 r0, __m256 r1, __m256 r2, __m256 r3, float* out) {
  const __m256 t0 = _mm256_unpacklo_ps(r0, r1), t1 = _mm256_unpacklo_ps(r2, r3);
  const __m256 t2 = _mm256_unpackhi_ps(r0, r1), t3 = _mm256_unpackhi_ps(r2, r3);
  Store(out, _mm256_shuffle_ps(t0, t1, 0x44));
  Store(out + kLineStride, _mm256_shuffle_ps(t0, t1, 0xEE));
  Store(out + 2 * kLineStride, _mm256_shuffle_ps(t2, t3, 0x44));
  Store(out + 3 * kLineStride, _mm256_shuffle_ps(t2, t3, 0xEE));
}

// Samples p .. p + count - 1 (count <= 8) of columns x0 .. x0 + 8 * chains - 1
// to scratch rows kLineStride floats apart, the columns in order.
template <int32_t chains>
inline void GatherSamples(const float* transposed, int32_t height, int32_t x0, int32_t p, int32_t count,
                          float* scratch) {
  if (count == 8) {
    for (int32_t c = 0; c < chains; ++c) {
      // Column i in the low lane and column i + 4 in the high one: the
      // in-lane transposes then give the eight columns in order.
      const float* col = transposed + static_cast<size_t>(x0 + 8 * c) * height + p;
      const size_t h = static_cast<size_t>(height);
      TransposeStore(Wide::LoadHalves(col, col + 4 * h), Wide::LoadHalves(col + h, col + 5 * h),
                     Wide::LoadHalves(col + 2 * h, col + 6 * h), Wide::LoadHalves(col + 3 * h, col + 7 * h),
                     scratch + 8 * c);
      TransposeStore(Wide::LoadHalves(col + 4, col + 4 * h + 4), Wide::LoadHalves(col + h + 4, col + 5 * h + 4),
                     Wide::LoadHalves(col + 2 * h + 4, col + 6 * h + 4),
                     Wide::LoadHalves(col + 3 * h + 4, col + 7 * h + 4), scratch + 4 * kLineStride + 8 * c);
    }
  } else {
    for (int32_t s = 0; s < count; ++s) {
      for (int32_t j = 0; j < 8 * chains; ++j) {
        scratch[s * kLineStride + j] = transposed[static_cast<size_t>(x0 + j) * height + p + s];
      }
    }
  }
}

template <int32_t chains>
inline void CopyScratchRow(float* scratch, int32_t to, int32_t from) {
  for (int32_t c = 0; c < chains; ++c)
    Store(scratch + to * kLineStride + 8 * c, Load(scratch + from * kLineStride + 8 * c));
}

// Columns x0 .. x0 + 8 * chains - 1, eight per vector. Samples come from the
// transposed lines eight at a time through an 8x8 transpose into a small
// scratch block; the causal results wait in the line buffer.
template <int32_t chains>
void ColumnBlock1(const float* transposed, int32_t height, int32_t x0, const Coefficients<Wide>& k, float* line,
                  uint8_t* dst, ptrdiff_t dstStride) {
  // Zeroed only to let the compiler see every row written before it is read.
  alignas(32) float scratch[10 * kLineStride] = {};
  __m256 yp[chains], yb[chains];

  // Causal: scratch row s + 1 holds sample p + s, row 0 the sample before
  // (sample 0 itself at the start, as in the plain recursion).
  int32_t p = 0, count = std::min(8, height);
  GatherSamples<chains>(transposed, height, x0, 0, count, scratch + kLineStride);
  CopyScratchRow<chains>(scratch, 0, 1);
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefp, Load(scratch + 8 * c));
    yb[c] = yp[c];
  }
  for (;;) {
    for (int32_t s = 0; s < count; ++s) {
      const float* row = scratch + s * kLineStride;
#pragma GCC unroll 4
      for (int32_t c = 0; c < chains; ++c) {
        const __m256 v =
            Step<Wide>(k.a0, Load(row + kLineStride + 8 * c), k.a1, Load(row + 8 * c), k.b1, yp[c], k.b2, yb[c]);
        Store(line + (p + s) * kLineStride + 8 * c, v);
        yb[c] = yp[c];
        yp[c] = v;
      }
    }
    p += count;
    if (p >= height) break;
    CopyScratchRow<chains>(scratch, 0, count);
    count = std::min(8, height - p);
    GatherSamples<chains>(transposed, height, x0, p, count, scratch + kLineStride);
  }

  // Anti-causal, from the top block (height % 8 samples, or 8) down: scratch
  // row s holds sample p + s and rows count, count + 1 the two samples after
  // the block, both the last sample at the top, as the plain start.
  count = height - (height - 1) / 8 * 8;
  p = height - count;
  GatherSamples<chains>(transposed, height, x0, p, count, scratch);
  CopyScratchRow<chains>(scratch, count, count - 1);
  CopyScratchRow<chains>(scratch, count + 1, count - 1);
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefn, Load(scratch + (count - 1) * kLineStride + 8 * c));
    yb[c] = yp[c];
  }
  for (;;) {
    for (int32_t s = count - 1; s >= 0; --s) {
      const float* row = scratch + s * kLineStride;
      __m256 sums[chains];
#pragma GCC unroll 4
      for (int32_t c = 0; c < chains; ++c) {
        const __m256 v = Step<Wide>(k.a2, Load(row + kLineStride + 8 * c), k.a3, Load(row + 2 * kLineStride + 8 * c),
                                    k.b1, yp[c], k.b2, yb[c]);
        sums[c] = _mm256_add_ps(Load(line + (p + s) * kLineStride + 8 * c), v);
        yb[c] = yp[c];
        yp[c] = v;
      }
      StoreBytes<Wide, chains>(dst + (p + s) * dstStride + x0, sums);
    }
    if (p == 0) break;
    CopyScratchRow<chains>(scratch, 9, 1);
    CopyScratchRow<chains>(scratch, 8, 0);
    p -= 8;
    count = 8;
    GatherSamples<chains>(transposed, height, x0, p, count, scratch);
  }
}

// The dispatch of gauss_blur_simd.h, written out for the same reason.
void GaussRowPass1(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, const DericheCoefficients& k,
                   float* line, float* transposed) {
  constexpr int32_t kLines = Wide::kFloats;
  const Coefficients<Wide> kv(k);
  int32_t y = 0;
  for (; y + kLines * kChains <= height; y += kLines * kChains)
    RowBlock1<kChains>(src, srcStride, width, height, y, kv, line, transposed);
  switch ((height - y) / kLines) {
    case 3: RowBlock1<3>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 2: RowBlock1<2>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 1: RowBlock1<1>(src, srcStride, width, height, y, kv, line, transposed); break;
    default: break;
  }
  y += (height - y) / kLines * kLines;
  if (y < height) GaussRowRange1_c(src, srcStride, width, height, y, height, k, line, transposed);
}

void GaussColumnPass1(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, float* line,
                      uint8_t* dst, ptrdiff_t dstStride) {
  constexpr int32_t kLines = Wide::kFloats;
  const Coefficients<Wide> kv(k);
  int32_t x = 0;
  for (; x + kLines * kChains <= width; x += kLines * kChains)
    ColumnBlock1<kChains>(transposed, height, x, kv, line, dst, dstStride);
  switch ((width - x) / kLines) {
    case 3: ColumnBlock1<3>(transposed, height, x, kv, line, dst, dstStride); break;
    case 2: ColumnBlock1<2>(transposed, height, x, kv, line, dst, dstStride); break;
    case 1: ColumnBlock1<1>(transposed, height, x, kv, line, dst, dstStride); break;
    default: break;
  }
  x += (width - x) / kLines * kLines;
  if (x < width) GaussColumnRange1_c(transposed, height, x, width, k, line, dst, dstStride);
}

}  // namespace
}  // namespace Lumaforge::x86

namespace Lumaforge::avx2 {

void Install(GaussBlurKernels* kernels) {
  kernels->rowPass1 = x86::GaussRowPass1;
  kernels->columnPass1 = x86::GaussColumnPass1;
  kernels->rowPass4 = x86::GaussRowPass4<x86::Floats256>;
  kernels->columnPass4 = x86::GaussColumnPass4<x86::Floats256>;
}

}  // namespace Lumaforge::avx2
