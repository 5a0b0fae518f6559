// The Gaussian blur's contract: four-channel, planar and grey pictures
// blurred into the output's planes, and the refusals of unusable records.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractTerms GaussBlurContract() {
  const ContractFrame bgra = Same(LF_BGRA, 64, 48);
  return {.type = LF_FILTER_GAUSS_BLUR,
          .config = RecordBytes(2.0f),
          .pad = 0,  // rows are addressed by the width
          .frames = {bgra, Same(LF_I420, 80, 60), Same(LF_VYUY, 37, 19), Same(LF_ABGR, 130, 7)},
          .refusals = {{"no input record", bgra, NoInput, LF_INVALID_PARAMETER},
                       {"no output plane", bgra, NoOutputPlane<0>, LF_INVALID_PARAMETER},
                       {"a format it does not blur", Same(LF_NV12, 64, 48), AsGiven, LF_UNSUPPORTED},
                       {"a smaller output", {LF_BGRA, 64, 64, LF_BGRA, 32, 32}, AsGiven, LF_UNSUPPORTED},
                       {"a grey output", {LF_BGRA, 64, 64, 31, 64, 64}, AsGiven, LF_UNSUPPORTED},
                       {"an input of 2^61 bytes", bgra, HugeInput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(GaussBlurContract);

}  // namespace
}  // namespace Lumaforge::test
