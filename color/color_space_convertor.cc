#include "color/color_space_convertor.h"

#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

using G = FormatGroup;

struct TableRow {
  FormatGroup in, out;
  ConversionRoutine routine;
};

// The conversion table: entry index = position.
constexpr TableRow kTable[CColorSpaceConvertor::kEntries] = {
    {G::kPlanar420, G::kPlanar420, CopyPlanar420},              // 0
    {G::kPlanar420, G::kPackedRgb24, Yuv420ToRgb},              // 1
    {G::kPlanar420, G::kPackedRgb32, Yuv420ToRgb},              // 2
    {G::kPlanar420, G::kPlanarRgb, Yuv420ToRgb},                // 3
    {G::kPlanar420, G::kSemiPlanar420, InterleaveChroma},       // 4
    {G::kPlanar420, G::kPacked422, Yuv420ToPacked422},          // 5
    {G::kPackedRgb24, G::kPlanar420, RgbToYuv420},              // 6
    {G::kPackedRgb32, G::kPlanar420, RgbToYuv420},              // 7
    {G::kPlanarRgb, G::kPlanar420, RgbToYuv420},                // 8
    {G::kPackedRgb24, G::kPacked422, RgbToPacked422},           // 9
    {G::kPackedRgb32, G::kPacked422, RgbToPacked422},           // 10
    {G::kPlanarRgb, G::kPacked422, RgbToPacked422},             // 11
    {G::kPackedRgb24, G::kSemiPlanar420, RgbToYuv420},          // 12
    {G::kPackedRgb32, G::kSemiPlanar420, RgbToYuv420},          // 13
    {G::kPlanarRgb, G::kSemiPlanar420, RgbToYuv420},            // 14
    {G::kPackedRgb32, G::kPackedRgb32, RgbReorder},             // 15
    {G::kPackedRgb32, G::kPlanarRgb, RgbReorder},               // 16
    {G::kPlanarRgb, G::kPackedRgb32, RgbReorder},               // 17
    {G::kPacked422, G::kPlanar420, Packed422ToYuv420},          // 18
    {G::kPacked422, G::kSemiPlanar420, Packed422ToYuv420},      // 19
    {G::kPacked422, G::kPackedRgb24, Packed422ToRgb},           // 20
    {G::kPacked422, G::kPackedRgb32, Packed422ToRgb},           // 21
    {G::kPacked422, G::kPlanarRgb, Packed422ToRgb},             // 22
    {G::kPacked422, G::kPacked422, ReorderPacked422},           // 23
    {G::kSemiPlanar420, G::kPacked422, Yuv420ToPacked422},      // 24
    {G::kSemiPlanar420, G::kPlanar420, DeinterleaveChroma},     // 25
    {G::kSemiPlanar420, G::kSemiPlanar420, CopySemiPlanar420},  // 26
    {G::kSemiPlanar420, G::kPackedRgb24, Yuv420ToRgb},          // 27
    {G::kSemiPlanar420, G::kPackedRgb32, Yuv420ToRgb},          // 28
    {G::kSemiPlanar420, G::kPlanarRgb, Yuv420ToRgb},            // 29
    {G::kOther, G::kPlanar420, VerticalChromaTo420},            // 30
};

bool IsRgbGroup(FormatGroup g) { return g == G::kPackedRgb24 || g == G::kPackedRgb32 || g == G::kPlanarRgb; }

// Every plane the input's layout has must be there, with strides that hold
// its rows. Codes without a layout of their own are read as I440 (three
// planes, chroma full width, half height).
bool InputReadable(const VideoPicture& p, FormatGroup group) {
  const uint32_t code = group == G::kOther ? LF_I440 : FormatCode(p.format);
  const PlaneLayout layout = LayoutOf(code, FormatReading::kConversion, p.width, p.height);
  return PlanesPresent(p, layout) && StridesHoldRows(p, layout);
}

}  // namespace

FormatGroup ClassifyFormat(uint32_t code) {
  if (IsPlanar420(code)) return G::kPlanar420;
  if (IsPackedRgb24(code)) return G::kPackedRgb24;
  if (IsPackedRgb32(code)) return G::kPackedRgb32;
  if (IsPlanarRgb(code)) return G::kPlanarRgb;
  if (IsPacked422(code)) return G::kPacked422;
  if (IsSemiPlanar420(code)) return G::kSemiPlanar420;
  return G::kOther;
}

int32_t ConversionEntry(FormatGroup in, FormatGroup out) {
  for (int32_t i = 0; i < CColorSpaceConvertor::kEntries; ++i) {
    if (kTable[i].in == in && kTable[i].out == out) return i;
  }
  return -1;
}

bool IsDirectRgbPair(FormatGroup in, FormatGroup out) {
  if (!IsRgbGroup(in) || !IsRgbGroup(out)) return false;
  return in == G::kPackedRgb24 || out == G::kPackedRgb24 || (in == G::kPlanarRgb && out == G::kPlanarRgb);
}

CColorSpaceConvertor::CColorSpaceConvertor(uint32_t cpuFeatures) {
  // Entries 0 and 26 only copy rows; every other entry runs on the kernels
  // chosen here, so the feature word picks its variant for all of them.
  InitColorKernels(&m_kernels, cpuFeatures);
  for (int32_t i = 0; i < kEntries; ++i) m_pTable[i] = kTable[i].routine;
  SetName("CSC");
  CreateLogger();
}

int32_t CColorSpaceConvertor::Init(void* /*config*/, uint8_t /*flag*/) { return LF_OK; }

int32_t CColorSpaceConvertor::GetParam(ParamId /*id*/, void* /*value*/) { return LF_OK; }

int32_t CColorSpaceConvertor::Process(VideoPicture* input, VideoPicture* output) {
  if (!input || !output) return LF_INVALID_PARAMETER;
  input->width &= ~1u;
  input->height &= ~1u;
  output->width &= ~1u;
  output->height &= ~1u;

  const uint32_t inCode = FormatCode(input->format);
  const FormatGroup inGroup = ClassifyFormat(inCode);
  if (!InputReadable(*input, inGroup)) return LF_INVALID_PARAMETER;

  const uint32_t outCode = FormatCode(output->format);
  if (outCode < 1 || outCode > 31) return LF_UNSUPPORTED;
  const FormatGroup outGroup = ClassifyFormat(outCode);
  if (IsDirectRgbPair(inGroup, outGroup)) {
    RgbReorder(input, output, m_kernels);
    return LF_OK;
  }
  const int32_t entry = ConversionEntry(inGroup, outGroup);
  if (entry < 0 || !m_pTable[entry]) return LF_UNSUPPORTED;
  m_pTable[entry](input, output, m_kernels);
  return LF_OK;
}

namespace {
// The input formats the conversion table knows; the output record's format
// says what to produce.
constexpr uint32_t kCscFormats[] = {LF_I420,  LF_YV12,  LF_NV12, LF_NV21, LF_I440, LF_YUY2, LF_YVYU, LF_UYVY, LF_VYUY,
                                    LF_RGB24, LF_BGR24, LF_RGBA, LF_BGRA, LF_ABGR, LF_ARGB, LF_RGBP, LF_BGRP};
}  // namespace

extern const FilterDescriptor kCscDescriptor = {LF_FILTER_CSC,
                                                "CSC",
                                                "Create ColorSpaceConvertion CSC(%p)",
                                                CreateFilter<CColorSpaceConvertor>,
                                                false,
                                                FormatReading::kConversion,
                                                kCscFormats,
                                                {}};

}  // namespace Lumaforge
