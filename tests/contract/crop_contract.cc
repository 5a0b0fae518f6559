// The crop filter's contract: the output record is re-pointed into the
// input for every layout, and rectangles outside the picture are refused.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractSpec CropContract() {
  ContractSpec spec;
  spec.type = LF_FILTER_CROP;
  const CropConfig config{1, 8, 16, 40, 24};
  spec.config = RecordBytes(config);
  spec.writesOutput = [](uint8_t) { return kPlaneFields | kSizeFields | kFormatField; };
  spec.frames = {
      {LF_I420, 64, 48, LF_I420, 64, 48}, {LF_BGRA, 64, 48, LF_BGRA, 64, 48}, {LF_NV12, 80, 40, LF_NV12, 80, 40},
      {LF_YUY2, 50, 50, LF_YUY2, 50, 50}, {LF_I440, 60, 40, LF_I440, 60, 40}, {LF_RGB24, 30, 20, LF_RGB24, 30, 20},
  };
  const ContractFrame i420{LF_I420, 64, 48, LF_I420, 64, 48};
  spec.refusals = {
      {"no input record", i420, NoInput, LF_INVALID_PARAMETER},
      {"a rectangle left of the picture's edge", {LF_I420, 16, 16, LF_I420, 16, 16}, AsGiven, LF_INVALID_PARAMETER},
      // The output record is filled before the format is looked at.
      {"a format without planes to move",
       {LF_RGBP, 64, 48, LF_RGBP, 64, 48},
       AsGiven,
       LF_INVALID_PARAMETER,
       kPlaneFields | kSizeFields | kFormatField},
  };
  return spec;
}

const ContractRegistration kRegistration(CropContract);

}  // namespace
}  // namespace Lumaforge::test
