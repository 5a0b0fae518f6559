// The enhanced 2x super resolution through the public interface, against a
// model of the trained per-class filters written here from their
// description: every source pixel becomes a 2x2 block, either by the plain
// formula or by the weights the coefficient file gives its 3x3 class.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"
#include "tests/log_capture.h"

namespace Lumaforge::test {
namespace {

constexpr int kClasses = 8193;
constexpr int kFlatClass = 8192;
constexpr int kFlatRange = 16;

using Taps = std::array<double, 9>;

// ---------------------------------------------------------------------------
// The coefficient file

// A file the test writes, and the table the filter must have read from it.
class CoefficientFile {
 public:
  CoefficientFile() : valid_(kClasses, 0), weights_(kClasses) {}

  // One line: class, position, four ignored fields, then the first `count`
  // weights (the others stay 0). The weights are printed so that they read
  // back as the very same doubles.
  void Give(int cls, int position, const Taps& taps, int count = 9) {
    std::string line = std::to_string(cls) + " " + std::to_string(position) + " 0 0 0 0";
    for (int k = 0; k < count; ++k) {
      char field[40];
      std::snprintf(field, sizeof(field), " %.17g", taps[k]);
      line += field;
      weights_[cls][position][k] = std::strtod(field + 1, nullptr);
    }
    text_ += line + "\n";
    valid_[cls] = 1;
  }
  void GiveAll(int cls, const std::array<Taps, 4>& taps) {
    for (int n = 0; n < 4; ++n) Give(cls, n, taps[n]);
  }

  bool Valid(int cls) const { return valid_[cls] != 0; }
  const Taps& Weights(int cls, int position) const { return weights_[cls][position]; }
  int ValidCount() const { return static_cast<int>(std::count(valid_.begin(), valid_.end(), 1)); }
  const std::string& Text() const { return text_; }

 private:
  std::vector<uint8_t> valid_;
  std::vector<std::array<Taps, 4>> weights_;
  std::string text_;
};

// A file in the temporary directory, removed with this object.
class TempPath {
 public:
  explicit TempPath(const std::string& tag) {
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ =
        (std::filesystem::temp_directory_path() / (std::string("lumaforge_sr_") + info->name() + "_" + tag + ".txt"))
            .string();
    Remove();
  }
  ~TempPath() { Remove(); }
  TempPath(const TempPath&) = delete;
  TempPath& operator=(const TempPath&) = delete;

