// The denoise filter through the public interface, checked byte for byte
// against a model of its spatial, temporal and noise-estimation passes kept
// in this file.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/log_capture.h"

namespace Lumaforge::test {
namespace {

// ---------------------------------------------------------------------------
// Pictures: packed planes for the model, caller-owned planes for the library

struct Plane {
  int w = 0, h = 0;
  std::vector<uint8_t> px;
  uint8_t& At(int x, int y) { return px[static_cast<size_t>(y) * w + x]; }
  int At(int x, int y) const { return px[static_cast<size_t>(y) * w + x]; }
};

// Y, then the two chroma planes of width/2 x height/2.
struct Frame {
  Frame(int w, int h) : p{{w, h, {}}, {w / 2, h / 2, {}}, {w / 2, h / 2, {}}} {
    for (Plane& plane : p) plane.px.assign(static_cast<size_t>(plane.w) * plane.h, 0);
  }
  Plane p[3];
};

// Frame t of a scene: a ramp with two steps, a square moving 5 columns and 3
// rows per frame (in pictures at least 32 wide), and noise of amplitude `noise` drawn anew for every frame.
Frame Scene(int w, int h, int t, int noise) {
  Frame f(w, h);
  uint32_t seed = 12345u + 7919u * static_cast<uint32_t>(t);
  const int sx = (5 * t) % std::max(1, w - 8), sy = (3 * t) % std::max(1, h - 8);
  for (int k = 0; k < 3; ++k) {
    const int scale = k ? 2 : 1;
    for (int y = 0; y < f.p[k].h; ++y) {
      for (int x = 0; x < f.p[k].w; ++x) {
        const int lx = x * scale, ly = y * scale;
        int v = k == 0 ? 40 + (lx + 2 * ly) * 100 / (w + 2 * h) + (lx >= w / 3 ? 60 : 0) + (ly >= h / 2 ? 30 : 0)
                       : 100 + 20 * k + lx * 30 / w + (ly >= h / 2 ? 25 : 0);
        if (w >= 32 && lx >= sx && lx < sx + 10 && ly >= sy && ly < sy + 10) v = k == 0 ? 220 : 60 + 60 * k;
        seed = seed * 1664525u + 1013904223u;
        v += static_cast<int>((seed >> 24) % static_cast<uint32_t>(2 * noise + 1)) - noise;
        f.p[k].At(x, y) = static_cast<uint8_t>(std::clamp(v, 0, 255));
      }
    }
  }
  return f;
}

constexpr uint8_t kCanary = 0x5A;

// A picture in the caller's memory. Aligned: 16-byte aligned planes with Y
// strides a multiple of 16. Otherwise odd addresses and odd strides.
class CallerPicture {
 public:
  CallerPicture(const Frame& f, bool aligned, uint32_t format = LF_I420) {
    const int w = f.p[0].w;
    picture.width = static_cast<uint32_t>(w);
    picture.height = static_cast<uint32_t>(f.p[0].h);
    picture.format = format;
    const uint32_t yStride = aligned ? static_cast<uint32_t>((w + 15) / 16 * 16 + 16) : static_cast<uint32_t>(w + 5);
    for (int k = 0; k < 3; ++k) {
      const Plane& plane = f.p[k];
      const uint32_t stride = k == 0 ? yStride : aligned ? yStride / 2 : static_cast<uint32_t>(plane.w + 2 + k);
      memory_[k].assign(static_cast<size_t>(stride) * plane.h + 64, kCanary);
      const uintptr_t base = reinterpret_cast<uintptr_t>(memory_[k].data());
      offset_[k] = (16 - base % 16) % 16 + (aligned ? 0 : 1 + 2 * k);
      picture.planes[k] = memory_[k].data() + offset_[k];
      picture.strides[k] = stride;
      for (int y = 0; y < plane.h; ++y) {
        std::copy_n(&plane.px[static_cast<size_t>(y) * plane.w], plane.w, picture.planes[k] + y * stride);
      }
    }
  }
  Frame Read() const {
    Frame f(static_cast<int>(picture.width), static_cast<int>(picture.height));
    for (int k = 0; k < 3; ++k) {
      for (int y = 0; y < f.p[k].h; ++y) {
        std::copy_n(picture.planes[k] + y * picture.strides[k], f.p[k].w,
                    &f.p[k].px[static_cast<size_t>(y) * f.p[k].w]);
      }
    }
    return f;
  }
  // Bytes outside the picture's rows still hold the canary.
  bool PaddingIntact() const {
    for (int k = 0; k < 3; ++k) {
      const size_t w = k ? picture.width / 2 : picture.width, h = k ? picture.height / 2 : picture.height;
      for (size_t i = 0; i < memory_[k].size(); ++i) {
        const size_t at = i - offset_[k];
        const bool inRow = i >= offset_[k] && at / picture.strides[k] < h && at % picture.strides[k] < w;
        if (!inRow && memory_[k][i] != kCanary) return false;
      }
    }
    return true;
  }
  VideoPicture picture = {};

