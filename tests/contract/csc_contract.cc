// The colour converter's contract: conversions between the format groups,
// a mirrored pair, and the refusals of records it cannot use.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

void OutputFormatZero(VideoPicture*&, VideoPicture*& out) { out->format = 0; }

ContractTerms CscContract() {
  const ContractFrame i420{LF_I420, 32, 16, LF_BGRA, 32, 16};
  return {.type = LF_FILTER_CSC,
          .frames = {{LF_I420, 64, 48, LF_BGRA, 64, 48},
                     {LF_BGRA, 66, 34, LF_I420, 66, 34},
                     {LF_NV12, 98, 6, LF_RGB24, 98, 6},
                     {LF_YUY2, 40, 20, LF_NV21, 40, 20},
                     {LF_RGBP, 34, 18, LF_YVYU, 34, 18},
                     {LF_I420 | LF_FORMAT_BOTTOM_UP, 130, 66, LF_ABGR, 130, 66},
                     {LF_I440, 32, 16, LF_I420, 32, 16},
                     {LF_RGB24, 48, 16, LF_BGRP, 48, 16}},
          .refusals = {{"no input record", i420, NoInput, LF_INVALID_PARAMETER},
                       {"no output record", i420, NoOutput, LF_INVALID_PARAMETER},
                       {"a missing input plane", i420, NoInputPlane<1>, LF_INVALID_PARAMETER},
                       {"an output format outside the codes", i420, OutputFormatZero, LF_UNSUPPORTED},
                       {"a pair without a conversion", {LF_I440, 32, 16, LF_BGRA, 32, 16}, AsGiven, LF_UNSUPPORTED},
                       {"an input stride short of its row", i420, ShortInputStride, LF_INVALID_PARAMETER},
                       {"an input of 2^61 bytes", i420, HugeInput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(CscContract);

}  // namespace
}  // namespace Lumaforge::test
