#include "super_resolution/kernels/x86/sr_upscale_simd.h"

namespace Lumaforge::ssse3 {

void Install(SrUpscaleKernels* kernels) {
  kernels->standard2x = x86::SrStandard2x<false>;
  kernels->standard15 = x86::SrStandard15<false>;
  kernels->alternative15 = x86::SrAlternative15<false>;
}

}  // namespace Lumaforge::ssse3