  void Write(const std::string& text) const {
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    ASSERT_TRUE(file.good()) << path_;
  }
  void Remove() const {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// ---------------------------------------------------------------------------
// The model

// One plane of a picture, read with clamped coordinates: rows above the first
// and below the last are the first and last rows. The description clamps
// rows only; columns left of the first and right of the last (the plain
// formula's neighbour at the first and last columns, the flatness test's
// neighbourhoods at the edge blocks, the missing partner of an odd plane
// width) are clamped the same way here.
struct PlaneView {
  const uint8_t* data;
  uint32_t stride;
  int width;
  int height;
  int At(int x, int y) const {
    x = std::clamp(x, 0, width - 1);
    y = std::clamp(y, 0, height - 1);
    return data[static_cast<size_t>(y) * stride + x];
  }
  // p0..p8: top-left, top, top-right, left, centre, right, bottom-left,
  // bottom, bottom-right.
  std::array<int, 9> Neighbourhood(int x, int y) const {
    std::array<int, 9> p{};
    for (int k = 0; k < 9; ++k) p[k] = At(x + k % 3 - 1, y + k / 3 - 1);
    return p;
  }
  int Range(int x, int y) const {
    const std::array<int, 9> p = Neighbourhood(x, y);
    return *std::max_element(p.begin(), p.end()) - *std::min_element(p.begin(), p.end());
  }
};

PlaneView PlaneOf(const VideoPicture& picture, int k) {
  const int width = static_cast<int>(k ? picture.width / 2 : picture.width);
  const int height = static_cast<int>(k ? picture.height / 2 : picture.height);
  return {picture.planes[k], picture.strides[k], width, height};
}

// Level of a variance index 0..255: index ranges 0-1, 2, 3, 4, 5-6, 7-8,
// 9-10, 11-15, 16-25, 26-35, 36-50, 51-75, 76-100, 101-150, 151-200,
// 201-255 give levels 0 to 15.
int VarianceLevel(int index) {
  static const int kLastIndex[16] = {1, 2, 3, 4, 6, 8, 10, 15, 25, 35, 50, 75, 100, 150, 200, 255};
  for (int level = 0; level < 16; ++level) {
    if (index <= kLastIndex[level]) return level;
  }
  return 15;
}

int ClassOf(const std::array<int, 9>& p) {
  int lo = 255, hi = 0, sum = 0, squares = 0;
  for (int v : p) {
    lo = std::min(lo, v);
    hi = std::max(hi, v);
    sum += v;
    squares += v * v;
  }
  if (hi - lo < kFlatRange) return kFlatClass;
  const int threshold = (lo + hi) >> 1;
  int pattern = 0;
  for (int k = 0; k < 9; ++k) pattern += p[k] > threshold ? 1 << k : 0;
  const double variance = squares / 9.0 - (sum / 9.0) * (sum / 9.0);
  const int index = std::min(static_cast<int>(std::trunc(variance * 255 / 16244)), 255);
  return pattern * 16 + VarianceLevel(index);
}

std::array<uint8_t, 4> Plain(const PlaneView& src, int x, int y) {
  const int c = src.At(x, y), t = src.At(x, y - 1), b = src.At(x, y + 1);
  const int l = src.At(x - 1, y), r = src.At(x + 1, y);
  return {static_cast<uint8_t>((2 * c + t + l + 2) >> 2), static_cast<uint8_t>((2 * c + t + r + 2) >> 2),
          static_cast<uint8_t>((2 * c + b + l + 2) >> 2), static_cast<uint8_t>((2 * c + b + r + 2) >> 2)};
}

std::array<uint8_t, 4> Trained(const std::array<int, 9>& p, const CoefficientFile& coefficients, int cls) {
  std::array<uint8_t, 4> out{};
  for (int n = 0; n < 4; ++n) {
    const Taps& w = coefficients.Weights(cls, n);
    double sum = 0;
    for (int k = 0; k < 9; ++k) sum += p[k] * w[k];
    out[n] = static_cast<uint8_t>(std::trunc(std::clamp(sum, 0.0, 255.0)));
  }
  return out;
}

// How the model made the 2x2 block of one source pixel.
enum class Way : uint8_t { kEdgeColumn, kFlatBlock, kMissingClass, kTrained };

struct Decision {
  Way way;
  int cls;  // the pixel's class, when it was computed
};

struct ModelStats {
  int edgeColumn = 0, flatBlock = 0, missingClass = 0, trained = 0, trainedFlatClass = 0;
  void Count(const Decision& d) {
    switch (d.way) {
      case Way::kEdgeColumn: ++edgeColumn; break;
      case Way::kFlatBlock: ++flatBlock; break;
      case Way::kMissingClass: ++missingClass; break;
      case Way::kTrained:
        ++trained;
        trainedFlatClass += d.cls == kFlatClass;
        break;
    }
  }
};

std::string Describe(const Decision& d) {
  switch (d.way) {
    case Way::kEdgeColumn: return "plain formula (first or last column)";
    case Way::kFlatBlock: return "plain formula (flat 2x2 block)";
    case Way::kMissingClass: return "plain formula (class " + std::to_string(d.cls) + " not in the file)";
    case Way::kTrained: return "trained filter of class " + std::to_string(d.cls);
  }
  return "";
}

// One enlarged plane: 2w x 2h bytes, rows packed.
struct ModelPlane {
  int width = 0, height = 0;  // of the output
  std::vector<uint8_t> bytes;
  std::vector<Decision> decisions;  // per source pixel
  int sourceWidth = 0;
};

ModelPlane EnhancedPlane(const PlaneView& src, const CoefficientFile& coefficients) {
  ModelPlane out;
  out.width = 2 * src.width;
  out.height = 2 * src.height;
  out.sourceWidth = src.width;
  out.bytes.assign(static_cast<size_t>(out.width) * out.height, 0);
  out.decisions.resize(static_cast<size_t>(src.width) * src.height);
  // 2x2 source blocks: pairs of rows and pairs of columns starting at 0.
  for (int by = 0; by < src.height; by += 2) {
    for (int bx = 0; bx < src.width; bx += 2) {
      const bool flat = src.Range(bx, by) < kFlatRange && src.Range(bx + 1, by) < kFlatRange &&
                        src.Range(bx, by + 1) < kFlatRange && src.Range(bx + 1, by + 1) < kFlatRange;
      for (int y = by; y < std::min(by + 2, src.height); ++y) {
        for (int x = bx; x < std::min(bx + 2, src.width); ++x) {
          Decision d{Way::kEdgeColumn, -1};
          std::array<uint8_t, 4> block{};
          if (x == 0 || x == src.width - 1) {
            block = Plain(src, x, y);
          } else if (flat) {
            d.way = Way::kFlatBlock;
            block = Plain(src, x, y);
          } else {
            const std::array<int, 9> p = src.Neighbourhood(x, y);
            d.cls = ClassOf(p);
            if (coefficients.Valid(d.cls)) {
              d.way = Way::kTrained;
              block = Trained(p, coefficients, d.cls);
            } else {
              d.way = Way::kMissingClass;
              block = Plain(src, x, y);
            }
          }
          out.decisions[static_cast<size_t>(y) * src.width + x] = d;
          for (int n = 0; n < 4; ++n) {
            out.bytes[static_cast<size_t>(2 * y + n / 2) * out.width + 2 * x + n % 2] = block[n];
          }
        }
      }
    }
  }
  return out;
}

struct ModelPicture {
  ModelPlane planes[3];
  ModelStats stats;
};

ModelPicture Enhanced(const OwnedPicture& in, const CoefficientFile& coefficients) {
  ModelPicture model;
  for (int k = 0; k < 3; ++k) {
    model.planes[k] = EnhancedPlane(PlaneOf(in.picture, k), coefficients);
    for (const Decision& d : model.planes[k].decisions) model.stats.Count(d);
  }
  return model;
}

// Every output byte equals the model's; the first difference is reported
// with the model's way of making that block.
void ExpectModel(const ModelPicture& model, const VideoPicture& out, const std::string& what) {
  for (int k = 0; k < 3; ++k) {
    const ModelPlane& plane = model.planes[k];
    int differing = 0;
    std::string first;
    for (int y = 0; y < plane.height; ++y) {
      for (int x = 0; x < plane.width; ++x) {
        const uint8_t expected = plane.bytes[static_cast<size_t>(y) * plane.width + x];
        const uint8_t actual = out.planes[k][static_cast<size_t>(y) * out.strides[k] + x];
        if (expected == actual) continue;
        if (differing++ == 0) {
          const Decision& d = plane.decisions[static_cast<size_t>(y / 2) * plane.sourceWidth + x / 2];
          first = "output (" + std::to_string(x) + ", " + std::to_string(y) + ") = source pixel (" +
                  std::to_string(x / 2) + ", " + std::to_string(y / 2) + ") position " +
                  std::to_string((y % 2) * 2 + x % 2) + ": model " + std::to_string(expected) + ", filter " +
                  std::to_string(actual) + ", model used the " + Describe(d);
        }
      }
    }
    EXPECT_EQ(differing, 0) << what << ", plane " << k << " (" << plane.width << "x" << plane.height
                            << "): first difference at " << first;
  }
}

// ---------------------------------------------------------------------------
// Pictures and coefficient sets

// Smooth waves with blocks stepped up, thin dark lines and a little noise:
// most 3x3 neighbourhoods span 16 or more, some are flat.
void FillGradientsAndEdges(OwnedPicture& p, uint32_t seed) {
  for (int k = 0; k < 3; ++k) {
    const PlaneView view = PlaneOf(p.picture, k);
    for (int y = 0; y < view.height; ++y) {
      for (int x = 0; x < view.width; ++x) {
        double v = 120 + 70 * std::sin(0.17 * x + 0.1 * y + k) + 50 * std::cos(0.07 * x - 0.19 * y);
        if ((x / 13 + y / 9) % 3 == 0) v += 60;
        if ((x * 3 + y * 5) % 97 < 4) v -= 90;
        seed = seed * 1664525u + 1013904223u;
        v += static_cast<int>(seed >> 29) - 4;
        p.At(k, x, y) = static_cast<uint8_t>(std::clamp(v, 0.0, 255.0));
      }
    }
  }
}

// Weights that sum to about 1, mostly positive, some negative.
Taps RandomTaps(std::mt19937& rng) {
  std::uniform_real_distribution<double> base(0.0, 1.0), wobble(-0.2, 0.2);
  Taps taps{};
  double sum = 0;
  for (double& w : taps) sum += (w = base(rng));
  for (double& w : taps) w = w / sum + wobble(rng);
  return taps;
}

// The classes the model computes for the interior pixels of the pictures.
std::set<int> ClassesIn(const std::vector<const OwnedPicture*>& pictures) {
  std::set<int> classes;
  for (const OwnedPicture* picture : pictures) {
    for (int k = 0; k < 3; ++k) {
      const PlaneView view = PlaneOf(picture->picture, k);
      for (int y = 0; y < view.height; ++y) {
        for (int x = 1; x + 1 < view.width; ++x) classes.insert(ClassOf(view.Neighbourhood(x, y)));
      }
    }
  }
  return classes;
}

// About half of the classes the pictures hold, the flat class, and a few
// dozen others; one class in eight gets lines of five weights only.
CoefficientFile RandomCoefficients(const std::vector<const OwnedPicture*>& pictures, uint32_t seed) {
  std::mt19937 rng(seed);
  std::set<int> chosen = {kFlatClass};
  for (int cls : ClassesIn(pictures)) {
    if (rng() % 2) chosen.insert(cls);
  }
  for (int i = 0; i < 40; ++i) chosen.insert(1 + static_cast<int>(rng() % (kClasses - 1)));
  CoefficientFile file;
  for (int cls : chosen) {
    const bool shortLines = rng() % 8 == 0;
    for (int n = 0; n < 4; ++n) file.Give(cls, n, RandomTaps(rng), shortLines ? 5 : 9);
  }
  return file;
}

// ---------------------------------------------------------------------------
// The filter

using Log = LogCapture<0>;

class SuperResolution {
 public:
  explicit SuperResolution(uint8_t callerBuffers = 1) {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    EXPECT_EQ(lf->Init(LF_FILTER_SUPER_RESOLUTION, nullptr, callerBuffers), LF_OK);
  }
  ~SuperResolution() { DestroyLumaforge(lf); }
  SuperResolution(const SuperResolution&) = delete;
  SuperResolution& operator=(const SuperResolution&) = delete;

  // The enhanced 2x mode with the coefficients at `path`.
  void Enhance(const std::string& path) {
    uint8_t on = 1;
    EXPECT_EQ(lf->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ENHANCED, &on), LF_OK);
    SetCoefficientFile(path);
  }
  void SetCoefficientFile(const std::string& path) {
    std::vector<char> text(path.begin(), path.end());
    text.push_back('\0');
    EXPECT_EQ(lf->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_COEFFICIENT_FILE, text.data()), LF_OK);
  }
  // Every line of every level from here on goes to Log.
  void CaptureLogs() {
    Log::Lines().clear();
    uint64_t callback = reinterpret_cast<uint64_t>(&Log::Callback);
    int32_t level = LF_LOG_DETAIL;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_CALLBACK, &callback);
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &level);
  }
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_SUPER_RESOLUTION, &in.picture, &out.picture);
  }
  ILumaforge* lf = nullptr;
};

