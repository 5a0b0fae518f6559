// Downscaling speed: the filter at every processor level against libyuv's
// I420Scale / ARGBScale with box and bilinear filtering, in one run.
//
//   downsample_bench [frames-per-batch]
#include <libyuv.h>

#include <cstdio>
#include <cstdlib>

#include "bench/bench_common.h"
#include "lumaforge/lumaforge.h"
#include "tests/api/test_pictures.h"

namespace {

using Lumaforge::bench::TimeMs;
using Lumaforge::test::OwnedPicture;

struct Size {
  uint32_t w, h;
};

double Libyuv(const VideoPicture& in, VideoPicture& out, libyuv::FilterMode mode, int frames) {
  if (in.format == LF_I420) {
    return TimeMs(
        [&] {
          libyuv::I420Scale(in.planes[0], in.strides[0], in.planes[1], in.strides[1], in.planes[2], in.strides[2],
                            in.width, in.height, out.planes[0], out.strides[0], out.planes[1], out.strides[1],
                            out.planes[2], out.strides[2], out.width, out.height, mode);
        },
        frames);
  }
  return TimeMs(
      [&] {
        libyuv::ARGBScale(in.planes[0], in.strides[0], in.width, in.height, out.planes[0], out.strides[0], out.width,
                          out.height, mode);
      },
      frames);
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  const int32_t available = Lumaforge::bench::AvailableTier();
  std::printf("ms per frame (best of 7 batches of %d); processor tier %d; ratio = best level / libyuv\n\n", frames,
              available);
  std::printf("%-5s %-22s", "", "scale");
  Lumaforge::bench::PrintLevelTitles(7);
  std::printf(" %7s %7s %9s %9s\n", "box", "bilin", "ours/box", "ours/bil");

  const Size inputs[] = {{1920, 1080}, {1280, 720}};
  const Size outputs[] = {{960, 540}, {640, 360}, {1280, 720}, {480, 270}};
  for (const uint32_t format : {LF_I420, LF_BGRA}) {
    for (const Size in : inputs) {
      for (const Size out : outputs) {
        if (out.w >= in.w) continue;
        OwnedPicture src(format, in.w, in.h, 0), dst(format, out.w, out.h, 0);
        src.FillRandom(in.w + out.w);
        char name[64];
        std::snprintf(name, sizeof(name), "%ux%u -> %ux%u", in.w, in.h, out.w, out.h);
        std::printf("%-5s %-22s", format == LF_I420 ? "I420" : "BGRA", name);
        double best = 0;
        // Caller-buffer mode on 16-byte-aligned pictures: no copies.
        Lumaforge::bench::ForEachLevel(LF_FILTER_DOWNSAMPLE, 1, [&](const Lumaforge::CpuLevel&, ILumaforge* lf) {
          best = TimeMs([&] { lf->Process(LF_FILTER_DOWNSAMPLE, &src.picture, &dst.picture); }, frames);
          std::printf(" %7.3f", best);
        });
        const double box = Libyuv(src.picture, dst.picture, libyuv::kFilterBox, frames);
        const double bilinear = Libyuv(src.picture, dst.picture, libyuv::kFilterBilinear, frames);
        std::printf(" %7.3f %7.3f %9.2f %9.2f\n", box, bilinear, best / box, best / bilinear);
      }
    }
  }
  return 0;
}