 private:
  std::vector<uint8_t> memory_[3];
  size_t offset_[3] = {};
};

// "" when the frames are equal, else the first differing byte.
std::string FirstDifference(const Frame& got, const Frame& want) {
  for (int k = 0; k < 3; ++k) {
    for (int y = 0; y < want.p[k].h; ++y) {
      for (int x = 0; x < want.p[k].w; ++x) {
        if (got.p[k].At(x, y) != want.p[k].At(x, y)) {
          return "plane " + std::to_string(k) + " at x " + std::to_string(x) + " y " + std::to_string(y) +
                 ": library " + std::to_string(got.p[k].At(x, y)) + ", model " + std::to_string(want.p[k].At(x, y));
        }
      }
    }
  }
  return "";
}

// ---------------------------------------------------------------------------
// The model

constexpr int kAc[5] = {0, 300, 704, 704, 704};
constexpr int kDc[5] = {0, 140, 420, 420, 420};
constexpr int kWeight[8] = {16, 10, 8, 6, 5, 5, 4, 3};
constexpr int kBasis[4][4] = {{16, 16, 16, 16}, {-21, -9, 9, 21}, {16, -16, -16, 16}, {-9, 21, -21, 9}};

enum Kernel { kSmoother, kKernelA, kKernelB };

int FilterPixel(const Plane& p, int x, int y, Kernel kernel) {
  const int c = p.At(x, y);
  int sumW = 0, sumWn = 0, smooth = 0;
  for (int dy = -1; dy <= 1; ++dy) {
    for (int dx = -1; dx <= 1; ++dx) {
      const int n = p.At(x + dx, y + dy);
      smooth += n * (dx ? 1 : 2) * (dy ? 1 : 2);
      if (!dx && !dy) continue;
      const int d = std::abs(n - c);
      const int w = kernel == kKernelA ? (32 - d >= 0 ? ((32 - d) * (32 - d)) >> 5 : -1) : 28 - (d >> 2);
      if (w >= 0) {
        sumW += w;
        sumWn += w * n;
      }
    }
  }
  if (kernel == kSmoother) return (smooth + 8) >> 4;
  return ((256 - sumW) * c + 128 + sumWn) >> 8;
}

// One run: columns x0..x1 of row y, clipped to the plane's interior, all
// computed from the current contents and then stored together.
void FilterRun(Plane& p, int y, int x0, int x1, Kernel kernel) {
  x0 = std::max(x0, 1);
  x1 = std::min(x1, p.w - 2);
  if (y < 1 || y > p.h - 2 || x0 > x1) return;
  std::vector<int> out;
  for (int x = x0; x <= x1; ++x) out.push_back(FilterPixel(p, x, y, kernel));
  for (int x = x0; x <= x1; ++x) p.At(x, y) = static_cast<uint8_t>(out[x - x0]);
}

struct Model {
  int32_t Init(const DenoiseConfig* c) {
    if (!c) return LF_INVALID_PARAMETER;
    if (c->format != LF_I420 && c->format != LF_YV12) return LF_UNSUPPORTED;
    if (c->width != width || c->height != height) hasStore = false;
    width = c->width;
    height = c->height;
    SetLevel(c->level);
    frameIndex = 0;
    initialised = true;
    return LF_OK;
  }
  void Uninit() {
    if (!initialised) return;
    hasStore = false;
    frameIndex = 0;
    initialised = false;
  }
  void SetLevel(int32_t value) {
    if (value == configured) return;
    configured = value;
    if (value == 0) {
      current = 1;
    } else if (value >= 1 && value <= 4) {
      current = value;
      smoothed = value * 256;
    } else {
      smoothed = current * 256;
    }
  }
  void Reinit() {
    Uninit();
    const DenoiseConfig config{width, height, LF_I420, configured};
    Init(&config);
  }