bool Logged(const std::string& part) {
  for (const LogLine& line : Log::Lines()) {
    if (line.text.find(part) != std::string::npos) return true;
  }
  return false;
}

constexpr uint8_t kCanary = 0x5A;

// The output planes' bytes beyond each row's width (the stride padding and
// the byte after the last row) still hold the canary.
void ExpectPaddingUntouched(const OwnedPicture& out, const std::string& what) {
  for (int k = 0; k < 3; ++k) {
    const PlaneView view = PlaneOf(out.picture, k);
    int touched = 0;
    for (size_t i = 0; i < out.memory[k].size(); ++i) {
      const bool inRow =
          i / view.stride < static_cast<size_t>(view.height) && i % view.stride < static_cast<size_t>(view.width);
      touched += !inRow && out.memory[k][i] != kCanary;
    }
    EXPECT_EQ(touched, 0) << what << ": bytes outside the rows of output plane " << k << " changed";
  }
}

// Enlarges each input with one filter per processor level, frame after
// frame, and checks every output against the model. Output rows are padded
// by `pad` bytes: 16 makes the strides of even-width pictures multiples of
// 16, which the filter may write in place.
void ExpectEveryLevelMatches(std::vector<OwnedPicture*> inputs, const CoefficientFile& coefficients,
                             const std::string& what, uint32_t pad = 8) {
  TempPath file("coefficients");
  file.Write(coefficients.Text());
  std::vector<ModelPicture> models;
  for (OwnedPicture* in : inputs) models.push_back(Enhanced(*in, coefficients));
  ForEachCpuLevel([&](const CpuLevel& level) {
    SuperResolution filter;
    filter.Enhance(file.Path());
    for (size_t i = 0; i < inputs.size(); ++i) {
      OwnedPicture& in = *inputs[i];
      const std::string frame = what + " " + std::to_string(in.picture.width) + "x" +
                                std::to_string(in.picture.height) + ", frame " + std::to_string(i) + " at " +
                                level.name;
      std::vector<uint8_t> inputBytes[3] = {in.memory[0], in.memory[1], in.memory[2]};
      OwnedPicture out(LF_I420, 2 * in.picture.width, 2 * in.picture.height, pad);
      out.Fill(kCanary);
      ASSERT_EQ(filter.Run(in, out), LF_OK) << frame;
      ExpectModel(models[i], out.picture, frame);
      ExpectPaddingUntouched(out, frame);
      for (int k = 0; k < 3; ++k) EXPECT_EQ(in.memory[k], inputBytes[k]) << frame << ": input plane " << k;
    }
  });
}

