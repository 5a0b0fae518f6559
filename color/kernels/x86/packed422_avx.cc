#include "color/kernels/x86/packed422_simd.h"

namespace Lumaforge::avx {

// The VEX build of the shuffle split is faster inside whole conversions
// (packed 4:2:2 to I420), though not on the harness's single rows.
void Install(Packed422Kernels* kernels) { kernels->packed422ToPlanesRow = x86::ShuffleSplitRow; }

}  // namespace Lumaforge::avx
