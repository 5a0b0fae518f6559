// Four-channel Gaussian passes over a float vector-width trait: one body for
// the 128-bit levels and AVX2, plus the pieces the AVX2 one-channel passes
// share with it.
//
// A vector holds one pixel (four channels) of kPixels lines: one line at
// 128 bits, two at 256. Up to kChains vectors run side by side so that their
// recursion chains overlap. Every step is ((p0 * x0 + p1 * x1) - b1 * y1) -
// b2 * y2 with separate multiplies and adds in that order (no FMA), hence
// the plain floats bit for bit.
#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "filters/kernels/gauss_blur.h"

namespace Lumaforge::x86 {
namespace {

// Vectors per block: four chains of 9-12 cycles of latency keep the
// multipliers busy.
constexpr int32_t kChains = 4;

struct Floats128 {
  using F = __m128;
  static constexpr int32_t kFloats = 4;
  static constexpr int32_t kPixels = 1;
  static F Load(const float* p) { return _mm_loadu_ps(p); }
  static void Store(float* p, F v) { _mm_storeu_ps(p, v); }
  static F Set1(float value) { return _mm_set1_ps(value); }
  static F Add(F a, F b) { return _mm_add_ps(a, b); }
  static F Sub(F a, F b) { return _mm_sub_ps(a, b); }
  static F Mul(F a, F b) { return _mm_mul_ps(a, b); }
  // Pixel p of the kPixels lines starting there, `pitch` floats apart.
  static F LoadPixels(const float* p, size_t /*pitch*/) { return Load(p); }
  // The four-byte pixel p of the kPixels rows starting there, `stride`
  // bytes apart, as floats (exact: bytes are small integers).
  static F LoadPixelBytes(const uint8_t* p, ptrdiff_t /*stride*/) {
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
  static __m128i LowBytes(F v) { return _mm_and_si128(_mm_cvttps_epi32(v), _mm_set1_epi32(0xFF)); }
  // The kFloats bytes of one vector.
  static void StoreBytes(uint8_t* dst, F v) {
    const __m128i words = _mm_packs_epi32(LowBytes(v), LowBytes(v));
    const int32_t bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    std::memcpy(dst, &bytes, 4);
  }
  // The bytes of kChains vectors, one after the other.
  static void StoreBytes(uint8_t* dst, const F* v) {
    const __m128i w01 = _mm_packs_epi32(LowBytes(v[0]), LowBytes(v[1]));
    const __m128i w23 = _mm_packs_epi32(LowBytes(v[2]), LowBytes(v[3]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(w01, w23));
  }
};

#if defined(__AVX2__)
struct Floats256 {
  using F = __m256;
  static constexpr int32_t kFloats = 8;
  static constexpr int32_t kPixels = 2;
  static F Load(const float* p) { return _mm256_loadu_ps(p); }
  static void Store(float* p, F v) { _mm256_storeu_ps(p, v); }
  static F Set1(float value) { return _mm256_set1_ps(value); }
  static F Add(F a, F b) { return _mm256_add_ps(a, b); }
  static F Sub(F a, F b) { return _mm256_sub_ps(a, b); }
  static F Mul(F a, F b) { return _mm256_mul_ps(a, b); }
  // Four floats from a, four from b.
  static F LoadHalves(const float* a, const float* b) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(a)), _mm_loadu_ps(b), 1);
  }
  static F LoadPixels(const float* p, size_t pitch) { return LoadHalves(p, p + pitch); }
  static F LoadPixelBytes(const uint8_t* p, ptrdiff_t stride) {
    int32_t bitsA, bitsB;
    std::memcpy(&bitsA, p, 4);
    std::memcpy(&bitsB, p + stride, 4);
    const __m128i pair = _mm_unpacklo_epi32(_mm_cvtsi32_si128(bitsA), _mm_cvtsi32_si128(bitsB));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(pair));
  }
  static __m256i LowBytes(F v) { return _mm256_and_si256(_mm256_cvttps_epi32(v), _mm256_set1_epi32(0xFF)); }
  static void StoreBytes(uint8_t* dst, F v) {
    const __m256i b = LowBytes(v);
    const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(b), _mm256_extracti128_si256(b, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), _mm_packus_epi16(words, words));
  }
  static void StoreBytes(uint8_t* dst, const F* v) {
    // The packs work per 128-bit lane: dword i of `packed` holds four bytes
    // of vector i & 3, half i >> 2; the permute restores vector order.
    const __m256i w01 = _mm256_packs_epi32(LowBytes(v[0]), LowBytes(v[1]));
    const __m256i w23 = _mm256_packs_epi32(LowBytes(v[2]), LowBytes(v[3]));
    const __m256i packed = _mm256_packus_epi16(w01, w23);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst),
                        _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
  }
};
#endif