// ---------------------------------------------------------------------------
// Tests

// Plane widths even throughout (luma sizes multiples of 4), so every block
// has both of its columns; widths around the vector widths.
constexpr std::array<std::array<uint32_t, 2>, 5> kSizes = {{{32, 16}, {64, 48}, {100, 36}, {132, 20}, {640, 360}}};

TEST(SuperResolution, EnhancedTwiceOfRandomPicturesMatchesTheModelAtEveryLevel) {
  for (const auto& size : kSizes) {
    const uint32_t seed = size[0] * 1000 + size[1];
    SCOPED_TRACE("seed " + std::to_string(seed));
    OwnedPicture first(LF_I420, size[0], size[1]), second(LF_I420, size[0], size[1]);
    first.FillRandom(seed);
    second.FillRandom(seed + 1);
    const CoefficientFile coefficients = RandomCoefficients({&first, &second}, seed);
    ExpectEveryLevelMatches({&first, &second}, coefficients, "random");
  }
}

TEST(SuperResolution, EnhancedTwiceOfGradientsAndEdgesMatchesTheModelAtEveryLevel) {
  for (const auto& size : kSizes) {
    const uint32_t seed = size[0] * 1000 + size[1] + 7;
    SCOPED_TRACE("seed " + std::to_string(seed));
    OwnedPicture first(LF_I420, size[0], size[1], 16), second(LF_I420, size[0], size[1], 16);
    FillGradientsAndEdges(first, seed);
    FillGradientsAndEdges(second, seed + 1);
    const CoefficientFile coefficients = RandomCoefficients({&first, &second}, seed);
    // The pictures reach every way of making a block.
    const ModelStats stats = Enhanced(first, coefficients).stats;
    EXPECT_GT(stats.trained + stats.missingClass, 2 * stats.flatBlock);
    EXPECT_GT(stats.flatBlock, 0);
    EXPECT_GT(stats.trainedFlatClass, 0);
    EXPECT_GT(stats.missingClass, 0);
    ExpectEveryLevelMatches({&first, &second}, coefficients, "gradients", 16);
  }
}

