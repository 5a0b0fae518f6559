// Colour space conversion (filter type 1): converts a picture between any
// two supported layouts, RGB and YUV, in one self-contained call.
#ifndef LUMAFORGE_COLOR_COLOR_SPACE_CONVERTOR_H_
#define LUMAFORGE_COLOR_COLOR_SPACE_CONVERTOR_H_

#include "color/color_kernels.h"
#include "color/conversions.h"
#include "framework/lumaforge_framework.h"

namespace Lumaforge {

// Format groups of the conversion table.
enum class FormatGroup { kPlanar420, kPackedRgb24, kPackedRgb32, kPlanarRgb, kPacked422, kSemiPlanar420, kOther };

FormatGroup ClassifyFormat(uint32_t code);

// Index of the table entry for a pair of groups, or -1 when the table has none.
int32_t ConversionEntry(FormatGroup in, FormatGroup out);
// Pairs converted by the RGB reorder routine outside the table.
bool IsDirectRgbPair(FormatGroup in, FormatGroup out);

class CColorSpaceConvertor : public CLumaforgeFramework {
 public:
  static constexpr int32_t kEntries = 31;

  explicit CColorSpaceConvertor(uint32_t cpuFeatures);

  int32_t Init(void* config, uint8_t flag) override;
  // Clears bit 0 of both records' width and height in place, then converts
  // over the smaller of the two sizes. The input is checked (-2 for missing
  // planes, strides shorter than a row, planes of 2 GB or more); the output
  // record is not: its planes must exist and hold its format at its size.
  int32_t Process(VideoPicture* input, VideoPicture* output) override;
  // Answers 0 to every id, without a value: conversions are not timed.
  int32_t GetParam(ParamId id, void* value) override;

 private:
  ColorKernels m_kernels;
  ConversionRoutine m_pTable[kEntries];
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_COLOR_COLOR_SPACE_CONVERTOR_H_