  void Process(Frame& f, uint32_t format = LF_I420) {
    if (configured == -1) {
      ++frameIndex;
      return;
    }
    const int phase = frameIndex % interval;
    if (phase >= 6 && current == 0) {
      ++frameIndex;
      return;
    }
    if (static_cast<uint32_t>(f.p[0].w) != width || static_cast<uint32_t>(f.p[0].h) != height) {
      Uninit();
      const DenoiseConfig config{static_cast<uint32_t>(f.p[0].w), static_cast<uint32_t>(f.p[0].h), format, configured};
      Init(&config);
    }
    mapW = (f.p[0].w + 15) / 16;
    mapH = (f.p[0].h + 15) / 16;
    const bool hadReference = hasStore;
    if (!hasStore) {
      reference = f;
      map.assign(static_cast<size_t>(mapW) * mapH, 0);
      hasStore = true;
    }
    bool temporal = hadReference;
    if (configured == 0 && phase < 6 && hadReference) {
      estimate = EstimateNoise(f.p[0], reference.p[0]);
      const int target = estimate < 256    ? 128
                         : estimate < 512  ? 16512
                         : estimate < 2560 ? 32896
                         : estimate < 4096 ? 49280
                                           : 65664;
      smoothed = (smoothed * 192 + target) >> 8;
      int level = 4;
      if (smoothed >= 1024) {
        smoothed = 1024;
      } else {
        level = std::min((smoothed + 128) >> 8, 4);
      }
      if (level != current) {
        if (current == 0) {
          std::fill(map.begin(), map.end(), 0);
          temporal = false;
        }
        current = level;
      }
    }
    if (current > 0) {
      if (current <= 2) {
        if (temporal) Temporal(f);
        Spatial(f, false);
      } else {
        Spatial(f, true);
        if (temporal) Temporal(f);
      }
      reference = f;
    }
    ++frameIndex;
  }

  void Spatial(Frame& f, bool all) {
    const Kernel kernel = current == 4 ? kKernelB : kKernelA;
    Plane& luma = f.p[0];
    const int cols = (luma.w + 15) / 16, rows = (luma.h + 15) / 16;
    for (int by = 0; by < rows; ++by) {
      for (int bx = 0; bx < cols; ++bx) {
        if (!all && map[by * mapW + bx]) continue;
        const int x = 16 * bx;
        for (int y = 16 * by; y < 16 * by + 16; ++y) {
          if (bx == 0) {
            FilterRun(luma, y, x + 1, x + 7, kSmoother);
            FilterRun(luma, y, x + 8, x + 15, kernel);
          } else if (bx == cols - 1) {
            FilterRun(luma, y, x, x + 7, kernel);
            FilterRun(luma, y, x + 8, x + 14, kSmoother);
          } else {
            FilterRun(luma, y, x, x + 15, kernel);
          }
        }
      }
    }
    for (int k = 1; k < 3; ++k) {
      Plane& chroma = f.p[k];
      const int cCols = (chroma.w + 7) / 8, cRows = (chroma.h + 7) / 8;
      for (int by = 0; by < cRows; ++by) {
        for (int bx = 0; bx < cCols; ++bx) {
          if (!all && map[by * mapW + bx]) continue;
          const int x = 8 * bx;
          for (int y = 8 * by; y < 8 * by + 8; ++y) {
            if (bx == 0) {
              FilterRun(chroma, y, x + 1, x + 7, kSmoother);
            } else if (bx == cCols - 1) {
              FilterRun(chroma, y, x, x + 6, kSmoother);
            } else if (y >= 2) {
              FilterRun(chroma, y, x, x + 7, kKernelA);
            }
          }
        }
      }
    }
  }

