// The downsampler through the public interface: packed halving rounds by
// its formula at every processor level, and a frame scales the same way
// whatever format the filter saw before.
#include <gtest/gtest.h>

#include <array>
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

// An I420 picture whose planes are separate heap blocks of exactly the
// given strides, each starting on a 32-byte boundary.
class StridedI420 {
 public:
  StridedI420(uint32_t width, uint32_t height, std::array<uint32_t, 3> strides) {
    picture.format = LF_I420;
    picture.width = width;
    picture.height = height;
    for (int k = 0; k < 3; ++k) {
      const uint32_t rows = k ? height / 2 : height;
      memory_[k].assign(static_cast<size_t>(strides[k]) * rows + 32, 0);
      const auto address = reinterpret_cast<uintptr_t>(memory_[k].data());
      picture.planes[k] = memory_[k].data() + ((32 - address % 32) % 32);
      picture.strides[k] = strides[k];
    }
  }
  StridedI420(const StridedI420&) = delete;
  StridedI420& operator=(const StridedI420&) = delete;
  void FillRandom(uint32_t seed) { FillPlanesRandom(memory_, seed); }
  // The visible rows of every plane.
  std::vector<uint8_t> Rows() const {
    std::vector<uint8_t> bytes;
    for (int k = 0; k < 3; ++k) {
      const uint32_t rows = k ? picture.height / 2 : picture.height, width = k ? picture.width / 2 : picture.width;
      for (uint32_t y = 0; y < rows; ++y) {
        const uint8_t* row = picture.planes[k] + static_cast<size_t>(y) * picture.strides[k];
        bytes.insert(bytes.end(), row, row + width);
      }
    }
    return bytes;
  }
  std::vector<uint8_t> AllBytes() const {
    std::vector<uint8_t> bytes;
    for (const auto& plane : memory_) bytes.insert(bytes.end(), plane.begin(), plane.end());
    return bytes;
  }
  VideoPicture picture = {};

 private:
  std::vector<uint8_t> memory_[3];
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

// Strides the filter must copy into its own pictures (not multiples of 16)
// and strides it uses in place.
constexpr std::array<uint32_t, 3> kCopiedIn = {66, 34, 34}, kCopiedOut = {34, 18, 18};
constexpr std::array<uint32_t, 3> kInPlaceIn = {64, 32, 32}, kInPlaceOut = {32, 16, 16};

// What a filter that has seen nothing else makes of a frame.
std::vector<uint8_t> FreshResult(const StridedI420& in, uint8_t callerBuffers) {
  Downsampler filter(callerBuffers);
  StridedI420 out(32, 32, kCopiedOut);
  VideoPicture input = in.picture;
  EXPECT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &input, &out.picture), LF_OK);
  return out.Rows();
}

// Frame 1 is copied into the filter's own pictures, frame 2 is used in
// place, frame 3 is copied again; each has its own heap blocks.
struct ThreeFrames {
  ThreeFrames() {
    in[0].FillRandom(1);
    in[1].FillRandom(2);
    in[2].FillRandom(3);
  }
  StridedI420 in[3] = {{64, 64, kCopiedIn}, {64, 64, kInPlaceIn}, {64, 64, kCopiedIn}};
  StridedI420 out[3] = {{32, 32, kCopiedOut}, {32, 32, kInPlaceOut}, {32, 32, kCopiedOut}};
};

// A frame the filter works on in place must leave no pointer behind: the
// next frame that needs the filter's own pictures neither reads nor writes
// the earlier frame's planes (a host may have freed them).
TEST(Downsample, AFrameNeverReachesThePlanesOfAnEarlierFrame) {
  Downsampler filter(1);
  ThreeFrames f;
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[0].picture, &f.out[0].picture), LF_OK);
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[1].picture, &f.out[1].picture), LF_OK);
  const std::vector<uint8_t> inBytes = f.in[1].AllBytes(), outBytes = f.out[1].AllBytes();
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[2].picture, &f.out[2].picture), LF_OK);
  EXPECT_EQ(f.in[1].AllBytes(), inBytes);
  EXPECT_EQ(f.out[1].AllBytes(), outBytes);
  EXPECT_EQ(f.out[2].Rows(), FreshResult(f.in[2], 1));
}

// Leaving caller-buffer mode hands back the filter's own planes, never the
// planes of the last frame the filter wrote in place.
TEST(Downsample, LeavingCallerBufferModeHandsBackTheFiltersOwnPlanes) {
  Downsampler filter(1);
  ThreeFrames f;
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[0].picture, &f.out[0].picture), LF_OK);
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[1].picture, &f.out[1].picture), LF_OK);
  const std::vector<uint8_t> inBytes = f.in[1].AllBytes(), outBytes = f.out[1].AllBytes();
  ASSERT_EQ(filter.lf->Init(LF_FILTER_DOWNSAMPLE, nullptr, 0), LF_OK);
  VideoPicture handedBack = f.out[2].picture;
  ASSERT_EQ(filter.lf->Process(LF_FILTER_DOWNSAMPLE, &f.in[2].picture, &handedBack), LF_OK);
  for (int k = 0; k < 3; ++k) EXPECT_NE(handedBack.planes[k], f.out[1].picture.planes[k]) << "plane " << k;
  EXPECT_EQ(f.in[1].AllBytes(), inBytes);
  EXPECT_EQ(f.out[1].AllBytes(), outBytes);
}

}  // namespace
}  // namespace Lumaforge::test
