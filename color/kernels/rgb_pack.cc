#include "color/kernels/rgb_pack.h"

#include "framework/cpu_features.h"
#include "framework/kernel_family.h"

namespace Lumaforge {

void InitRgbPackKernels(RgbPackKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {Shuffle4Row_c, Rgb24ToBgraRow_c, BgraToRgb24Row_c, PlanesToBgraRow_c, BgraToPlanesRow_c};
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
