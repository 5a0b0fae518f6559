// SSE2 has no byte shuffle. Shuffle4Row picks one of 24 compiled forms, one
// per permutation; the 24-bit kernels vectorise the two patterns the
// converters use, {2, 1, 0} (swap the outer bytes) and {0, 1, 2} (keep
// them). Any other pattern runs the plain routine.
#include <array>
#include <utility>

#include "color/kernels/x86/rgb_pack_simd.h"

namespace Lumaforge::sse2 {
namespace {

using x86::PatternWord;
using x86::Vec128;

// Four pixels widened to 16 bits fill a register as two 64-bit halves, which
// pshuflw/pshufhw reorder with the immediate kCode (2 bits per output byte).
// Values stay <= 255, so the saturating pack returns them unchanged.
template <int kCode>
inline __m128i ShuffleWords(__m128i v) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i lo = _mm_shufflehi_epi16(_mm_shufflelo_epi16(_mm_unpacklo_epi8(v, zero), kCode), kCode);
  const __m128i hi = _mm_shufflehi_epi16(_mm_shufflelo_epi16(_mm_unpackhi_epi8(v, zero), kCode), kCode);
  return _mm_packus_epi16(lo, hi);
}

template <int kCode>
void Shuffle4Words(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  ForEachStep<8>(
      width,
      [&](int32_t i) {
        const __m128i v0 = Vec128::Load(src + 4 * i), v1 = Vec128::Load(src + 4 * i + 16);
        Vec128::Store(dst + 4 * i, ShuffleWords<kCode>(v0));
        Vec128::Store(dst + 4 * i + 16, ShuffleWords<kCode>(v1));
      },
      [&](int32_t i) { Shuffle4Row_c(src + 4 * i, dst + 4 * i, pattern, width - i); });
}

constexpr bool IsPermutationCode(int code) {
  int seen = 0;
  for (int k = 0; k < 4; ++k) seen |= 1 << ((code >> (2 * k)) & 3);
  return seen == 15;
}

constexpr std::array<uint8_t, 24> kPermutationCodes = [] {
  std::array<uint8_t, 24> codes{};
  int n = 0;
  for (int code = 0; code < 256; ++code) {
    if (IsPermutationCode(code)) codes[n++] = static_cast<uint8_t>(code);
  }
  return codes;
}();

// Slot of each code in kShuffle4Forms, 0xff for codes that are no permutation.
constexpr std::array<uint8_t, 256> kShuffle4Slot = [] {
  std::array<uint8_t, 256> slot{};
  for (auto& s : slot) s = 0xff;
  for (int k = 0; k < 24; ++k) slot[kPermutationCodes[k]] = static_cast<uint8_t>(k);
  return slot;
}();

template <size_t... k>
constexpr std::array<Shuffle4RowKernel*, 24> MakeShuffle4Forms(std::index_sequence<k...>) {
  return {&Shuffle4Words<kPermutationCodes[k]>...};
}
constexpr std::array<Shuffle4RowKernel*, 24> kShuffle4Forms = MakeShuffle4Forms(std::make_index_sequence<24>{});

void Shuffle4Row(const uint8_t* src, uint8_t* dst, BytePattern pattern, int32_t width) {
  if (x86::Fits32(pattern)) {
    const int code = pattern.index[0] | pattern.index[1] << 2 | pattern.index[2] << 4 | pattern.index[3] << 6;
    const uint8_t slot = kShuffle4Slot[code];
    if (slot != 0xff) return kShuffle4Forms[slot](src, dst, pattern, width);
  }
  Shuffle4Row_c(src, dst, pattern, width);
}

// Exchanges bytes 0 and 2 of every 32-bit pixel and clears byte 3: as
// 16-bit words the masked bytes 0 and 2 become word halves, swapped by
// shifting each one by 16 bits.
inline __m128i SwapOuterBytes(__m128i d) {
  const __m128i rb = _mm_and_si128(d, _mm_set1_epi32(0x00ff00ff));
  const __m128i g = _mm_and_si128(d, _mm_set1_epi32(0x0000ff00));
  return _mm_or_si128(g, _mm_or_si128(_mm_srli_epi32(rb, 16), _mm_slli_epi32(rb, 16)));
}

inline __m128i LoadLow(const uint8_t* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }

// Two pairs of 3-byte pixels, one in the low 6 bytes of each 64-bit half, to
// four opaque 4-byte pixels: the second pixel of each half moves up one byte
// to fill its own word.
template <bool kSwap>
inline __m128i ExpandPairs(__m128i pairs) {
  const __m128i keepFirst = _mm_set1_epi64x(0x0000000000ffffff);
  const __m128i keepSecond = _mm_set1_epi64x(0x00ffffff00000000);
  __m128i d = _mm_or_si128(_mm_and_si128(pairs, keepFirst), _mm_and_si128(_mm_slli_epi64(pairs, 8), keepSecond));
  if constexpr (kSwap) d = SwapOuterBytes(d);
  return _mm_or_si128(d, _mm_set1_epi32(static_cast<int>(0xff000000u)));
}

// Four 4-byte pixels to two pairs of 3-byte pixels, one in the low 6 bytes
// of each 64-bit half (the other bytes 0).
template <bool kSwap>
inline __m128i PackPairs(__m128i d) {
  const __m128i keepFirst = _mm_set1_epi64x(0x0000000000ffffff);
  const __m128i keepSecond = _mm_set1_epi64x(0x0000ffffff000000);
  if constexpr (kSwap) d = SwapOuterBytes(d);
  return _mm_or_si128(_mm_and_si128(d, keepFirst), _mm_and_si128(_mm_srli_epi64(d, 8), keepSecond));
}

// Rgb24ToBgraRow for {0, 1, 2} (kSwap false) and {2, 1, 0} (kSwap true).
// Each pair of pixels comes from an 8-byte load (movq and movhps take any
// alignment) that reaches 2 bytes into the next pair; the last pair of the
// step is loaded from 2 bytes earlier and shifted down instead, so no byte
// past the step is read.
template <bool kSwap>
void ExpandRgb24Row(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  auto pairsAt = [](const uint8_t* p) {
    return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(LoadLow(p)), reinterpret_cast<const __m64*>(p + 6)));
  };
  ForEachStep<16>(
      width,
      [&](int32_t i) {
        const uint8_t* s = src + 3 * i;
        uint8_t* d = bgra + 4 * i;
        Vec128::Store(d, ExpandPairs<kSwap>(pairsAt(s)));
        Vec128::Store(d + 16, ExpandPairs<kSwap>(pairsAt(s + 12)));
        Vec128::Store(d + 32, ExpandPairs<kSwap>(pairsAt(s + 24)));
        Vec128::Store(d + 48,
                      ExpandPairs<kSwap>(_mm_unpacklo_epi64(LoadLow(s + 36), _mm_srli_epi64(LoadLow(s + 40), 16))));
      },
      [&](int32_t i) { Rgb24ToBgraRow_c(src + 3 * i, bgra + 4 * i, pattern, width - i); });
}

