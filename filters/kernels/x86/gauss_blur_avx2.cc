// 256-bit Gaussian passes.
//
// Four channels: a ymm holds one pixel of two lines, two rows in the row
// pass (which is also how two neighbouring rows sit in the transposed image)
// or two columns in the column pass. One channel: a ymm holds one sample of
// eight lines, moved in and out with 8x8 transposes. Up to four vectors run
// side by side so that their recursion chains overlap. Every step is the
// plain ((p0 * x0 + p1 * x1) - b1 * y1) - b2 * y2 with separate multiplies
// and adds in that order (no FMA), hence the plain floats bit for bit.
#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "filters/kernels/gauss_blur.h"

namespace Lumaforge::avx2 {
namespace {

// Vectors per block and line-buffer floats per position they fill.
constexpr int32_t kChains = 4;
constexpr int32_t kLineStride = kChains * 8;
static_assert(kLineStride <= static_cast<int32_t>(kGaussLineFloatsPerSample));

struct Coefficients256 {
  explicit Coefficients256(const DericheCoefficients& k)
      : a0(_mm256_set1_ps(k.a0)),
        a1(_mm256_set1_ps(k.a1)),
        a2(_mm256_set1_ps(k.a2)),
        a3(_mm256_set1_ps(k.a3)),
        b1(_mm256_set1_ps(k.b1)),
        b2(_mm256_set1_ps(k.b2)),
        coefp(_mm256_set1_ps(k.coefp)),
        coefn(_mm256_set1_ps(k.coefn)) {}
  __m256 a0, a1, a2, a3, b1, b2, coefp, coefn;
};

inline __m256 Step(__m256 p0, __m256 x0, __m256 p1, __m256 x1, __m256 b1, __m256 y1, __m256 b2, __m256 y2) {
  const __m256 feed = _mm256_add_ps(_mm256_mul_ps(p0, x0), _mm256_mul_ps(p1, x1));
  return _mm256_sub_ps(_mm256_sub_ps(feed, _mm256_mul_ps(b1, y1)), _mm256_mul_ps(b2, y2));
}

inline __m256 Load(const float* p) { return _mm256_loadu_ps(p); }
inline void Store(float* p, __m256 v) { _mm256_storeu_ps(p, v); }

// Four floats from a, four from b.
inline __m256 LoadHalves(const float* a, const float* b) {
  return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(a)), _mm_loadu_ps(b), 1);
}

// cvtt truncates toward zero like the plain int32 cast; the mask keeps its
// low byte, and values 0..255 pass both saturating packs unchanged, so the
// bytes equal (uint8_t)(int32_t)v.
inline __m256i LowBytes(__m256 v) { return _mm256_and_si256(_mm256_cvttps_epi32(v), _mm256_set1_epi32(0xFF)); }

inline void Store8Bytes(uint8_t* dst, __m256 v) {
  const __m256i b = LowBytes(v);
  const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(b), _mm256_extracti128_si256(b, 1));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(words, words));
}

// The bytes of `chains` vectors, one after the other, in lane order.
template <int32_t chains>
inline void StoreBytes(uint8_t* dst, const __m256* sums) {
  if constexpr (chains == kChains) {
    // The packs work per 128-bit lane: dword i of `packed` holds four bytes
    // of vector i & 3, half i >> 2; the permute restores vector order.
    const __m256i w01 = _mm256_packs_epi32(LowBytes(sums[0]), LowBytes(sums[1]));
    const __m256i w23 = _mm256_packs_epi32(LowBytes(sums[2]), LowBytes(sums[3]));
    const __m256i packed = _mm256_packus_epi16(w01, w23);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst),
                        _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
  } else {
    for (int32_t c = 0; c < chains; ++c) Store8Bytes(dst + 8 * c, sums[c]);
  }
}

// ---------------------------------------------------------------------------
// Four channels.

// The four-byte pixels at a and b (the same pixel of two rows) as floats.
inline __m256 LoadPixelPair(const uint8_t* a, const uint8_t* b) {
  int32_t bitsA, bitsB;
  std::memcpy(&bitsA, a, 4);
  std::memcpy(&bitsB, b, 4);
  const __m128i pair = _mm_unpacklo_epi32(_mm_cvtsi32_si128(bitsA), _mm_cvtsi32_si128(bitsB));
  return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(pair));
}

