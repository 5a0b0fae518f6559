// The downsampler through the public interface: packed halving rounds by
// its formula at every processor level, and a frame scales the same way
// whatever format the filter saw before.
#include <gtest/gtest.h>

#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

class Downsampler {
 public:
  explicit Downsampler(uint8_t callerBuffers) {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    lf->Init(LF_FILTER_DOWNSAMPLE, nullptr, callerBuffers);
  }
  ~Downsampler() { DestroyLumaforge(lf); }
  Downsampler(const Downsampler&) = delete;
  Downsampler& operator=(const Downsampler&) = delete;
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_DOWNSAMPLE, &in.picture, &out.picture);
  }
  ILumaforge* lf = nullptr;
};

// Every row of every plane of a picture, padding left out.
std::vector<uint8_t> Rows(OwnedPicture& p) {
  const PlaneLayout layout = LayoutOf(p.picture.format, FormatReading::kPlanes, p.picture.width, p.picture.height);
  std::vector<uint8_t> bytes;
  for (int k = 0; k < layout.planes; ++k) {
    for (uint32_t y = 0; y < layout.plane[k].height; ++y) {
      for (uint32_t x = 0; x < layout.plane[k].rowBytes; ++x) bytes.push_back(p.At(k, x, y));
    }
  }
  return bytes;
}

// Per channel, the two rows of each column are averaged first, then the two
// columns: out = (((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1.
TEST(Downsample, PackedHalvingAveragesRowsBeforeColumnsAtEveryLevel) {
  for (const uint32_t format : {LF_BGRA, LF_RGB24}) {
    const uint32_t k = format == LF_BGRA ? 4 : 3;
    OwnedPicture in(format, 36, 36);
    in.FillRandom(36 + k);
    std::vector<uint8_t> expected;
    for (uint32_t y = 0; y < 18; ++y) {
      for (uint32_t x = 0; x < 18 * k; ++x) {
        const uint32_t left = 2 * (x / k) * k + x % k;
        const int p0 = in.At(0, left, 2 * y), p1 = in.At(0, left + k, 2 * y);
        const int q0 = in.At(0, left, 2 * y + 1), q1 = in.At(0, left + k, 2 * y + 1);
        expected.push_back(static_cast<uint8_t>((((p0 + q0 + 1) >> 1) + ((p1 + q1 + 1) >> 1) + 1) >> 1));
      }
    }
    ForEachCpuLevel([&](const CpuLevel& level) {
      OwnedPicture out(format, 18, 18);
      Downsampler filter(1);
      ASSERT_EQ(filter.Run(in, out), LF_OK);
      EXPECT_EQ(Rows(out), expected) << "format " << format << " at " << level.name;
    });
  }
}

// The planes of the halving cascade must fit the frame at hand, not the
// first frame the filter saw.
TEST(Downsample, AFrameScalesTheSameAfterFramesOfAnotherFormat) {
  OwnedPicture i420(LF_I420, 1280, 720);
  i420.FillRandom(5);
  OwnedPicture fresh(LF_I420, 320, 180);
  ASSERT_EQ(Downsampler(1).Run(i420, fresh), LF_OK);

  Downsampler shared(1);
  OwnedPicture bgra(LF_BGRA, 1280, 720), bgraOut(LF_BGRA, 640, 360);
  ASSERT_EQ(shared.Run(bgra, bgraOut), LF_OK);
  OwnedPicture after(LF_I420, 320, 180);
  ASSERT_EQ(shared.Run(i420, after), LF_OK);
  EXPECT_EQ(Rows(after), Rows(fresh));
}

}  // namespace
}  // namespace Lumaforge::test
