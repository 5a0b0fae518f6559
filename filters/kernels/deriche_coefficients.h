// Coefficients of the Deriche recursive Gaussian for one sigma.
#ifndef LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_
#define LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_

#include "filters/kernels/gauss_blur.h"

namespace Lumaforge {

// Sigmas below this are raised to it.
constexpr float kMinGaussSigma = 0.5f;
// Larger sigmas are held here; the coefficients stay finite well beyond it.
constexpr float kMaxGaussSigma = 1000.0f;

// Single-precision coefficients for `sigma` (already raised to the minimum).
// coefp and coefn are the steady-state gains of the two recursions, so a
// constant line starts (and stays) at its own value.
DericheCoefficients ComputeDericheCoefficients(float sigma);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_
