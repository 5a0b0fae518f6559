// The trained filters in the layout the library loads them into, with what
// the training learnt about each class.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_TABLE_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "super_resolution/sr_classes.h"

namespace Lumaforge::sr_train {

struct ClassFit {
  int64_t samples = 0;  // training pixels of the class, each orientation counted
  double ridge = 0;     // the regularisation added to the diagonal
  // Root mean square errors on the class's training pixels, per position:
  // of the plain formula and of the trained filter as the upscaler applies it.
  double rmsPlain[kSrPositions] = {};
  double rmsFilter[kSrPositions] = {};
};

struct CoefficientTable {
  // (class * kSrPositions + position) * kSrTaps + k.
  std::vector<double> weights = std::vector<double>(static_cast<size_t>(kSrClasses) * kSrPositions * kSrTaps);
  // 1 where the class has a filter; other classes use the plain formula.
  std::vector<uint8_t> valid = std::vector<uint8_t>(kSrClasses);
  std::vector<ClassFit> fits = std::vector<ClassFit>(kSrClasses);

  double* Weights(int32_t cls, int32_t position) {
    return weights.data() + (static_cast<size_t>(cls) * kSrPositions + position) * kSrTaps;
  }
  const double* Weights(int32_t cls, int32_t position) const {
    return weights.data() + (static_cast<size_t>(cls) * kSrPositions + position) * kSrTaps;
  }
};

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_TABLE_H_