  static bool BlockTest(const Plane& ref, const Plane& cur, int x, int y, int tac, int tdc, int& cell) {
    int aR[4][8], aC[4][8], sad = 0;
    for (int r = 0; r < 4; ++r) {
      for (int j = 0; j < 8; ++j) {
        aR[r][j] = (ref.At(x + j, y + 2 * r) + ref.At(x + j, y + 2 * r + 1) + 1) >> 1;
        aC[r][j] = (cur.At(x + j, y + 2 * r) + cur.At(x + j, y + 2 * r + 1) + 1) >> 1;
        sad += std::abs(aC[r][j] - aR[r][j]);
      }
    }
    if (sad <= cell || sad <= tac / 8 || sad >= 7 * tac / 16) return sad < ((7 * tac) >> 4);
    int d[4][4];
    int16_t t[4][4];
    for (int r = 0; r < 4; ++r) {
      for (int k = 0; k < 4; ++k) d[r][k] = (aR[r][2 * k] - aC[r][2 * k]) + (aR[r][2 * k + 1] - aC[r][2 * k + 1]);
    }
    for (int r = 0; r < 4; ++r) {
      for (int k = 0; k < 4; ++k) {
        int sum = 0;
        for (int j = 0; j < 4; ++j) sum += kBasis[k][j] * d[r][j];
        t[r][k] = static_cast<int16_t>(sum >> 6);
      }
    }
    bool pass = true;
    for (int k = 0; k < 4; ++k) {
      for (int j = 0; j < 4; ++j) {
        int sum = 0;
        for (int r = 0; r < 4; ++r) sum += kBasis[k][r] * t[r][j];
        const int16_t magnitude = static_cast<int16_t>(std::abs(sum));
        if (magnitude > (k == 0 && j == 0 ? tdc : tac)) pass = false;
      }
    }
    cell = sad;
    return pass;
  }

  void Temporal(Frame& f) {
    const int w = f.p[0].w, h = f.p[0].h;
    for (int y = 0; y < h - 15; y += 16) {
      for (int x = 0; x < w - 15; x += 16) {
        const int bx = x / 16, by = y / 16;
        uint8_t& entry = map[by * mapW + bx];
        int c = entry;
        if (by > 0) c = std::min<int>(c, map[(by - 1) * mapW + bx]);
        if (by + 1 < mapH) c = std::min<int>(c, map[(by + 1) * mapW + bx]);
        if (bx > 0) c = std::min<int>(c, map[by * mapW + bx - 1]);
        if (bx + 1 < mapW) c = std::min<int>(c, map[by * mapW + bx + 1]);
        const double s = std::sqrt((c + 2) * 0.5 / (c + 1));
        const int tac = static_cast<int>(std::floor(kAc[current] * s + 0.5));
        const int tdc = static_cast<int>(std::floor(kDc[current] * s + 0.5));
        int cells[3] = {0, 0, 0};
        const bool pass = BlockTest(reference.p[0], f.p[0], x, y, tac, tdc, cells[0]) &&
                          BlockTest(reference.p[0], f.p[0], x + 8, y, tac, tdc, cells[0]) &&
                          BlockTest(reference.p[0], f.p[0], x, y + 8, tac, tdc, cells[0]) &&
                          BlockTest(reference.p[0], f.p[0], x + 8, y + 8, tac, tdc, cells[0]) &&
                          BlockTest(reference.p[1], f.p[1], x / 2, y / 2, tac, tdc, cells[1]) &&
                          BlockTest(reference.p[2], f.p[2], x / 2, y / 2, tac, tdc, cells[2]);
        if (!pass) {
          entry = 0;
          ++rejected;
          continue;
        }
        for (int k = 0; k < 3; ++k) {
          const int size = k ? 8 : 16, x0 = k ? x / 2 : x, y0 = k ? y / 2 : y;
          for (int yy = y0; yy < y0 + size; ++yy) {
            for (int xx = x0; xx < x0 + size; ++xx) {
              const int v = (f.p[k].At(xx, yy) * kWeight[c] + reference.p[k].At(xx, yy) * (32 - kWeight[c]) + 16) >> 5;
              f.p[k].At(xx, yy) = static_cast<uint8_t>(std::clamp(v, 0, 255));
            }
          }
        }
        entry = static_cast<uint8_t>(std::min(entry + 1, 7));
        ++blended;
      }
    }
  }

