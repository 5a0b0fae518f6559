// The downsampling filter: path choices checked against straightforward
// reference scalers, rejections with their log lines, the buffer-handing
// modes, and equal bytes at every processor level.
#include "scaling/downsampling.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/cpu_features.h"
#include "scaling/downsample_taps.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge {
namespace {

using test::OwnedPicture;

// The downscaler takes RGBP as three planes with their own pointers.
void SplitPlanarRgb(OwnedPicture& p) {
  if ((p.picture.format & LF_FORMAT_CODE_MASK) != LF_RGBP) return;
  for (int k = 1; k < 3; ++k) {
    p.picture.planes[k] = p.picture.planes[0] + static_cast<size_t>(k) * p.picture.strides[0] * p.picture.height;
    p.picture.strides[k] = p.picture.strides[0];
  }
}

std::vector<std::string> g_lines;
int Capture(uint64_t, int32_t, const char* text) {
  g_lines.push_back(text);
  return 0;
}

// A plane as plain numbers.
struct Plane {
  int w, h;
  std::vector<int> v;
  int At(int x, int y) const { return v[static_cast<size_t>(y) * w + x]; }
};

uint8_t Clamp6(int sum) {
  const int v = (32 + sum) >> 6;
  return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

int ClampIndex(int i, int n) { return i < 0 ? 0 : (i > n - 1 ? n - 1 : i); }

Plane ReadPlane(OwnedPicture& p, int plane, int w, int h) {
  Plane out{w, h, {}};
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) out.v.push_back(p.At(plane, x, y));
  }
  return out;
}

Plane ReadPlane(const VideoPicture& p, int plane, int w, int h) {
  Plane out{w, h, {}};
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) out.v.push_back(p.planes[plane][static_cast<size_t>(y) * p.strides[plane] + x]);
  }
  return out;
}

// Six-tap half-band halving with edge replication.
Plane HalfBand(const Plane& s) {
  const int taps[6] = {-1, 8, 25, 25, 8, -1};
  Plane mid{s.w, s.h / 2, {}};
  for (int j = 0; j < mid.h; ++j) {
    for (int x = 0; x < s.w; ++x) {
      int sum = 0;
      for (int k = 0; k < 6; ++k) sum += s.At(x, ClampIndex(2 * j - 2 + k, s.h)) * taps[5 - k];
      mid.v.push_back(Clamp6(sum));
    }
  }
  Plane out{s.w / 2, s.h / 2, {}};
  for (int j = 0; j < out.h; ++j) {
    for (int i = 0; i < out.w; ++i) {
      int sum = 0;
      for (int k = 0; k < 6; ++k) sum += mid.At(ClampIndex(2 * i - 2 + k, s.w), j) * taps[5 - k];
      out.v.push_back(Clamp6(sum));
    }
  }
  return out;
}

// The four-tap phase filter with the Lanczos-2 table (no special ratio).
Plane FourTap(const Plane& s, int w, int h) {
  int8_t table[64][4];
  MakeFourTapPhaseTable(table);
  const int stepY = static_cast<int>((h / 2 + (static_cast<int64_t>(s.h) << 16)) / h);
  const int stepX = static_cast<int>((w / 2 + (static_cast<int64_t>(s.w) << 16)) / w);
  Plane out{w, h, {}};
  int posY = (stepY >> 1) - 32768;
  for (int r = 0; r < h; ++r, posY += stepY) {
    const int8_t* ty = table[(posY >> 10) & 63];
    std::vector<int> line(s.w);
    for (int x = 0; x < s.w; ++x) {
      int sum = 0;
      for (int k = 0; k < 4; ++k) sum += ty[k] * s.At(x, ClampIndex((posY >> 16) - 1 + k, s.h));
      line[x] = Clamp6(sum);
    }
    int posX = (stepX >> 1) - 32768;
    for (int i = 0; i < w; ++i, posX += stepX) {
      const int8_t* tx = table[(posX >> 10) & 63];
      int sum = 0;
      for (int k = 0; k < 4; ++k) sum += tx[k] * line[ClampIndex((posX >> 16) - 1 + k, s.w)];
      out.v.push_back(Clamp6(sum));
    }
  }
  return out;
}

