// Super resolution: quality and speed against the usual upscalers.
//
// Quality: luma PSNR on the held-out wallpaper photographs (the pictures the
// coefficient file was not trained on), loaded as sr_train loads them. For
// 2x the source is the 2x2 area average of the photograph, for 1.5x its
// reduction to 2/3 by OpenCV's INTER_AREA; every method enlarges the source
// back to the photograph's size. Chroma planes are 128 and not measured.
//
// Speed: 640x360 I420 to 1280x720 and to 960x540 on one core, each mode
// alternating frame by frame with OpenCV's INTER_CUBIC resize of the same
// three planes, so both see the same machine load.
//
//   sr_bench [frames]
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "bench/sr_bench_frames.h"
#include "lumaforge/lumaforge.h"
#include "tools/cpu_level_masks.h"
#include "tools/sr_train/luma_picture.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::bench {
namespace {

using sr_train::LoadLuma;

// sr_train's loading width: the held-out pictures are the ones it reports.
constexpr int32_t kMaxWidth = 1920;

struct HeldOutPicture {
  std::string name;  // the wallpaper folder
  LumaPicture luma;
};

std::vector<HeldOutPicture> LoadHeldOut() {
  std::vector<HeldOutPicture> pictures;
  for (const std::string& path : sr_train::HeldOutPictures(sr_train::kWallpaperDirectory)) {
    HeldOutPicture picture;
    std::string error;
    if (!LoadLuma(path, kMaxWidth, picture.luma, error)) {
      std::fprintf(stderr, "sr_bench: %s: %s\n", path.c_str(), error.c_str());
      continue;
    }
    const size_t folderEnd = path.find("/contents/");
    const size_t folderStart = path.rfind('/', folderEnd - 1) + 1;
    picture.name = path.substr(folderStart, folderEnd - folderStart);
    pictures.push_back(std::move(picture));
  }
  return pictures;
}

// One upscaler of a quality table: enlarges a source to the given size.
struct Method {
  const char* title;  // column title
  const char* name;
  std::function<LumaPicture(const LumaPicture&, int32_t, int32_t)> upscale;
};

Method SrMethod(const char* title, SrMode mode, SrUpscaler& upscaler) {
  return {title, SrModeName(mode),
          [&upscaler](const LumaPicture& s, int32_t w, int32_t h) { return upscaler.Upscale(s, w, h); }};
}
Method LibyuvMethod() { return {"yuv bilin", "libyuv bilinear", LibyuvBilinear}; }
Method OpenCvMethod(const char* title, const char* name, int interpolation) {
  return {title, name,
          [interpolation](const LumaPicture& s, int32_t w, int32_t h) { return OpenCvResize(s, w, h, interpolation); }};
}

// Prints one row per picture and the mean; the first `srMethods` methods are
// compared with the one named "INTER_CUBIC". `degrade` makes the source of a
// photograph already cropped by `crop`.
void QualityTable(const char* title, const std::vector<HeldOutPicture>& pictures, int32_t crop,
                  const std::function<LumaPicture(const LumaPicture&)>& degrade, const std::vector<Method>& methods,
                  size_t srMethods) {
  std::printf("%s\n%-14s %-11s", title, "picture", "size");
  for (const Method& method : methods) std::printf(" %10s", method.title);
  std::printf("\n");
  size_t cubic = 0;
  while (cubic < methods.size() && std::string(methods[cubic].name) != "INTER_CUBIC") ++cubic;

  std::vector<double> sums(methods.size(), 0.0);
  std::vector<int> ahead(srMethods, 0);
  std::vector<bool> failed(methods.size(), false);
  for (const HeldOutPicture& picture : pictures) {
    const LumaPicture original =
        Cropped(picture.luma, picture.luma.width / crop * crop, picture.luma.height / crop * crop);
    const LumaPicture source = degrade(original);
    char size[32];
    std::snprintf(size, sizeof(size), "%dx%d", original.width, original.height);
    std::printf("%-14s %-11s", picture.name.c_str(), size);
    std::vector<double> psnr(methods.size(), 0.0);
    for (size_t m = 0; m < methods.size(); ++m) {
      const LumaPicture result = methods[m].upscale(source, original.width, original.height);
      if (result.width != original.width || result.height != original.height) {
        failed[m] = true;
        std::printf(" %10s", "refused");
        continue;
      }
      psnr[m] = Psnr(result, original);
      sums[m] += psnr[m];
      std::printf(" %10.3f", psnr[m]);
    }
    std::printf("\n");
    for (size_t m = 0; m < srMethods && cubic < methods.size(); ++m) ahead[m] += psnr[m] > psnr[cubic];
  }
  const double count = static_cast<double>(pictures.size());
  std::printf("%-26s", "mean");
  for (size_t m = 0; m < methods.size(); ++m) {
    if (failed[m])
      std::printf(" %10s", "-");
    else
      std::printf(" %10.3f", sums[m] / count);
  }
  std::printf("\n");
  for (size_t m = 0; m < srMethods && cubic < methods.size(); ++m) {
    if (failed[m]) continue;
    const double difference = (sums[m] - sums[cubic]) / count;
    std::printf("%s - INTER_CUBIC: %+.3f dB on average (%s), ahead on %d of %zu pictures\n", methods[m].name,
                difference, difference >= 0 ? "beats it" : "trails it", ahead[m], pictures.size());
  }
  std::printf("\n");
}

void Quality(const std::vector<HeldOutPicture>& pictures) {
  std::printf("Quality: luma PSNR in dB against the photograph, held-out wallpapers (%s)\n\n",
              sr_train::kWallpaperDirectory);
  SrUpscaler enhanced(SrMode::kEnhanced2x), standard2x(SrMode::kStandard2x);
  QualityTable("2x: source = 2x2 area average of the photograph (cropped to multiples of 4)", pictures, 4,
               sr_train::HalveByAreaAverage,
               {SrMethod("SR enh", SrMode::kEnhanced2x, enhanced), SrMethod("SR std", SrMode::kStandard2x, standard2x),
                LibyuvMethod(), OpenCvMethod("cv linear", "INTER_LINEAR", cv::INTER_LINEAR),
                OpenCvMethod("cv cubic", "INTER_CUBIC", cv::INTER_CUBIC),
                OpenCvMethod("cv lanczos", "INTER_LANCZOS4", cv::INTER_LANCZOS4)},
               2);

  SrUpscaler standard15(SrMode::kStandard15), alternative15(SrMode::kAlternative15);
  const auto twoThirds = [](const LumaPicture& original) {
    return OpenCvResize(original, original.width * 2 / 3, original.height * 2 / 3, cv::INTER_AREA);
  };
  QualityTable(
      "1.5x: source = the photograph (cropped to multiples of 12) reduced to 2/3 by INTER_AREA", pictures, 12,
      twoThirds,
      {SrMethod("SR std", SrMode::kStandard15, standard15), SrMethod("SR alt", SrMode::kAlternative15, alternative15),
       LibyuvMethod(), OpenCvMethod("cv cubic", "INTER_CUBIC", cv::INTER_CUBIC),
       OpenCvMethod("cv lanczos", "INTER_LANCZOS4", cv::INTER_LANCZOS4)},
      2);
}

// The speed test's source: the first held-out photograph cropped to 16:9
// around its centre and reduced to 640x360 by INTER_AREA, its half-size
// reduction in both chroma planes (textured, like the luma, so no plane is
// flat); a synthetic picture of edges, gradients and noise without it.
I420Frame SpeedSource(const std::vector<HeldOutPicture>& pictures, std::string& description) {
  constexpr int32_t kWidth = 640, kHeight = 360;
  LumaPicture luma(kWidth, kHeight), chroma(kWidth / 2, kHeight / 2);
  if (!pictures.empty()) {
    const LumaPicture& photo = pictures.front().luma;
    const int32_t w = std::min(photo.width, photo.height * 16 / 9), h = w * 9 / 16;
    const cv::Mat whole(photo.height, photo.width, CV_8UC1, const_cast<uint8_t*>(photo.pixels.data()));
    const cv::Mat centre = whole(cv::Rect((photo.width - w) / 2, (photo.height - h) / 2, w, h));
    cv::Mat to(kHeight, kWidth, CV_8UC1, luma.pixels.data());
    cv::resize(centre, to, to.size(), 0, 0, cv::INTER_AREA);
    description = pictures.front().name + " (luma, centre 16:9)";
  } else {
    uint32_t seed = 1;
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        seed = seed * 1664525u + 1013904223u;
        const int32_t stripes = ((x / 24 + y / 40) & 1) ? 60 : 0;
        const int32_t value = 40 + x / 5 + y / 4 + stripes + static_cast<int32_t>(seed >> 29);
        luma.At(x, y) = static_cast<uint8_t>(std::min(value, 255));
      }
    }
    description = "synthetic (no held-out photograph)";
  }
  cv::Mat from(kHeight, kWidth, CV_8UC1, luma.pixels.data()),
      to(kHeight / 2, kWidth / 2, CV_8UC1, chroma.pixels.data());
  cv::resize(from, to, to.size(), 0, 0, cv::INTER_AREA);
  return I420Frame(luma, &chroma);
}

