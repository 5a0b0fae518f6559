// Colour effects over a vector-width trait: one body for the 128-bit levels
// and AVX2. The framework trait is extended here with the float, word and
// byte-rotation operations these kernels need; each level's build chooses
// the instructions (SSSE3 alignr, SSE4.1 blendv where present).
#include <immintrin.h>

#include <array>
#include <climits>

#include "filters/kernels/color_effects.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

struct Effects128 : Vec128 {
  using F = __m128;
  static F Set1(float value) { return _mm_set1_ps(value); }
  static F Add(F a, F b) { return _mm_add_ps(a, b); }
  static F Sub(F a, F b) { return _mm_sub_ps(a, b); }
  static F Mul(F a, F b) { return _mm_mul_ps(a, b); }
  static F AsFloats(V v) { return _mm_castsi128_ps(v); }
  static V Truncate(F v) { return _mm_cvttps_epi32(v); }
  // Per-lane word unpacks and saturating packs.
  static V UnpackLow16(V a, V b) { return _mm_unpacklo_epi16(a, b); }
  static V UnpackHigh16(V a, V b) { return _mm_unpackhi_epi16(a, b); }
  static V PackS32Lanes(V a, V b) { return _mm_packs_epi32(a, b); }
  static V AddSaturateU16(V a, V b) { return _mm_adds_epu16(a, b); }
  // b where mb is set, c where mc is set (the masks never overlap), a
  // elsewhere. blendv reads only each mask byte's top bit, which the
  // all-ones/zero masks satisfy.
  static V Pick3(V a, V b, V c, V mb, V mc) {
#if defined(__SSE4_1__)
    return _mm_blendv_epi8(_mm_blendv_epi8(a, b, mb), c, mc);
#else
    const V aOnly = _mm_andnot_si128(_mm_or_si128(mb, mc), a);
    return _mm_or_si128(_mm_or_si128(aOnly, _mm_and_si128(b, mb)), _mm_and_si128(c, mc));
#endif
  }
  // Whole-register byte rotations: Up<n> moves byte j to j + n, Down<n> to
  // j - n (both modulo kBytes).
  template <int n>
  static V Up(V x) {
#if defined(__SSSE3__)
    return _mm_alignr_epi8(x, x, 16 - n);
#else
    return _mm_or_si128(_mm_slli_si128(x, n), _mm_srli_si128(x, 16 - n));
#endif
  }
  template <int n>
  static V Down(V x) {
    return Up<16 - n>(x);
  }
};

#if defined(__AVX2__)
struct Effects256 : Vec256 {
  using F = __m256;
  static F Set1(float value) { return _mm256_set1_ps(value); }
  static F Add(F a, F b) { return _mm256_add_ps(a, b); }
  static F Sub(F a, F b) { return _mm256_sub_ps(a, b); }
  static F Mul(F a, F b) { return _mm256_mul_ps(a, b); }
  static F AsFloats(V v) { return _mm256_castsi256_ps(v); }
  static V Truncate(F v) { return _mm256_cvttps_epi32(v); }
  static V UnpackLow16(V a, V b) { return _mm256_unpacklo_epi16(a, b); }
  static V UnpackHigh16(V a, V b) { return _mm256_unpackhi_epi16(a, b); }
  static V PackS32Lanes(V a, V b) { return _mm256_packs_epi32(a, b); }
  static V AddSaturateU16(V a, V b) { return _mm256_adds_epu16(a, b); }
  static V Pick3(V a, V b, V c, V mb, V mc) { return _mm256_blendv_epi8(_mm256_blendv_epi8(a, b, mb), c, mc); }
  // alignr works per 128-bit lane, so the bytes crossing the middle come
  // from the lane-swapped copy.
  template <int n>
  static V Up(V x) {
    return _mm256_alignr_epi8(x, _mm256_permute2x128_si256(x, x, 0x01), 16 - n);
  }
  template <int n>
  static V Down(V x) {
    return _mm256_alignr_epi8(_mm256_permute2x128_si256(x, x, 0x01), x, n);
  }
};
#endif

// ForEachStep counts in int32_t: a longer run is cut into pieces of whole
// steps first, so only the last piece can leave a tail.
template <int32_t kStep, typename Run>
void InPieces(size_t count, Run&& run) {
  constexpr size_t kPiece = size_t{INT32_MAX} / kStep * kStep;
  size_t done = 0;
  for (; count - done > kPiece; done += kPiece) run(done, static_cast<int32_t>(kPiece));
  run(done, static_cast<int32_t>(count - done));
}

