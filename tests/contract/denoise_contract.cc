// Denoise's contract: I420 and YV12 pictures denoised in place, each frame
// against the output before it; a new size re-initialises the filter.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractTerms DenoiseContract() {
  // The output record is not used; it only has to exist.
  const auto frame = [](uint32_t format, uint32_t width, uint32_t height) {
    return ContractFrame{format, width, height, LF_I420, 16, 16};
  };
  return {
      .type = LF_FILTER_DENOISE,
      .config = RecordBytes(DenoiseConfig{64, 48, LF_I420, 2}),
      .resultInInput = true,
      .frames = {frame(LF_I420, 64, 48), frame(LF_YV12, 320, 240), frame(LF_I420, 66, 50), frame(LF_I420, 8, 6)},
      .recursive = true,
      .refusals = {{"no input record", frame(LF_I420, 64, 48), NoInput, LF_INVALID_PARAMETER},
                   {"a format other than I420 and YV12", frame(LF_BGRA, 64, 48), AsGiven, LF_UNSUPPORTED},
                   {"a missing chroma plane", frame(LF_I420, 64, 48), NoInputPlane<2>, LF_INVALID_PARAMETER},
                   {"an input stride short of its row", frame(LF_I420, 64, 48), ShortInputStride, LF_INVALID_PARAMETER},
                   {"a picture of 2^61 bytes", frame(LF_I420, 64, 48), HugeInput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(DenoiseContract);

}  // namespace
}  // namespace Lumaforge::test
