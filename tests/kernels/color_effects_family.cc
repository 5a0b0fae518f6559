// Registers the video filter's effect kernels with the variant harness.
#include <cmath>

#include "filters/kernels/color_effects.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = ColorEffectKernels;

const FamilyRegistration<Table> kRegistration{
    "color_effects",
    InitColorEffectKernels,
    {Entry<Table, RotateHueKernel*>(
         "hue", &Table::rotateHue,
         [](const Shape& s, Buffers& b) {
           b.AddInOut("u", s.width, s.height);
           b.AddInOut("v", s.width, s.height);
         },
         [](RotateHueKernel* kernel, Buffers& b) {
           // The filter's angle, and one whose terms reach past both clamps.
           const float angle = b.GetShape().seed % 2 ? 120.0f : 2.4f;
           for (int32_t y = 0; y < b[0].Rows(); ++y) {
             kernel(b[0].Row(y), b[1].Row(y), static_cast<size_t>(b[0].RowBytes()), std::cos(angle), std::sin(angle));
           }
         }),
     Entry<Table, SepiaKernel*>(
         "sepia", &Table::sepia,
         [](const Shape& s, Buffers& b) {
           b.AddInput("rgb", s.width * 3, s.height);
           b.AddOutput("out", s.width * 3, s.height);
         },
         [](SepiaKernel* kernel, Buffers& b) {
           for (int32_t y = 0; y < b[0].Rows(); ++y) {
             kernel(b[0].Row(y), b[1].Row(y), static_cast<size_t>(b[0].RowBytes() / 3));
           }
         })}};

}  // namespace
}  // namespace Lumaforge::test