// BgraToRgb24Row for the same two patterns. Each pair of pixels goes out as
// an 8-byte store whose last 2 bytes the next store overwrites; the last
// pair of the step is stored from 2 bytes earlier instead, with bytes 4 and
// 5 of the pair before it in front, so no byte past the step is written.
template <bool kSwap>
void PackRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  auto storeLow = [](uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); };
  ForEachStep<16>(
      width,
      [&](int32_t i) {
        const uint8_t* s = bgra + 4 * i;
        uint8_t* o = dst + 3 * i;
        auto storePairs = [&](int32_t q) {
          const __m128i halves = PackPairs<kSwap>(Vec128::Load(s + 16 * q));
          storeLow(o + 12 * q, halves);
          _mm_storeh_pi(reinterpret_cast<__m64*>(o + 12 * q + 6), _mm_castsi128_ps(halves));
        };
        storePairs(0);
        storePairs(1);
        storePairs(2);
        const __m128i halves = PackPairs<kSwap>(Vec128::Load(s + 48));
        storeLow(o + 36, halves);
        const __m128i last = _mm_slli_epi64(_mm_shuffle_epi32(halves, _MM_SHUFFLE(3, 3, 3, 2)), 16);
        storeLow(o + 40, _mm_insert_epi16(last, _mm_extract_epi16(halves, 2), 0));
      },
      [&](int32_t i) { BgraToRgb24Row_c(bgra + 4 * i, dst + 3 * i, pattern, width - i); });
}