// ---------------------------------------------------------------------------
// Hue rotation.

// The samples in the low (kHigh: high) words of each lane of `words`, minus
// 128, as floats. Pairing each word with 0x4B00 spells the float 2^23 + x,
// and subtracting 2^23 + 128 is exact, so this equals float(x) - 128.0f.
template <typename T, bool kHigh>
typename T::F Centered(typename T::V words) {
  const typename T::V magic = T::Set1Epi16(0x4B00);
  const typename T::V bits = kHigh ? T::UnpackHigh16(words, magic) : T::UnpackLow16(words, magic);
  return T::Sub(T::AsFloats(bits), T::Set1(8388736.0f));
}

// U' and V' before the byte conversion, in the plain order. The clamp is
// left to the packs: cvttps maps everything below 0 to a value <= 0 (-inf
// and overflow give INT_MIN) that saturates to 0, and truncation commutes
// with clamping to the integers 0 and 255 (with |c|, |s| <= 1 no sum comes
// near the 2^31 that would convert wrongly).
template <typename T>
void Rotate(typename T::F du, typename T::F dv, typename T::F c, typename T::F s, typename T::V* uOut,
            typename T::V* vOut) {
  const typename T::F k128 = T::Set1(128.0f);
  *uOut = T::Truncate(T::Add(T::Add(T::Mul(du, c), T::Mul(dv, s)), k128));
  *vOut = T::Truncate(T::Add(T::Sub(T::Mul(dv, c), T::Mul(du, s)), k128));
}

template <typename T>
void RotateHueRun(uint8_t* u, uint8_t* v, int32_t count, float c, float s) {
  using V = typename T::V;
  const V zero = T::Zero();
  const typename T::F vc = T::Set1(c), vs = T::Set1(s);
  ForEachStep<T::kBytes>(
      count,
      [&](int32_t i) {
        const V us = T::Load(u + i), vsamp = T::Load(v + i);
        const V uLo = T::UnpackLow8(us, zero), uHi = T::UnpackHigh8(us, zero);
        const V vLo = T::UnpackLow8(vsamp, zero), vHi = T::UnpackHigh8(vsamp, zero);
        V uq[4], vq[4];
        Rotate<T>(Centered<T, false>(uLo), Centered<T, false>(vLo), vc, vs, &uq[0], &vq[0]);
        Rotate<T>(Centered<T, true>(uLo), Centered<T, true>(vLo), vc, vs, &uq[1], &vq[1]);
        Rotate<T>(Centered<T, false>(uHi), Centered<T, false>(vHi), vc, vs, &uq[2], &vq[2]);
        Rotate<T>(Centered<T, true>(uHi), Centered<T, true>(vHi), vc, vs, &uq[3], &vq[3]);
        // Signed then unsigned saturation: negatives become 0, above 255
        // becomes 255. The packs undo the unpacks lane by lane, so the
        // samples come back in order.
        T::Store(u + i, T::PackUs16Lanes(T::PackS32Lanes(uq[0], uq[1]), T::PackS32Lanes(uq[2], uq[3])));
        T::Store(v + i, T::PackUs16Lanes(T::PackS32Lanes(vq[0], vq[1]), T::PackS32Lanes(vq[2], vq[3])));
      },
      [&](int32_t i) { RotateHue_c(u + i, v + i, static_cast<size_t>(count - i), c, s); });
}

template <typename T>
void RotateHue(uint8_t* u, uint8_t* v, size_t count, float c, float s) {
  InPieces<T::kBytes>(count, [&](size_t at, int32_t n) { RotateHueRun<T>(u + at, v + at, n, c, s); });
}

// ---------------------------------------------------------------------------
// Sepia.

