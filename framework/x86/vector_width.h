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

// The same operations as free functions over raw vectors, overloaded by
// width, for bodies that work on __m128i / __m256i directly.
inline __m128i UnpackLow16(__m128i a, __m128i b) { return _mm_unpacklo_epi16(a, b); }
inline __m128i UnpackHigh16(__m128i a, __m128i b) { return _mm_unpackhi_epi16(a, b); }
inline __m128i UnpackLow32(__m128i a, __m128i b) { return _mm_unpacklo_epi32(a, b); }
inline __m128i UnpackHigh32(__m128i a, __m128i b) { return _mm_unpackhi_epi32(a, b); }
inline __m128i UnpackLow64(__m128i a, __m128i b) { return _mm_unpacklo_epi64(a, b); }
inline __m128i UnpackHigh64(__m128i a, __m128i b) { return _mm_unpackhi_epi64(a, b); }
inline __m128i Xor(__m128i a, __m128i b) { return _mm_xor_si128(a, b); }
inline __m128i Add32(__m128i a, __m128i b) { return _mm_add_epi32(a, b); }
// 32-bit words 0, 2, 4, 6 to the low lane and 1, 3, 5, 7 to the high one, so
// that in-lane unpacks of the result come out in memory order; and back.
// Identities at 128 bits.
inline __m128i SpreadWords(__m128i v) { return v; }
inline __m128i GatherWords(__m128i v) { return v; }
#if defined(__SSSE3__)
inline __m128i ShuffleBytes(__m128i v, __m128i mask) { return _mm_shuffle_epi8(v, mask); }
inline __m128i MulAddBytes(__m128i unsignedBytes, __m128i signedBytes) {
  return _mm_maddubs_epi16(unsignedBytes, signedBytes);
}
#endif

#if defined(__AVX2__)
inline __m256i UnpackLow16(__m256i a, __m256i b) { return _mm256_unpacklo_epi16(a, b); }
inline __m256i UnpackHigh16(__m256i a, __m256i b) { return _mm256_unpackhi_epi16(a, b); }
inline __m256i UnpackLow32(__m256i a, __m256i b) { return _mm256_unpacklo_epi32(a, b); }
inline __m256i UnpackHigh32(__m256i a, __m256i b) { return _mm256_unpackhi_epi32(a, b); }
inline __m256i UnpackLow64(__m256i a, __m256i b) { return _mm256_unpacklo_epi64(a, b); }
inline __m256i UnpackHigh64(__m256i a, __m256i b) { return _mm256_unpackhi_epi64(a, b); }
inline __m256i Xor(__m256i a, __m256i b) { return _mm256_xor_si256(a, b); }
inline __m256i Add32(__m256i a, __m256i b) { return _mm256_add_epi32(a, b); }
inline __m256i SpreadWords(__m256i v) {
  return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
}
inline __m256i GatherWords(__m256i v) {
  return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}
inline __m256i ShuffleBytes(__m256i v, __m256i mask) { return _mm256_shuffle_epi8(v, mask); }
inline __m256i MulAddBytes(__m256i unsignedBytes, __m256i signedBytes) {
  return _mm256_maddubs_epi16(unsignedBytes, signedBytes);
}
#endif

// A 128-bit vector repeated in every 128-bit lane of T's vector.
template <typename T>
typename T::V Lanes(__m128i v) {
  if constexpr (T::kBytes == 16) {
    return v;
  } else {
    return _mm256_broadcastsi128_si256(v);
  }
}

}  // namespace
}  // namespace Lumaforge::x86

#endif  // LUMAFORGE_FRAMEWORK_X86_VECTOR_WIDTH_H_