template <typename T>
struct Coefficients {
  explicit Coefficients(const DericheCoefficients& k)
      : a0(T::Set1(k.a0)),
        a1(T::Set1(k.a1)),
        a2(T::Set1(k.a2)),
        a3(T::Set1(k.a3)),
        b1(T::Set1(k.b1)),
        b2(T::Set1(k.b2)),
        coefp(T::Set1(k.coefp)),
        coefn(T::Set1(k.coefn)) {}
  typename T::F a0, a1, a2, a3, b1, b2, coefp, coefn;
};

template <typename T, typename F = typename T::F>
F Step(F p0, F x0, F p1, F x1, F b1, F y1, F b2, F y2) {
  const F feed = T::Add(T::Mul(p0, x0), T::Mul(p1, x1));
  return T::Sub(T::Sub(feed, T::Mul(b1, y1)), T::Mul(b2, y2));
}

// The bytes of `chains` vectors, one after the other.
template <typename T, int32_t chains>
void StoreBytes(uint8_t* dst, const typename T::F* sums) {
  if constexpr (chains == kChains) {
    T::StoreBytes(dst, sums);
  } else {
    for (int32_t c = 0; c < chains; ++c) T::StoreBytes(dst + T::kFloats * c, sums[c]);
  }
}

// Rows y0 .. y0 + kPixels * chains - 1. Pixel x of those rows is that many
// pixels of consecutive floats in the transposed image, so a vector is one
// store.
//
// Per position the line buffer holds the block's converted pixels and,
// where there is room (128 bits), its causal results: then the previous
// pixel is read back from it as well (fewer live registers) and the
// transposed image is written once. At 256 bits the causal results go to
// the transposed image, where the anti-causal pass adds to them, and the
// previous pixel stays in a register. Each is the faster at its width.
template <typename T, int32_t chains>
void RowBlock4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, int32_t y0,
               const Coefficients<T>& k, float* line, float* transposed) {
  using F = typename T::F;
  constexpr int32_t kPixelFloats = kChains * T::kFloats;
  constexpr bool kCausalInLine = 2 * kPixelFloats <= static_cast<int32_t>(kGaussLineFloatsPerSample);
  constexpr int32_t kLineStride = kCausalInLine ? 2 * kPixelFloats : kPixelFloats;
  static_assert(kLineStride <= static_cast<int32_t>(kGaussLineFloatsPerSample));
  const uint8_t* rows[chains];
  for (int32_t c = 0; c < chains; ++c) rows[c] = src + (y0 + T::kPixels * c) * srcStride;
  float* const out = transposed + static_cast<size_t>(y0) * 4;
  const size_t pitch = static_cast<size_t>(height) * 4;

  F xp[chains], yp[chains], yb[chains];
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    xp[c] = T::LoadPixelBytes(rows[c], srcStride);
    yp[c] = T::Mul(k.coefp, xp[c]);
    yb[c] = yp[c];
  }
  for (int32_t x = 0; x < width; ++x) {
    // The previous pixel (pixel 0 before the first).
    const float* previous = line + std::max(x - 1, 0) * kLineStride;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const F xv = T::LoadPixelBytes(rows[c] + 4 * x, srcStride);
      T::Store(line + x * kLineStride + T::kFloats * c, xv);
      const F xpv = kCausalInLine ? T::Load(previous + T::kFloats * c) : xp[c];
      const F v = Step<T>(k.a0, xv, k.a1, xpv, k.b1, yp[c], k.b2, yb[c]);
      if constexpr (kCausalInLine) {
        T::Store(line + x * kLineStride + kPixelFloats + T::kFloats * c, v);
      } else {
        T::Store(out + x * pitch + T::kFloats * c, v);
        xp[c] = xv;
      }
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  // Anti-causal: step x reads pixels x + 1 and x + 2, both clamped to the
  // last one, which is where the plain recursion starts.
  const int32_t last = width - 1;
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = T::Mul(k.coefn, T::Load(line + last * kLineStride + T::kFloats * c));
    yb[c] = yp[c];
  }
  for (int32_t x = last; x >= 0; --x) {
    const float* xn = line + std::min(x + 1, last) * kLineStride;
    const float* xa = line + std::min(x + 2, last) * kLineStride;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const F v =
          Step<T>(k.a2, T::Load(xn + T::kFloats * c), k.a3, T::Load(xa + T::kFloats * c), k.b1, yp[c], k.b2, yb[c]);
      float* o = out + x * pitch + T::kFloats * c;
      const F causal = kCausalInLine ? T::Load(line + x * kLineStride + kPixelFloats + T::kFloats * c) : T::Load(o);
      T::Store(o, T::Add(causal, v));
      yb[c] = yp[c];
      yp[c] = v;
    }
  }
}

