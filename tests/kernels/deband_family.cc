// Registers the deband kernel with the variant harness: one plane per
// shape, with the strength, spans, dither and seed drawn from the shape's
// seed, from a source into a destination and in place. Sources are
// smooth ramps with steps (banding) under the random fill's noise, so taps
// are both accepted and refused.
#include <vector>

#include "enhance/kernels/deband.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = DebandKernels;

// Quantised ramps plus a little of the random fill.
void Band(Plane& plane) {
  for (int32_t y = 0; y < plane.Rows(); ++y) {
    uint8_t* row = plane.Row(y);
    for (int32_t x = 0; x < plane.RowBytes(); ++x)
      row[x] = static_cast<uint8_t>((((x + 2 * y) / 3) & ~7) + (row[x] & 3));
  }
}

DebandJob JobFor(const Shape& s, const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride,
                 std::vector<uint16_t>& ring, std::vector<int16_t>& table) {
  const uint32_t pick = s.seed * 2654435761u;
  DebandJob job = {};
  job.src = src, job.srcStride = srcStride, job.dst = dst, job.dstStride = dstStride;
  job.width = s.width, job.height = s.height, job.firstRow = 0, job.rowLimit = s.height;
  constexpr int32_t kStrengths[] = {8, 1, 40, 255, -3, 3000};
  job.strength = kStrengths[pick % 6];
  job.spanH = 2 + static_cast<int32_t>((pick >> 4) % 6);
  job.spanV = 2 + static_cast<int32_t>((pick >> 8) % 6);
  constexpr int32_t kDithers[] = {6, 0, 2, 3, 9, 14, 20, -1};
  job.dither = kDithers[(pick >> 12) % 8];
  job.seed = (pick >> 16) % 3 == 0 ? 0 : pick;
  ring.assign(static_cast<size_t>(64) * static_cast<size_t>(s.width), 0);
  table.assign(kDebandDitherEntries, 0);
  job.ring = ring.data(), job.ditherTable = table.data();
  return job;
}

KernelEntry<Table> PlaneEntry(const char* name, bool inPlace) {
  ShapeRules rules;
  rules.maxHeight = 70;
  return Entry<Table, DebandPlaneKernel*>(
      name, &Table::plane,
      [inPlace](const Shape& s, Buffers& b) {
        if (inPlace) {
          Band(b.AddInOut("plane", s.width, s.height));
        } else {
          Band(b.AddInput("src", s.width, s.height));
          b.AddOutput("dst", s.width, s.height);
        }
      },
      [inPlace](DebandPlaneKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        std::vector<uint16_t> ring;
        std::vector<int16_t> table;
        Plane& out = b[inPlace ? 0 : 1];
        kernel(JobFor(s, b[0].Row(0), b[0].Stride(), out.Row(0), out.Stride(), ring, table));
      },
      rules);
}

const FamilyRegistration<Table> kRegistration{
    "deband", InitDebandKernels, {PlaneEntry("plane", false), PlaneEntry("plane_in_place", true)}};

}  // namespace
}  // namespace Lumaforge::test
