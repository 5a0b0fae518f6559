// The alpha blender's contract: the input mixed into the output in place
// under an alpha map kept from Init, for 32-bit RGB and planar 4:2:0.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

void BottomUpOutput(VideoPicture*&, VideoPicture*& out) { out->format |= LF_FORMAT_BOTTOM_UP; }

ContractTerms AlphaBlendContract() {
  // The map is indexed by the output's width, rows packed: one map covers
  // every picture up to its size.
  std::vector<uint8_t> alphaMap(200 * 120);
  uint32_t seed = 3;
  for (uint8_t& a : alphaMap) {
    seed = seed * 1664525u + 1013904223u;
    a = static_cast<uint8_t>(seed >> 24);
  }
  const ContractFrame bgra = Same(LF_BGRA, 64, 48);
  return {.type = LF_FILTER_ALPHA_BLEND,
          .config = alphaMap,
          .pad = 0,  // rows are addressed by the width
          .frames = {bgra, Same(LF_I420, 200, 120), Same(LF_YV12, 34, 17), Same(LF_ARGB, 3, 5)},
          .refusals = {{"no input record", bgra, NoInput, LF_INVALID_PARAMETER},
                       {"no output record", bgra, NoOutput, LF_INVALID_PARAMETER},
                       {"a format it does not blend", Same(LF_NV12, 64, 48), AsGiven, LF_UNSUPPORTED},
                       {"a bottom-up output", bgra, BottomUpOutput, LF_UNSUPPORTED},
                       {"a missing input chroma plane", Same(LF_I420, 64, 48), NoInputPlane<2>, LF_INVALID_PARAMETER},
                       {"a missing output plane", bgra, NoOutputPlane<0>, LF_INVALID_PARAMETER},
                       {"an output of 2^61 bytes", bgra, HugeOutput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(AlphaBlendContract);

}  // namespace
}  // namespace Lumaforge::test
