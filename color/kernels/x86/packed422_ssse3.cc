#include "color/kernels/x86/packed422_simd.h"

namespace Lumaforge::ssse3 {

// Merging and averaging need no byte shuffle: their SSE2 builds stay.
void Install(Packed422Kernels* kernels) { kernels->packed422ToPlanesRow = x86::ShuffleSplitRow; }

}  // namespace Lumaforge::ssse3
