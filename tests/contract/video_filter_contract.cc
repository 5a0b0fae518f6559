// The video filter's contract: effects change the I420 input in place; a
// new size re-initialises the filter with the same effect.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractSpec VideoFilterContract() {
  ContractSpec spec;
  spec.type = LF_FILTER_VIDEO_FILTER;
  const VideoFilterConfig config{64, 48, LF_I420, LF_EFFECT_SEPIA};
  spec.config = RecordBytes(config);
  spec.resultInInput = true;
  spec.frames = {
      {LF_I420, 64, 48, LF_I420, 16, 16},
      {LF_I420, 320, 240, LF_I420, 16, 16},
      {LF_I420, 66, 50, LF_I420, 16, 16},
  };
  const ContractFrame i420{LF_I420, 64, 48, LF_I420, 16, 16};
  spec.refusals = {
      {"no input record", i420, NoInput, LF_INVALID_PARAMETER},
      {"a format other than I420", {LF_BGRA, 64, 48, LF_BGRA, 16, 16}, AsGiven, LF_UNSUPPORTED},
      {"a missing chroma plane", i420, NoInputPlane<2>, LF_INVALID_PARAMETER},
  };
  return spec;
}

const ContractRegistration kRegistration(VideoFilterContract);

}  // namespace
}  // namespace Lumaforge::test
