// Coefficients of the Deriche recursive Gaussian for one sigma.
#ifndef LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_
#define LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_

#include "filters/kernels/gauss_blur.h"

namespace Lumaforge {

// Sigmas below this are raised to it.
constexpr float kMinGaussSigma = 0.5f;

// Single-precision coefficients for `sigma` (already raised to the minimum).
// coefp and coefn are the steady-state gains of the two recursions, so a
// constant line starts (and stays) at its own value.
DericheCoefficients ComputeDericheCoefficients(float sigma);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FILTERS_KERNELS_DERICHE_COEFFICIENTS_H_
