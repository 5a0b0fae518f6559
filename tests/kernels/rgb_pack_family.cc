// Registers the RGB packing kernels with the variant harness: the 4-byte
// shuffle under every permutation, the 24-bit forms under the patterns the
// converters use.
#include <algorithm>
#include <string>

#include "color/kernels/rgb_pack.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = RgbPackKernels;

std::string PatternName(const char* base, BytePattern p, int bytes) {
  std::string name = std::string(base) + "_";
  for (int k = 0; k < bytes; ++k) name += static_cast<char>('0' + p.index[k]);
  return name;
}

void RowLoop3(Shuffle4RowKernel* kernel, BytePattern p, Buffers& b, int32_t width) {
  for (int32_t y = 0; y < b[0].Rows(); ++y) kernel(b[0].Row(y), b[1].Row(y), p, width);
}

std::vector<KernelEntry<Table>> Entries() {
  std::vector<KernelEntry<Table>> entries;
  uint8_t order[4] = {0, 1, 2, 3};
  do {
    const BytePattern p = {{order[0], order[1], order[2], order[3]}};
    entries.push_back(Entry<Table, Shuffle4RowKernel*>(
        PatternName("shuffle4", p, 4), &Table::shuffle4Row,
        [](const Shape& s, Buffers& b) {
          b.AddInput("src", 4 * s.width, s.height);
          b.AddOutput("dst", 4 * s.width, s.height);
        },
        [p](Shuffle4RowKernel* kernel, Buffers& b) { RowLoop3(kernel, p, b, b[0].RowBytes() / 4); }));
  } while (std::next_permutation(order, order + 4));

  // B, G, R from R, G, B (RGB24) or from B, G, R (BGR24), and back.
  for (const BytePattern p : {BytePattern{{2, 1, 0, 0}}, BytePattern{{0, 1, 2, 0}}}) {
    entries.push_back(Entry<Table, Rgb24ToBgraRowKernel*>(
        PatternName("rgb24_to_bgra", p, 3), &Table::rgb24ToBgraRow,
        [](const Shape& s, Buffers& b) {
          b.AddInput("src", 3 * s.width, s.height);
          b.AddOutput("bgra", 4 * s.width, s.height);
        },
        [p](Rgb24ToBgraRowKernel* kernel, Buffers& b) { RowLoop3(kernel, p, b, b[0].RowBytes() / 3); }));
    entries.push_back(Entry<Table, BgraToRgb24RowKernel*>(
        PatternName("bgra_to_rgb24", p, 3), &Table::bgraToRgb24Row,
        [](const Shape& s, Buffers& b) {
          b.AddInput("bgra", 4 * s.width, s.height);
          b.AddOutput("dst", 3 * s.width, s.height);
        },
        [p](BgraToRgb24RowKernel* kernel, Buffers& b) { RowLoop3(kernel, p, b, b[0].RowBytes() / 4); }));
  }

  entries.push_back(Entry<Table, PlanesToBgraRowKernel*>(
      "planes_to_bgra", &Table::planesToBgraRow,
      [](const Shape& s, Buffers& b) {
        b.AddInput("r", s.width, s.height);
        b.AddInput("g", s.width, s.height);
        b.AddInput("b", s.width, s.height);
        b.AddOutput("bgra", 4 * s.width, s.height);
      },
      [](PlanesToBgraRowKernel* kernel, Buffers& b) {
        for (int32_t y = 0; y < b[0].Rows(); ++y) {
          kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[3].Row(y), b[0].RowBytes());
        }
      }));
  entries.push_back(Entry<Table, BgraToPlanesRowKernel*>(
      "bgra_to_planes", &Table::bgraToPlanesRow,
      [](const Shape& s, Buffers& b) {
        b.AddInput("bgra", 4 * s.width, s.height);
        b.AddOutput("r", s.width, s.height);
        b.AddOutput("g", s.width, s.height);
        b.AddOutput("b", s.width, s.height);
      },
      [](BgraToPlanesRowKernel* kernel, Buffers& b) {
        for (int32_t y = 0; y < b[0].Rows(); ++y) {
          kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[3].Row(y), b[1].RowBytes());
        }
      }));
  return entries;
}

const FamilyRegistration<Table> kRegistration{"rgb_pack", InitRgbPackKernels, Entries()};

}  // namespace
}  // namespace Lumaforge::test