void Rgb24ToBgraRow(const uint8_t* src, uint8_t* bgra, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern) & 0x00ffffffu;
  if (word == 0x00000102u) return ExpandRgb24Row<true>(src, bgra, pattern, width);
  if (word == 0x00020100u) return ExpandRgb24Row<false>(src, bgra, pattern, width);
  Rgb24ToBgraRow_c(src, bgra, pattern, width);
}

void BgraToRgb24Row(const uint8_t* bgra, uint8_t* dst, BytePattern pattern, int32_t width) {
  const uint32_t word = PatternWord(pattern) & 0x00ffffffu;
  if (word == 0x00000102u) return PackRgb24Row<true>(bgra, dst, pattern, width);
  if (word == 0x00020100u) return PackRgb24Row<false>(bgra, dst, pattern, width);
  BgraToRgb24Row_c(bgra, dst, pattern, width);
}

// A pixel's even bytes are B and R, its odd bytes G and A; two rounds of
// splitting 16-bit words into low and high bytes and packing them (every
// word <= 255, so the saturating pack changes nothing) part the channels.
void BgraToPlanesRow(const uint8_t* bgra, uint8_t* r, uint8_t* g, uint8_t* b, int32_t width) {
  const __m128i low = _mm_set1_epi16(0x00ff);
  ForEachStep<16>(
      width,
      [&](int32_t i) {
        const uint8_t* s = bgra + 4 * i;
        const __m128i v0 = Vec128::Load(s), v1 = Vec128::Load(s + 16), v2 = Vec128::Load(s + 32),
                      v3 = Vec128::Load(s + 48);
        const __m128i br01 = _mm_packus_epi16(_mm_and_si128(v0, low), _mm_and_si128(v1, low));
        const __m128i br23 = _mm_packus_epi16(_mm_and_si128(v2, low), _mm_and_si128(v3, low));
        const __m128i ga01 = _mm_packus_epi16(_mm_srli_epi16(v0, 8), _mm_srli_epi16(v1, 8));
        const __m128i ga23 = _mm_packus_epi16(_mm_srli_epi16(v2, 8), _mm_srli_epi16(v3, 8));
        Vec128::Store(b + i, _mm_packus_epi16(_mm_and_si128(br01, low), _mm_and_si128(br23, low)));
        Vec128::Store(r + i, _mm_packus_epi16(_mm_srli_epi16(br01, 8), _mm_srli_epi16(br23, 8)));
        Vec128::Store(g + i, _mm_packus_epi16(_mm_and_si128(ga01, low), _mm_and_si128(ga23, low)));
      },
      [&](int32_t i) { BgraToPlanesRow_c(bgra + 4 * i, r + i, g + i, b + i, width - i); });
}

}  // namespace

void Install(RgbPackKernels* kernels) {
  kernels->shuffle4Row = Shuffle4Row;
  kernels->rgb24ToBgraRow = Rgb24ToBgraRow;
  kernels->bgraToRgb24Row = BgraToRgb24Row;
  kernels->planesToBgraRow = x86::PlanesToBgraRow<x86::Vec128>;
  kernels->bgraToPlanesRow = BgraToPlanesRow;
}

}  // namespace Lumaforge::sse2
