// Chroma interleaving over a vector-width trait: the same body serves the
// 128-bit and the 256-bit level.
#include "color/kernels/chroma_interleave.h"
#include "framework/kernel_family.h"
#include "framework/x86/vector_width.h"

namespace Lumaforge::x86 {
namespace {

template <typename T>
void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width) {
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const typename T::V us = T::Load(u + i), vs = T::Load(v + i);
        T::Store(uv + 2 * i, T::InterleaveLow8(us, vs));
        T::Store(uv + 2 * i + T::kBytes, T::InterleaveHigh8(us, vs));
      },
      [&](int32_t i) { MergeUVRow_c(u + i, v + i, uv + 2 * i, width - i); });
}

template <typename T>
void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width) {
  const typename T::V lowBytes = T::Set1Epi16(0x00ff);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const typename T::V a = T::Load(uv + 2 * i), b = T::Load(uv + 2 * i + T::kBytes);
        // Each 16-bit lane holds one pair; its low byte is U, its high byte V.
        T::Store(u + i, T::PackUs16(T::And(a, lowBytes), T::And(b, lowBytes)));
        T::Store(v + i, T::PackUs16(T::template ShiftRight16<8>(a), T::template ShiftRight16<8>(b)));
      },
      [&](int32_t i) { SplitUVRow_c(uv + 2 * i, u + i, v + i, width - i); });
}

template <typename T>
void EvenSamplesRow(const uint8_t* src, uint8_t* dst, int32_t width) {
  const typename T::V lowBytes = T::Set1Epi16(0x00ff);
  ForEachStep<T::kBytes>(
      width,
      [&](int32_t i) {
        const typename T::V a = T::Load(src + 2 * i), b = T::Load(src + 2 * i + T::kBytes);
        T::Store(dst + i, T::PackUs16(T::And(a, lowBytes), T::And(b, lowBytes)));
      },
      [&](int32_t i) { EvenSamplesRow_c(src + 2 * i, dst + i, width - i); });
}

}  // namespace
}  // namespace Lumaforge::x86
