// Alpha blending over a vector-width trait. in * (256 - a) + old * a <=
// 255 * 256, so 16-bit multiplies and adds are exact and a logical shift by
// 8 gives the plain result.
#include <cstring>

#include "color/kernels/alpha_blend.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

// Samples in 16-bit lanes with their alphas.
template <typename T>
typename T::V BlendWords(typename T::V in, typename T::V old, typename T::V a) {
  const typename T::V inverse = T::Sub16(T::Set1Epi16(256), a);
  return T::template ShiftRight16<8>(T::Add16(T::MulLo16(in, inverse), T::MulLo16(old, a)));
}

// A vector of bytes with one alpha byte each; unpack and pack both work
// within 128-bit lanes, so the bytes come back in place.
template <typename T>
typename T::V BlendBytes(typename T::V in, typename T::V old, typename T::V a) {
  const typename T::V zero = T::Zero();
  return T::PackUs16Lanes(BlendWords<T>(T::UnpackLow8(in, zero), T::UnpackLow8(old, zero), T::UnpackLow8(a, zero)),
                          BlendWords<T>(T::UnpackHigh8(in, zero), T::UnpackHigh8(old, zero), T::UnpackHigh8(a, zero)));
}

// The alphas of kBytes / 4 pixels, each copied over its pixel's four bytes.
template <typename T>
typename T::V SpreadPixelAlphas(const uint8_t* alpha) {
  if constexpr (T::kBytes == 16) {
    int32_t four;
    std::memcpy(&four, alpha, sizeof(four));
    const __m128i a = _mm_cvtsi32_si128(four);
    const __m128i pairs = _mm_unpacklo_epi8(a, a);
    return _mm_unpacklo_epi16(pairs, pairs);
  } else {
    const __m256i spread = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12,  //
                                            0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
    return _mm256_shuffle_epi8(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(alpha))), spread);
  }
}

template <typename T>
void BlendRgb32Row(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  ForEachStep<T::kBytes / 4>(
      width,
      [&](int32_t c) {
        uint8_t* o = out + 4 * c;
        T::Store(o, BlendBytes<T>(T::Load(in + 4 * c), T::Load(o), SpreadPixelAlphas<T>(alpha + c)));
      },
      [&](int32_t c) { BlendRgb32Row_c(in + 4 * c, out + 4 * c, alpha + c, width - c); });
}

template <typename T>
void BlendPlaneRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t c) { T::Store(out + c, BlendBytes<T>(T::Load(in + c), T::Load(out + c), T::Load(alpha + c))); },
      [&](int32_t c) { BlendPlaneRow_c(in + c, out + c, alpha + c, width - c); });
}

template <typename T>
void BlendChromaRow(const uint8_t* in, uint8_t* out, const uint8_t* alpha, int32_t width) {
  const typename T::V zero = T::Zero(), lowBytes = T::Set1Epi16(0x00ff);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t c) {
        // The even alpha bytes are the low bytes of the 16-bit lanes: a mask
        // leaves the alphas of the samples as words.
        const typename T::V a0 = T::And(T::Load(alpha + 2 * c), lowBytes);
        const typename T::V a1 = T::And(T::Load(alpha + 2 * c + T::kBytes), lowBytes);
        const typename T::V samples = T::Load(in + c), old = T::Load(out + c);
        const typename T::V lo =
            BlendWords<T>(T::UnpackLow8(samples, zero), T::UnpackLow8(old, zero), T::LanesLow(a0, a1));
        const typename T::V hi =
            BlendWords<T>(T::UnpackHigh8(samples, zero), T::UnpackHigh8(old, zero), T::LanesHigh(a0, a1));
        T::Store(out + c, T::PackUs16Lanes(lo, hi));
      },
      // The body reads alpha[2c .. 2c + 2 kBytes - 1]; the tail only the even ones it needs.
      [&](int32_t c) { BlendChromaRow_c(in + c, out + c, alpha + 2 * c, width - c); });
}

}  // namespace
}  // namespace Lumaforge::x86