// Weights about 2^40 in size that cancel within every row and every column
// of the 3x3 neighbourhood, plus weights summing to about 1. On pictures
// whose rows (or columns) are constant the large parts cancel, and the
// rounding of the products and of the running sum decides many truncated
// bytes: only each product rounded on its own and added for k = 0..8 in
// that order, in double, lands on the model's bytes.
TEST(SuperResolution, TheTrainedSumAddsTheProductsForKInOrderInDouble) {
  constexpr uint32_t kSeed = 4040;
  std::mt19937 rng(kSeed);
  OwnedPicture rows(LF_I420, 64, 48), columns(LF_I420, 64, 48);
  for (int k = 0; k < 3; ++k) {
    const PlaneView view = PlaneOf(rows.picture, k);
    for (int y = 0; y < view.height; ++y) {
      const auto value = static_cast<uint8_t>(rng());
      for (int x = 0; x < view.width; ++x) rows.At(k, x, y) = value;
    }
    for (int x = 0; x < view.width; ++x) {
      const auto value = static_cast<uint8_t>(rng());
      for (int y = 0; y < view.height; ++y) columns.At(k, x, y) = value;
    }
  }
  std::set<int> classes = ClassesIn({&rows, &columns});
  classes.insert(kFlatClass);
  CoefficientFile coefficients;
  std::uniform_real_distribution<double> large(-std::ldexp(1.0, 40), std::ldexp(1.0, 40));
  for (int cls : classes) {
    for (int n = 0; n < 4; ++n) {
      const double a = large(rng), b = large(rng), d = large(rng), e = large(rng);
      const Taps cancelling = {a, b, -(a + b), d, e, -(d + e), -(a + d), -(b + e), a + b + d + e};
      Taps taps = RandomTaps(rng);
      for (int k = 0; k < 9; ++k) taps[k] += cancelling[k];
      coefficients.Give(cls, n, taps);
    }
  }

  // The weights do tell the order apart: adding the products from k = 8
  // down, or in pairs, changes some of the bytes the trained filters make.
  int reversedDiffers = 0, pairedDiffers = 0, trainedBlocks = 0;
  for (const OwnedPicture* picture : {&rows, &columns}) {
    const ModelPicture model = Enhanced(*picture, coefficients);
    for (int k = 0; k < 3; ++k) {
      const PlaneView view = PlaneOf(picture->picture, k);
      for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
          const Decision& d = model.planes[k].decisions[static_cast<size_t>(y) * view.width + x];
          if (d.way != Way::kTrained) continue;
          ++trainedBlocks;
          const std::array<int, 9> p = view.Neighbourhood(x, y);
          const std::array<uint8_t, 4> inOrder = Trained(p, coefficients, d.cls);
          for (int n = 0; n < 4; ++n) {
            const Taps& w = coefficients.Weights(d.cls, n);
            double reversed = 0, products[9];
            for (int j = 8; j >= 0; --j) reversed += p[j] * w[j];
            for (int j = 0; j < 9; ++j) products[j] = p[j] * w[j];
            const double paired = (((products[0] + products[1]) + (products[2] + products[3])) +
                                   ((products[4] + products[5]) + (products[6] + products[7]))) +
                                  products[8];
            reversedDiffers += static_cast<uint8_t>(std::trunc(std::clamp(reversed, 0.0, 255.0))) != inOrder[n];
            pairedDiffers += static_cast<uint8_t>(std::trunc(std::clamp(paired, 0.0, 255.0))) != inOrder[n];
          }
        }
      }
    }
  }
  ASSERT_GT(trainedBlocks, 0);
  ASSERT_GT(reversedDiffers, 0);
  ASSERT_GT(pairedDiffers, 0);
  ExpectEveryLevelMatches({&rows, &columns}, coefficients, "cancelling weights");
}

