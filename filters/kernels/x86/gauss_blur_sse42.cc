#include "filters/kernels/x86/gauss_blur_simd.h"

namespace Lumaforge::sse42 {

// The row pass widens its bytes with pmovzx here; the column pass has no
// such step and is no faster than SSE2's, so it stays there.
void Install(GaussBlurKernels* kernels) { kernels->rowPass4 = x86::GaussRowPass4<x86::Floats128>; }

}  // namespace Lumaforge::sse42
