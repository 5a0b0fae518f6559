// Registers the chroma interleave kernels with the variant harness.
#include "color/kernels/chroma_interleave.h"
#include "tests/kernels/kernel_harness.h"

namespace Lumaforge::test {
namespace {

using Table = ChromaInterleaveKernels;

// Rows of `width` chroma samples; the benchmark shape is the chroma of 1080p.
const ShapeRules kRules = {.benchWidth = 960, .benchHeight = 540};

const FamilyRegistration<Table> kRegistration{
    "chroma_interleave",
    InitChromaInterleaveKernels,
    {
        Entry<Table, MergeUVRowKernel*>(
            "merge_uv", &Table::mergeUVRow,
            [](const Shape& s, Buffers& b) {
              b.AddInput("u", s.width, s.height);
              b.AddInput("v", s.width, s.height);
              b.AddOutput("uv", 2 * s.width, s.height);
            },
            [](MergeUVRowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[0].Rows(); ++y) {
                kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[0].RowBytes());
              }
            },
            kRules),
        Entry<Table, SplitUVRowKernel*>(
            "split_uv", &Table::splitUVRow,
            [](const Shape& s, Buffers& b) {
              b.AddInput("uv", 2 * s.width, s.height);
              b.AddOutput("u", s.width, s.height);
              b.AddOutput("v", s.width, s.height);
            },
            [](SplitUVRowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[0].Rows(); ++y) {
                kernel(b[0].Row(y), b[1].Row(y), b[2].Row(y), b[1].RowBytes());
              }
            },
            kRules),
        Entry<Table, EvenSamplesRowKernel*>(
            "even_samples", &Table::evenSamplesRow,
            [](const Shape& s, Buffers& b) {
              b.AddInput("src", 2 * s.width, s.height);
              b.AddOutput("dst", s.width, s.height);
            },
            [](EvenSamplesRowKernel* kernel, Buffers& b) {
              for (int32_t y = 0; y < b[0].Rows(); ++y) kernel(b[0].Row(y), b[1].Row(y), b[1].RowBytes());
            },
            kRules),
    }};

}  // namespace
}  // namespace Lumaforge::test
