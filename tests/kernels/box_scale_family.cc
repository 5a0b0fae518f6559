// Registers the box and bilinear downscaling kernels with the variant
// harness. Shapes name the output size; sources are larger by a ratio that
// varies with the shape.
#include <string>

#include "scaling/kernels/box_scale.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = BoxScaleKernels;

// Box shapes are source sizes; heights reach a few cells of the widest step.
const ShapeRules kBoxRules = {.maxHeight = 9};

// A source larger than the output by 1.07 .. 2.8 times, per shape.
int32_t SourceSize(int32_t dstSize, uint32_t seed) {
  return dstSize + 1 + dstSize * static_cast<int32_t>(seed % 8 + 1) / 4;
}

KernelEntry<Table> BoxEntry(const char* name, BoxScaleKernel* Table::*member, int32_t step) {
  return Entry<Table, BoxScaleKernel*>(
      name, member,
      [step](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width, s.height);
        b.AddOutput("dst", s.width / step, s.height / step);
      },
      [](BoxScaleKernel* kernel, Buffers& b) {
        kernel(b[0].Row(0), b[0].Stride(), b[1].Row(0), b[1].Stride(), b[0].RowBytes(), b[0].Rows());
      },
      kBoxRules);
}

KernelEntry<Table> BilinearEntry(const char* name, BilinearKernel* Table::*member) {
  return Entry<Table, BilinearKernel*>(
      name, member,
      [](const Shape& s, Buffers& b) {
        b.AddInput("src", SourceSize(s.width, s.seed), SourceSize(s.height, s.seed / 8));
        b.AddOutput("dst", s.width, s.height);
      },
      [](BilinearKernel* kernel, Buffers& b) {
        kernel(b[0].Row(0), b[0].Stride(), b[0].RowBytes(), b[0].Rows(), b[1].Row(0), b[1].Stride(), b[1].RowBytes(),
               b[1].Rows());
      });
}

std::vector<KernelEntry<Table>> Entries() {
  std::vector<KernelEntry<Table>> entries = {
      BoxEntry("half_aligned", &Table::halfAligned, 2),
      BoxEntry("half_unaligned", &Table::halfUnaligned, 2),
      BoxEntry("third", &Table::third, 3),
      BoxEntry("quarter", &Table::quarter, 4),
      BilinearEntry("general_luma", &Table::generalLuma),
      BilinearEntry("general_chroma", &Table::generalChroma),
  };
  for (const int32_t bpp : {3, 4}) {
    const std::string suffix = "_" + std::to_string(bpp * 8) + "bit";
    entries.push_back(Entry<Table, PackedHalfKernel*>(
        "packed_half" + suffix, &Table::packedHalf,
        [bpp](const Shape& s, Buffers& b) {
          b.AddInput("src", s.width * bpp, s.height);
          b.AddOutput("dst", s.width / 2 * bpp, s.height / 2);
        },
        [bpp](PackedHalfKernel* kernel, Buffers& b) {
          kernel(b[0].Row(0), b[0].Stride(), b[1].Row(0), b[1].Stride(), b[0].RowBytes() / bpp, b[0].Rows(), bpp);
        },
        kBoxRules));
    entries.push_back(Entry<Table, PackedBilinearKernel*>(
        "packed_general" + suffix, &Table::packedGeneral,
        [bpp](const Shape& s, Buffers& b) {
          b.AddInput("src", SourceSize(s.width, s.seed) * bpp, SourceSize(s.height, s.seed / 8));
          b.AddOutput("dst", s.width * bpp, s.height);
        },
        [bpp](PackedBilinearKernel* kernel, Buffers& b) {
          kernel(b[0].Row(0), b[0].Stride(), b[0].RowBytes() / bpp, b[0].Rows(), b[1].Row(0), b[1].Stride(),
                 b[1].RowBytes() / bpp, b[1].Rows(), bpp);
        }));
  }
  return entries;
}

const FamilyRegistration<Table> kRegistration{"box_scale", InitBoxScaleKernels, Entries()};

}  // namespace
}  // namespace Lumaforge::test
