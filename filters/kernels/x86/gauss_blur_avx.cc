#include "filters/kernels/x86/gauss_blur_simd.h"

namespace Lumaforge::avx {

// The 128-bit passes in VEX encoding: the three-operand forms save register
// copies in the recursion steps.
void Install(GaussBlurKernels* kernels) {
  kernels->rowPass4 = x86::GaussRowPass4<x86::Floats128>;
  kernels->columnPass4 = x86::GaussColumnPass4<x86::Floats128>;
}

}  // namespace Lumaforge::avx
