#include "color/kernels/x86/chroma_interleave_simd.h"

namespace Lumaforge::avx2 {

// Splitting is bound by memory at either width, so its 128-bit form stays.
void Install(ChromaInterleaveKernels* kernels) {
  kernels->mergeUVRow = x86::MergeUVRow<x86::Vec256>;
  kernels->evenSamplesRow = x86::EvenSamplesRow<x86::Vec256>;
}

}  // namespace Lumaforge::avx2
