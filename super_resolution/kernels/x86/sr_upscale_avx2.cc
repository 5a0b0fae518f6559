#include "super_resolution/kernels/x86/sr_upscale_simd.h"

namespace Lumaforge::avx2 {

void Install(SrUpscaleKernels* kernels) {
  kernels->standard2x = x86::SrStandard2x<true>;
  kernels->standard15 = x86::SrStandard15<true>;
  kernels->alternative15 = x86::SrAlternative15<true>;
}

}  // namespace Lumaforge::avx2
