// Colour conversion speed at 1920x1080: the converter at every processor
// level against libyuv's nearest functions, and a plain copy of the same
// bytes as the floor.
//
//   csc_bench [frames-per-batch]
//
// Prints milliseconds per frame (best of several batches) and the ratio of
// our best level to libyuv.
#include <libyuv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bench/bench_common.h"
#include "lumaforge/lumaforge.h"
#include "tests/api/test_pictures.h"

namespace {

using Lumaforge::bench::TimeMs;
using Lumaforge::test::OwnedPicture;

constexpr uint32_t kWidth = 1920, kHeight = 1080;

size_t Bytes(const OwnedPicture& p) { return p.memory[0].size() + p.memory[1].size() + p.memory[2].size(); }

struct Case {
  const char* name;
  uint32_t in, out;
  std::function<void(VideoPicture&, VideoPicture&)> libyuv;
};

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
  const Case cases[] = {
      {"I420ToARGB", LF_I420, LF_BGRA,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::I420ToARGB(i.planes[0], i.strides[0], i.planes[1], i.strides[1], i.planes[2], i.strides[2],
                            o.planes[0], o.strides[0], kWidth, kHeight);
       }},
      {"NV12ToARGB", LF_NV12, LF_BGRA,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::NV12ToARGB(i.planes[0], i.strides[0], i.planes[1], i.strides[1], o.planes[0], o.strides[0], kWidth,
                            kHeight);
       }},
      {"ARGBToI420", LF_BGRA, LF_I420,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::ARGBToI420(i.planes[0], i.strides[0], o.planes[0], o.strides[0], o.planes[1], o.strides[1],
                            o.planes[2], o.strides[2], kWidth, kHeight);
       }},
      {"I420ToYUY2", LF_I420, LF_YUY2,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::I420ToYUY2(i.planes[0], i.strides[0], i.planes[1], i.strides[1], i.planes[2], i.strides[2],
                            o.planes[0], o.strides[0], kWidth, kHeight);
       }},
      {"YUY2ToI420", LF_YUY2, LF_I420,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::YUY2ToI420(i.planes[0], i.strides[0], o.planes[0], o.strides[0], o.planes[1], o.strides[1],
                            o.planes[2], o.strides[2], kWidth, kHeight);
       }},
      // libyuv's RGB24 stores B, G, R in memory: our BGR24.
      {"I420ToRGB24", LF_I420, LF_BGR24,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::I420ToRGB24(i.planes[0], i.strides[0], i.planes[1], i.strides[1], i.planes[2], i.strides[2],
                             o.planes[0], o.strides[0], kWidth, kHeight);
       }},
      {"RGB24ToI420", LF_BGR24, LF_I420,
       [](VideoPicture& i, VideoPicture& o) {
         libyuv::RGB24ToI420(i.planes[0], i.strides[0], o.planes[0], o.strides[0], o.planes[1], o.strides[1],
                             o.planes[2], o.strides[2], kWidth, kHeight);
       }},
  };

  const int32_t available = Lumaforge::bench::AvailableTier();
  std::printf("1920x1080, ms per frame (best of 7 batches of %d frames); processor tier %d\n\n", frames, available);
  std::printf("%-12s", "pair");
  Lumaforge::bench::PrintLevelTitles(8);
  std::printf(" %8s %8s %9s\n", "libyuv", "memcpy", "ours/yuv");

  for (const Case& c : cases) {
    OwnedPicture in(c.in, kWidth, kHeight, 0), out(c.out, kWidth, kHeight, 0);
    in.FillRandom(c.in);
    std::printf("%-12s", c.name);
    double best = 0;
    // The converter picks its kernels when created, from the masked word.
    Lumaforge::bench::ForEachLevel(LF_FILTER_CSC, 0, [&](const Lumaforge::CpuLevel&, ILumaforge* lf) {
      best = TimeMs([&] { lf->Process(LF_FILTER_CSC, &in.picture, &out.picture); }, frames);
      std::printf(" %8.3f", best);
    });
    const double yuv = TimeMs([&] { c.libyuv(in.picture, out.picture); }, frames);
    // A plain copy of the larger picture: reads and writes as many bytes as
    // the conversion touches at least.
    std::vector<uint8_t> from(std::max(Bytes(in), Bytes(out)), 1), to(from.size());
    const double copy = TimeMs([&] { std::memcpy(to.data(), from.data(), from.size()); }, frames);
    std::printf(" %8.3f %8.3f %9.2f\n", yuv, copy, best / yuv);
  }
  return 0;
}
