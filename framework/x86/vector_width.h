// A thin vector-width trait, so a kernel body that is the same algorithm at
// 128 and 256 bits is written once. Vec128 serves every 128-bit level (the
// build's flags choose SSE or VEX encodings); Vec256 exists in AVX2 builds.
//
// Byte order: where a 256-bit instruction works within 128-bit lanes
// (unpack, pack), the trait's operation puts the result in memory order, so
// a body reads the same at both widths.
#ifndef LUMAFORGE_FRAMEWORK_X86_VECTOR_WIDTH_H_
#define LUMAFORGE_FRAMEWORK_X86_VECTOR_WIDTH_H_

#include <immintrin.h>

#include <cstdint>

namespace Lumaforge::x86 {
// Each file that includes this is built with its own level's flags, so it
// gets its own copy of the traits (and of the bodies written over them):
// no instruction of a wider level can reach a narrower level's code.
namespace {

struct Vec128 {
  using V = __m128i;
  static constexpr int32_t kBytes = 16;
  static V Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
  static void Store(uint8_t* p, V v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
  static V Zero() { return _mm_setzero_si128(); }
  static V Set1Epi16(int16_t value) { return _mm_set1_epi16(value); }
  static V And(V a, V b) { return _mm_and_si128(a, b); }
  static V Add16(V a, V b) { return _mm_add_epi16(a, b); }
  static V Sub16(V a, V b) { return _mm_sub_epi16(a, b); }
  static V MulLo16(V a, V b) { return _mm_mullo_epi16(a, b); }
  template <int kBits>
  static V ShiftRight16(V v) {
    return _mm_srli_epi16(v, kBits);
  }
  // Bytes of a and b alternating, a first: the low and the high half.
  static V InterleaveLow8(V a, V b) { return _mm_unpacklo_epi8(a, b); }
  static V InterleaveHigh8(V a, V b) { return _mm_unpackhi_epi8(a, b); }
  // Per-lane unpacks, for bodies that pack back within the same lanes.
  static V UnpackLow8(V a, V b) { return _mm_unpacklo_epi8(a, b); }
  static V UnpackHigh8(V a, V b) { return _mm_unpackhi_epi8(a, b); }
  // The 16-bit lanes of a, then of b, saturated to bytes, in memory order.
  static V PackUs16(V a, V b) { return _mm_packus_epi16(a, b); }
  // The same after per-lane unpacks of one vector (no reordering needed).
  static V PackUs16Lanes(V a, V b) { return _mm_packus_epi16(a, b); }
  // Two vectors of 16-bit values for consecutive samples (a first) regrouped
  // to line up with UnpackLow8 and UnpackHigh8 of those samples' bytes.
  static V LanesLow(V a, V /*b*/) { return a; }
  static V LanesHigh(V /*a*/, V b) { return b; }
};

#if defined(__AVX2__)
struct Vec256 {
  using V = __m256i;
  static constexpr int32_t kBytes = 32;
  static V Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
  static void Store(uint8_t* p, V v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
  static V Zero() { return _mm256_setzero_si256(); }
  static V Set1Epi16(int16_t value) { return _mm256_set1_epi16(value); }
  static V And(V a, V b) { return _mm256_and_si256(a, b); }
  static V Add16(V a, V b) { return _mm256_add_epi16(a, b); }
  static V Sub16(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V MulLo16(V a, V b) { return _mm256_mullo_epi16(a, b); }
  template <int kBits>
  static V ShiftRight16(V v) {
    return _mm256_srli_epi16(v, kBits);
  }
  static V InterleaveLow8(V a, V b) {
    return _mm256_permute2x128_si256(_mm256_unpacklo_epi8(a, b), _mm256_unpackhi_epi8(a, b), 0x20);
  }
  static V InterleaveHigh8(V a, V b) {
    return _mm256_permute2x128_si256(_mm256_unpacklo_epi8(a, b), _mm256_unpackhi_epi8(a, b), 0x31);
  }
  static V UnpackLow8(V a, V b) { return _mm256_unpacklo_epi8(a, b); }
  static V UnpackHigh8(V a, V b) { return _mm256_unpackhi_epi8(a, b); }
  // packus works per 128-bit lane, giving a0 b0 a1 b1; 0xD8 restores a0 a1 b0 b1.
  static V PackUs16(V a, V b) { return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8); }
  static V PackUs16Lanes(V a, V b) { return _mm256_packus_epi16(a, b); }
  static V LanesLow(V a, V b) { return _mm256_permute2x128_si256(a, b, 0x20); }
  static V LanesHigh(V a, V b) { return _mm256_permute2x128_si256(a, b, 0x31); }
};
#endif

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_FRAMEWORK_X86_VECTOR_WIDTH_H_
