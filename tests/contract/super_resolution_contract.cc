// Super resolution's contract: standard 2x and 1.5x in both buffer modes
// (mode 0 hands back the filter's planes), and the refusals of unusable
// records and ratios, all answered by Process as -1.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

void OddInputWidth(VideoPicture*& in, VideoPicture*&) { in->width = 63; }

ContractTerms SuperResolutionContract() {
  const ContractFrame twice{LF_I420, 64, 48, LF_I420, 128, 96};
  return {
      .type = LF_FILTER_SUPER_RESOLUTION,
      .flags = {0, 1},
      .writesOutput = [](uint8_t flag) { return flag ? kNoFields : kPlaneFields; },
      .frames = {twice,
                 {LF_I420, 64, 48, LF_I420, 96, 72},
                 {LF_I420, 98, 34, LF_I420, 196, 68},
                 {LF_I420, 36, 20, LF_I420, 54, 30},
                 {LF_I420, 320, 180, LF_I420, 480, 270}},
      .readsPreviousFrame = true,
      .refusals = {
          {"no input record", twice, NoInput, LF_FAILED},
          {"no output record", twice, NoOutput, LF_FAILED},
          {"a missing input chroma plane", twice, NoInputPlane<1>, LF_FAILED},
          {"a format other than I420", {LF_NV12, 64, 48, LF_NV12, 128, 96}, AsGiven, LF_FAILED},
          {"an odd size", twice, OddInputWidth, LF_FAILED},
          {"a ratio other than 2 and 1.5", {LF_I420, 64, 48, LF_I420, 100, 72}, AsGiven, LF_FAILED, kPlaneFields, 0},
          {"a ratio other than 2 and 1.5 into caller planes",
           {LF_I420, 64, 48, LF_I420, 100, 72},
           AsGiven,
           LF_FAILED,
           kNoFields,
           1},
          {"an input stride short of its row", twice, ShortInputStride, LF_FAILED},
          {"an input of 2^61 bytes", twice, HugeInput, LF_FAILED},
          {"a missing output plane", twice, NoOutputPlane<2>, LF_FAILED, kNoFields, 1},
          {"an output stride short of its row", twice, ShortOutputStride, LF_FAILED, kNoFields, 1}}};
}

const ContractRegistration kRegistration(SuperResolutionContract);

}  // namespace
}  // namespace Lumaforge::test
