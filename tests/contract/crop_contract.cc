// The crop filter's contract: the output record is re-pointed into the
// input for every layout, and rectangles outside the picture are refused.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractTerms CropContract() {
  constexpr uint32_t kWholeRecord = kPlaneFields | kSizeFields | kFormatField;
  const ContractFrame i420 = Same(LF_I420, 64, 48);
  return {.type = LF_FILTER_CROP,
          .config = RecordBytes(CropConfig{1, 8, 16, 40, 24}),
          .writesOutput = [](uint8_t) { return kWholeRecord; },
          .frames = {i420, Same(LF_BGRA, 64, 48), Same(LF_NV12, 80, 40), Same(LF_YUY2, 50, 50), Same(LF_I440, 60, 40),
                     Same(LF_RGB24, 30, 20)},
          .refusals = {
              {"no input record", i420, NoInput, LF_INVALID_PARAMETER},
              {"a rectangle left of the picture's edge", Same(LF_I420, 16, 16), AsGiven, LF_INVALID_PARAMETER},
              // The output record is filled before the format is looked at.
              {"a format without planes to move", Same(LF_RGBP, 64, 48), AsGiven, LF_INVALID_PARAMETER, kWholeRecord}}};
}

const ContractRegistration kRegistration(CropContract);

}  // namespace
}  // namespace Lumaforge::test