// Columns x0 .. x0 + kPixels * chains - 1, each a contiguous line of pixels
// in the transposed image, read directly; the causal results wait in the
// line buffer.
template <typename T, int32_t chains>
void ColumnBlock4(const float* transposed, int32_t height, int32_t x0, const Coefficients<T>& k, float* line,
                  uint8_t* dst, ptrdiff_t dstStride) {
  using F = typename T::F;
  constexpr int32_t kLineStride = kChains * T::kFloats;
  static_assert(kLineStride <= static_cast<int32_t>(kGaussLineFloatsPerSample));
  const size_t pitch = static_cast<size_t>(height) * 4;
  const float* cols[chains];
  for (int32_t c = 0; c < chains; ++c) cols[c] = transposed + static_cast<size_t>(x0 + T::kPixels * c) * pitch;

  F yp[chains], yb[chains];
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = T::Mul(k.coefp, T::LoadPixels(cols[c], pitch));
    yb[c] = yp[c];
  }
  for (int32_t y = 0; y < height; ++y) {
    const int32_t at = y * 4, previous = std::max(y - 1, 0) * 4;
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const F v = Step<T>(k.a0, T::LoadPixels(cols[c] + at, pitch), k.a1, T::LoadPixels(cols[c] + previous, pitch),
                          k.b1, yp[c], k.b2, yb[c]);
      T::Store(line + y * kLineStride + T::kFloats * c, v);
      yb[c] = yp[c];
      yp[c] = v;
    }
  }

  const int32_t last = height - 1;
#pragma GCC unroll 4
  for (int32_t c = 0; c < chains; ++c) {
    yp[c] = T::Mul(k.coefn, T::LoadPixels(cols[c] + last * 4, pitch));
    yb[c] = yp[c];
  }
  for (int32_t y = last; y >= 0; --y) {
    const int32_t xn = std::min(y + 1, last) * 4, xa = std::min(y + 2, last) * 4;
    F sums[chains];
#pragma GCC unroll 4
    for (int32_t c = 0; c < chains; ++c) {
      const F v = Step<T>(k.a2, T::LoadPixels(cols[c] + xn, pitch), k.a3, T::LoadPixels(cols[c] + xa, pitch), k.b1,
                          yp[c], k.b2, yb[c]);
      sums[c] = T::Add(T::Load(line + y * kLineStride + T::kFloats * c), v);
      yb[c] = yp[c];
      yp[c] = v;
    }
    StoreBytes<T, chains>(dst + y * dstStride + x0 * 4, sums);
  }
}

// The passes' tail policy, over lines rather than along them: whole blocks
// of kChains vectors, then one block of the whole vectors left, then the
// plain routine from the first line no vector holds (the odd last row or
// column at 256 bits). The loop and the dispatch are written out in each
// pass on purpose: every form that shared them (a run-time lambda, or
// ForEachStep's lambdas, or a helper taking the blocks as a type) changed
// the registers the inlined blocks get and cost 3% to 3x.
template <typename T>
void GaussRowPass4(const uint8_t* src, ptrdiff_t srcStride, int32_t width, int32_t height, const DericheCoefficients& k,
                   float* line, float* transposed) {
  constexpr int32_t kLines = T::kPixels;
  const Coefficients<T> kv(k);
  int32_t y = 0;
  for (; y + kLines * kChains <= height; y += kLines * kChains)
    RowBlock4<T, kChains>(src, srcStride, width, height, y, kv, line, transposed);
  switch ((height - y) / kLines) {
    case 3: RowBlock4<T, 3>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 2: RowBlock4<T, 2>(src, srcStride, width, height, y, kv, line, transposed); break;
    case 1: RowBlock4<T, 1>(src, srcStride, width, height, y, kv, line, transposed); break;
    default: break;
  }
  y += (height - y) / kLines * kLines;
  if (y < height) GaussRowRange4_c(src, srcStride, width, height, y, height, k, line, transposed);
}

template <typename T>
void GaussColumnPass4(const float* transposed, int32_t width, int32_t height, const DericheCoefficients& k, float* line,
                      uint8_t* dst, ptrdiff_t dstStride) {
  constexpr int32_t kLines = T::kPixels;
  const Coefficients<T> kv(k);
  int32_t x = 0;
  for (; x + kLines * kChains <= width; x += kLines * kChains)
    ColumnBlock4<T, kChains>(transposed, height, x, kv, line, dst, dstStride);
  switch ((width - x) / kLines) {
    case 3: ColumnBlock4<T, 3>(transposed, height, x, kv, line, dst, dstStride); break;
    case 2: ColumnBlock4<T, 2>(transposed, height, x, kv, line, dst, dstStride); break;
    case 1: ColumnBlock4<T, 1>(transposed, height, x, kv, line, dst, dstStride); break;
    default: break;
  }
  x += (width - x) / kLines * kLines;
  if (x < width) GaussColumnRange4_c(transposed, height, x, width, k, line, dst, dstStride);
}

}  // namespace
}  // namespace Lumaforge::x86
