#include "color/kernels/x86/chroma_interleave_simd.h"

namespace Lumaforge::sse2 {

// The 128-bit body; later 128-bit builds of it were no faster, so it serves
// up to AVX.
void Install(ChromaInterleaveKernels* kernels) {
  kernels->mergeUVRow = x86::MergeUVRow<x86::Vec128>;
  kernels->splitUVRow = x86::SplitUVRow<x86::Vec128>;
  kernels->evenSamplesRow = x86::EvenSamplesRow<x86::Vec128>;
}

}  // namespace Lumaforge::sse2
