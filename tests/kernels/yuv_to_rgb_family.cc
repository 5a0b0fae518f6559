// Registers the YUV to RGB kernels with the variant harness.
#include "color/kernels/yuv_to_rgb.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = YuvToRgbKernels;

const FamilyRegistration<Table> kRegistration{"yuv_to_rgb",
                                              InitYuvToRgbKernels,
                                              {
                                                  Entry<Table, I422ToBgraRowKernel*>(
                                                      "i422_to_bgra", &Table::i422ToBgraRow,
                                                      [](const Shape& s, Buffers& b) {
                                                        b.AddInput("y", s.width, s.height);
                                                        b.AddInput("u", s.width / 2, s.height);
                                                        b.AddInput("v", s.width / 2, s.height);
                                                        b.AddOutput("bgra", 4 * s.width, s.height);
                                                      },
                                                      [](I422ToBgraRowKernel* kernel, Buffers& b) {
                                                        for (int32_t y = 0; y < b[0].Rows(); ++y) {
                                                          kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[3].Row(y),
                                                                 b[0].RowBytes());
                                                        }
                                                      },
                                                      {.widthMultiple = 2}),
                                              }};

}  // namespace
}  // namespace Lumaforge::test
