// Registers the standard super-resolution upscalers with the variant
// harness: each vector form must give the plain routine's bytes, with and
// without a previous frame, under quantiser maps that change sharpness from
// block to block, on luma (16-column blocks) and chroma (8-column) settings.
// The previous frame is a plane of its own pattern: equal to the current one
// for the constant patterns (every sample blended), near it now and then for
// random ones.
#include <functional>
#include <vector>

#include "super_resolution/kernels/sr_upscale.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = SrUpscaleKernels;

const SrStandardTable& StandardTable() {
  static const SrStandardTable table = [] {
    SrStandardTable t;
    SrInitTables_c(&t);
    return t;
  }();
  return table;
}

// A quantiser per block from the shape's seed, covering soft to sharp.
std::vector<uint8_t> QpList(const Shape& s, int32_t shift) {
  const int32_t columns = (s.width >> shift) + 1, rows = (s.height >> shift) + 1;
  std::vector<uint8_t> qp(static_cast<size_t>(columns) * rows);
  for (size_t i = 0; i < qp.size(); ++i) qp[i] = static_cast<uint8_t>((s.seed + i * 7) % 52);
  return qp;
}

std::vector<int16_t> Scratch(const Shape& s) { return std::vector<int16_t>(SrScratchValues(s.width, s.height) + 16); }

// Heights past a few row pairs; timed at the filter's 640x360.
ShapeRules PlaneRules() {
  ShapeRules rules;
  rules.maxHeight = 9;
  rules.benchWidth = 640;
  rules.benchHeight = 360;
  return rules;
}

// A source plane of the shape and an output `num` / `den` times its size.
std::function<void(const Shape&, Buffers&)> SourceAndOutput(int32_t num, int32_t den) {
  return [=](const Shape& s, Buffers& b) {
    b.AddInput("src", s.width, s.height);
    b.AddOutput("dst", num * s.width / den, num * s.height / den);
  };
}

KernelEntry<Table> Standard2xEntry(const char* name, bool chroma, bool withPrevious) {
  return Entry<Table, SrStandard2xKernel*>(
      name, &Table::standard2x,
      [=](const Shape& s, Buffers& b) {
        b.AddInput("src", s.width, s.height);
        b.AddInput("previous", s.width, s.height);
        b.AddOutput("dst", 2 * s.width, 2 * s.height);
      },
      [=](SrStandard2xKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        const int32_t shift = chroma ? 3 : 4;
        const std::vector<uint8_t> qp = QpList(s, shift);
        std::vector<int16_t> scratch = Scratch(s);
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, b[2].Row(0), b[2].Stride(),
               SrQpMap{qp.data(), (s.width >> shift) + 1, shift}, withPrevious ? b[1].Row(0) : nullptr,
               withPrevious ? b[1].Stride() : 0, chroma ? 4 : 1, StandardTable(), scratch.data());
      },
      PlaneRules());
}

KernelEntry<Table> Standard15Entry(const char* name, bool chroma, int32_t strength) {
  return Entry<Table, SrScale15Kernel*>(
      name, &Table::standard15, SourceAndOutput(3, 2),
      [=](SrScale15Kernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        const int32_t shift = chroma ? 3 : 4;
        const std::vector<uint8_t> qp = QpList(s, shift);
        std::vector<int16_t> scratch = Scratch(s);
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, b[1].Row(0), b[1].Stride(),
               SrQpMap{qp.data(), (s.width >> shift) + 1, shift}, strength, chroma, scratch.data());
      },
      PlaneRules());
}

KernelEntry<Table> Alternative15Entry() {
  return Entry<Table, SrAlternative15Kernel*>(
      "alternative15", &Table::alternative15, SourceAndOutput(3, 2),
      [](SrAlternative15Kernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        std::vector<int16_t> scratch = Scratch(s);
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, b[1].Row(0), b[1].Stride(), scratch.data());
      },
      PlaneRules());
}

// The settings no frame reaches in the filter: luma (gain 22, coring 16)
// and chroma (gain 22, coring 64, last plane).
KernelEntry<Table> TwoPassEntry(const char* name, int32_t threshold, int32_t last) {
  return Entry<Table, SrTwoPassKernel*>(
      name, &Table::twoPass, SourceAndOutput(2, 1),
      [=](SrTwoPassKernel* kernel, Buffers& b) {
        const Shape& s = b.GetShape();
        std::vector<int16_t> scratch = Scratch(s);
        kernel(b[0].Row(0), b[0].Stride(), s.width, s.height, b[1].Row(0), b[1].Stride(), 22, threshold, last,
               scratch.data());
      },
      PlaneRules());
}

const FamilyRegistration<Table> kRegistration{
    "sr_upscale",
    InitSrUpscaleKernels,
    {Standard2xEntry("standard2x_luma", false, true), Standard2xEntry("standard2x_chroma", true, true),
     Standard2xEntry("standard2x_first_frame", false, false), Standard15Entry("standard15_luma", false, 1),
     Standard15Entry("standard15_chroma", true, 4), Alternative15Entry(), TwoPassEntry("two_pass_luma", 16, 0),
     TwoPassEntry("two_pass_chroma", 64, 1)}};

}  // namespace
}  // namespace Lumaforge::test