  static int32_t EstimateNoise(const Plane& cur, const Plane& ref) {
    struct Block {
      int64_t v, s;
    };
    std::vector<Block> blocks;
    int64_t vMin = 1;
    bool haveMin = false;
    for (int cy = 2; cy < cur.h - 2; cy += 5) {
      for (int cx = 2; cx < cur.w - 6; cx += 5) {
        int d[5][5];
        int64_t sum = 0;
        for (int r = 0; r < 5; ++r) {
          for (int c = 0; c < 5; ++c) {
            d[r][c] = std::clamp(cur.At(cx - 2 + c, cy - 2 + r) - ref.At(cx - 2 + c, cy - 2 + r) + 128, 0, 255);
            sum += d[r][c];
          }
        }
        const int64_t mean = sum / 25;
        int64_t squares = 0;
        for (auto& row : d) {
          for (int value : row) squares += (value - mean) * (value - mean);
        }
        const int64_t v = squares * 256 / 24;
        auto sq = [](int64_t a) { return a * a; };
        int64_t e[4] = {0, 0, 0, 0};
        for (int r = 0; r < 5; ++r) {
          for (int c = 0; c < 4; ++c) e[0] += sq(d[r][c + 1] - d[r][c]);
        }
        for (int r = 0; r < 4; ++r) {
          for (int c = 0; c < 5; ++c) e[1] += sq(d[r + 1][c] - d[r][c]);
        }
        for (int r = 0; r < 4; ++r) {
          for (int c = 0; c < 4; ++c) {
            e[2] += sq(d[r + 1][c + 1] - d[r][c]);
            e[3] += sq(d[r + 1][c] - d[r][c + 1]);
          }
        }
        e[0] *= 4;
        e[1] *= 4;
        e[2] *= 5;
        e[3] *= 5;
        int64_t maxE = 0, minE = 0;
        for (int64_t energy : e) {
          maxE = std::max(maxE, energy);
          if (energy > 0 && (minE == 0 || energy < minE)) minE = energy;
        }
        int64_t s = 0;
        if (minE > 0) {
          const int64_t ratio = maxE * 256 / minE;
          s = ratio <= 282 ? 0 : ratio < 666 ? (ratio - 282) * 256 / 383 : 256;
        }
        if (s == 0 && v != 0 && (!haveMin || v < vMin)) {
          vMin = v;
          haveMin = true;
        }
        blocks.push_back({v, s});
      }
    }
    int64_t weighted = 0, weights = 0;
    for (const Block& b : blocks) {
      const float ratio = static_cast<float>(b.v) / static_cast<float>(vMin);
      if (b.s < 128 && ratio > 0.5f && ratio < 550.0f) {
        weighted += (256 - b.s) * b.v;
        weights += 256 - b.s;
      }
    }
    return weights ? static_cast<int32_t>(weighted / weights) : 0;
  }

  uint32_t width = 0, height = 0;
  int32_t configured = -1, current = 0, smoothed = 256, estimate = 0, interval = 90, frameIndex = 0;
  bool initialised = false, hasStore = false;
  Frame reference{0, 0};
  std::vector<uint8_t> map;
  int mapW = 0, mapH = 0;
  int blended = 0, rejected = 0;  // temporal decisions, to see that sequences exercise both
};

// ---------------------------------------------------------------------------
// The library

using Log = LogCapture<0>;

struct Denoiser {
  Denoiser() {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
  }
  ~Denoiser() { DestroyLumaforge(lf); }
  Denoiser(const Denoiser&) = delete;
  Denoiser& operator=(const Denoiser&) = delete;

