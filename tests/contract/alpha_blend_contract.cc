// The alpha blender's contract: the input mixed into the output in place
// under an alpha map kept from Init, for 32-bit RGB and planar 4:2:0.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

ContractSpec AlphaBlendContract() {
  ContractSpec spec;
  spec.type = LF_FILTER_ALPHA_BLEND;
  // The map is indexed by the output's width, rows packed: one map covers
  // every picture up to its size.
  spec.config.resize(200 * 120);
  uint32_t seed = 3;
  for (uint8_t& a : spec.config) {
    seed = seed * 1664525u + 1013904223u;
    a = static_cast<uint8_t>(seed >> 24);
  }
  spec.pad = 0;  // rows are addressed by the width
  spec.frames = {
      {LF_BGRA, 64, 48, LF_BGRA, 64, 48},
      {LF_I420, 200, 120, LF_I420, 200, 120},
      {LF_YV12, 34, 17, LF_YV12, 34, 17},
      {LF_ARGB, 3, 5, LF_ARGB, 3, 5},
  };
  const ContractFrame bgra{LF_BGRA, 64, 48, LF_BGRA, 64, 48};
  spec.refusals = {
      {"no input record", bgra, NoInput, LF_INVALID_PARAMETER},
      {"no output record", bgra, NoOutput, LF_INVALID_PARAMETER},
      {"a format it does not blend", {LF_NV12, 64, 48, LF_NV12, 64, 48}, AsGiven, LF_UNSUPPORTED},
      {"a bottom-up output", bgra, [](VideoPicture*&, VideoPicture*& out) { out->format |= LF_FORMAT_BOTTOM_UP; },
       LF_UNSUPPORTED},
  };
  return spec;
}

const ContractRegistration kRegistration(AlphaBlendContract);

}  // namespace
}  // namespace Lumaforge::test
