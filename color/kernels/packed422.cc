#include "color/kernels/packed422.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitPacked422Kernels(Packed422Kernels* kernels, uint32_t cpuFeatures) {
  *kernels = {Packed422ToPlanesRow_c, PlanesToPacked422Row_c, AverageRows_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
