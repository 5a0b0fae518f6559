// Deband's contract: I420 from the input into other, 64-byte aligned output
// planes. The dither is plain rounding here, so the random seed of each
// frame does not show in the bytes.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

// Planes shared with the input: the filter does not work in place.
void SamePlanes(VideoPicture*& in, VideoPicture*& out) {
  for (int k = 0; k < 3; ++k) out->planes[k] = in->planes[k], out->strides[k] = in->strides[k];
}
// A luma plane one byte off its 64-byte boundary.
void MisalignedInput(VideoPicture*& in, VideoPicture*&) { in->planes[0] += 1; }

ContractTerms FastDebandContract() {
  return {
      .type = LF_FILTER_FAST_DEBAND,
      .config = RecordBytes(FastDebandConfig{320, 240, 8, 0, 6, LF_I420, 2, 2}),
      .alignment = 64,
      .frames = {Same(LF_I420, 320, 240), Same(LF_I420, 64, 48), Same(LF_I420, 66, 50), Same(LF_I420, 8, 6)},
      .refusals = {{"no input record", Same(LF_I420, 64, 48), NoInput, LF_INVALID_PARAMETER},
                   {"a format other than I420", Same(LF_BGRA, 64, 48), AsGiven, LF_UNSUPPORTED},
                   {"an output of another size", {LF_I420, 64, 48, LF_I420, 32, 48}, AsGiven, LF_NOT_CREATED},
                   {"the output in the input's planes", Same(LF_I420, 64, 48), SamePlanes, LF_NOT_CREATED},
                   {"a misaligned input plane", Same(LF_I420, 64, 48), MisalignedInput, LF_INVALID_PARAMETER},
                   {"a missing chroma plane", Same(LF_I420, 64, 48), NoInputPlane<2>, LF_INVALID_PARAMETER},
                   {"an input stride short of its row", Same(LF_I420, 64, 48), ShortInputStride, LF_INVALID_PARAMETER},
                   {"a picture of 2^61 bytes", Same(LF_I420, 64, 48), HugeInput, LF_INVALID_PARAMETER}}};
}

const ContractRegistration kRegistration(FastDebandContract);

}  // namespace
}  // namespace Lumaforge::test
