// 128-bit four-channel Gaussian passes, compiled once per 128-bit level: the
// including file defines LUMAFORGE_SIMD_LEVEL (its namespace) and is built
// with that level's flags.
//
// One pixel's four channels fill an xmm, so one vector step is the plain
// step of four independent lines. Up to four rows (row pass) or columns
// (column pass) run side by side so that their recursion chains overlap.
// Every step is ((p0 * x0 + p1 * x1) - b1 * y1) - b2 * y2 with separate
// multiplies and adds in that order, hence the plain floats bit for bit.
#include <emmintrin.h>
#if defined(__SSE4_1__)
#include <smmintrin.h>
#endif

#include <algorithm>
#include <cstring>

#include "filters/kernels/gauss_blur.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {
namespace {

// Lines per block: four chains of 9-12 cycles of latency keep the
// multipliers busy.
constexpr int32_t kBlockLines = 4;

struct Coefficients128 {
  explicit Coefficients128(const DericheCoefficients& k)
      : a0(_mm_set1_ps(k.a0)),
        a1(_mm_set1_ps(k.a1)),
        a2(_mm_set1_ps(k.a2)),
        a3(_mm_set1_ps(k.a3)),
        b1(_mm_set1_ps(k.b1)),
        b2(_mm_set1_ps(k.b2)),
        coefp(_mm_set1_ps(k.coefp)),
        coefn(_mm_set1_ps(k.coefn)) {}
  __m128 a0, a1, a2, a3, b1, b2, coefp, coefn;
};

inline __m128 Step(__m128 p0, __m128 x0, __m128 p1, __m128 x1, __m128 b1, __m128 y1, __m128 b2, __m128 y2) {
  const __m128 feed = _mm_add_ps(_mm_mul_ps(p0, x0), _mm_mul_ps(p1, x1));
  return _mm_sub_ps(_mm_sub_ps(feed, _mm_mul_ps(b1, y1)), _mm_mul_ps(b2, y2));
}

inline __m128 Load(const float* p) { return _mm_loadu_ps(p); }
inline void Store(float* p, __m128 v) { _mm_storeu_ps(p, v); }

// One pixel's four bytes as floats (exact: bytes are small integers).
inline __m128 LoadPixel(const uint8_t* p) {
  int32_t bits;
  std::memcpy(&bits, p, 4);
  __m128i v = _mm_cvtsi32_si128(bits);
#if defined(__SSE4_1__)
  v = _mm_cvtepu8_epi32(v);
#else
  const __m128i zero = _mm_setzero_si128();
  v = _mm_unpacklo_epi16(_mm_unpacklo_epi8(v, zero), zero);
#endif
  return _mm_cvtepi32_ps(v);
}

// cvtt truncates toward zero like the plain int32 cast; the mask keeps its
// low byte, and values 0..255 pass both saturating packs unchanged, so the
// bytes equal (uint8_t)(int32_t)v.
inline __m128i LowBytes(__m128 v) { return _mm_and_si128(_mm_cvttps_epi32(v), _mm_set1_epi32(0xFF)); }

// Bytes of `lines` pixels (one per vector) to consecutive pixels of dst.
template <int32_t lines>
inline void StorePixels(uint8_t* dst, const __m128* sums) {
  __m128i b[kBlockLines] = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128()};
  for (int32_t c = 0; c < lines; ++c) b[c] = LowBytes(sums[c]);
  const __m128i packed = _mm_packus_epi16(_mm_packs_epi32(b[0], b[1]), _mm_packs_epi32(b[2], b[3]));
  if (lines == kBlockLines) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), packed);
  } else {
    alignas(16) uint8_t bytes[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(bytes), packed);
    std::memcpy(dst, bytes, static_cast<size_t>(lines) * 4);
  }
}

