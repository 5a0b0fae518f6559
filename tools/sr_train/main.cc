// sr_train: learns the enhanced 2x upscaler's per-class filters from the
// wallpaper photographs, writes the coefficient file and reports the PSNR of
// the plain formula, the trained filter and bicubic on the training and the
// held-out pictures.
//
//   sr_train [--output FILE] [--wallpapers DIR] [--ridge R] [--min-samples N]
//            [--noise-sigma S] [--target-offset O] [--max-width W]
//            [--symmetries N]
//   sr_train --list-training | --list-held-out
//
// Without --output nothing is written. The defaults are the settings the
// shipped file was made with.
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tools/sr_train/coefficient_file.h"
#include "tools/sr_train/luma_picture.h"
#include "tools/sr_train/normal_equations.h"
#include "tools/sr_train/training_samples.h"
#include "tools/sr_train/upscalers.h"
#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::sr_train {
namespace {

struct Options {
  std::string output;
  std::string wallpapers = kWallpaperDirectory;
  bool listTraining = false;
  bool listHeldOut = false;
  SolveSettings solve{.relativeRidge = 1e-4, .minSamples = 20};
  // Gaussian noise on every second training source (0: none): camera
  // pictures are never clean, and it costs nothing measurable on clean ones.
  double noiseSigma = 1.0;
  double targetOffset = 0.5;
  int32_t maxWidth = 1920;  // larger photographs are halved until they fit
  // Each training picture is also seen mirrored and transposed (1..8
  // orientations): local structure has no preferred direction, and eight
  // times the samples fill classes one orientation leaves rare.
  int32_t symmetries = 8;
};

// A fixed seed: the same pictures give the same file on every run.
constexpr uint32_t kNoiseSeed = 20240601;

bool ParseOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string flag = argv[i];
    const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
    if (flag == "--list-training") {
      options.listTraining = true;
      continue;
    }
    if (flag == "--list-held-out") {
      options.listHeldOut = true;
      continue;
    }
    if (!value) return false;
    ++i;
    if (flag == "--output")
      options.output = value;
    else if (flag == "--wallpapers")
      options.wallpapers = value;
    else if (flag == "--ridge")
      options.solve.relativeRidge = std::strtod(value, nullptr);
    else if (flag == "--min-samples")
      options.solve.minSamples = std::strtoll(value, nullptr, 10);
    else if (flag == "--noise-sigma")
      options.noiseSigma = std::strtod(value, nullptr);
    else if (flag == "--target-offset")
      options.targetOffset = std::strtod(value, nullptr);
    else if (flag == "--symmetries")
      options.symmetries = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    else if (flag == "--max-width")
      options.maxWidth = static_cast<int32_t>(std::strtol(value, nullptr, 10));
    else
      return false;
  }
  return options.maxWidth >= 2 && options.symmetries >= 1 && options.symmetries <= 8;
}

// Loads each picture as the target and its area-averaged half as the source;
// with `noiseSigma`, every second source gets noise.
bool LoadPairs(const std::vector<std::string>& paths, const Options& options, double noiseSigma,
               std::vector<PicturePair>& pairs) {
  std::mt19937 random(kNoiseSeed);
  for (size_t i = 0; i < paths.size(); ++i) {
    PicturePair pair;
    std::string error;
    if (!LoadLuma(paths[i], options.maxWidth, pair.target, error)) {
      std::fprintf(stderr, "sr_train: %s: %s\n", paths[i].c_str(), error.c_str());
      return false;
    }
    pair.source = HalveByAreaAverage(pair.target);
    if (noiseSigma > 0 && i % 2 == 1) AddGaussianNoise(pair.source, noiseSigma, random);
    std::fprintf(stderr, "  %s: %dx%d\n", paths[i].c_str(), pair.target.width, pair.target.height);
    pairs.push_back(std::move(pair));
  }
  return true;
}

struct Scores {
  double plain = 0, trained = 0, bicubic = 0;
};

