#include "color/kernels/chroma_interleave.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitChromaInterleaveKernels(ChromaInterleaveKernels* kernels, uint32_t cpuFeatures) {
  kernels->mergeUVRow = MergeUVRow_c;
  kernels->splitUVRow = SplitUVRow_c;
  kernels->evenSamplesRow = EvenSamplesRow_c;
#define INSTALL(level)                     \
  kernels->mergeUVRow = level::MergeUVRow; \
  kernels->splitUVRow = level::SplitUVRow; \
  kernels->evenSamplesRow = level::EvenSamplesRow;
  LUMAFORGE_INSTALL_LADDER(cpuFeatures, INSTALL);
#undef INSTALL
}

}  // namespace Lumaforge
