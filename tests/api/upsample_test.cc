// The upsampler through the public interface: I420 is libyuv's three-plane
// scaler with the configured mode, unknown modes mean linear, and a grey
// picture that does not get taller is left as it was.
#include <gtest/gtest.h>
#include <libyuv/scale.h>

#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

class Upsampler {
 public:
  explicit Upsampler(uint32_t mode) {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    lf->Init(LF_FILTER_UPSAMPLE, &mode, 0);
  }
  ~Upsampler() { DestroyLumaforge(lf); }
  Upsampler(const Upsampler&) = delete;
  Upsampler& operator=(const Upsampler&) = delete;
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_UPSAMPLE, &in.picture, &out.picture);
  }
  ILumaforge* lf = nullptr;
};

TEST(Upsample, I420IsLibyuvsThreePlaneScalerWithTheConfiguredMode) {
  OwnedPicture in(LF_I420, 640, 360);
  in.FillRandom(21);
  for (const uint32_t mode : {LF_UPSAMPLE_LINEAR, LF_UPSAMPLE_BILINEAR, LF_UPSAMPLE_BOX}) {
    OwnedPicture out(LF_I420, 1280, 720), expected(LF_I420, 1280, 720);
    ASSERT_EQ(Upsampler(mode).Run(in, out), LF_OK);
    const VideoPicture& s = in.picture;
    VideoPicture& d = expected.picture;
    // The chroma planes go from 320x180 to 640x360.
    libyuv::I420Scale(s.planes[0], s.strides[0], s.planes[1], s.strides[1], s.planes[2], s.strides[2], 640, 360,
                      d.planes[0], d.strides[0], d.planes[1], d.strides[1], d.planes[2], d.strides[2], 1280, 720,
                      static_cast<libyuv::FilterMode>(mode));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(out.memory[k], expected.memory[k]) << "mode " << mode << " plane " << k;
  }
}

TEST(Upsample, ModesOtherThanBilinearAndBoxMeanLinear) {
  OwnedPicture in(LF_I420, 64, 48);
  in.FillRandom(7);
  OwnedPicture linear(LF_I420, 128, 96), seven(LF_I420, 128, 96), bilinear(LF_I420, 128, 96);
  ASSERT_EQ(Upsampler(LF_UPSAMPLE_LINEAR).Run(in, linear), LF_OK);
  ASSERT_EQ(Upsampler(7).Run(in, seven), LF_OK);
  ASSERT_EQ(Upsampler(LF_UPSAMPLE_BILINEAR).Run(in, bilinear), LF_OK);
  EXPECT_EQ(seven.memory[0], linear.memory[0]);
  EXPECT_NE(bilinear.memory[0], linear.memory[0]);
}

TEST(Upsample, AGreyPictureIsScaledOnlyWhenItGetsTaller) {
  OwnedPicture in(LF_VYUY, 40, 30);
  in.FillRandom(3);
  OwnedPicture wider(LF_VYUY, 100, 30);
  wider.Fill(77);
  const std::vector<uint8_t> before = wider.memory[0];
  ASSERT_EQ(Upsampler(LF_UPSAMPLE_BILINEAR).Run(in, wider), LF_OK);
  EXPECT_EQ(wider.memory[0], before);

  OwnedPicture taller(LF_VYUY, 100, 75), expected(LF_VYUY, 100, 75);
  ASSERT_EQ(Upsampler(LF_UPSAMPLE_BILINEAR).Run(in, taller), LF_OK);
  libyuv::ScalePlane(in.picture.planes[0], in.picture.strides[0], 40, 30, expected.picture.planes[0],
                     expected.picture.strides[0], 100, 75, libyuv::kFilterBilinear);
  EXPECT_EQ(taller.memory[0], expected.memory[0]);
}

TEST(Upsample, OtherFormatsAreAnsweredWithTheUpsamplingCode) {
  OwnedPicture in(LF_NV12, 64, 48), out(LF_NV12, 128, 96);
  EXPECT_EQ(Upsampler(LF_UPSAMPLE_LINEAR).Run(in, out), LF_UPSAMPLE_FORMAT);
}

}  // namespace
}  // namespace Lumaforge::test
