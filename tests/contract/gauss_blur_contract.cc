// The Gaussian blur's contract: four-channel, planar and grey pictures
// blurred into the output's planes, and the refusals of unusable records.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractSpec GaussBlurContract() {
  ContractSpec spec;
  spec.type = LF_FILTER_GAUSS_BLUR;
  const float sigma = 2.0f;
  spec.config = RecordBytes(sigma);
  spec.pad = 0;  // rows are addressed by the width
  spec.frames = {
      {LF_BGRA, 64, 48, LF_BGRA, 64, 48},
      {LF_I420, 80, 60, LF_I420, 80, 60},
      {LF_VYUY, 37, 19, LF_VYUY, 37, 19},
      {LF_ABGR, 130, 7, LF_ABGR, 130, 7},
  };
  const ContractFrame bgra{LF_BGRA, 64, 48, LF_BGRA, 64, 48};
  spec.refusals = {
      {"no input record", bgra, NoInput, LF_INVALID_PARAMETER},
      {"no output plane", bgra, NoOutputPlane<0>, LF_INVALID_PARAMETER},
      {"a format it does not blur", {LF_NV12, 64, 48, LF_NV12, 64, 48}, AsGiven, LF_UNSUPPORTED},
  };
  return spec;
}

const ContractRegistration kRegistration(GaussBlurContract);

}  // namespace
}  // namespace Lumaforge::test