// Flag 0: the result is handed back in the filter's own planes.
TEST(SuperResolution, EnhancedTwiceIntoTheFiltersOwnPictureMatchesTheModel) {
  OwnedPicture in(LF_I420, 96, 64);
  FillGradientsAndEdges(in, 3);
  const CoefficientFile coefficients = RandomCoefficients({&in}, 3);
  TempPath file("coefficients");
  file.Write(coefficients.Text());
  const ModelPicture model = Enhanced(in, coefficients);
  ForEachCpuLevel([&](const CpuLevel& level) {
    SuperResolution filter(0);
    filter.Enhance(file.Path());
    OwnedPicture out(LF_I420, 192, 128);
    ASSERT_EQ(filter.Run(in, out), LF_OK) << level.name;
    EXPECT_EQ(out.picture.width, 192u);
    EXPECT_EQ(out.picture.height, 128u);
    ExpectModel(model, out.picture, std::string("own picture at ") + level.name);
  });
}

// A 3x3 neighbourhood spanning less than 16 makes its pixel flat; a 2x2
// block of flat pixels takes the plain formula, whatever the file gives the
// flat class.
TEST(SuperResolution, AFlatAreaGivesThePlainFormulaWhateverTheFileHolds) {
  OwnedPicture in(LF_I420, 64, 32);
  uint32_t state = 99;
  for (auto& plane : in.memory) {
    for (uint8_t& byte : plane) {
      state = state * 1664525u + 1013904223u;
      byte = static_cast<uint8_t>(100 + (state >> 28));  // 100 .. 115
    }
  }
  CoefficientFile coefficients;
  // The centre at position 0, and weights far from the plain formula at the
  // others.
  coefficients.GiveAll(kFlatClass, {Taps{0, 0, 0, 0, 1, 0, 0, 0, 0}, Taps{1, 0, 0, 0, 0, 0, 0, 0, 0},
                                    Taps{0, 0, 0, 0, 2, 0, 0, 0, 0}, Taps{0, 0, 0, 0, 0.25, 0, 0, 0, 0}});
  TempPath file("coefficients");
  file.Write(coefficients.Text());

  // Written out here rather than taken from the model.
  std::vector<uint8_t> plain[3];
  for (int k = 0; k < 3; ++k) {
    const PlaneView view = PlaneOf(in.picture, k);
    plain[k].assign(static_cast<size_t>(4) * view.width * view.height, 0);
    for (int y = 0; y < view.height; ++y) {
      for (int x = 0; x < view.width; ++x) {
        const std::array<uint8_t, 4> block = Plain(view, x, y);
        for (int n = 0; n < 4; ++n)
          plain[k][static_cast<size_t>(2 * y + n / 2) * 2 * view.width + 2 * x + n % 2] = block[n];
      }
    }
  }
  const ModelPicture model = Enhanced(in, coefficients);
  ASSERT_EQ(model.stats.trained + model.stats.missingClass, 0);
  for (int k = 0; k < 3; ++k) ASSERT_EQ(model.planes[k].bytes, plain[k]);

  ForEachCpuLevel([&](const CpuLevel& level) {
    SuperResolution filter;
    filter.Enhance(file.Path());
    OwnedPicture out(LF_I420, 128, 64);
    ASSERT_EQ(filter.Run(in, out), LF_OK) << level.name;
    ExpectModel(model, out.picture, std::string("flat picture at ") + level.name);
  });

  // A step at an even column: the blocks beside it are not flat, and their
  // pixels whose own neighbourhood stays flat take the flat class's weights.
  for (int k = 0; k < 3; ++k) {
    for (uint32_t y = 0; y < (k ? 16u : 32u); ++y) {
      for (uint32_t x = 22; x < (k ? 32u : 64u); ++x) in.At(k, x, y) += 100;
    }
  }
  const ModelPicture stepped = Enhanced(in, coefficients);
  ASSERT_GT(stepped.stats.trainedFlatClass, 0);
  ForEachCpuLevel([&](const CpuLevel& level) {
    SuperResolution filter;
    filter.Enhance(file.Path());
    OwnedPicture out(LF_I420, 128, 64);
    ASSERT_EQ(filter.Run(in, out), LF_OK) << level.name;
    ExpectModel(stepped, out.picture, std::string("flat picture with a step at ") + level.name);
  });
}