// min((cr r + cg g + cb b + 128) >> 8, 255) on words holding bytes.
// Each product is below 2^16 (197 * 255 = 50235), so mullo gives it
// exactly; the saturating sum is min(true sum, 65535). Below 65536 that is
// exact; at or above it the plain result is >= 256, clamped to 255, which is
// also what 65535 >> 8 gives. Blue never gets there (241 * 255 + 128 = 61583).
template <typename T>
typename T::V Tone(typename T::V r, typename T::V g, typename T::V b, int16_t cr, int16_t cg, int16_t cb) {
  typename T::V sum = T::AddSaturateU16(T::MulLo16(r, T::Set1Epi16(cr)), T::MulLo16(g, T::Set1Epi16(cg)));
  sum = T::AddSaturateU16(sum, T::MulLo16(b, T::Set1Epi16(cb)));
  return T::template ShiftRight16<8>(T::AddSaturateU16(sum, T::Set1Epi16(128)));
}

// Bytes 0xFF at positions divisible by three; loaded from offset (3 - j) % 3
// they mark the positions p with p % 3 == j.
alignas(64) constexpr std::array<uint8_t, 34> kEveryThird = [] {
  std::array<uint8_t, 34> bytes{};
  for (size_t p = 0; p < bytes.size(); p += 3) bytes[p] = 0xFF;
  return bytes;
}();

template <typename T>
void SepiaRun(const uint8_t* in, uint8_t* out, int32_t pixels) {
  using V = typename T::V;
  // kBytes pixels are three registers. Byte p of register k is channel
  // (d k + p) % 3, so channel c sits in register k where p % 3 == (c - d k)
  // % 3: for each channel the three registers hold it at disjoint positions
  // and one blend gathers it. Moving green down one byte and blue two then
  // lines each pixel's channels up with its red; the arithmetic is per
  // position, and the output is the same blend run backwards.
  constexpr int32_t d = T::kBytes % 3;
  const uint8_t* thirds = kEveryThird.data();
  const V m[3] = {T::Load(thirds), T::Load(thirds + 2), T::Load(thirds + 1)};
  auto at = [&](int32_t c, int32_t k) { return m[((c - d * k) % 3 + 3) % 3]; };
  const V zero = T::Zero();
  ForEachStep<T::kBytes>(
      pixels,
      [&](int32_t i) {
        // A block is loaded whole before it is stored, so in == out also works.
        const uint8_t* src = in + 3 * static_cast<size_t>(i);
        const V x0 = T::Load(src), x1 = T::Load(src + T::kBytes), x2 = T::Load(src + 2 * T::kBytes);
        const V r = T::Pick3(x0, x1, x2, at(0, 1), at(0, 2));
        const V g = T::template Down<1>(T::Pick3(x0, x1, x2, at(1, 1), at(1, 2)));
        const V b = T::template Down<2>(T::Pick3(x0, x1, x2, at(2, 1), at(2, 2)));
        const V rLo = T::UnpackLow8(r, zero), rHi = T::UnpackHigh8(r, zero);
        const V gLo = T::UnpackLow8(g, zero), gHi = T::UnpackHigh8(g, zero);
        const V bLo = T::UnpackLow8(b, zero), bHi = T::UnpackHigh8(b, zero);
        const V red = T::PackUs16Lanes(Tone<T>(rLo, gLo, bLo, 101, 197, 48), Tone<T>(rHi, gHi, bHi, 101, 197, 48));
        const V green = T::template Up<1>(
            T::PackUs16Lanes(Tone<T>(rLo, gLo, bLo, 89, 176, 43), Tone<T>(rHi, gHi, bHi, 89, 176, 43)));
        const V blue = T::template Up<2>(
            T::PackUs16Lanes(Tone<T>(rLo, gLo, bLo, 70, 137, 34), Tone<T>(rHi, gHi, bHi, 70, 137, 34)));
        uint8_t* dst = out + 3 * static_cast<size_t>(i);
        T::Store(dst, T::Pick3(red, green, blue, at(1, 0), at(2, 0)));
        T::Store(dst + T::kBytes, T::Pick3(red, green, blue, at(1, 1), at(2, 1)));
        T::Store(dst + 2 * T::kBytes, T::Pick3(red, green, blue, at(1, 2), at(2, 2)));
      },
      [&](int32_t i) {
        const size_t at = 3 * static_cast<size_t>(i);
        Sepia_c(in + at, out + at, static_cast<size_t>(pixels - i));
      });
}

template <typename T>
void Sepia(const uint8_t* in, uint8_t* out, size_t pixels) {
  InPieces<T::kBytes>(pixels, [&](size_t at, int32_t n) { SepiaRun<T>(in + 3 * at, out + 3 * at, n); });
}

}  // namespace
}  // namespace Lumaforge::x86
