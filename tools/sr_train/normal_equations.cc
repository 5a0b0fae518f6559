#include "tools/sr_train/normal_equations.h"

#include <cmath>

namespace Lumaforge::sr_train {
namespace {

// The plain formula as 3x3 weights per position: half the centre, a quarter
// of the vertical and of the horizontal neighbour on the position's side.
constexpr double kPlainWeights[kSrPositions][kSrTaps] = {
    {0, 0.25, 0, 0.25, 0.5, 0, 0, 0, 0},
    {0, 0.25, 0, 0, 0.5, 0.25, 0, 0, 0},
    {0, 0, 0, 0.25, 0.5, 0, 0, 0.25, 0},
    {0, 0, 0, 0, 0.5, 0.25, 0, 0.25, 0},
};

// Cholesky factorisation in place of the symmetric positive definite m
// (lower triangle used and overwritten). False when a pivot is not positive.
bool Cholesky(double m[kSrTaps][kSrTaps]) {
  for (int32_t j = 0; j < kSrTaps; ++j) {
    double d = m[j][j];
    for (int32_t k = 0; k < j; ++k) d -= m[j][k] * m[j][k];
    if (!(d > 0)) return false;
    m[j][j] = std::sqrt(d);
    for (int32_t i = j + 1; i < kSrTaps; ++i) {
      double s = m[i][j];
      for (int32_t k = 0; k < j; ++k) s -= m[i][k] * m[j][k];
      m[i][j] = s / m[j][j];
    }
  }
  return true;
}

// Solves L L^T x = b with the factor from Cholesky; b becomes x.
void CholeskySolve(const double l[kSrTaps][kSrTaps], double b[kSrTaps]) {
  for (int32_t i = 0; i < kSrTaps; ++i) {
    for (int32_t k = 0; k < i; ++k) b[i] -= l[i][k] * b[k];
    b[i] /= l[i][i];
  }
  for (int32_t i = kSrTaps - 1; i >= 0; --i) {
    for (int32_t k = i + 1; k < kSrTaps; ++k) b[i] -= l[k][i] * b[k];
    b[i] /= l[i][i];
  }
}

}  // namespace

NormalEquations::NormalEquations(double targetOffset) : m_dTargetOffset(targetOffset), m_sums(kSrClasses) {}

void NormalEquations::AddPicture(const PicturePair& pair) {
  ForEachTrainingSample(pair, [this](const uint8_t p[kSrTaps], int32_t cls, const uint8_t wanted[kSrPositions]) {
    ClassSums& sums = m_sums[cls];
    double* ata = sums.ata;
    for (int32_t i = 0; i < kSrTaps; ++i)
      for (int32_t j = i; j < kSrTaps; ++j) *ata++ += static_cast<double>(p[i] * p[j]);
    for (int32_t n = 0; n < kSrPositions; ++n) {
      const double b = wanted[n] + m_dTargetOffset;
      for (int32_t k = 0; k < kSrTaps; ++k) sums.atb[n][k] += p[k] * b;
    }
    ++sums.count;
  });
}

void NormalEquations::Solve(const SolveSettings& settings, CoefficientTable& table) const {
  for (int32_t cls = 1; cls < kSrClasses; ++cls) {
    const ClassSums& sums = m_sums[cls];
    table.valid[cls] = 0;
    table.fits[cls] = ClassFit{};
    table.fits[cls].samples = sums.count;
    if (sums.count < settings.minSamples || sums.count == 0) continue;
    double m[kSrTaps][kSrTaps];
    const double* ata = sums.ata;
    double trace = 0;
    for (int32_t i = 0; i < kSrTaps; ++i) {
      for (int32_t j = i; j < kSrTaps; ++j) m[i][j] = m[j][i] = *ata++;
      trace += m[i][i];
    }
    const double ridge = settings.relativeRidge * trace / kSrTaps;
    for (int32_t i = 0; i < kSrTaps; ++i) m[i][i] += ridge;
    if (!Cholesky(m)) continue;
    for (int32_t n = 0; n < kSrPositions; ++n) {
      // Minimises |A w - b|^2 + ridge |w - plain|^2.
      double w[kSrTaps];
      for (int32_t k = 0; k < kSrTaps; ++k) w[k] = sums.atb[n][k] + ridge * kPlainWeights[n][k];
      CholeskySolve(m, w);
      double* out = table.Weights(cls, n);
      for (int32_t k = 0; k < kSrTaps; ++k) out[k] = w[k];
    }
    table.valid[cls] = 1;
    table.fits[cls].ridge = ridge;
  }
}

int32_t MeasureAndPrune(const std::vector<PicturePair>& pairs, int32_t symmetries, CoefficientTable& table) {
  std::vector<double> plainSquares(static_cast<size_t>(kSrClasses) * kSrPositions);
  std::vector<double> filterSquares(plainSquares.size());
  std::vector<int64_t> counts(kSrClasses);
  for (const PicturePair& original : pairs) {
    for (int32_t symmetry = 0; symmetry < symmetries; ++symmetry) {
      const PicturePair pair = symmetry == 0 ? original : TransformedPair(original, symmetry);
      ForEachTrainingSample(pair, [&](const uint8_t p[kSrTaps], int32_t cls, const uint8_t wanted[kSrPositions]) {
        if (!table.valid[cls]) return;
        uint8_t plain[kSrPositions], filtered[kSrPositions];
        PlainOutputs(p, plain);
        TrainedOutputs(p, table, cls, filtered);
        for (int32_t n = 0; n < kSrPositions; ++n) {
          const double dp = plain[n] - wanted[n], df = filtered[n] - wanted[n];
          plainSquares[static_cast<size_t>(cls) * kSrPositions + n] += dp * dp;
          filterSquares[static_cast<size_t>(cls) * kSrPositions + n] += df * df;
        }
        ++counts[cls];
      });
    }
  }
  int32_t withdrawn = 0;
  for (int32_t cls = 1; cls < kSrClasses; ++cls) {
    if (!table.valid[cls] || counts[cls] == 0) continue;
    double plainTotal = 0, filterTotal = 0;
    for (int32_t n = 0; n < kSrPositions; ++n) {
      const double plain = plainSquares[static_cast<size_t>(cls) * kSrPositions + n];
      const double filter = filterSquares[static_cast<size_t>(cls) * kSrPositions + n];
      table.fits[cls].rmsPlain[n] = std::sqrt(plain / counts[cls]);
      table.fits[cls].rmsFilter[n] = std::sqrt(filter / counts[cls]);
      plainTotal += plain;
      filterTotal += filter;
    }
    if (filterTotal >= plainTotal) {
      table.valid[cls] = 0;
      ++withdrawn;
    }
  }
  return withdrawn;
}

}  // namespace Lumaforge::sr_train