Scores Report(const char* title, const std::vector<std::string>& paths, const std::vector<PicturePair>& pairs,
              const CoefficientTable& table) {
  std::printf("\n%s pictures (luma PSNR in dB)\n%-44s %9s %9s %9s\n", title, "picture", "plain", "trained", "bicubic");
  Scores mean;
  for (size_t i = 0; i < pairs.size(); ++i) {
    const Scores s{Psnr(PlainUpscale(pairs[i].source), pairs[i].target),
                   Psnr(TrainedUpscale(pairs[i].source, table), pairs[i].target),
                   Psnr(BicubicUpscale(pairs[i].source), pairs[i].target)};
    const std::string& path = paths[i];
    const size_t folderEnd = path.find("/contents/");
    const size_t folderStart = path.rfind('/', folderEnd - 1) + 1;
    std::printf("%-44s %9.3f %9.3f %9.3f\n", path.substr(folderStart, folderEnd - folderStart).c_str(), s.plain,
                s.trained, s.bicubic);
    mean.plain += s.plain / pairs.size();
    mean.trained += s.trained / pairs.size();
    mean.bicubic += s.bicubic / pairs.size();
  }
  std::printf("%-44s %9.3f %9.3f %9.3f\n", "mean", mean.plain, mean.trained, mean.bicubic);
  return mean;
}

int Run(int argc, char** argv) {
  Options options;
  if (!ParseOptions(argc, argv, options)) {
    std::fprintf(stderr,
                 "usage: sr_train [--output FILE] [--wallpapers DIR] [--ridge R] [--min-samples N]\n"
                 "                [--noise-sigma S] [--target-offset O] [--max-width W] [--symmetries N]\n"
                 "       sr_train --list-training | --list-held-out\n");
    return 2;
  }
  const std::vector<std::string> trainingPaths = TrainingPictures(options.wallpapers);
  const std::vector<std::string> heldOutPaths = HeldOutPictures(options.wallpapers);
  if (options.listTraining || options.listHeldOut) {
    for (const std::string& path : options.listTraining ? trainingPaths : heldOutPaths)
      std::printf("%s\n", path.c_str());
    return 0;
  }

  std::fprintf(stderr, "training pictures:\n");
  std::vector<PicturePair> training, heldOut;
  if (!LoadPairs(trainingPaths, options, options.noiseSigma, training)) return 1;
  std::fprintf(stderr, "held-out pictures:\n");
  if (!LoadPairs(heldOutPaths, options, 0, heldOut)) return 1;

  NormalEquations equations(options.targetOffset);
  for (const PicturePair& pair : training)
    for (int32_t symmetry = 0; symmetry < options.symmetries; ++symmetry)
      equations.AddPicture(symmetry == 0 ? pair : TransformedPair(pair, symmetry));
  CoefficientTable table;
  equations.Solve(options.solve, table);
  const int32_t withdrawn = MeasureAndPrune(training, options.symmetries, table);

  int32_t classes = 0;
  for (int32_t cls = 1; cls < kSrClasses; ++cls) classes += table.valid[cls];
  const std::string text = FormatCoefficientFile(table);
  std::printf(
      "settings: ridge %g x trace/9 toward the plain formula, min samples %lld, target offset %g, "
      "noise sigma %g on every second training source, max width %d, %d orientations\n",
      options.solve.relativeRidge, static_cast<long long>(options.solve.minSamples), options.targetOffset,
      options.noiseSigma, options.maxWidth, options.symmetries);
  std::printf("classes with a filter: %d (withdrawn as no better than the plain formula: %d), %zu bytes\n", classes,
              withdrawn, text.size());
  if (!options.output.empty()) {
    if (!WriteTextFile(options.output, text)) {
      std::fprintf(stderr, "sr_train: cannot write %s\n", options.output.c_str());
      return 1;
    }
    std::printf("wrote %s\n", options.output.c_str());
  }

  Report("training", trainingPaths, training, table);
  const Scores heldOutMean = Report("held-out", heldOutPaths, heldOut, table);
  std::printf("\nheld-out: trained - bicubic = %+.3f dB, trained - plain = %+.3f dB\n",
              heldOutMean.trained - heldOutMean.bicubic, heldOutMean.trained - heldOutMean.plain);
  return 0;
}

}  // namespace
}  // namespace Lumaforge::sr_train

int main(int argc, char** argv) { return Lumaforge::sr_train::Run(argc, argv); }
