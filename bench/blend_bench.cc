// Alpha blending speed at 1920x1080: the filter at every processor level
// against libyuv's ARGBBlend (alpha from the source pixels), BlendPlane and
// I420Blend (alpha planes), in one run.
//
//   blend_bench [frames-per-batch]
#include <libyuv.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/bench_common.h"
#include "lumaforge/lumaforge.h"
#include "tests/api/test_pictures.h"

namespace {

using Lumaforge::bench::TimeMs;
using Lumaforge::test::OwnedPicture;

constexpr uint32_t kWidth = 1920, kHeight = 1080;

// Times the filter at every level; returns the last (best) level's time.
double TimeFilter(OwnedPicture& in, OwnedPicture& out, std::vector<uint8_t>& map, int frames) {
  double best = 0;
  Lumaforge::bench::ForEachLevel(LF_FILTER_ALPHA_BLEND, 0, [&](const Lumaforge::CpuLevel&, ILumaforge* lf) {
    lf->Init(LF_FILTER_ALPHA_BLEND, map.data(), 0);
    best = TimeMs([&] { lf->Process(LF_FILTER_ALPHA_BLEND, &in.picture, &out.picture); }, frames);
    std::printf(" %7.3f", best);
  });
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
  const int32_t available = Lumaforge::bench::AvailableTier();
  std::printf("1920x1080, ms per frame (best of 7 batches of %d); processor tier %d\n\n", frames, available);
  std::printf("%-6s", "format");
  Lumaforge::bench::PrintLevelTitles(7);
  std::printf(" %-11s %7s %9s\n", "libyuv", "", "ours/yuv");

  std::vector<uint8_t> map(kWidth * kHeight);
  for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint8_t>(i * 131 >> 3);

  OwnedPicture bgraIn(LF_BGRA, kWidth, kHeight, 0), bgraOut(LF_BGRA, kWidth, kHeight, 0);
  bgraIn.FillRandom(1);
  bgraOut.FillRandom(2);
  std::printf("%-6s", "BGRA");
  double ours = TimeFilter(bgraIn, bgraOut, map, frames);
  double yuv = TimeMs(
      [&] {
        libyuv::ARGBBlend(bgraIn.picture.planes[0], kWidth * 4, bgraOut.picture.planes[0], kWidth * 4,
                          bgraOut.picture.planes[0], kWidth * 4, kWidth, kHeight);
      },
      frames);
  std::printf(" %-11s %7.3f %9.2f\n", "ARGBBlend", yuv, ours / yuv);

  OwnedPicture i420In(LF_I420, kWidth, kHeight, 0), i420Out(LF_I420, kWidth, kHeight, 0);
  i420In.FillRandom(3);
  i420Out.FillRandom(4);
  std::printf("%-6s", "I420");
  ours = TimeFilter(i420In, i420Out, map, frames);
  const VideoPicture &a = i420In.picture, &b = i420Out.picture;
  yuv = TimeMs(
      [&] {
        libyuv::I420Blend(a.planes[0], kWidth, a.planes[1], kWidth / 2, a.planes[2], kWidth / 2, b.planes[0], kWidth,
                          b.planes[1], kWidth / 2, b.planes[2], kWidth / 2, map.data(), kWidth, b.planes[0], kWidth,
                          b.planes[1], kWidth / 2, b.planes[2], kWidth / 2, kWidth, kHeight);
      },
      frames);
  std::printf(" %-11s %7.3f %9.2f\n", "I420Blend", yuv, ours / yuv);
  const double plane = TimeMs(
      [&] {
        libyuv::BlendPlane(a.planes[0], kWidth, b.planes[0], kWidth, map.data(), kWidth, b.planes[0], kWidth, kWidth,
                           kHeight);
      },
      frames);
  std::printf("%-6s %*s %-11s %7.3f   (luma plane only)\n", "", 7 * (available + 1), "", "BlendPlane", plane);
  return 0;
}
