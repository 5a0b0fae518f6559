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

#include "lumaforge/lumaforge.h"
#include "tests/environment.h"

namespace {

constexpr uint32_t kWidth = 1920, kHeight = 1080;

// One picture with tight strides and its own memory.
struct Picture {
  Picture(uint32_t format, uint32_t rowBytes0, uint32_t rows0, uint32_t chromaRowBytes, uint32_t chromaRows,
          int planes) {
    p.width = kWidth;
    p.height = kHeight;
    p.format = format;
    const uint32_t rowBytes[3] = {rowBytes0, chromaRowBytes, chromaRowBytes};
    const uint32_t rows[3] = {rows0, chromaRows, chromaRows};
    for (int k = 0; k < planes; ++k) {
      memory[k].resize(static_cast<size_t>(rowBytes[k]) * rows[k]);
      for (size_t i = 0; i < memory[k].size(); ++i) memory[k][i] = static_cast<uint8_t>(i * 2654435761u >> 13);
      p.planes[k] = memory[k].data();
      p.strides[k] = rowBytes[k];
    }
  }
  size_t Bytes() const { return memory[0].size() + memory[1].size() + memory[2].size(); }
  VideoPicture p = {};
  std::vector<uint8_t> memory[3];
};

Picture Make(uint32_t format) {
  switch (format) {
    case LF_I420: return Picture(format, kWidth, kHeight, kWidth / 2, kHeight / 2, 3);
    case LF_NV12: return Picture(format, kWidth, kHeight, kWidth, kHeight / 2, 2);
    case LF_YUY2: return Picture(format, 2 * kWidth, kHeight, 0, 0, 1);
    case LF_BGR24: return Picture(format, 3 * kWidth, kHeight, 0, 0, 1);
    default: return Picture(format, 4 * kWidth, kHeight, 0, 0, 1);
  }
}

// Best milliseconds per call over several batches.
double TimeMs(const std::function<void()>& work, int framesPerBatch) {
  work();  // warm caches and page in the buffers
  double best = 1e30;
  for (int batch = 0; batch < 7; ++batch) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < framesPerBatch; ++i) work();
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    best = std::min(best, ms / framesPerBatch);
  }
  return best;
}

struct Level {
  const char* name;
  const char* mask;
  int32_t tier;
};
const Level kLevels[] = {{"c", "0", 0},         {"sse2", "0x8", 1},  {"ssse3", "0x208", 2},
                         {"sse42", "0x608", 3}, {"avx", "0xe08", 4}, {"avx2", "0xffffffff", 5}};

struct Case {
  const char* name;
  uint32_t in, out;
  std::function<void(Picture&, Picture&)> libyuv;
};

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
  const Case cases[] = {
      {"I420ToARGB", LF_I420, LF_BGRA,
       [](Picture& i, Picture& o) {
         libyuv::I420ToARGB(i.p.planes[0], i.p.strides[0], i.p.planes[1], i.p.strides[1], i.p.planes[2], i.p.strides[2],
                            o.p.planes[0], o.p.strides[0], kWidth, kHeight);
       }},
      {"NV12ToARGB", LF_NV12, LF_BGRA,
       [](Picture& i, Picture& o) {
         libyuv::NV12ToARGB(i.p.planes[0], i.p.strides[0], i.p.planes[1], i.p.strides[1], o.p.planes[0], o.p.strides[0],
                            kWidth, kHeight);
       }},
      {"ARGBToI420", LF_BGRA, LF_I420,
       [](Picture& i, Picture& o) {
         libyuv::ARGBToI420(i.p.planes[0], i.p.strides[0], o.p.planes[0], o.p.strides[0], o.p.planes[1], o.p.strides[1],
                            o.p.planes[2], o.p.strides[2], kWidth, kHeight);
       }},
      {"I420ToYUY2", LF_I420, LF_YUY2,
       [](Picture& i, Picture& o) {
         libyuv::I420ToYUY2(i.p.planes[0], i.p.strides[0], i.p.planes[1], i.p.strides[1], i.p.planes[2], i.p.strides[2],
                            o.p.planes[0], o.p.strides[0], kWidth, kHeight);
       }},
      {"YUY2ToI420", LF_YUY2, LF_I420,
       [](Picture& i, Picture& o) {
         libyuv::YUY2ToI420(i.p.planes[0], i.p.strides[0], o.p.planes[0], o.p.strides[0], o.p.planes[1], o.p.strides[1],
                            o.p.planes[2], o.p.strides[2], kWidth, kHeight);
       }},
      // libyuv's RGB24 stores B, G, R in memory: our BGR24.
      {"I420ToRGB24", LF_I420, LF_BGR24,
       [](Picture& i, Picture& o) {
         libyuv::I420ToRGB24(i.p.planes[0], i.p.strides[0], i.p.planes[1], i.p.strides[1], i.p.planes[2],
                             i.p.strides[2], o.p.planes[0], o.p.strides[0], kWidth, kHeight);
       }},
      {"RGB24ToI420", LF_BGR24, LF_I420,
       [](Picture& i, Picture& o) {
         libyuv::RGB24ToI420(i.p.planes[0], i.p.strides[0], o.p.planes[0], o.p.strides[0], o.p.planes[1],
                             o.p.strides[1], o.p.planes[2], o.p.strides[2], kWidth, kHeight);
       }},
  };

  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
  const int32_t available = GetLumaforgeArch();
  std::printf("1920x1080, ms per frame (best of 7 batches of %d frames); processor tier %d\n\n", frames, available);
  std::printf("%-12s", "pair");
  for (const Level& level : kLevels) {
    if (level.tier <= available) std::printf(" %8s", level.name);
  }
  std::printf(" %8s %8s %9s\n", "libyuv", "memcpy", "ours/yuv");

  for (const Case& c : cases) {
    Picture in = Make(c.in), out = Make(c.out);
    std::printf("%-12s", c.name);
    double best = 0;
    for (const Level& level : kLevels) {
      if (level.tier > available) continue;
      // The converter picks its kernels when created, from the masked word.
      Lumaforge::test::SetEnv("LUMAFORGE_CPU_MASK", level.mask);
      ILumaforge* lf = nullptr;
      CreateLumaforge(&lf);
      const int32_t silent = -1;
      lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, const_cast<int32_t*>(&silent));
      lf->Init(LF_FILTER_CSC, nullptr, 0);
      best = TimeMs([&] { lf->Process(LF_FILTER_CSC, &in.p, &out.p); }, frames);
      std::printf(" %8.3f", best);
      DestroyLumaforge(lf);
    }
    Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
    const double yuv = TimeMs([&] { c.libyuv(in, out); }, frames);
    // A plain copy of the larger picture: reads and writes as many bytes as
    // the conversion touches at least.
    std::vector<uint8_t> from(std::max(in.Bytes(), out.Bytes()), 1), to(from.size());
    const double copy = TimeMs([&] { std::memcpy(to.data(), from.data(), from.size()); }, frames);
    std::printf(" %8.3f %8.3f %9.2f\n", yuv, copy, best / yuv);
  }
  return 0;
}
