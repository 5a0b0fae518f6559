#include "color/kernels/x86/chroma_interleave_simd.h"

namespace Lumaforge::avx2 {

// Splitting ties with the 128-bit form on rows from memory, but is faster
// inside conversions, where the rows come from the cache.
void Install(ChromaInterleaveKernels* kernels) {
  kernels->mergeUVRow = x86::MergeUVRow<x86::Vec256>;
  kernels->splitUVRow = x86::SplitUVRow<x86::Vec256>;
  kernels->evenSamplesRow = x86::EvenSamplesRow<x86::Vec256>;
}

}  // namespace Lumaforge::avx2