  int32_t Init(DenoiseConfig config) { return lf->Init(LF_FILTER_DENOISE, &config, 0); }
  int32_t Run(VideoPicture& picture) {
    VideoPicture unused = {};
    return lf->Process(LF_FILTER_DENOISE, &picture, &unused);
  }
  int32_t Set(ParamId id, int32_t value) { return lf->SetParam(LF_FILTER_DENOISE, id, &value); }
  int32_t Get(ParamId id) {
    int32_t value = -99;
    EXPECT_EQ(lf->GetParam(LF_FILTER_DENOISE, id, &value), LF_OK);
    return value;
  }
  ILumaforge* lf = nullptr;
};

// Runs one frame through the library and the model and compares the result.
void ExpectFrameMatches(Denoiser& lib, Model& model, const Frame& in, bool aligned, const std::string& what,
                        uint32_t format = LF_I420) {
  CallerPicture picture(in, aligned, format);
  ASSERT_EQ(lib.Run(picture.picture), LF_OK) << what;
  Frame expected = in;
  model.Process(expected, format);
  ASSERT_EQ(FirstDifference(picture.Read(), expected), "") << what;
  ASSERT_TRUE(picture.PaddingIntact()) << what;
}

// ---------------------------------------------------------------------------
// Tests

TEST(Denoise, FixedLevelsMatchTheModelAtEveryCpuLevel) {
  struct Size {
    int w, h;
  };
  const Size sizes[] = {{64, 48}, {80, 64}, {66, 50}, {16, 16}, {18, 20}, {8, 6}};
  ForEachCpuLevel([&](const CpuLevel& cpu) {
    for (const Size& size : sizes) {
      for (int32_t level = 1; level <= 4; ++level) {
        // Layouts: all aligned, all unaligned, alternating frame by frame.
        for (int layout = 0; layout < 3; ++layout) {
          Denoiser lib;
          Model model;
          const DenoiseConfig config{static_cast<uint32_t>(size.w), static_cast<uint32_t>(size.h),
                                     layout == 2 ? LF_YV12 : LF_I420, level};
          ASSERT_EQ(lib.Init(config), model.Init(&config));
          for (int t = 0; t < 6; ++t) {
            const bool aligned = layout == 0 || (layout == 2 && t % 2);
            const std::string what = std::string(cpu.name) + " " + std::to_string(size.w) + "x" +
                                     std::to_string(size.h) + " level " + std::to_string(level) + " layout " +
                                     std::to_string(layout) + " frame " + std::to_string(t);
            ExpectFrameMatches(lib, model, Scene(size.w, size.h, t, 3), aligned, what, config.format);
            if (::testing::Test::HasFatalFailure()) return;
          }
          if (size.w >= 64) {
            EXPECT_GT(model.blended, 0) << size.w << "x" << size.h << " level " << level;
            EXPECT_GT(model.rejected, 0) << size.w << "x" << size.h << " level " << level;
          }
        }
      }
    }
  });
}

// Reconfiguring in the middle of a sequence: Init with the same size keeps
// the reference, Init with another size, a picture of another size and
// SetParam 4 drop it; SetParam 1 changes the level from the next frame.
TEST(Denoise, ReconfigurationKeepsOrDropsTheReferenceAsTheModelDoes) {
  ForEachCpuLevel([](const CpuLevel& cpu) {
    Denoiser lib;
    Model model;
    int t = 0;
    auto frame = [&](int w, int h) {
      ExpectFrameMatches(lib, model, Scene(w, h, t, 3), t % 3 == 0,
                         std::string(cpu.name) + " frame " + std::to_string(t));
      if (::testing::Test::HasFatalFailure()) return;
      ++t;
    };
    DenoiseConfig config{64, 48, LF_YV12, 2};
    ASSERT_EQ(lib.Init(config), model.Init(&config));
    frame(64, 48);
    frame(64, 48);
    config.level = 1;
    ASSERT_EQ(lib.Init(config), model.Init(&config));
    frame(64, 48);
    config = {48, 32, LF_I420, 1};
    ASSERT_EQ(lib.Init(config), model.Init(&config));
    frame(48, 32);
    frame(48, 32);
    frame(64, 48);  // the picture's size wins
    frame(64, 48);
    ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_REINIT, 0), LF_OK);
    model.Reinit();
    frame(64, 48);
    frame(64, 48);
    ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_LEVEL, 4), LF_OK);
    model.SetLevel(4);
    frame(64, 48);
    frame(64, 48);
    EXPECT_EQ(lib.Get(LF_PARAM_DENOISE_CURRENT_LEVEL), 4);
  });
}