Plane Quarter(const Plane& s) {
  Plane out{s.w / 4, s.h / 4, {}};
  for (int y = 0; y < out.h; ++y) {
    for (int x = 0; x < out.w; ++x) {
      const int a = s.At(4 * x, 4 * y), b = s.At(4 * x + 1, 4 * y), c = s.At(4 * x, 4 * y + 1),
                d = s.At(4 * x + 1, 4 * y + 1);
      out.v.push_back((((c + d + 1) >> 1) + ((a + b + 1) >> 1) + 1) >> 1);
    }
  }
  return out;
}

class Downsampler {
 public:
  explicit Downsampler(uint8_t callerBuffers = 0, uint32_t features = DetectCpuFeatures()) : filter(features) {
    filter.GetLogger()->SetCallback(Capture);
    filter.Init(nullptr, callerBuffers);
    g_lines.clear();
  }
  CDownsampling filter;
};

// Scales a random grey (31) picture and returns input and output planes.
std::pair<Plane, Plane> ScaleGrey(int W, int H, int w, int h) {
  OwnedPicture in(LF_VYUY, W, H);
  in.FillRandom(W * 7 + h);
  OwnedPicture out(LF_VYUY, w, h);
  Downsampler d;
  EXPECT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK);
  return {ReadPlane(in, 0, W, H), ReadPlane(out.picture, 0, w, h)};
}

TEST(DownsamplingPaths, ExactHalvingIsOneSixTapStep) {
  auto [in, out] = ScaleGrey(1280, 720, 640, 360);
  EXPECT_EQ(out.v, HalfBand(in).v);
}

TEST(DownsamplingPaths, OtherRatiosAreOneFourTapStepFromTheInput) {
  auto [in, out] = ScaleGrey(1920, 1080, 1000, 562);
  EXPECT_EQ(out.v, FourTap(in, 1000, 562).v);
}

TEST(DownsamplingPaths, LargeRatiosHalveFirst) {
  // 1920x1080 -> 480x270: two halvings, the second straight into the output.
  auto [in, out] = ScaleGrey(1920, 1080, 480, 270);
  EXPECT_EQ(out.v, HalfBand(HalfBand(in)).v);
  // 3840x2160 -> 1920x1080: one halving.
  auto [big, half] = ScaleGrey(3840, 2160, 1920, 1080);
  EXPECT_EQ(half.v, HalfBand(big).v);
  // 1920x1080 -> 400x200: halvings to 960x540 and 480x270, then four-tap.
  auto [src, small] = ScaleGrey(1920, 1080, 400, 200);
  EXPECT_EQ(small.v, FourTap(HalfBand(HalfBand(src)), 400, 200).v);
}

TEST(DownsamplingPaths, QuarterOnlyPastTheSamplePlanes) {
  auto [in, out] = ScaleGrey(3856, 2176, 964, 544);  // half width 1928 > 1920: direct
  EXPECT_EQ(out.v, Quarter(in).v);
  auto [in2, out2] = ScaleGrey(3840, 2176, 960, 544);  // fits: two halvings
  EXPECT_EQ(out2.v, HalfBand(HalfBand(in2)).v);
}

TEST(DownsamplingPaths, I420ChromaFollowsAtHalfSize) {
  OwnedPicture in(LF_I420, 1280, 720), out(LF_I420, 852, 480);
  in.FillRandom(5);
  Downsampler d(1);
  ASSERT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK);
  EXPECT_EQ(ReadPlane(out, 0, 852, 480).v, FourTap(ReadPlane(in, 0, 1280, 720), 852, 480).v);
  EXPECT_EQ(ReadPlane(out, 2, 426, 240).v, FourTap(ReadPlane(in, 2, 640, 360), 426, 240).v);
}

