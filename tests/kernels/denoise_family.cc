// Registers the denoise kernels with the variant harness. Spatial runs and
// blends are tiled over the shape's plane as the filter's passes use them
// (each run in place, left to right, its rows top to bottom); block tests
// and noise statistics run over every block that fits, their answers
// written out as bytes.
#include <cstring>
#include <vector>

#include "enhance/kernels/denoise.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = DenoiseKernels;

// Plane `to` made a slightly changed copy of `from` on every other 8x8 block
// (a still scene with noise), left as it is elsewhere.
void NearCopy(const Plane& from, Plane& to, uint32_t seed) {
  uint32_t state = seed * 2654435761u + 1;
  for (int32_t y = 0; y < to.Rows(); ++y) {
    for (int32_t x = 0; x < to.RowBytes(); ++x) {
      if (((x / 8 + y / 8) & 1) != 0) continue;
      state = state * 1664525u + 1013904223u;
      const int32_t v = from.Row(y)[x] + static_cast<int32_t>(state >> 30) - 2;
      to.Row(y)[x] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
  }
}

// Runs of `runWidth` (0: a width of 1 .. 16 chosen by the shape) tiled over
// the interior of the plane.
KernelEntry<Table> RunEntry(const char* name, DenoiseRunKernel* Table::*member, int32_t runWidth) {
  ShapeRules rules;
  rules.maxHeight = 20;
  return Entry<Table, DenoiseRunKernel*>(
      name, member, [](const Shape& s, Buffers& b) { b.AddInOut("plane", s.width, s.height); },
      [runWidth](DenoiseRunKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        const int32_t run = runWidth ? runWidth : 1 + static_cast<int32_t>(s.seed % 16);
        Plane& plane = b[0];
        for (int32_t x = 1; x < s.width - 1; x += run) {
          const int32_t width = x + run <= s.width - 1 ? run : s.width - 1 - x;
          if (s.height > 2) kernel(plane.Row(1) + x, plane.Stride(), width, s.height - 2);
        }
      },
      rules);
}

KernelEntry<Table> BlendEntry(const char* name, int32_t tile) {
  ShapeRules rules;
  rules.maxHeight = 17;
  return Entry<Table, DenoiseBlendKernel*>(
      name, &Table::blend,
      [](const Shape& s, Buffers& b) {
        b.AddInput("reference", s.width, s.height);
        b.AddInOut("current", s.width, s.height);
      },
      [tile](DenoiseBlendKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        const int32_t weight = 3 + static_cast<int32_t>(s.seed % 14);
        for (int32_t x = 0; x < s.width; x += tile) {
          const int32_t width = x + tile <= s.width ? tile : s.width - x;
          kernel(b[1].Row(0) + x, b[1].Stride(), b[0].Row(0) + x, b[0].Stride(), width, s.height, weight);
        }
      },
      rules);
}

// 8x8 block tests along the plane, one cell carried from block to block as
// within a macroblock; every answer and cell value is written out.
KernelEntry<Table> BlockTestEntry() {
  ShapeRules rules;
  rules.maxHeight = 16;
  rules.heightMultiple = 8;
  return Entry<Table, DenoiseBlockTestKernel*>(
      "block_test", &Table::blockTest,
      [](const Shape& s, Buffers& b) {
        const Plane& reference = b.AddInput("reference", s.width, s.height);
        NearCopy(reference, b.AddInput("current", s.width, s.height), s.seed);
        b.AddOutput("answers", 8 * (s.width / 8 + 1), s.height / 8);
      },
      [](DenoiseBlockTestKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        constexpr int32_t kTac[] = {300, 704, 528, 1, 0};
        constexpr int32_t kTdc[] = {140, 420, 315, 1, 0};
        const int32_t pick = static_cast<int32_t>(s.seed % 5);
        for (int32_t y = 0; y + 8 <= s.height; y += 8) {
          int32_t cell = 0;
          for (int32_t x = 0; x + 8 <= s.width; x += 8) {
            const bool alike =
                kernel(b[0].Row(y) + x, b[0].Stride(), b[1].Row(y) + x, b[1].Stride(), kTac[pick], kTdc[pick], &cell);
            uint8_t* out = b[2].Row(y / 8) + x;
            out[0] = alike;
            std::memcpy(out + 4, &cell, sizeof(cell));
          }
        }
      },
      rules);
}

// One band of 5x5 blocks per five rows; weights and variances written out.
KernelEntry<Table> BlockStatsEntry() {
  ShapeRules rules;
  rules.maxHeight = 15;
  rules.heightMultiple = 5;
  return Entry<Table, DenoiseBlockStatsKernel*>(
      "block_stats", &Table::blockStats,
      [](const Shape& s, Buffers& b) {
        const Plane& current = b.AddInput("current", s.width, s.height);
        NearCopy(current, b.AddInput("reference", s.width, s.height), s.seed);
        b.AddOutput("stats", 8 * (s.width / 5 + 1), s.height / 5);
      },
      [](DenoiseBlockStatsKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        // The loads reach three columns past the last block.
        const int32_t blocks = s.width >= 8 ? (s.width - 3) / 5 : 0;
        std::vector<int32_t> weights(blocks + 1), variances(blocks + 1);
        for (int32_t y = 0; y + 5 <= s.height; y += 5) {
          kernel(b[0].Row(y), b[0].Stride(), b[1].Row(y), b[1].Stride(), blocks, weights.data(), variances.data());
          std::memcpy(b[2].Row(y / 5), weights.data(), 4 * static_cast<size_t>(blocks));
          std::memcpy(b[2].Row(y / 5) + 4 * blocks, variances.data(), 4 * static_cast<size_t>(blocks));
        }
      },
      rules);
}

const FamilyRegistration<Table> kRegistration{
    "denoise",
    InitDenoiseKernels,
    {RunEntry("spatial_a16", &Table::spatialA, 16), RunEntry("spatial_a8", &Table::spatialA, 8),
     RunEntry("spatial_a_any", &Table::spatialA, 0), RunEntry("spatial_b16", &Table::spatialB, 16),
     RunEntry("spatial_b8", &Table::spatialB, 8), RunEntry("edge_smoother7", &Table::edgeSmoother, 7),
     RunEntry("edge_smoother_any", &Table::edgeSmoother, 0), BlendEntry("blend16", 16), BlendEntry("blend8", 8),
     BlockTestEntry(), BlockStatsEntry()}};

}  // namespace
}  // namespace Lumaforge::test