TEST(Denoise, AutomaticLevelFollowsTheNoiseEstimate) {
  // Noise amplitude per frame: a clean stretch lets the level fall to NONE,
  // heavy noise raises it again, lighter noise brings it down.
  const int noise[] = {2, 0, 0, 0, 0, 0, 0, 0, 10, 10, 10, 10, 10, 10, 4, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2};
  const int frames = static_cast<int>(sizeof(noise) / sizeof(noise[0]));
  ForEachCpuLevel([&](const CpuLevel& cpu) {
    Denoiser lib;
    Model model;
    const DenoiseConfig config{80, 64, LF_I420, 0};
    ASSERT_EQ(lib.Init(config), model.Init(&config));
    EXPECT_EQ(lib.Get(LF_PARAM_DENOISE_CURRENT_LEVEL), 1);  // automatic mode starts at WEAK
    ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_INTERVAL, 8), LF_OK);
    ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_INTERVAL, 0), LF_OK);  // ignored
    model.interval = 8;
    std::vector<int> levels, changesAtPhase;
    bool roseFromNone = false;
    for (int t = 0; t < frames; ++t) {
      if (t == 14) {  // phase 6 of the second interval becomes phase 0: the estimate runs
        ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_RESTART, 0), LF_OK);
        model.frameIndex = 0;
      }
      const int before = model.current;
      const int phase = model.frameIndex % model.interval;
      const bool hadReference = model.hasStore;
      const std::string what = std::string(cpu.name) + " frame " + std::to_string(t);
      const int w = t < 22 ? 80 : 64;  // the new size drops the reference: no estimate on frame 22
      ExpectFrameMatches(lib, model, Scene(w, 64, t, noise[t]), true, what);
      if (::testing::Test::HasFatalFailure()) return;
      ASSERT_EQ(lib.Get(LF_PARAM_DENOISE_NOISE_ESTIMATE), model.estimate) << what;
      const int level = lib.Get(LF_PARAM_DENOISE_CURRENT_LEVEL);
      ASSERT_EQ(level, model.current) << what;
      if (level != before) {
        EXPECT_LT(phase, 6) << what;
        EXPECT_TRUE(hadReference) << what;
        roseFromNone |= before == 0;
      }
      levels.push_back(level);
    }
    // The sequence goes through NONE, rises from it and reaches strong levels.
    EXPECT_NE(std::find(levels.begin(), levels.end(), 0), levels.end());
    EXPECT_TRUE(roseFromNone);
    EXPECT_GE(*std::max_element(levels.begin(), levels.end()), 3);
  });
}

TEST(Denoise, LevelMinusOnePassesPicturesThroughUntilALevelIsSet) {
  Denoiser lib;
  Model model;
  const DenoiseConfig config{32, 32, LF_I420, -1};
  ASSERT_EQ(lib.Init(config), model.Init(&config));
  const Frame in = Scene(32, 32, 0, 5);
  CallerPicture picture(in, false);
  picture.picture.strides[0] = 0;  // refused otherwise, but a pass-through returns first
  EXPECT_EQ(lib.Run(picture.picture), LF_OK);
  picture.picture.strides[0] = 37;
  EXPECT_EQ(lib.Run(picture.picture), LF_OK);
  EXPECT_EQ(FirstDifference(picture.Read(), in), "");
  ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_LEVEL, 2), LF_OK);
  model.SetLevel(2);
  ExpectFrameMatches(lib, model, Scene(32, 32, 1, 5), false, "level 2");
  ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_LEVEL, -1), LF_OK);
  CallerPicture again(in, true);
  EXPECT_EQ(lib.Run(again.picture), LF_OK);
  EXPECT_EQ(FirstDifference(again.Read(), in), "");
  EXPECT_EQ(lib.Get(LF_PARAM_DENOISE_CURRENT_LEVEL), 2);  // a pass-through keeps the level in force
}