// Every class of the picture is in the file but one: only the pixels of that
// class take the plain formula.
TEST(SuperResolution, AClassMissingFromTheFileFallsBackToThePlainFormulaForItsPixelsOnly) {
  OwnedPicture in(LF_I420, 64, 32);
  FillGradientsAndEdges(in, 11);
  // The most frequent class among the pixels that are classified.
  const ModelPicture probe = Enhanced(in, CoefficientFile());
  std::vector<int> frequency(kClasses, 0);
  for (const ModelPlane& plane : probe.planes) {
    for (const Decision& d : plane.decisions) {
      if (d.way == Way::kMissingClass && d.cls != kFlatClass) ++frequency[d.cls];
    }
  }
  const int missing = static_cast<int>(std::max_element(frequency.begin(), frequency.end()) - frequency.begin());
  ASSERT_GT(frequency[missing], 0);

  // The bottom-right neighbour at every position: far from the plain formula.
  CoefficientFile coefficients;
  const Taps bottomRight = {0, 0, 0, 0, 0, 0, 0, 0, 1};
  for (int cls = 1; cls < kClasses; ++cls) {
    if (cls != missing) coefficients.GiveAll(cls, {bottomRight, bottomRight, bottomRight, bottomRight});
  }
  TempPath file("coefficients");
  file.Write(coefficients.Text());
  const ModelPicture model = Enhanced(in, coefficients);
  ASSERT_EQ(model.stats.missingClass, frequency[missing]);
  ASSERT_GT(model.stats.trained, 0);

  ForEachCpuLevel([&](const CpuLevel& level) {
    SuperResolution filter;
    filter.Enhance(file.Path());
    OwnedPicture out(LF_I420, 128, 64);
    ASSERT_EQ(filter.Run(in, out), LF_OK) << level.name;
    ExpectModel(model, out.picture, std::string("one class missing at ") + level.name);
    // Spelled out for the pixels of the missing class and their neighbours.
    int plainSeen = 0, trainedSeen = 0;
    for (int k = 0; k < 3; ++k) {
      const PlaneView view = PlaneOf(in.picture, k);
      for (int y = 0; y < view.height; ++y) {
        for (int x = 0; x < view.width; ++x) {
          const Decision& d = model.planes[k].decisions[static_cast<size_t>(y) * view.width + x];
          if (d.way != Way::kMissingClass && d.way != Way::kTrained) continue;
          const std::array<uint8_t, 4> expected =
              d.way == Way::kMissingClass
                  ? Plain(view, x, y)
                  : std::array<uint8_t, 4>{
                        static_cast<uint8_t>(view.At(x + 1, y + 1)), static_cast<uint8_t>(view.At(x + 1, y + 1)),
                        static_cast<uint8_t>(view.At(x + 1, y + 1)), static_cast<uint8_t>(view.At(x + 1, y + 1))};
          bool same = true;
          for (int n = 0; n < 4; ++n) same &= out.At(k, 2 * x + n % 2, 2 * y + n / 2) == expected[n];
          EXPECT_TRUE(same) << "plane " << k << " source pixel (" << x << ", " << y << ") at " << level.name;
          (d.way == Way::kMissingClass ? plainSeen : trainedSeen) += same;
        }
      }
    }
    EXPECT_GT(plainSeen, 0);
    EXPECT_GT(trainedSeen, 0);
  });
}

