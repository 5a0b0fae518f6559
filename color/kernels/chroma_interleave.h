// Chroma interleaving: two chroma rows (U and V) into one row of U, V pairs
// and back, and the even-sample decimation of a chroma row. Used for the
// planar <-> semi-planar 4:2:0 conversions and for full-width chroma.
//
// Counts are chroma samples per plane; any count >= 1 is accepted. Vector
// variants run their body over whole vectors and finish with the plain
// routine, so they never read or write past the samples they are given
// (2 * width bytes for a pair row). Rows must not overlap.
#ifndef LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
#define LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_

#include <cstdint>

#include "framework/simd_levels.h"

namespace Lumaforge {

using MergeUVRowFn = void (*)(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
using SplitUVRowFn = void (*)(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);
using EvenSamplesRowFn = void (*)(const uint8_t* src, uint8_t* dst, int32_t width);

struct ChromaInterleaveKernels {
  MergeUVRowFn mergeUVRow;          // uv[2i] = u[i], uv[2i + 1] = v[i]
  SplitUVRowFn splitUVRow;          // u[i] = uv[2i], v[i] = uv[2i + 1]
  EvenSamplesRowFn evenSamplesRow;  // dst[i] = src[2i], i < width
};

// Plain routines, then the best variant the feature word allows.
void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures);

#define LUMAFORGE_CHROMA_INTERLEAVE_KERNELS                                        \
  void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width); \
  void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);       \
  void EvenSamplesRow(const uint8_t* src, uint8_t* dst, int32_t width);

void MergeUVRow_c(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
void SplitUVRow_c(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);
void EvenSamplesRow_c(const uint8_t* src, uint8_t* dst, int32_t width);
LUMAFORGE_DECLARE_FOR_EACH_LEVEL(LUMAFORGE_CHROMA_INTERLEAVE_KERNELS)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
