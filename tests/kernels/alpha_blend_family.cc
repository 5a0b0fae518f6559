// Registers the alpha blending kernels with the variant harness.
#include "color/kernels/alpha_blend.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = AlphaBlendKernels;

// `bytesPerSample` input and output bytes per alpha, or 2 alphas per sample (chroma).
KernelEntry<Table> BlendEntry(const char* name, BlendRowKernel* Table::*member, int32_t bytesPerAlpha,
                              int32_t alphasPerSample) {
  return Entry<Table, BlendRowKernel*>(
      name, member,
      [=](const Shape& s, Buffers& b) {
        b.AddInput("in", s.width * bytesPerAlpha, s.height);
        b.AddInput("alpha", s.width * alphasPerSample, s.height);
        b.AddInOut("out", s.width * bytesPerAlpha, s.height);
      },
      [=](BlendRowKernel* kernel, Buffers& b) {
        for (int32_t y = 0; y < b[0].Rows(); ++y) {
          kernel(b[0].Row(y), b[2].Row(y), b[1].Row(y), b[0].RowBytes() / bytesPerAlpha);
        }
      });
}

const FamilyRegistration<Table> kRegistration{
    "alpha_blend",
    InitAlphaBlendKernels,
    {BlendEntry("rgb32", &Table::rgb32Row, 4, 1), BlendEntry("plane", &Table::planeRow, 1, 1),
     BlendEntry("chroma", &Table::chromaRow, 1, 2)}};

}  // namespace
}  // namespace Lumaforge::test