TEST(DownsamplingRejections, EveryCheckWithItsMessage) {
  Downsampler d;
  OwnedPicture in(LF_I420, 64, 64), out(LF_I420, 32, 32);
  EXPECT_EQ(d.filter.Process(nullptr, &out.picture), LF_FAILED);
  EXPECT_EQ(g_lines.back().substr(g_lines.back().find("CDownsampling")),
            "CDownsampling::InitBuffer(), input or output picture pointer is null");
  VideoPicture noData = in.picture;
  noData.planes[0] = nullptr;
  EXPECT_EQ(d.filter.Process(&noData, &out.picture), LF_FAILED);
  EXPECT_NE(g_lines.back().find("input data pointer is null."), std::string::npos);

  auto expectRejected = [&](uint32_t W, uint32_t H, uint32_t w, uint32_t h, const std::string& text) {
    OwnedPicture a(LF_I420, W ? W : 2, H ? H : 2), b(LF_I420, w ? w : 2, h ? h : 2);
    a.picture.width = W;
    a.picture.height = H;
    b.picture.width = w;
    b.picture.height = h;
    g_lines.clear();
    EXPECT_EQ(d.filter.Process(&a.picture, &b.picture), LF_FAILED) << text;
    ASSERT_EQ(g_lines.size(), 1u) << text;
    EXPECT_NE(g_lines[0].find(", ERROR: " + text), std::string::npos) << g_lines[0];
  };
  expectRejected(0, 64, 32, 32, "CDownsampling::InitBuffer(), input or output frame size is 0.");
  expectRejected(64, 63, 32, 32,
                 "CDownsampling::InitBuffer(), odd frame size is not supported. inframe=64x63, outframe=32x32");
  expectRejected(64, 64, 14, 32,
                 "CDownsampling::InitBuffer(), width or height less than 16. inframe=64x64, outframe=14x32");
  expectRejected(64, 64, 64, 64,
                 "CDownsampling::InitBuffer(), unsupported downsample ratio from (64x64) to (64x64), input width or "
                 "height less then output.");
  expectRejected(64, 64, 96, 32,
                 "CDownsampling::InitBuffer(), unsupported downsample ratio from (64x64) to (96x32), input width or "
                 "height less then output.");

  // Formats outside the filter's list fail silently.
  OwnedPicture nv12(LF_NV12, 64, 64), nv12Out(LF_NV12, 32, 32);
  g_lines.clear();
  EXPECT_EQ(d.filter.Process(&nv12.picture, &nv12Out.picture), LF_FAILED);
  EXPECT_TRUE(g_lines.empty());
}

TEST(DownsamplingBuffers, DefaultModeHandsBackTheFiltersBuffer) {
  Downsampler d(0);
  OwnedPicture in(LF_BGRA, 64, 32), out(LF_BGRA, 32, 16);
  in.FillRandom(1);
  uint8_t* callerPlane = out.picture.planes[0];
  ASSERT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK);
  EXPECT_NE(out.picture.planes[0], callerPlane);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(out.picture.planes[0]) % 16, 0u);
  EXPECT_EQ(out.picture.strides[0], 32u * 4);
  bool allocated = false;
  for (const std::string& line : g_lines)
    allocated |= line.find("allocate(reallocate) sampleBuffer and tempBuffer.") != std::string::npos;
  EXPECT_TRUE(allocated);
}

TEST(DownsamplingBuffers, CallerModeWritesOrCopiesBack) {
  // Aligned output: written in place; unaligned output: copied back. Same bytes.
  std::vector<uint8_t> results[2];
  for (const uint32_t pad : {0u, 3u}) {
    Downsampler d(1);
    OwnedPicture in(LF_VYUY, 96, 64), out(LF_VYUY, 48, 32, pad);
    in.FillRandom(9);
    uint8_t* callerPlane = out.picture.planes[0];
    ASSERT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK);
    EXPECT_EQ(out.picture.planes[0], callerPlane);
    for (int v : ReadPlane(out, 0, 48, 32).v) results[pad ? 1 : 0].push_back(static_cast<uint8_t>(v));
  }
  EXPECT_EQ(results[0], results[1]);
  Downsampler d(1);
  OwnedPicture in(LF_VYUY, 96, 64), out(LF_VYUY, 48, 32);
  out.picture.planes[0] = nullptr;
  EXPECT_EQ(d.filter.Process(&in.picture, &out.picture), LF_FAILED);
  EXPECT_NE(g_lines.back().find("output data pointer is null."), std::string::npos);
}

TEST(DownsamplingBuffers, AFormatChangeAtTheSameSizeGivesWhatAFreshFilterGives) {
  Downsampler shared(0);
  for (const uint32_t format : {LF_I420, LF_BGRA, LF_VYUY, LF_BGRA}) {
    OwnedPicture in(format, 64, 32), out(format, 32, 16), fresh(format, 32, 16);
    in.FillRandom(format);
    ASSERT_EQ(shared.filter.Process(&in.picture, &out.picture), LF_OK);
    Downsampler own(0);
    ASSERT_EQ(own.filter.Process(&in.picture, &fresh.picture), LF_OK);
    const int planes = format == LF_I420 ? 3 : 1;
    const int bytesPerPixel = format == LF_BGRA ? 4 : 1;
    for (int k = 0; k < planes; ++k) {
      const int w = (k ? 16 : 32) * bytesPerPixel, h = k ? 8 : 16;
      EXPECT_EQ(ReadPlane(out.picture, k, w, h).v, ReadPlane(fresh.picture, k, w, h).v) << format << " plane " << k;
    }
  }
}

