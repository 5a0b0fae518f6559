#include "filters/kernels/deriche_coefficients.h"

#include <cmath>

namespace Lumaforge {

DericheCoefficients ComputeDericheCoefficients(float sigma) {
  // exp(0.527076) is taken in double and rounded once to single precision.
  const float alpha = static_cast<float>(std::exp(0.527076)) / sigma;
  const float e1 = std::exp(-alpha);
  const float e2 = std::exp(-2.0f * alpha);
  const float k = (1.0f - e1) * (1.0f - e1) / (2.0f * alpha * e1 + 1.0f - e2);
  DericheCoefficients c;
  c.a0 = k;
  c.a1 = (alpha - 1.0f) * k * e1;
  c.a2 = (alpha + 1.0f) * k * e1;
  c.a3 = -k * e2;
  c.b1 = -2.0f * e1;
  c.b2 = e2;
  c.coefp = (c.a0 + c.a1) / (1.0f + c.b1 + c.b2);
  c.coefn = (c.a2 + c.a3) / (1.0f + c.b1 + c.b2);
  return c;
}

}  // namespace Lumaforge