// Rows y0 .. y0 + lines - 1. Per column the line buffer holds the converted
// pixels, then the causal results; the anti-causal pass writes the sums, so
// the transposed image is written once.
template <int32_t lines>
void RowBlock(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0,
              const Coefficients128& k, float* line, float* transposed) {
  const uint8_t* rows[lines];
  for (int32_t r = 0; r < lines; ++r) rows[r] = src + (y0 + r) * srcStride;
  // Pixel x of row y0 + r lands at out + x * pitch + 4 * r.
  float* const out = transposed + static_cast<size_t>(y0) * 4;
  const size_t pitch = static_cast<size_t>(height) * 4;
  constexpr int32_t kCausal = kBlockLines * 4, kLineStride = 2 * kCausal;
  static_assert(kLineStride <= static_cast<int32_t>(kGaussLineFloatsPerSample));

  __m128 yp[lines], yb[lines];
#pragma GCC unroll 4
  for (int32_t r = 0; r < lines; ++r) {
    yp[r] = _mm_mul_ps(k.coefp, LoadPixel(rows[r]));
    yb[r] = yp[r];
  }
  for (int32_t x = 0; x < width; ++x) {
    // The previous pixel comes back from the line buffer (pixel 0 before
    // the first): fewer live registers, and it is off the recursion chain.
    const float* previous = line + std::max(x - 1, 0) * kLineStride;
#pragma GCC unroll 4
    for (int32_t r = 0; r < lines; ++r) {
      const __m128 xv = LoadPixel(rows[r] + 4 * x);
      Store(line + x * kLineStride + 4 * r, xv);
      const __m128 y = Step(k.a0, xv, k.a1, Load(previous + 4 * r), k.b1, yp[r], k.b2, yb[r]);
      Store(line + x * kLineStride + kCausal + 4 * r, y);
      yb[r] = yp[r];
      yp[r] = y;
    }
  }

  // Anti-causal: step x reads pixels x + 1 and x + 2, both clamped to the
  // last one, which is where the plain recursion starts.
  const int32_t last = width - 1;
#pragma GCC unroll 4
  for (int32_t r = 0; r < lines; ++r) {
    yp[r] = _mm_mul_ps(k.coefn, Load(line + last * kLineStride + 4 * r));
    yb[r] = yp[r];
  }
  for (int32_t x = last; x >= 0; --x) {
    const float* xn = line + std::min(x + 1, last) * kLineStride;
    const float* xa = line + std::min(x + 2, last) * kLineStride;
#pragma GCC unroll 4
    for (int32_t r = 0; r < lines; ++r) {
      const __m128 y = Step(k.a2, Load(xn + 4 * r), k.a3, Load(xa + 4 * r), k.b1, yp[r], k.b2, yb[r]);
      Store(out + x * pitch + 4 * r, _mm_add_ps(Load(line + x * kLineStride + kCausal + 4 * r), y));
      yb[r] = yp[r];
      yp[r] = y;
    }
  }
}

// Columns x0 .. x0 + lines - 1: each is a contiguous line of pixels in the
// transposed image, read directly; the causal results wait in the line
// buffer (16 floats per row).
template <int32_t lines>
void ColumnBlock(const float* transposed, int32_t height, int32_t x0, const Coefficients128& k, float* line,
                 uint8_t* dst, ptrdiff_t dstStride) {
  const float* cols[lines];
  for (int32_t c = 0; c < lines; ++c) cols[c] = transposed + static_cast<size_t>(x0 + c) * height * 4;
  constexpr int32_t kLineStride = kBlockLines * 4;

  __m128 yp[lines], yb[lines];
#pragma GCC unroll 4
  for (int32_t c = 0; c < lines; ++c) {
    yp[c] = _mm_mul_ps(k.coefp, Load(cols[c]));
    yb[c] = yp[c];
  }
  for (int32_t y = 0; y < height; ++y) {
    const int32_t previous = std::max(y - 1, 0) * 4;
#pragma GCC unroll 4
    for (int32_t c = 0; c < lines; ++c) {
      const __m128 v = Step(k.a0, Load(cols[c] + y * 4), k.a1, Load(cols[c] + previous), k.b1, yp[c], k.b2, yb[c]);
      Store(line + y * kLineStride + 4 * c, v);
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  const int32_t last = height - 1;
#pragma GCC unroll 4
  for (int32_t c = 0; c < lines; ++c) {
    yp[c] = _mm_mul_ps(k.coefn, Load(cols[c] + last * 4));
    yb[c] = yp[c];
  }
  for (int32_t y = last; y >= 0; --y) {
    const int32_t xn = std::min(y + 1, last) * 4, xa = std::min(y + 2, last) * 4;
    __m128 sums[lines];
#pragma GCC unroll 4
    for (int32_t c = 0; c < lines; ++c) {
      const __m128 v = Step(k.a2, Load(cols[c] + xn), k.a3, Load(cols[c] + xa), k.b1, yp[c], k.b2, yb[c]);
      sums[c] = _mm_add_ps(Load(line + y * kLineStride + 4 * c), v);
      yb[c] = yp[c];
      yp[c] = v;
    }
    StorePixels<lines>(dst + y * dstStride + x0 * 4, sums);
  }
}

}  // namespace

void GaussRowPass4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, const DericheCoefficients& k,
                   float* line, float* transposed) {
  const Coefficients128 kv(k);
  int32_t y = 0;
  for (; y + kBlockLines <= height; y += kBlockLines) {
    RowBlock<kBlockLines>(src, srcStride, width, height, y, kv, line, transposed);
  }
  switch (height - y) {
    case 3: RowBlock<3>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 2: RowBlock<2>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 1: RowBlock<1>(src, srcStride, width, height, y, kv, line, transposed); break;
    default: break;
  }
}

void GaussColumnPass4(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, float* line,
                      uint8_t* dst, ptrdiff_t dstStride) {
  const Coefficients128 kv(k);
  int32_t x = 0;
  for (; x + kBlockLines <= width; x += kBlockLines) {
    ColumnBlock<kBlockLines>(transposed, height, x, kv, line, dst, dstStride);
  }
  switch (width - x) {
    case 3: ColumnBlock<3>(transposed, height, x, kv, line, dst, dstStride); break;
    case 2: ColumnBlock<2>(transposed, height, x, kv, line, dst, dstStride); break;
    case 1: ColumnBlock<1>(transposed, height, x, kv, line, dst, dstStride); break;
    default: break;
  }
}

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