// Rows y0 .. y0 + 2 * chains - 1. Rows y and y + 1 of pixel x are eight
// consecutive floats of the transposed image, so one vector is one store.
// The causal pass keeps the converted pixels in the line buffer for the
// anti-causal pass.
template <int32_t chains>
void RowBlock4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0,
               const Coefficients256& k, float* line, float* transposed) {
  const uint8_t* rows[2 * chains];
  for (int32_t r = 0; r < 2 * chains; ++r) rows[r] = src + (y0 + r) * srcStride;
  float* const out = transposed + static_cast<size_t>(y0) * 4;
  const size_t pitch = static_cast<size_t>(height) * 4;

  __m256 xp[chains], yp[chains], yb[chains];
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    xp[c] = LoadPixelPair(rows[2 * c], rows[2 * c + 1]);
    yp[c] = _mm256_mul_ps(k.coefp, xp[c]);
    yb[c] = yp[c];
  }
  for (int32_t x = 0; x < width; ++x) {
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 xv = LoadPixelPair(rows[2 * c] + 4 * x, rows[2 * c + 1] + 4 * x);
      Store(line + x * kLineStride + 8 * c, xv);
      const __m256 v = Step(k.a0, xv, k.a1, xp[c], k.b1, yp[c], k.b2, yb[c]);
      Store(out + x * pitch + 8 * c, v);
      xp[c] = xv;
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  // Anti-causal: step x reads pixels x + 1 and x + 2, both clamped to the
  // last one, which is where the plain recursion starts.
  const int32_t last = width - 1;
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefn, Load(line + last * kLineStride + 8 * c));
    yb[c] = yp[c];
  }
  for (int32_t x = last; x >= 0; --x) {
    const float* xn = line + std::min(x + 1, last) * kLineStride;
    const float* xa = line + std::min(x + 2, last) * kLineStride;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 v = Step(k.a2, Load(xn + 8 * c), k.a3, Load(xa + 8 * c), k.b1, yp[c], k.b2, yb[c]);
      float* o = out + x * pitch + 8 * c;
      Store(o, _mm256_add_ps(Load(o), v));
      yb[c] = yp[c];
      yp[c] = v;
    }
  }
}

// Columns x0 .. x0 + 2 * chains - 1, two per vector, read straight from
// their transposed lines; the causal results wait in the line buffer.
template <int32_t chains>
void ColumnBlock4(const float* transposed, int32_t height, int32_t x0, const Coefficients256& k, float* line,
                  uint8_t* dst, ptrdiff_t dstStride) {
  const float* cols[2 * chains];
  for (int32_t c = 0; c < 2 * chains; ++c) cols[c] = transposed + static_cast<size_t>(x0 + c) * height * 4;

  __m256 yp[chains], yb[chains];
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefp, LoadHalves(cols[2 * c], cols[2 * c + 1]));
    yb[c] = yp[c];
  }
  for (int32_t y = 0; y < height; ++y) {
    const int32_t at = y * 4, previous = std::max(y - 1, 0) * 4;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 xv = LoadHalves(cols[2 * c] + at, cols[2 * c + 1] + at);
      const __m256 xpv = LoadHalves(cols[2 * c] + previous, cols[2 * c + 1] + previous);
      const __m256 v = Step(k.a0, xv, k.a1, xpv, k.b1, yp[c], k.b2, yb[c]);
      Store(line + y * kLineStride + 8 * c, v);
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  const int32_t last = height - 1;
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = _mm256_mul_ps(k.coefn, LoadHalves(cols[2 * c] + last * 4, cols[2 * c + 1] + last * 4));
    yb[c] = yp[c];
  }
  for (int32_t y = last; y >= 0; --y) {
    const int32_t xn = std::min(y + 1, last) * 4, xa = std::min(y + 2, last) * 4;
    __m256 sums[chains];
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const __m256 xnv = LoadHalves(cols[2 * c] + xn, cols[2 * c + 1] + xn);
      const __m256 xav = LoadHalves(cols[2 * c] + xa, cols[2 * c + 1] + xa);
      const __m256 v = Step(k.a2, xnv, k.a3, xav, k.b1, yp[c], k.b2, yb[c]);
      sums[c] = _mm256_add_ps(Load(line + y * kLineStride + 8 * c), v);
      yb[c] = yp[c];
      yp[c] = v;
    }
    StoreBytes<chains>(dst + y * dstStride + x0 * 4, sums);
  }
}