// Every tap set sums to 64 and every average is of equal values: a constant
// picture stays constant whatever the path and kernel.
TEST(DownsamplingKernels, ConstantPlanesStayConstant) {
  struct Case {
    uint32_t format, W, H, w, h;
  };
  const Case cases[] = {
      {LF_VYUY, 1280, 720, 640, 360},   {LF_VYUY, 1920, 1080, 1728, 972}, {LF_VYUY, 1000, 600, 700, 420},
      {LF_VYUY, 960, 540, 640, 360},    {LF_VYUY, 960, 540, 720, 404},    {LF_VYUY, 3856, 2176, 964, 544},
      {LF_VYUY, 3900, 2400, 1300, 800}, {LF_I420, 640, 480, 320, 240},    {LF_RGBP, 320, 240, 200, 150},
      {LF_BGRA, 320, 240, 160, 120},    {LF_RGB24, 320, 240, 200, 150}};
  for (const Case& c : cases) {
    for (const uint8_t value : {0, 77, 255}) {
      OwnedPicture in(c.format, c.W, c.H), out(c.format, c.w, c.h);
      in.Fill(value);
      SplitPlanarRgb(in);
      SplitPlanarRgb(out);
      Downsampler d(1);
      ASSERT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK) << c.W << "x" << c.H;
      const PlaneLayout g = LayoutOf(c.format, FormatReading::kPlanes, c.w, c.h);
      for (int k = 0; k < g.planes; ++k) {
        for (uint32_t y = 0; y < g.plane[k].height; ++y) {
          const uint8_t* row = out.picture.planes[k] + static_cast<size_t>(y) * out.picture.strides[k];
          for (uint32_t x = 0; x < g.plane[k].rowBytes; ++x) {
            ASSERT_EQ(row[x], value) << c.format << " " << c.W << "x" << c.H << " -> " << c.w << "x" << c.h << " plane "
                                     << k << " at " << x << "," << y;
          }
        }
      }
    }
  }
}

// Filters built with a reduced feature word run that level's kernels; every
// level gives the same bytes.
TEST(DownsamplingLevels, EveryLevelGivesTheSameBytes) {
  const uint32_t full = DetectCpuFeatures();
  const uint32_t words[] = {0, kCpuSSE | kCpuSSE2, kCpuSSE | kCpuSSE2 | kCpuSSSE3 | kCpuSSE41,
                            kCpuSSE | kCpuSSE2 | kCpuSSSE3 | kCpuSSE41 | kCpuSSE42 | kCpuAVX, full};
  struct Case {
    uint32_t format, W, H, w, h;
  };
  const Case cases[] = {{LF_I420, 1280, 720, 640, 360}, {LF_I420, 1920, 1080, 1280, 720},
                        {LF_VYUY, 1000, 600, 900, 540}, {LF_RGBP, 640, 360, 160, 90},
                        {LF_BGRA, 640, 360, 320, 180},  {LF_RGB24, 640, 360, 426, 240}};
  for (const Case& c : cases) {
    OwnedPicture in(c.format, c.W, c.H);
    in.FillRandom(c.W + c.h);
    SplitPlanarRgb(in);
    std::vector<uint8_t> reference;
    for (const uint32_t word : words) {
      OwnedPicture out(c.format, c.w, c.h);
      SplitPlanarRgb(out);
      Downsampler d(1, word & full);
      ASSERT_EQ(d.filter.Process(&in.picture, &out.picture), LF_OK);
      std::vector<uint8_t> bytes;
      for (const auto& plane : out.memory) bytes.insert(bytes.end(), plane.begin(), plane.end());
      if (reference.empty()) {
        reference = bytes;
      } else {
        ASSERT_EQ(bytes, reference) << "feature word " << std::hex << word << " format " << std::dec << c.format;
      }
    }
  }
}

}  // namespace
}  // namespace Lumaforge