double Milliseconds(std::chrono::steady_clock::duration elapsed) {
  return std::chrono::duration<double, std::milli>(elapsed).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  return n % 2 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

void Speed(const std::vector<HeldOutPicture>& pictures, int frames) {
  cv::setNumThreads(1);
  const int32_t tier = GetLumaforgeArch();
  const char* level = "?";
  for (const CpuLevel& cpu : kCpuLevels)
    if (cpu.tier == tier) level = cpu.name;
  std::string description;
  I420Frame source = SpeedSource(pictures, description);
  std::printf(
      "Speed: one core, %d frames per mode alternating SR and OpenCV %s INTER_CUBIC (three planes); ms per frame: "
      "medians, then means; ratio of the medians\nprocessor tier %d (%s); source 640x360 I420: %s\n",
      frames, CV_VERSION, tier, level, description.c_str());
  std::printf("%-20s %-20s %9s %9s %9s %9s %9s\n", "mode", "size", "SR", "cubic", "SR mean", "cub mean", "SR/cubic");

  for (const SrMode mode : {SrMode::kStandard2x, SrMode::kEnhanced2x, SrMode::kStandard15, SrMode::kAlternative15}) {
    const int32_t width = SrScaled(mode, 640), height = SrScaled(mode, 360);
    I420Frame srOut(width, height), cvOut(width, height);
    SrUpscaler upscaler(mode);
    const auto sr = [&] { return upscaler.Process(source, srOut); };
    const auto cubic = [&] {
      for (int k = 0; k < 3; ++k) {
        cv::Mat to = PlaneMat(cvOut, k);
        cv::resize(PlaneMat(source, k), to, to.size(), 0, 0, cv::INTER_CUBIC);
      }
    };
    char size[32];
    std::snprintf(size, sizeof(size), "640x360 -> %dx%d", width, height);
    std::printf("%-20s %-20s", SrModeName(mode), size);
    const int32_t status = sr();
    if (status != LF_OK) {
      std::printf(" the filter refused the frame (%d)\n", status);
      continue;
    }
    for (int i = 0; i < 3; ++i) cubic(), sr();  // warm caches and buffers

    std::vector<double> srMs, cubicMs;
    srMs.reserve(frames);
    cubicMs.reserve(frames);
    for (int i = 0; i < frames; ++i) {
      auto start = std::chrono::steady_clock::now();
      sr();
      auto end = std::chrono::steady_clock::now();
      srMs.push_back(Milliseconds(end - start));
      start = std::chrono::steady_clock::now();
      cubic();
      end = std::chrono::steady_clock::now();
      cubicMs.push_back(Milliseconds(end - start));
    }
    const double srMedian = Median(srMs), cubicMedian = Median(cubicMs);
    double srMean = 0, cubicMean = 0;
    for (int i = 0; i < frames; ++i) srMean += srMs[i] / frames, cubicMean += cubicMs[i] / frames;
    std::printf(" %9.3f %9.3f %9.3f %9.3f %9.2f\n", srMedian, cubicMedian, srMean, cubicMean, srMedian / cubicMedian);
  }
}

}  // namespace
}  // namespace Lumaforge::bench

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
  const std::vector<Lumaforge::bench::HeldOutPicture> pictures = Lumaforge::bench::LoadHeldOut();
  if (pictures.empty())
    std::printf("Quality: no held-out photograph under %s (Debian package plasma-workspace-wallpapers)\n\n",
                Lumaforge::sr_train::kWallpaperDirectory);
  else
    Lumaforge::bench::Quality(pictures);
  Lumaforge::bench::Speed(pictures, frames);
  return 0;
}
