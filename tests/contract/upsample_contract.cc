// The upsampler's contract: I420 through libyuv's three-plane scaler at
// several ratios (shrinking included), grey pictures scaled when they get
// taller and left alone otherwise, and the refusals of unusable records.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

void OddInputWidth(VideoPicture*& in, VideoPicture*&) { in->width = 63; }

ContractTerms UpsampleContract() {
  const ContractFrame i420{LF_I420, 64, 48, LF_I420, 128, 96};
  return {.type = LF_FILTER_UPSAMPLE,
          .config = RecordBytes(uint32_t{LF_UPSAMPLE_BILINEAR}),
          .frames = {i420,
                     {LF_I420, 100, 60, LF_I420, 150, 90},
                     {LF_I420, 128, 96, LF_I420, 64, 48},
                     {LF_VYUY, 40, 30, LF_VYUY, 100, 75},
                     {LF_VYUY, 40, 30, LF_VYUY, 100, 30},
                     {LF_I420, 2, 2, LF_I420, 322, 2}},
          .refusals = {{"no input record", i420, NoInput, LF_INVALID_PARAMETER},
                       {"a format it does not scale", {LF_BGRA, 64, 48, LF_BGRA, 128, 96}, AsGiven, LF_UPSAMPLE_FORMAT},
                       {"an odd I420 width", {LF_I420, 64, 48, LF_I420, 128, 96}, OddInputWidth, LF_INVALID_PARAMETER},
                       {"a missing output chroma plane", i420, NoOutputPlane<2>, LF_INVALID_PARAMETER},
                       {"an input stride short of its row", i420, ShortInputStride, LF_INVALID_PARAMETER},
                       {"an input of 2^61 bytes", i420, HugeInput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(UpsampleContract);

}  // namespace
}  // namespace Lumaforge::test
