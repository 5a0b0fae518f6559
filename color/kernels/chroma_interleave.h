// Chroma interleaving: two chroma rows (U and V) into one row of U, V pairs,
// and back. Used for the planar <-> semi-planar 4:2:0 conversions.
//
// Widths count chroma samples per plane; any width >= 1 is accepted. Vector
// variants run their body over whole vectors and finish with the plain
// routine, so they never read or write past `width` samples (2 * width bytes
// for the pair row). Rows must not overlap.
#ifndef LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
#define LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_

#include <cstdint>

namespace Lumaforge {

using MergeUVRowFn = void (*)(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
using SplitUVRowFn = void (*)(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);

struct ChromaInterleaveKernels {
  MergeUVRowFn mergeUVRow;  // uv[2i] = u[i], uv[2i + 1] = v[i]
  SplitUVRowFn splitUVRow;  // u[i] = uv[2i], v[i] = uv[2i + 1]
};

// Plain routines, then the best variant the feature word allows.
void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures);

void MergeUVRow_c(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
void SplitUVRow_c(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);

namespace sse2 {
void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);
}  // namespace sse2

namespace avx2 {
void MergeUVRow(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
void SplitUVRow(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);
}  // namespace avx2

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
