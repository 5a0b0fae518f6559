// Temporary: forwards to the plain routines until the vector forms land.
#include "filters/kernels/color_effects.h"

namespace Lumaforge::LUMAFORGE_SIMD_LEVEL {

void RotateHue(uint8_t* u, uint8_t* v, size_t count, float c, float s) { RotateHue_c(u, v, count, c, s); }
void Sepia(const uint8_t* in, uint8_t* out, size_t pixels) { Sepia_c(in, out, pixels); }

}  // namespace Lumaforge::LUMAFORGE_SIMD_LEVEL
