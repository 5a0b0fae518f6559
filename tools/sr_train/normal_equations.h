// Least-squares fitting of one 3x3 -> 2x2 filter per pixel class: the normal
// equations are summed over the training pictures, then solved with ridge
// regularisation toward the plain formula.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_NORMAL_EQUATIONS_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_NORMAL_EQUATIONS_H_

#include <cstdint>
#include <vector>

#include "tools/sr_train/coefficient_table.h"
#include "tools/sr_train/training_samples.h"

namespace Lumaforge::sr_train {

struct SolveSettings {
  // The ridge added to the diagonal is this times trace(A^T A) / 9, the
  // class's summed squared pixel value per tap: a share of the data's own
  // scale, so it acts alike on rare and common classes.
  double relativeRidge = 0;
  // Classes with fewer training pixels get no filter (plain formula).
  int64_t minSamples = 0;
};

class NormalEquations {
 public:
  // `targetOffset` is added to every target pixel: the upscaler truncates
  // its sums, so fitting target + 0.5 makes truncation round.
  explicit NormalEquations(double targetOffset);

  void AddPicture(const PicturePair& pair);

  // Fills the weights, valid flags, sample counts and ridges of `table` for
  // classes 1..8192 (class 0 cannot be loaded by the library).
  void Solve(const SolveSettings& settings, CoefficientTable& table) const;

 private:
  struct ClassSums {
    double ata[kSrTaps * (kSrTaps + 1) / 2] = {};  // upper triangle, row by row
    double atb[kSrPositions][kSrTaps] = {};
    int64_t count = 0;
  };

  double m_dTargetOffset;
  std::vector<ClassSums> m_sums;
};

// Measures, on the training pictures, each valid class's RMS error with the
// plain formula and with its filter, exactly as the upscaler outputs them,
// then withdraws the filter of every class it does not improve overall. Each
// pair is seen in its first `symmetries` orientations (1..8, as Transformed
// numbers them), as in training. Returns the number of classes withdrawn.
int32_t MeasureAndPrune(const std::vector<PicturePair>& pairs, int32_t symmetries, CoefficientTable& table);

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_NORMAL_EQUATIONS_H_