TEST(Denoise, StatusCodes) {
  Denoiser lib;
  const Frame in = Scene(32, 32, 0, 3);
  CallerPicture picture(in, true);
  EXPECT_EQ(lib.Run(picture.picture), LF_NOT_CREATED);
  EXPECT_EQ(lib.lf->Init(LF_FILTER_DENOISE, nullptr, 0), LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.Run(picture.picture), LF_PARAM_NOT_READY);  // created by the refused Init, not initialised
  EXPECT_EQ(lib.Init({32, 32, LF_NV12, 1}), LF_UNSUPPORTED);
  EXPECT_EQ(lib.Run(picture.picture), LF_PARAM_NOT_READY);
  ASSERT_EQ(lib.Init({32, 32, LF_I420, 1}), LF_OK);

  EXPECT_EQ(lib.lf->Process(LF_FILTER_DENOISE, nullptr, &picture.picture), LF_INVALID_PARAMETER);
  // Each refused picture is left as it was.
  auto refused = [&](void (*change)(VideoPicture&)) {
    CallerPicture bad(in, true);
    VideoPicture changed = bad.picture;
    change(changed);
    const int32_t status = lib.Run(changed);
    EXPECT_EQ(FirstDifference(bad.Read(), in), "");
    return status;
  };
  EXPECT_EQ(refused([](VideoPicture& p) { p.format = LF_NV12; }), LF_UNSUPPORTED);
  EXPECT_EQ(refused([](VideoPicture& p) { p.planes[2] = nullptr; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) { p.width = 0; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) { p.height = 0; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) { p.strides[0] = 31; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) { p.strides[1] = 15; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) { p.strides[2] = 15; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](VideoPicture& p) {
              p.strides[0] = 1u << 20;
              p.height = 3000;
            }),
            LF_INVALID_PARAMETER);

  EXPECT_EQ(lib.lf->SetParam(LF_FILTER_DENOISE, LF_PARAM_DENOISE_LEVEL, nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.lf->SetParam(LF_FILTER_DENOISE, LF_PARAM_DENOISE_INTERVAL, nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.lf->GetParam(LF_FILTER_DENOISE, LF_PARAM_DENOISE_CURRENT_LEVEL, nullptr), LF_INVALID_PARAMETER);
  int32_t untouched = 77;
  EXPECT_EQ(lib.lf->GetParam(LF_FILTER_DENOISE, LF_PARAM_BLUR_SIGMA, &untouched), LF_OK);
  EXPECT_EQ(untouched, 77);

  EXPECT_EQ(lib.lf->Uninit(LF_FILTER_DENOISE), LF_OK);
  EXPECT_EQ(lib.Run(picture.picture), LF_NOT_CREATED);  // the manager deleted the filter
}

TEST(Denoise, TimingLineNamesTheHighestLevelOfItsInterval) {
  Denoiser lib;
  ASSERT_EQ(lib.Init({32, 32, LF_I420, 3}), LF_OK);
  Log::Lines().clear();
  uint64_t callback = reinterpret_cast<uint64_t>(&Log::Callback);
  int32_t logLevel = LF_LOG_DETAIL, oneMs = 1;
  lib.lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_CALLBACK, &callback);
  lib.lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &logLevel);
  EXPECT_EQ(lib.lf->SetParam(LF_FILTER_ALL, LF_PARAM_TIMING_INTERVAL, &oneMs), LF_FAILED);  // the fixed answer
  auto timingLines = [](const std::string& name) {
    const std::string suffix = " ms per frame, maxNoiseLevel: " + name;
    int count = 0;
    for (const LogLine& line : Log::Lines()) {
      const std::string& text = line.text;
      if (text.size() < suffix.size() || text.compare(text.size() - suffix.size(), suffix.size(), suffix) != 0)
        continue;
      const size_t dot = text.rfind('.', text.size() - suffix.size());
      count += dot != std::string::npos && text.size() - suffix.size() - dot - 1 == 6;  // "%f"
    }
    return count;
  };
  for (int32_t level : {3, 1}) {
    ASSERT_EQ(lib.Set(LF_PARAM_DENOISE_LEVEL, level), LF_OK);
    for (int t = 0; t < 2; ++t) {
      CallerPicture picture(Scene(32, 32, t, 3), true);
      ASSERT_EQ(lib.Run(picture.picture), LF_OK);
      std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    double usPerFrame = -1;
    EXPECT_EQ(lib.lf->GetParam(LF_FILTER_DENOISE, LF_PARAM_TIME_PER_FRAME, &usPerFrame), LF_OK);
    CallerPicture last(Scene(32, 32, 2, 3), true);
    ASSERT_EQ(lib.Run(last.picture), LF_OK);
    // After the first line the record starts again, so WEAK is named alone.
    EXPECT_GE(timingLines(level == 3 ? "VERY_STRONG" : "WEAK"), 1) << level;
  }
  EXPECT_EQ(timingLines("NONE"), 0);
}

}  // namespace
}  // namespace Lumaforge::test
