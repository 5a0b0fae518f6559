// Registers the RGB to YUV kernels with the variant harness.
#include "color/kernels/rgb_to_yuv.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = RgbToYuvKernels;

const FamilyRegistration<Table> kRegistration{
    "rgb_to_yuv",
    InitRgbToYuvKernels,
    {
        Entry<Table, BgraToYRowKernel*>(
            "bgra_to_y", &Table::bgraToYRow,
            [](const Shape& s, Buffers& b) {
              b.AddInput("bgra", 4 * s.width, s.height);
              b.AddOutput("y", s.width, s.height);
            },
            [](BgraToYRowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[0].Rows(); ++y) kernel(b[0].Row(y), b[1].Row(y), b[1].RowBytes());
            }),
        Entry<Table, BgraToUV420RowKernel*>(
            "bgra_to_uv420", &Table::bgraToUV420Row,
            [](const Shape& s, Buffers& b) {
              b.AddInput("bgra", 4 * s.width, s.height);
              b.AddOutput("u", s.width / 2, s.height / 2);
              b.AddOutput("v", s.width / 2, s.height / 2);
            },
            [](BgraToUV420RowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[1].Rows(); ++y) {
                kernel(b[0].Row(2 * y), b[0].Row(2 * y + 1), b[1].Row(y), b[2].Row(y), 2 * b[1].RowBytes());
              }
            },
            {.widthMultiple = 2, .heightMultiple = 2}),
        Entry<Table, BgraToUV422RowKernel*>(
            "bgra_to_uv422", &Table::bgraToUV422Row,
            [](const Shape& s, Buffers& b) {
              b.AddInput("bgra", 4 * s.width, s.height);
              b.AddOutput("u", s.width / 2, s.height);
              b.AddOutput("v", s.width / 2, s.height);
            },
            [](BgraToUV422RowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[1].Rows(); ++y) {
                kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), 2 * b[1].RowBytes());
              }
            },
            {.widthMultiple = 2}),
    }};

}  // namespace
}  // namespace Lumaforge::test
