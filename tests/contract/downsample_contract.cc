// The downsampler's contract: both buffer modes, every path (packed halving
// and resampling, the planar cascade, four-tap and six-tap steps), and its
// refusals, all answered by Process as -1.
#include "tests/contract/filter_contract.h"

namespace Lumaforge::test {
namespace {

// Packed exact halving, per channel c of pixel (x, y), with p0, p1 the
// pixels 2x and 2x + 1 of row 2y and q0, q1 those of row 2y + 1:
// out = (((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1.
std::vector<uint8_t> PackedHalving(const VideoPicture& in, uint32_t bytesPerPixel) {
  std::vector<uint8_t> out;
  for (uint32_t y = 0; y < in.height / 2; ++y) {
    const uint8_t* top = in.planes[0] + static_cast<size_t>(2 * y) * in.strides[0];
    const uint8_t* bottom = top + in.strides[0];
    for (uint32_t x = 0; x < in.width / 2; ++x) {
      for (uint32_t c = 0; c < bytesPerPixel; ++c) {
        const int p0 = top[2 * x * bytesPerPixel + c], p1 = top[(2 * x + 1) * bytesPerPixel + c];
        const int q0 = bottom[2 * x * bytesPerPixel + c], q1 = bottom[(2 * x + 1) * bytesPerPixel + c];
        out.push_back(static_cast<uint8_t>((((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1));
      }
    }
  }
  return out;
}

void OddOutputHeight(VideoPicture*&, VideoPicture*& out) { out->height = 31; }

ContractTerms DownsampleContract() {
  const auto halving = [](uint32_t k) { return [k](const VideoPicture& in) { return PackedHalving(in, k); }; };
  const ContractFrame i420{LF_I420, 64, 64, LF_I420, 32, 32};
  // Every refusal is answered -1.
  return {.type = LF_FILTER_DOWNSAMPLE,
          .flags = {0, 1},
          // Mode 0 hands back the filter's own planes.
          .writesOutput = [](uint8_t flag) { return flag ? kNoFields : kPlaneFields; },
          .frames = {{LF_BGRA, 36, 36, LF_BGRA, 18, 18, halving(4)},
                     {LF_RGB24, 76, 44, LF_RGB24, 38, 22, halving(3)},
                     {LF_ARGB, 200, 120, LF_ARGB, 120, 80},
                     {LF_I420, 1280, 720, LF_I420, 320, 180},
                     {LF_VYUY, 640, 360, LF_VYUY, 400, 200},
                     {LF_RGBP, 320, 240, LF_RGBP, 160, 120},
                     i420,
                     {LF_RGB24, 96, 64, LF_RGB24, 64, 48}},
          .refusals = {{"no input record", i420, NoInput, LF_FAILED},
                       {"no output record", i420, NoOutput, LF_FAILED},
                       {"a missing chroma plane", i420, NoInputPlane<2>, LF_FAILED},
                       {"equal sizes", Same(LF_I420, 64, 64), AsGiven, LF_FAILED},
                       {"an odd size", {LF_I420, 64, 64, LF_I420, 32, 30}, OddOutputHeight, LF_FAILED},
                       {"a side below 16", {LF_BGRA, 64, 64, LF_BGRA, 14, 32}, AsGiven, LF_FAILED},
                       {"a format it does not scale", {LF_NV12, 64, 64, LF_NV12, 32, 32}, AsGiven, LF_FAILED},
                       {"an output of another format", {LF_I420, 64, 64, LF_RGB24, 32, 32}, AsGiven, LF_FAILED},
                       {"RGB24 into I420 planes", {LF_RGB24, 64, 64, LF_I420, 32, 32}, AsGiven, LF_FAILED},
                       {"an input stride short of its row", i420, ShortInputStride, LF_FAILED},
                       {"a missing output chroma plane", i420, NoOutputPlane<1>, LF_FAILED, kNoFields, 1},
                       {"an output stride short of its row", i420, ShortOutputStride, LF_FAILED, kNoFields, 1},
                       {"an input of 2^61 bytes", i420, HugeInput, LF_FAILED}}};
}

const ContractRegistration kRegistration(DownsampleContract);

}  // namespace
}  // namespace Lumaforge::test
