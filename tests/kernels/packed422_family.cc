// Registers the packed 4:2:2 kernels with the variant harness, under each
// of the four pixel-pair layouts.
#include <string>

#include "color/kernels/packed422.h"
#include "framework/formats.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = Packed422Kernels;

std::vector<KernelEntry<Table>> Entries() {
  std::vector<KernelEntry<Table>> entries;
  const struct {
    const char* name;
    uint32_t code;
  } layouts[] = {{"yuy2", LF_YUY2}, {"yvyu", LF_YVYU}, {"uyvy", LF_UYVY}, {"vyuy", LF_VYUY}};
  for (const auto& l : layouts) {
    const Packed422Layout layout = *GetPacked422Layout(l.code);
    entries.push_back(Entry<Table, Packed422ToPlanesRowKernel*>(
        std::string("packed422_to_planes_") + l.name, &Table::packed422ToPlanesRow,
        [](const Shape& s, Buffers& b) {
          b.AddInput("src", 2 * s.width, s.height);
          b.AddOutput("y", s.width, s.height);
          b.AddOutput("u", s.width / 2, s.height);
          b.AddOutput("v", s.width / 2, s.height);
        },
        [layout](Packed422ToPlanesRowKernel* kernel, Buffers& b) {
          for (int32_t y = 0; y < b[0].Rows(); ++y) {
            kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[3].Row(y), layout, b[1].RowBytes());
          }
        },
        {.widthMultiple = 2}));
    entries.push_back(Entry<Table, PlanesToPacked422RowKernel*>(
        std::string("planes_to_packed422_") + l.name, &Table::planesToPacked422Row,
        [](const Shape& s, Buffers& b) {
          b.AddInput("y", s.width, s.height);
          b.AddInput("u", s.width / 2, s.height);
          b.AddInput("v", s.width / 2, s.height);
          b.AddOutput("dst", 2 * s.width, s.height);
        },
        [layout](PlanesToPacked422RowKernel* kernel, Buffers& b) {
          for (int32_t y = 0; y < b[0].Rows(); ++y) {
            kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[3].Row(y), layout, b[0].RowBytes());
          }
        },
        {.widthMultiple = 2}));
  }
  entries.push_back(Entry<Table, AverageRowsKernel*>(
      "average_rows", &Table::averageRows,
      [](const Shape& s, Buffers& b) {
        b.AddInput("a", s.width, s.height);
        b.AddInput("b", s.width, s.height);
        b.AddOutput("dst", s.width, s.height);
      },
      [](AverageRowsKernel* kernel, Buffers& b) {
        for (int32_t y = 0; y < b[0].Rows(); ++y) kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[0].RowBytes());
      }));
  return entries;
}

const FamilyRegistration<Table> kRegistration{"packed422", InitPacked422Kernels, Entries()};

}  // namespace
}  // namespace Lumaforge::test
