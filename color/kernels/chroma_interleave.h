// Chroma interleaving: two chroma rows (U and V) into one row of U, V pairs
// and back, and the even-sample decimation of a chroma row. Used for the
// planar <-> semi-planar 4:2:0 conversions and for full-width chroma.
//
// Counts are chroma samples per plane; any count >= 1 is accepted. Vector
// variants never read or write past the samples they are given (2 * width
// bytes for a pair row). Rows must not overlap.
#ifndef LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
#define LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_

#include <cstdint>

#include "framework/kernel_family.h"

namespace Lumaforge {

using MergeUVRowKernel = void(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t width);
using SplitUVRowKernel = void(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t width);
using EvenSamplesRowKernel = void(const uint8_t* src, uint8_t* dst, int32_t width);

struct ChromaInterleaveKernels {
  MergeUVRowKernel* mergeUVRow;          // uv[2i] = u[i], uv[2i + 1] = v[i]
  SplitUVRowKernel* splitUVRow;          // u[i] = uv[2i], v[i] = uv[2i + 1]
  EvenSamplesRowKernel* evenSamplesRow;  // dst[i] = src[2i], i < width
};

// Plain routines, then the best variant the feature word allows.
void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures);

MergeUVRowKernel MergeUVRow_c;
SplitUVRowKernel SplitUVRow_c;
EvenSamplesRowKernel EvenSamplesRow_c;

// Levels with variants of their own; each level's file defines its installer.
LUMAFORGE_KERNEL_LEVEL(sse2, ChromaInterleaveKernels)
LUMAFORGE_KERNEL_LEVEL(avx2, ChromaInterleaveKernels)

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_KERNELS_CHROMA_INTERLEAVE_H_