// Odd chroma widths and heights: the last block of a row has one column and
// the last block of a plane one row. The description pairs rows and columns
// from 0 and says nothing more; the model clamps the missing column and row,
// which only reaches the flatness test of such a block.
TEST(SuperResolution, OddChromaSizesMatchTheModelWithClampedEdges) {
  const std::array<std::array<uint32_t, 2>, 6> sizes = {{{18, 10}, {34, 14}, {66, 22}, {6, 6}, {4, 2}, {2, 2}}};
  for (const auto& size : sizes) {
    const uint32_t seed = size[0] * 100 + size[1];
    SCOPED_TRACE("seed " + std::to_string(seed));
    OwnedPicture random(LF_I420, size[0], size[1]), waves(LF_I420, size[0], size[1]);
    random.FillRandom(seed);
    FillGradientsAndEdges(waves, seed);
    // Every class the pictures hold is in the file.
    CoefficientFile coefficients;
    std::mt19937 rng(seed);
    std::set<int> classes = ClassesIn({&random, &waves});
    classes.insert(kFlatClass);
    for (int cls : classes) {
      for (int n = 0; n < 4; ++n) coefficients.Give(cls, n, RandomTaps(rng));
    }
    ExpectEveryLevelMatches({&random, &waves}, coefficients, "odd chroma");
  }
}

TEST(SuperResolution, WithoutItsCoefficientFileEnhancedProcessFailsUntilTheFileCanBeRead) {
  OwnedPicture in(LF_I420, 64, 48);
  FillGradientsAndEdges(in, 5);
  const CoefficientFile coefficients = RandomCoefficients({&in}, 5);
  const ModelPicture model = Enhanced(in, coefficients);
  OwnedPicture out(LF_I420, 128, 96);

  // The missing file appears at the path the filter was given.
  {
    TempPath file("appearing");
    SuperResolution filter;
    filter.CaptureLogs();
    filter.Enhance(file.Path());
    for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(filter.Run(in, out), LF_FAILED) << "frame " << frame;
    EXPECT_TRUE(Logged("setup_enhSR_coeffs_c: ERROR, Could not open filter coeffs file, " + file.Path()));
    EXPECT_TRUE(Logged("CSuperResolution::InitBuffer: setup_enhSR_coeffs_c returns 1"));
    file.Write(coefficients.Text());
    ASSERT_EQ(filter.Run(in, out), LF_OK);
    ExpectModel(model, out.picture, "after the file appeared");
  }
  // The filter is given another path, to a readable file.
  {
    TempPath missing("missing"), readable("readable");
    readable.Write(coefficients.Text());
    SuperResolution filter;
    filter.Enhance(missing.Path());
    for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(filter.Run(in, out), LF_FAILED) << "frame " << frame;
    filter.SetCoefficientFile(readable.Path());
    ASSERT_EQ(filter.Run(in, out), LF_OK);
    ExpectModel(model, out.picture, "after a readable path was set");
  }
}

// The standard 2x kernel needs no coefficients.
TEST(SuperResolution, StandardTwiceNeedsNoCoefficientFile) {
  TempPath missing("missing");
  OwnedPicture in(LF_I420, 64, 48), out(LF_I420, 128, 96);
  in.FillRandom(8);
  SuperResolution filter;
  filter.SetCoefficientFile(missing.Path());
  EXPECT_EQ(filter.Run(in, out), LF_OK);
}

TEST(SuperResolution, EnhancedOneAndAHalfIsNotSupported) {
  OwnedPicture in(LF_I420, 640, 360), out(LF_I420, 960, 540);
  in.FillRandom(15);
  TempPath file("coefficients"), missing("missing");
  file.Write(RandomCoefficients({&in}, 15).Text());
  for (const TempPath* path : {&file, &missing}) {
    SuperResolution filter;
    filter.CaptureLogs();
    filter.Enhance(path->Path());
    // 1.5x needs no coefficients, so a missing file changes nothing.
    for (int frame = 0; frame < 2; ++frame) {
      EXPECT_EQ(filter.Run(in, out), LF_UNSUPPORTED) << path->Path() << ", frame " << frame;
    }
    EXPECT_TRUE(
        Logged("CSuperResolution::Process: 1.5X version of enhanced Super Resolution Filter is not supported yet."))
        << path->Path();
  }
}

// Neither 2x nor 1.5x: refused without an error or warning line.
TEST(SuperResolution, OtherRatiosAreRefusedWithoutAMessage) {
  OwnedPicture in(LF_I420, 640, 360), out(LF_I420, 1000, 540);
  in.FillRandom(16);
  TempPath file("coefficients");
  file.Write(RandomCoefficients({&in}, 16).Text());
  for (const uint8_t enhanced : {1, 0}) {
    SuperResolution filter;
    filter.CaptureLogs();
    if (enhanced) filter.Enhance(file.Path());
    EXPECT_EQ(filter.Run(in, out), LF_FAILED) << "enhanced " << int{enhanced};
    for (const LogLine& line : Log::Lines()) {
      EXPECT_GT(line.level, LF_LOG_WARNING) << "enhanced " << int{enhanced} << ": " << line.text;
    }
  }
}

}  // namespace
}  // namespace Lumaforge::test