// ---------------------------------------------------------------------------
// One channel.

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
               const Coefficients256& k, float* line, float* transposed) {
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
      const __m256 v = Step(k.a0, Load(xv + 8 * c), k.a1, Load(xpv + 8 * c), k.b1, yp[c], k.b2, yb[c]);
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
      const __m256 v = Step(k.a2, Load(xn + 8 * c), k.a3, Load(xa + 8 * c), k.b1, yp[c], k.b2, yb[c]);
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
      TransposeStore(LoadHalves(col, col + 4 * h), LoadHalves(col + h, col + 5 * h),
                     LoadHalves(col + 2 * h, col + 6 * h), LoadHalves(col + 3 * h, col + 7 * h), scratch + 8 * c);
      TransposeStore(LoadHalves(col + 4, col + 4 * h + 4), LoadHalves(col + h + 4, col + 5 * h + 4),
                     LoadHalves(col + 2 * h + 4, col + 6 * h + 4), LoadHalves(col + 3 * h + 4, col + 7 * h + 4),
                     scratch + 4 * kLineStride + 8 * c);
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
void ColumnBlock1(const float* transposed, int32_t height, int32_t x0, const Coefficients256& k, float* line,
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
        const __m256 v = Step(k.a0, Load(row + kLineStride + 8 * c), k.a1, Load(row + 8 * c), k.b1, yp[c], k.b2, yb[c]);
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
        const __m256 v = Step(k.a2, Load(row + kLineStride + 8 * c), k.a3, Load(row + 2 * kLineStride + 8 * c), k.b1,
                              yp[c], k.b2, yb[c]);
        sums[c] = _mm256_add_ps(Load(line + (p + s) * kLineStride + 8 * c), v);
        yb[c] = yp[c];
        yp[c] = v;
      }
      StoreBytes<chains>(dst + (p + s) * dstStride + x0, sums);
    }
    if (p == 0) break;
    CopyScratchRow<chains>(scratch, 9, 1);
    CopyScratchRow<chains>(scratch, 8, 0);
    p -= 8;
    count = 8;
    GatherSamples<chains>(transposed, height, x0, p, count, scratch);
  }
}

}  // namespace

// Each pass runs blocks of kChains chains, then one smaller block for the
// whole chains left, then the plain routine for the last lines.
void GaussRowPass4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, const DericheCoefficients& k,
                   float* line, float* transposed) {
  const Coefficients256 kv(k);
  int32_t y = 0;
  for (; y + 2 * kChains <= height; y += 2 * kChains)
    RowBlock4<kChains>(src, srcStride, width, height, y, kv, line, transposed);
  switch ((height - y) / 2) {
    case 3: RowBlock4<3>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 2: RowBlock4<2>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 1: RowBlock4<1>(src, srcStride, width, height, y, kv, line, transposed); break;
    default: break;
  }
  y += (height - y) / 2 * 2;
  if (y < height) GaussRowRange4_c(src, srcStride, width, height, y, height, k, line, transposed);
}

void GaussColumnPass4(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, float* line,
                      uint8_t* dst, ptrdiff_t dstStride) {
  const Coefficients256 kv(k);
  int32_t x = 0;
  for (; x + 2 * kChains <= width; x += 2 * kChains)
    ColumnBlock4<kChains>(transposed, height, x, kv, line, dst, dstStride);
  switch ((width - x) / 2) {
    case 3: ColumnBlock4<3>(transposed, height, x, kv, line, dst, dstStride); break;
    case 2: ColumnBlock4<2>(transposed, height, x, kv, line, dst, dstStride); break;
    case 1: ColumnBlock4<1>(transposed, height, x, kv, line, dst, dstStride); break;
    default: break;
  }
  x += (width - x) / 2 * 2;
  if (x < width) GaussColumnRange4_c(transposed, height, x, width, k, line, dst, dstStride);
}

void GaussRowPass1(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, const DericheCoefficients& k,
                   float* line, float* transposed) {
  const Coefficients256 kv(k);
  int32_t y = 0;
  for (; y + 8 * kChains <= height; y += 8 * kChains)
    RowBlock1<kChains>(src, srcStride, width, height, y, kv, line, transposed);
  switch ((height - y) / 8) {
    case 3: RowBlock1<3>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 2: RowBlock1<2>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 1: RowBlock1<1>(src, srcStride, width, height, y, kv, line, transposed); break;
    default: break;
  }
  y += (height - y) / 8 * 8;
  if (y < height) GaussRowRange1_c(src, srcStride, width, height, y, height, k, line, transposed);
}

void GaussColumnPass1(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, float* line,
                      uint8_t* dst, ptrdiff_t dstStride) {
  const Coefficients256 kv(k);
  int32_t x = 0;
  for (; x + 8 * kChains <= width; x += 8 * kChains)
    ColumnBlock1<kChains>(transposed, height, x, kv, line, dst, dstStride);
  switch ((width - x) / 8) {
    case 3: ColumnBlock1<3>(transposed, height, x, kv, line, dst, dstStride); break;
    case 2: ColumnBlock1<2>(transposed, height, x, kv, line, dst, dstStride); break;
    case 1: ColumnBlock1<1>(transposed, height, x, kv, line, dst, dstStride); break;
    default: break;
  }
  x += (width - x) / 8 * 8;
  if (x < width) GaussColumnRange1_c(transposed, height, x, width, k, line, dst, dstStride);
}

}  // namespace Lumaforge::avx2
