// `lumaforge run` gives the bytes the library gives when called directly.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tools/media_files.h"
#include "tests/tools/tool_process.h"

namespace Lumaforge::test {
namespace {

constexpr uint32_t kWidth = 64, kHeight = 48;
constexpr size_t kI420Bytes = kWidth * kHeight * 3 / 2;

std::vector<Bytes> RandomClip(int frames) {
  std::vector<Bytes> clip;
  for (int i = 0; i < frames; ++i) clip.push_back(RandomBytes(kI420Bytes, 100 + i));
  return clip;
}

Bytes Concatenated(const std::vector<Bytes>& frames) {
  Bytes all;
  for (const Bytes& frame : frames) all.insert(all.end(), frame.begin(), frame.end());
  return all;
}

Bytes Convert(Bytes in, uint32_t from, uint32_t to) {
  DirectLibrary lf;
  lf->Init(LF_FILTER_CSC, nullptr, 0);
  Bytes out(to == LF_I420 ? kI420Bytes : kWidth * kHeight * 4);
  VideoPicture input = PictureOver(in, from, kWidth, kHeight), output = PictureOver(out, to, kWidth, kHeight);
  EXPECT_EQ(lf->Process(LF_FILTER_CSC, &input, &output), LF_OK);
  return out;
}

using RunTest = ToolTest;

TEST_F(RunTest, Y4mToPngAndBackMatchTheLibraryConverter) {
  const std::vector<Bytes> clip = RandomClip(3);
  WriteY4m(Path("in.y4m"), kWidth, kHeight, clip);
  ToolResult result = Run({"run", "csc", "--param", "format=bgra", "in.y4m", "out.png"});
  ASSERT_EQ(result.exitCode, 0) << result.err;

  for (int i = 0; i < 3; ++i) {
    const Image png = LoadPng(Path("out-000" + std::to_string(i + 1) + ".png"));
    ASSERT_EQ(png.width, int{kWidth});
    ASSERT_EQ(png.height, int{kHeight});
    const Bytes bgra = Convert(clip[i], LF_I420, LF_BGRA);
    for (size_t p = 0; p < bgra.size(); p += 4) {
      const uint8_t expected[4] = {bgra[p + 2], bgra[p + 1], bgra[p], bgra[p + 3]};
      ASSERT_TRUE(std::equal(expected, expected + 4, png.rgba.begin() + static_cast<ptrdiff_t>(p)))
          << "frame " << i + 1 << " pixel " << p / 4;
    }
  }

  result = Run({"run", "csc", "--param", "format=i420", "out-0002.png", "back.y4m"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<Bytes> back = ReadY4mFrames(Path("back.y4m"), kWidth, kHeight);
  ASSERT_EQ(back.size(), 1u);
  EXPECT_EQ(back[0], Convert(LoadPng(Path("out-0002.png")).rgba, LF_RGBA, LF_I420));
}

TEST_F(RunTest, CropCopiesTheRectangleTheLibraryChooses) {
  const std::vector<Bytes> clip = RandomClip(3);
  WriteFile(Path("in.yuv"), Concatenated(clip));
  const ToolResult result = Run({"run", "crop", "--param", "left=11", "--param", "top=7", "--param", "width=31",
                                 "--param", "height=21", "in.yuv", "out.yuv", "--size", "64x48", "--format", "i420"});
  ASSERT_EQ(result.exitCode, 0) << result.err;

  Bytes expected;
  DirectLibrary lf;
  CropConfig config = {1, 7, 11, 31, 21};
  ASSERT_EQ(lf->Init(LF_FILTER_CROP, &config, 0), LF_OK);
  for (Bytes frame : clip) {
    VideoPicture input = PictureOver(frame, LF_I420, kWidth, kHeight), output = {};
    ASSERT_EQ(lf->Process(LF_FILTER_CROP, &input, &output), LF_OK);
    for (int k = 0; k < 3; ++k) {
      const uint32_t width = k ? output.width / 2 : output.width, height = k ? output.height / 2 : output.height;
      for (uint32_t row = 0; row < height; ++row) {
        const uint8_t* line = output.planes[k] + size_t{row} * output.strides[k];
        expected.insert(expected.end(), line, line + width);
      }
    }
  }
  EXPECT_EQ(ReadFile(Path("out.yuv")), expected);
}

TEST_F(RunTest, DownsampleOfRawBgraMatchesTheLibrary) {
  const Bytes frame = RandomBytes(kWidth * kHeight * 4, 7);
  WriteFile(Path("in.bgra"), frame);
  const ToolResult result = Run({"run", "downsample", "--param", "width=40", "--param", "height=30", "in.bgra",
                                 "out.bgra", "--size", "64x48", "--format", "bgra"});
  ASSERT_EQ(result.exitCode, 0) << result.err;

  DirectLibrary lf;
  ASSERT_EQ(lf->Init(LF_FILTER_DOWNSAMPLE, nullptr, 1), LF_OK);
  Bytes in = frame, out(40 * 30 * 4);
  VideoPicture input = PictureOver(in, LF_BGRA, kWidth, kHeight), output = PictureOver(out, LF_BGRA, 40, 30);
  ASSERT_EQ(lf->Process(LF_FILTER_DOWNSAMPLE, &input, &output), LF_OK);
  EXPECT_EQ(ReadFile(Path("out.bgra")), out);
}

TEST_F(RunTest, BlurOfAY4mClipMatchesTheLibrary) {
  const std::vector<Bytes> clip = RandomClip(2);
  WriteY4m(Path("in.y4m"), kWidth, kHeight, clip);
  const ToolResult result = Run({"run", "blur", "--param", "sigma=2.5", "in.y4m", "out.yuv"});
  ASSERT_EQ(result.exitCode, 0) << result.err;

  DirectLibrary lf;
  float sigma = 2.5f;
  ASSERT_EQ(lf->Init(LF_FILTER_GAUSS_BLUR, &sigma, 0), LF_OK);
  std::vector<Bytes> expected;
  for (Bytes frame : clip) {
    Bytes out(kI420Bytes);
    VideoPicture input = PictureOver(frame, LF_I420, kWidth, kHeight),
                 output = PictureOver(out, LF_I420, kWidth, kHeight);
    ASSERT_EQ(lf->Process(LF_FILTER_GAUSS_BLUR, &input, &output), LF_OK);
    expected.push_back(out);
  }
  EXPECT_EQ(ReadFile(Path("out.yuv")), Concatenated(expected));
}

}  // namespace
}  // namespace Lumaforge::test
