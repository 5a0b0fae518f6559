// Registers the recursive Gaussian passes with the variant harness. The
// transposed image is compared as raw float bytes: the vector forms must
// produce exactly the plain floats.
#include <algorithm>
#include <cstring>
#include <vector>

#include "filters/kernels/deriche_coefficients.h"
#include "filters/kernels/gauss_blur.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = GaussBlurKernels;

// A sigma per shape, from small (sharp, large coefficients) to wide.
DericheCoefficients CoefficientsFor(const Shape& s) {
  static const float kSigmas[] = {0.5f, 2.0f, 5.0f, 20.0f};
  return ComputeDericheCoefficients(kSigmas[(s.seed + static_cast<uint32_t>(s.width)) % 4]);
}

std::vector<float> LineBuffer(const Shape& s) {
  return std::vector<float>(static_cast<size_t>(std::max(s.width, s.height)) * kGaussLineFloatsPerSample);
}

KernelEntry<Table> RowEntry(const char* name, GaussRowPassKernel* Table::*member, int32_t channels) {
  ShapeRules rules;
  rules.maxHeight = 35;  // several blocks of rows side by side, and leftovers
  rules.misalignMultiple = 4;
  return Entry<Table, GaussRowPassKernel*>(
      name, member,
      [=](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width * channels, s.height);
        b.AddOutput("transposed", s.width * s.height * channels * 4, 1);
      },
      [=](GaussRowPassKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        std::vector<float> line = LineBuffer(s);
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, CoefficientsFor(s), line.data(),
               reinterpret_cast<float*>(b[1].Row(0)));
      },
      rules);
}

// The transposed input holds floats in [0, 256), as a row pass leaves them.
void FillTransposed(Plane& plane) {
  uint8_t* bytes = plane.Row(0);
  const size_t count = static_cast<size_t>(plane.RowBytes()) / 4;
  std::vector<float> values(count);
  for (size_t i = 0; i < count; ++i) values[i] = bytes[i] + bytes[count * 3 + i] / 256.0f;
  std::memcpy(bytes, values.data(), count * 4);
}

KernelEntry<Table> ColumnEntry(const char* name, GaussColumnPassKernel* Table::*member, int32_t channels) {
  ShapeRules rules;
  rules.maxHeight = 19;  // past two blocks of eight rows in the vector column passes
  rules.misalignMultiple = 4;
  return Entry<Table, GaussColumnPassKernel*>(
      name, member,
      [=](const Shape& s, Buffers& b) {
        FillTransposed(b.AddInput("transposed", s.width * s.height * channels * 4, 1));
        b.AddOutput("dst", s.width * channels, s.height);
      },
      [=](GaussColumnPassKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        std::vector<float> line = LineBuffer(s);
        kernel(reinterpret_cast<const float*>(b[0].Row(0)), s.width, s.height, CoefficientsFor(s), line.data(),
               b[1].Row(0), b[1].Stride());
      },
      rules);
}

const FamilyRegistration<Table> kRegistration{
    "gauss_blur",
    InitGaussBlurKernels,
    {RowEntry("row1", &Table::rowPass1, 1), ColumnEntry("column1", &Table::columnPass1, 1),
     RowEntry("row4", &Table::rowPass4, 4), ColumnEntry("column4", &Table::columnPass4, 4)}};

}  // namespace
}  // namespace Lumaforge::test
