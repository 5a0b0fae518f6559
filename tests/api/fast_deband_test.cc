// The fast deband filter through the public interface, checked byte for byte
// (every byte of every plane buffer, padding included) against a model of its
// frame steps, pass driver and row kernel kept in this file.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/log_capture.h"

namespace Lumaforge::test {
namespace {

using Bytes = std::array<std::vector<uint8_t>, 3>;

// ---------------------------------------------------------------------------
// Pictures: I420 planes on 64-byte boundaries, rows padded by `pad` + plane
// index bytes

class AlignedPicture {
 public:
  AlignedPicture(int w, int h, int pad) {
    picture.width = static_cast<uint32_t>(w);
    picture.height = static_cast<uint32_t>(h);
    picture.format = LF_I420;
    for (int k = 0; k < 3; ++k) {
      const size_t stride = static_cast<size_t>((k ? w / 2 : w) + pad + k);
      size_[k] = stride * (k ? h / 2 : h) + 64;
      block_[k].resize(size_[k] + 63);  // a portable stand-in for an aligned allocation
      memory_[k] = block_[k].data() + (64 - reinterpret_cast<uintptr_t>(block_[k].data()) % 64) % 64;
      picture.planes[k] = memory_[k];
      picture.strides[k] = static_cast<uint32_t>(stride);
    }
  }
  AlignedPicture(const AlignedPicture&) = delete;
  AlignedPicture& operator=(const AlignedPicture&) = delete;

  // Picture rows hold a banded scene (`content`) or, like every padding
  // byte, a pattern that shows whether anything was written.
  Bytes Fill(int variant, bool content) {
    Bytes b;
    for (int k = 0; k < 3; ++k) {
      const int pw = static_cast<int>(k ? picture.width / 2 : picture.width);
      const int ph = static_cast<int>(k ? picture.height / 2 : picture.height);
      b[k].resize(size_[k]);
      for (size_t i = 0; i < size_[k]; ++i) {
        const int x = static_cast<int>(i % picture.strides[k]), y = static_cast<int>(i / picture.strides[k]);
        b[k][i] = content && x < pw && y < ph ? Scene(k, x, y, pw, ph, variant)
                                              : static_cast<uint8_t>(i * 37 + 11 + 5 * variant + 91 * k);
      }
      std::memcpy(memory_[k], b[k].data(), size_[k]);
    }
    return b;
  }
  Bytes Read() const {
    Bytes b;
    for (int k = 0; k < 3; ++k) b[k].assign(memory_[k], memory_[k] + size_[k]);
    return b;
  }
  VideoPicture picture = {};

 private:
  // Ramps quantised to steps of 4..8 levels, a little noise in bands of rows,
  // a bright bar, a hard row, and near-black and near-white corners that the
  // larger dithers push past the 8-bit range.
  static uint8_t Scene(int k, int x, int y, int w, int h, int variant) {
    const int step = 4 + (variant + k) % 5;
    int v = (20 + (3 * x + 2 * y) * 200 / (3 * w + 2 * h + 1)) / step * step;
    uint32_t hash = (static_cast<uint32_t>(x) * 73856093u) ^ (static_cast<uint32_t>(y) * 19349663u) ^
                    (static_cast<uint32_t>(k * 31 + variant) * 83492791u);
    hash *= 2654435761u;
    if (y % 16 < 9) v += static_cast<int>((hash >> 27) % 3) - 1;
    if (x >= w / 3 && x < w / 3 + 5) v += 70;
    if (y == h * 2 / 3) v = 230;
    if (x < w / 8 && y < h / 4) v = 3 + (x + y) % 2;
    if (x >= w - w / 8 && y >= h - h / 4) v = 252 + (x + y) % 3;
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
  }
  std::vector<uint8_t> block_[3];
  uint8_t* memory_[3] = {};
  size_t size_[3] = {};
};

// "" when equal, else the first differing byte.
std::string FirstDifference(const Bytes& got, const Bytes& want, const VideoPicture& layout, const char* which) {
  for (int k = 0; k < 3; ++k) {
    for (size_t i = 0; i < want[k].size(); ++i) {
      if (got[k][i] != want[k][i]) {
        return std::string(which) + " plane " + std::to_string(k) + " x " + std::to_string(i % layout.strides[k]) +
               " y " + std::to_string(i / layout.strides[k]) + ": library " + std::to_string(got[k][i]) + ", model " +
               std::to_string(want[k][i]);
      }
    }
  }
  return "";
}

// ---------------------------------------------------------------------------
// The model

uint32_t CrcStep(uint32_t s) {
  static const std::array<uint32_t, 256> table = [] {
    std::array<uint32_t, 256> t{};
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t c = i;
      for (int b = 0; b < 8; ++b) c = (c & 1) ? (c >> 1) ^ 0x82F63B78u : c >> 1;
      t[i] = c;
    }
    return t;
  }();
  const uint32_t t = (s >> 8) ^ table[(s ^ (s >> 16)) & 255];
  return (t >> 8) ^ table[((s >> 24) ^ t) & 255];
}

int Offset(int k, int i) {
  static const int base[4] = {-31, -10, 10, 31};
  return base[i] / (1 << (6 - k));  // truncation toward zero
}

// One plane: horizontal four-tap sums into a ring of rows, then the vertical
// four taps over the ring, dither added before the shift back to 8 bits.
void ModelKernel(const uint8_t* src, int ss, uint8_t* dst, int ds, int w, int h, int t, int kh, int kv, int dither,
                 uint32_t seed) {
  std::vector<uint8_t> in(static_cast<size_t>(w) * h);  // a copy, so in-place passes read the old rows
  for (int y = 0; y < h; ++y) std::memcpy(&in[static_cast<size_t>(y) * w], src + static_cast<size_t>(y) * ss, w);
  kh = std::clamp(kh, 3, 6);
  kv = std::clamp(kv, 3, 6);
  const int hx = (1 << kh) / 2, n = 1 << kv, hv = n / 2;
  const int d = std::max(dither, 2);
  const int mask = d < 14 ? (1 << (d - 2)) - 1 : 2047;
  const int offset = d < 14 ? (d == 2 ? 0 : 1 << (d - 3)) - 8 : 1016;
  std::vector<int> table(2080);
  uint32_t state = seed ? seed : 1;
  for (int& entry : table) {
    state = CrcStep(state);
    entry = static_cast<int>(state & static_cast<uint32_t>(mask)) - offset;
  }
  const int64_t t64 = t;
  std::vector<int> ring(static_cast<size_t>(w) * n);
  auto ringRow = [&](int r) { return &ring[static_cast<size_t>(((r % n) + n) % n) * w]; };
  for (int r = -hv; r < h + hv; ++r) {
    if (r >= 0 && r < h) {
      const uint8_t* row = &in[static_cast<size_t>(r) * w];
      int* out = ringRow(r);
      for (int x = 0; x < w; ++x) {
        const int c = row[x];
        if (x < hx || x >= w - hx) {
          out[x] = 4 * c;
          continue;
        }
        int sum = 0;
        for (int i = 0; i < 4; ++i) {
          const int s = row[x + Offset(kh, i)];
          sum += s < c - t64 || s > c + t64 ? c : s;
        }
        out[x] = sum;
      }
    }
    const int y = r + 1 - hv;
    if (y < 0) continue;
    if (y >= h) break;
    const bool full = hv <= y && y + hv < h;
    for (int x = 0; x < w; ++x) {
      if (x % 32 == 0) state = CrcStep(state);
      const int noise = table[(state & 0x7FF) + (x & 31)];
      const int c = ringRow(y)[x];
      int sum = 4 * c;
      if (full) {
        const int64_t lo = std::max<int64_t>(c - 4 * t64, 0), hi = std::min<int64_t>(c + 4 * t64, 65535);
        sum = 0;
        for (int i = 0; i < 4; ++i) {
          const int tap = ringRow(y + Offset(kv, i))[x];
          sum += tap < lo || tap > hi ? c : tap;
        }
      }
      dst[static_cast<size_t>(y) * ds + x] = static_cast<uint8_t>(std::clamp((sum + noise) >> 4, 0, 255));
    }
  }
}

// Passes at decreasing spans; only the last one dithers.
void ModelPasses(const uint8_t* src, int ss, uint8_t* dst, int ds, int w, int h, int t, int kh, int kv, int passes,
                 int dither, uint32_t seed) {
  for (int done = 0;; ++done) {
    const bool further = done + 1 < passes && kh >= 4 && kv >= 4;
    ModelKernel(done ? dst : src, done ? ds : ss, dst, ds, w, h, t, kh, kv, further ? 0 : dither, seed);
    if (!further) return;
    --kh;
    --kv;
  }
}

struct ModelFilter {
  explicit ModelFilter(const FastDebandConfig& c) : cfg(c) {}

  // `in` and `out` are the whole plane buffers of pictures laid out as
  // `inPic` and `outPic`; a null output Y pointer debands luma in place.
  void Process(Bytes& in, Bytes& out, const VideoPicture& inPic, const VideoPicture& outPic, const uint8_t* qpMap,
               uint32_t randomSeed) {
    const int pw = static_cast<int>(inPic.width), ph = static_cast<int>(inPic.height);
    const int count = ((pw - 1 + 16) / 16) * ((ph - 1 + 16) / 16);
    int sum = 0;
    for (int i = 0; i < count; ++i) sum += qpMap ? qpMap[i] : 24;
    std::memmove(history + 1, history, 15);
    history[0] = static_cast<uint8_t>(sum / count);
    const uint32_t seed = seedMethod == 1 ? static_cast<uint32_t>(frameIndex % 2) : randomSeed;
    strength = cfg.strength;
    size = cfg.log2Size;
    if (autoMode && frameIndex >= 16) {
      int q = 0;
      for (uint8_t v : history) q += v;
      q >>= 4;
      strength = std::max(q - 64, 0) / 20 + 1;
      size = (cfg.width >= 1280 ? 1 : 0) + (cfg.height < 768 ? 4 : 5);
    }
    const int w = std::min(pw, static_cast<int>(cfg.width)), h = std::min(ph, static_cast<int>(cfg.height));
    if (strength != 0) {
      const int sH = std::max(size, 3), sV = std::min(size, 6);
      const int oy = outPic.planes[0] ? 0 : 1;  // null output Y: the input Y plane again
      Bytes& ly = oy ? in : out;
      const int lys = static_cast<int>(oy ? inPic.strides[0] : outPic.strides[0]);
      ModelPasses(in[0].data(), static_cast<int>(inPic.strides[0]), ly[0].data(), lys, w, h, strength, sH, sV,
                  std::max(cfg.depthY, 0), cfg.dither, seed);
      for (int k = 1; k < 3; ++k) {
        ModelPasses(in[k].data(), static_cast<int>(inPic.strides[k]), out[k].data(),
                    static_cast<int>(outPic.strides[k]), w / 2, h / 2, strength, sH - 1, sV - 1,
                    std::max(cfg.depthUV, 1), cfg.dither ? 6 : 0, seed);
      }
    }
    ++frameIndex;
  }

  FastDebandConfig cfg;
  int32_t seedMethod = 0;
  bool autoMode = false;
  int frameIndex = 0, strength = 0, size = 0;
  uint8_t history[16] = {};
};

// ---------------------------------------------------------------------------
// The library

struct Deband {
  Deband() {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
  }
  ~Deband() { DestroyLumaforge(lf); }
  Deband(const Deband&) = delete;
  Deband& operator=(const Deband&) = delete;

  int32_t Init(FastDebandConfig config) { return lf->Init(LF_FILTER_FAST_DEBAND, &config, 0); }
  int32_t Run(VideoPicture* in, VideoPicture* out) { return lf->Process(LF_FILTER_FAST_DEBAND, in, out); }
  int32_t Set(int32_t id, int32_t value) {
    return lf->SetParam(LF_FILTER_FAST_DEBAND, static_cast<ParamId>(id), &value);
  }
  int32_t Get(int32_t id, int32_t value = -99) {
    EXPECT_EQ(lf->GetParam(LF_FILTER_FAST_DEBAND, static_cast<ParamId>(id), &value), LF_OK) << id;
    return value;
  }
  ILumaforge* lf = nullptr;
};

// A sequence of frames: configuration, picture size and per-frame QP maps.
struct Case {
  Case(int configuredW, int configuredH, int pictureW, int pictureH)
      : cfgW(configuredW), cfgH(configuredH), w(pictureW), h(pictureH) {}
  int cfgW, cfgH, w, h;
  int32_t strength = 8, dither = 6, log2Size = 6, depthY = 1, depthUV = 1;
  int32_t seedMethod = 1;
  bool autoMode = false, nullOutY = false, depthsBySetParam = false, compareChroma = true;
  int frames = 1;
  std::function<std::vector<uint8_t>(int)> qp;  // null: no map
};

struct Frame {
  Frame(const Case& c, int t) : in(c.w, c.h, 13), out(c.w, c.h, 35) {
    inBytes = in.Fill(t, true);
    outBytes = out.Fill(t + 100, false);
    if (c.qp) map = c.qp(t);
    in.picture.qpMap = map.empty() ? nullptr : map.data();
    if (c.nullOutY) {
      out.picture.planes[0] = nullptr;
      out.picture.strides[0] = 0;  // not read when the plane is absent
    }
  }
  AlignedPicture in, out;
  Bytes inBytes, outBytes;
  std::vector<uint8_t> map;
};

FastDebandConfig ConfigOf(const Case& c) {
  return {
      static_cast<uint32_t>(c.cfgW),     static_cast<uint32_t>(c.cfgH),     c.strength, c.dither, c.log2Size, LF_I420,
      c.depthsBySetParam ? 0 : c.depthY, c.depthsBySetParam ? 1 : c.depthUV};
}

struct Expected {
  std::vector<std::array<Bytes, 2>> frames;
  std::vector<std::array<int, 2>> strengthAndSize;
};

// Runs `c` through the model once and through the library at every CPU
// level, comparing every byte of the input and output buffers after each frame.
Expected CheckCase(const Case& c, const std::string& what) {
  Expected e;
  ModelFilter model(ConfigOf(c));
  model.cfg.depthY = c.depthY;
  model.cfg.depthUV = c.depthUV;
  model.seedMethod = c.seedMethod;
  model.autoMode = c.autoMode;
  for (int t = 0; t < c.frames; ++t) {
    Frame f(c, t);
    model.Process(f.inBytes, f.outBytes, f.in.picture, f.out.picture, f.in.picture.qpMap, 12345u);
    e.frames.push_back({f.inBytes, f.outBytes});
    e.strengthAndSize.push_back({model.strength, model.size});
  }
  ForEachCpuLevel([&](const CpuLevel& cpu) {
    Deband lib;
    ASSERT_EQ(lib.Init(ConfigOf(c)), LF_OK) << what;
    if (c.depthsBySetParam) {
      ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_DEPTH_Y, c.depthY), LF_OK);
      ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_DEPTH_UV, c.depthUV), LF_OK);
    }
    ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_SEED_METHOD, c.seedMethod), LF_OK);
    ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_AUTO, c.autoMode), LF_OK);
    for (int t = 0; t < c.frames; ++t) {
      const std::string at = what + " at " + cpu.name + " frame " + std::to_string(t);
      Frame f(c, t);
      ASSERT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_OK) << at;
      ASSERT_EQ(FirstDifference(f.in.Read(), e.frames[t][0], f.in.picture, "input"), "") << at;
      Bytes got = f.out.Read(), want = e.frames[t][1];
      if (!c.compareChroma) got[1] = want[1], got[2] = want[2];
      ASSERT_EQ(FirstDifference(got, want, f.out.picture, "output"), "") << at;
    }
  });
  return e;
}

std::string Name(const Case& c) {
  auto n = [](int v) { return std::to_string(v); };
  return n(c.w) + "x" + n(c.h) + " (configured " + n(c.cfgW) + "x" + n(c.cfgH) + ") strength " + n(c.strength) +
         " dither " + n(c.dither) + " size " + n(c.log2Size) + " depths " + n(c.depthY) + "/" + n(c.depthUV) +
         (c.depthsBySetParam ? " set later" : "") + (c.nullOutY ? " output Y null" : "");
}

void CheckAll(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    CheckCase(c, Name(c));
    if (::testing::Test::HasFatalFailure()) return;
  }
}

// A map for a w x h picture whose integer average is `average` although its
// bytes differ by up to 13 levels.
std::vector<uint8_t> QpMap(int w, int h, int average) {
  const int count = ((w + 15) / 16) * ((h + 15) / 16);
  std::vector<uint8_t> map(count);
  for (int i = 0; i < count; ++i) map[i] = static_cast<uint8_t>(average + (i % 2 ? 6 : -6));
  if (count % 2) map[count - 1] = static_cast<uint8_t>(average);
  map[0] += 1;  // the remainder the integer average drops
  return map;
}

// ---------------------------------------------------------------------------
// Outputs against the model

TEST(FastDeband, SizesAndSpansMatchTheModelAtEveryCpuLevel) {
  std::vector<Case> cases;
  for (const auto& s : {std::array{64, 48}, {130, 66}, {320, 180}, {40, 20}, {16, 16}}) {
    for (int32_t log2Size = 2; log2Size <= 7; ++log2Size) {
      Case& c = cases.emplace_back(s[0], s[1], s[0], s[1]);
      c.log2Size = log2Size;
      c.depthY = c.depthUV = 2;
      c.frames = 2;
    }
  }
  CheckAll(cases);
}

// Luma 0..4 passes, chroma 1..4, Init values outside those ranges kept as
// given (9 luma passes run until a span reaches 3, 0 chroma passes run one),
// and the same depths set through SetParam after Init.
TEST(FastDeband, PassDepthsMatchTheModel) {
  std::vector<Case> cases;
  const int depths[][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 1}, {4, 4}, {9, 0}, {-2, -3}};
  for (int32_t log2Size : {3, 5, 6, 7}) {
    for (const auto& d : depths) {
      for (bool later : {false, true}) {
        if (later && (d[0] > 4 || d[0] < 0 || d[1] < 1)) continue;  // SetParam ignores these
        const int w = log2Size == 6 ? 320 : 130, h = log2Size == 6 ? 180 : 66;
        Case& c = cases.emplace_back(w, h, w, h);
        c.log2Size = log2Size;
        c.depthY = d[0];
        c.depthUV = d[1];
        c.depthsBySetParam = later;
        c.dither = 9;
      }
    }
  }
  CheckAll(cases);
}

TEST(FastDeband, StrengthsAndDithersMatchTheModel) {
  std::vector<Case> cases;
  for (int32_t strength : {8, 1, 0, 300, -5}) {
    for (int32_t dither : {0, 2, 6, 9, 14, 3, -1}) {
      Case& c = cases.emplace_back(130, 66, 130, 66);
      c.strength = strength;
      c.dither = dither;
      c.log2Size = 5;
      c.depthY = c.depthUV = 2;
      c.frames = 3;  // parity seeds 0, 1, 0
    }
  }
  CheckAll(cases);
}

// The driver covers the configured size held to the picture's; the rest of
// a larger picture's output stays as it was. A null output Y pointer
// debands luma in the input plane.
TEST(FastDeband, ConfiguredSizeHeldToThePictureAndLumaInPlace) {
  std::vector<Case> cases;
  for (const auto& s : {std::array{320, 180}, {40, 20}, {64, 100}, {100, 30}}) {
    cases.emplace_back(s[0], s[1], 64, 48).frames = 2;
  }
  for (int32_t depthY : {1, 3}) {
    Case& c = cases.emplace_back(130, 66, 130, 66);
    c.nullOutY = true;
    c.depthY = depthY;
    c.dither = 14;
  }
  CheckAll(cases);
}

// Frames 0..15 use the configured strength 0 (nothing written); from frame 16
// the strength comes from the mean of the last 16 frames' average QPs and the
// size from the picture: 4 below 1280x768, one more for each of width >= 1280
// and height >= 768.
TEST(FastDeband, AutomaticModeChoosesStrengthAndSizeFromTheQpHistory) {
  struct Run {
    int w, h, average, strength, size;
  };
  const Run runs[] = {{64, 48, 64, 1, 4},   {64, 48, 65, 1, 4},  {64, 48, 84, 2, 4},
                      {64, 48, 85, 2, 4},   {64, 48, 105, 3, 4}, {64, 48, -1, 1, 4},
                      {1280, 40, 85, 2, 5}, {48, 768, 85, 2, 5}, {1280, 768, 125, 4, 6}};
  std::vector<std::vector<uint8_t>> frame16;
  for (const Run& run : runs) {
    Case c{run.w, run.h, run.w, run.h};
    c.strength = 0;
    c.autoMode = true;
    c.frames = run.w * run.h > 500000 ? 17 : 20;
    if (run.average >= 0) c.qp = [run](int) { return QpMap(run.w, run.h, run.average); };
    const std::string what = Name(c) + " QP average " + std::to_string(run.average);
    const Expected e = CheckCase(c, what);
    if (::testing::Test::HasFatalFailure()) return;
    for (int t = 0; t < c.frames; ++t) {
      const int expectStrength = t < 16 ? 0 : run.strength, expectSize = t < 16 ? 6 : run.size;
      EXPECT_EQ(e.strengthAndSize[t][0], expectStrength) << what << " frame " << t;
      EXPECT_EQ(e.strengthAndSize[t][1], expectSize) << what << " frame " << t;
    }
    if (run.w == 64) frame16.push_back(e.frames[16][1][0]);
  }
  // The luma bytes tell strengths 1, 2 and 3 apart, so the strength is checked.
  EXPECT_NE(frame16[0], frame16[2]);
  EXPECT_NE(frame16[2], frame16[4]);
  EXPECT_EQ(frame16[0], frame16[1]);

  // Averages rising by 7 per frame: the strength follows the 16-frame mean
  // (2 at frame 16, 3 after), not the newest frame alone.
  Case c{64, 48, 64, 48};
  c.strength = 0;
  c.autoMode = true;
  c.frames = 20;
  c.qp = [](int t) { return QpMap(64, 48, 40 + 7 * t); };
  const Expected e = CheckCase(c, "rising QP");
  EXPECT_EQ(e.strengthAndSize[16][0], 2);
  EXPECT_EQ(e.strengthAndSize[17][0], 3);
}

// Seed method 0 draws the runtime's rand(); a thread starts its sequence
// at 1, so in a fresh thread the seeds are 41, 18467, 6334. Frame 0 uses the
// parity seed and must not draw.
TEST(FastDeband, RandomSeedsFollowTheRuntimeSequenceOfAFreshThread) {
  Case c{130, 66, 130, 66};
  c.dither = 9;
  auto model = [&](const std::array<uint32_t, 4>& seeds) {
    std::vector<Bytes> out;
    ModelFilter filter(ConfigOf(c));
    for (int t = 0; t < 4; ++t) {
      filter.seedMethod = t == 0 ? 1 : 0;
      Frame f(c, t);
      filter.Process(f.inBytes, f.outBytes, f.in.picture, f.out.picture, nullptr, seeds[t]);
      out.push_back(f.outBytes);
    }
    return out;
  };
  const std::vector<Bytes> want = model({0, 41, 18467, 6334}), other = model({0, 42, 18466, 6335});
  for (int t = 1; t < 4; ++t) EXPECT_NE(want[t], other[t]);  // the seed shows in the output
  ForEachCpuLevel([&](const CpuLevel& cpu) {
    std::vector<std::string> results;
    std::thread worker([&] {
      Deband lib;
      lib.Init(ConfigOf(c));
      for (int t = 0; t < 4; ++t) {
        lib.Set(LF_PARAM_DEBAND_SET_SEED_METHOD, t == 0 ? 1 : 0);
        Frame f(c, t);
        const int32_t status = lib.Run(&f.in.picture, &f.out.picture);
        results.push_back(status ? "status " + std::to_string(status)
                                 : FirstDifference(f.out.Read(), want[t], f.out.picture, "output"));
      }
    });
    worker.join();
    for (int t = 0; t < 4; ++t) EXPECT_EQ(results[t], "") << cpu.name << " frame " << t;
  });
}

// ---------------------------------------------------------------------------
// Behaviours

// Random seeds (method 0): with dither 0 every plane is seed-free; with 1
// and 2 luma is the same plain rounding while chroma dithers by 6.
TEST(FastDeband, DitherUpToTwoIsPlainRoundingWhateverTheSeed) {
  Case c{130, 66, 130, 66};
  c.seedMethod = 0;
  c.frames = 3;
  c.dither = 0;
  const Expected zero = CheckCase(c, "dither 0");
  c.compareChroma = false;
  for (int32_t dither : {1, 2}) {
    c.dither = dither;
    const Expected e = CheckCase(c, "dither " + std::to_string(dither));
    for (int t = 0; t < c.frames; ++t) EXPECT_EQ(e.frames[t][1][0], zero.frames[t][1][0]) << dither;
  }
}

TEST(FastDeband, StrengthZeroWritesNothingAndEdgesGetOneDimension) {
  Case c{320, 180, 320, 180};
  c.strength = 0;
  c.depthY = 4;
  Frame f(c, 0);
  Deband lib;
  ASSERT_EQ(lib.Init(ConfigOf(c)), LF_OK);
  ASSERT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_OK);
  EXPECT_EQ(FirstDifference(f.out.Read(), f.outBytes, f.out.picture, "output"), "");

  // Strength 255 without dither: corners of 32 columns by 32 rows are outside
  // both filters and come back unchanged; the interior does not.
  ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_STRENGTH, 255), LF_OK);
  ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_DITHER, 0), LF_OK);
  ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_DEPTH_Y, 1), LF_OK);
  Frame g(c, 1);
  ASSERT_EQ(lib.Run(&g.in.picture, &g.out.picture), LF_OK);
  int changed = 0;
  for (int y = 0; y < 180; ++y) {
    for (int x = 0; x < 320; ++x) {
      const uint8_t a = g.inBytes[0][y * g.in.picture.strides[0] + x];
      const uint8_t b = g.out.picture.planes[0][y * g.out.picture.strides[0] + x];
      if ((y < 32 || y >= 148) && (x < 32 || x >= 288)) {
        ASSERT_EQ(a, b) << "x " << x << " y " << y;
      }
      changed += a != b;
    }
  }
  EXPECT_GT(changed, 1000);
}

// Luma size 6 with four passes: spans 6, 5, 4 and 3 one after another in
// the output plane, only the last with the dither.
TEST(FastDeband, FourLumaPassesRunSpansSixToThreeDitheringTheLast) {
  Case c{130, 66, 130, 66};
  c.depthY = 4;
  c.dither = 14;
  Frame f(c, 0);
  Deband lib;
  ASSERT_EQ(lib.Init(ConfigOf(c)), LF_OK);
  ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_SEED_METHOD, 1), LF_OK);
  ASSERT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_OK);
  const int ss = static_cast<int>(f.in.picture.strides[0]), ds = static_cast<int>(f.out.picture.strides[0]);
  Bytes want = {f.outBytes[0], {}, {}};
  ModelKernel(f.inBytes[0].data(), ss, want[0].data(), ds, 130, 66, 8, 6, 6, 0, 0);
  for (int span = 5; span >= 3; --span) {
    ModelKernel(want[0].data(), ds, want[0].data(), ds, 130, 66, 8, span, span, span == 3 ? 14 : 0, 0);
  }
  EXPECT_EQ(FirstDifference(f.out.Read(), want, f.out.picture, "output"), "");
}

// ---------------------------------------------------------------------------
// Refusals and parameters

TEST(FastDeband, RefusedPicturesLeaveTheOutputUntouched) {
  Case c{64, 48, 64, 48};
  Deband lib;
  Frame f(c, 0);
  EXPECT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_NOT_CREATED);
  EXPECT_EQ(lib.Init({64, 48, 8, 6, 6, LF_NV12, 0, 1}), LF_UNSUPPORTED);
  ASSERT_EQ(lib.Init(ConfigOf(c)), LF_OK);
  EXPECT_EQ(lib.Run(nullptr, &f.out.picture), LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.Run(&f.in.picture, nullptr), LF_INVALID_PARAMETER);
  using Change = std::function<void(VideoPicture & in, VideoPicture & out)>;
  auto refused = [&](const Change& change) {
    Frame g(c, 1);
    VideoPicture in = g.in.picture, out = g.out.picture;
    change(in, out);
    const int32_t status = lib.Run(&in, &out);
    EXPECT_EQ(FirstDifference(g.out.Read(), g.outBytes, g.out.picture, "output"), "") << status;
    EXPECT_EQ(FirstDifference(g.in.Read(), g.inBytes, g.in.picture, "input"), "") << status;
    return status;
  };
  using P = VideoPicture&;
  EXPECT_EQ(refused([](P in, P) { in.format = LF_NV12; }), LF_UNSUPPORTED);
  EXPECT_EQ(refused([](P, P out) { out.width = 62; }), LF_NOT_CREATED);
  EXPECT_EQ(refused([](P, P out) { out.height = 50; }), LF_NOT_CREATED);
  for (int k = 0; k < 3; ++k) {
    const uint32_t row = k ? 32 : 64;
    EXPECT_EQ(refused([k](P in, P out) { out.planes[k] = in.planes[k]; }), LF_NOT_CREATED) << k;
    EXPECT_EQ(refused([k](P in, P) { in.planes[k] += 8 << k; }), LF_INVALID_PARAMETER) << k;
    EXPECT_EQ(refused([k](P, P out) { out.planes[k] += 1 + k; }), LF_INVALID_PARAMETER) << k;
    EXPECT_EQ(refused([k](P in, P) { in.planes[k] = nullptr; }), LF_INVALID_PARAMETER) << k;
    EXPECT_EQ(refused([k, row](P in, P) { in.strides[k] = row - 1; }), LF_INVALID_PARAMETER) << k;
    EXPECT_EQ(refused([k, row](P, P out) { out.strides[k] = row - 1; }), LF_INVALID_PARAMETER) << k;
    if (k) {
      EXPECT_EQ(refused([k](P, P out) { out.planes[k] = nullptr; }), LF_INVALID_PARAMETER) << k;
    }
  }
  EXPECT_EQ(refused([](P in, P out) { in.width = out.width = 0; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](P in, P out) { in.height = out.height = 0; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](P in, P out) { in.width = out.width = in.height = out.height = 65536; }), LF_INVALID_PARAMETER);
  EXPECT_EQ(refused([](P in, P out) {
              in.strides[0] = 1u << 20;
              in.height = out.height = 3000;
            }),
            LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.lf->Uninit(LF_FILTER_FAST_DEBAND), LF_OK);
  EXPECT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_NOT_CREATED);
  EXPECT_EQ(FirstDifference(f.out.Read(), f.outBytes, f.out.picture, "output"), "");
}

TEST(FastDeband, ParametersAreStoredReadAndRangeChecked) {
  Deband lib;
  ASSERT_EQ(lib.Init({64, 48, 11, 7, 5, LF_I420, 2, 3}), LF_OK);
  // Depths out of range and ids without a setter are ignored.
  const int32_t ignored[][2] = {{25, 5}, {25, -1}, {27, 0}, {27, 5}, {36, 3}, {30, 3}, {26, 4}};
  for (const auto& p : ignored) EXPECT_EQ(lib.Set(p[0], p[1]), LF_OK) << p[0];
  const int32_t stored[][2] = {{26, 2}, {28, 3}, {30, 11}, {32, 7}, {34, 5}, {36, 5}};
  for (const auto& p : stored) EXPECT_EQ(lib.Get(p[0]), p[1]) << p[0];
  // Other values are stored as given.
  const int32_t set[][2] = {{25, 0}, {27, 4}, {29, -5}, {31, 100}, {33, 11}};
  for (const auto& p : set) EXPECT_EQ(lib.Set(p[0], p[1]), LF_OK) << p[0];
  const int32_t read[][2] = {{26, 0}, {28, 4}, {30, -5}, {32, 100}, {34, 11}, {36, 11}};
  for (const auto& p : read) EXPECT_EQ(lib.Get(p[0]), p[1]) << p[0];

  // The automatic flag is one byte; the rest of the value is left alone.
  for (int32_t value : {7, 0}) {
    EXPECT_EQ(lib.Set(LF_PARAM_DEBAND_SET_AUTO, value), LF_OK);
    EXPECT_EQ(static_cast<uint32_t>(lib.Get(LF_PARAM_DEBAND_GET_AUTO, 0x7F7F7F7F)), value ? 0x7F7F7F01u : 0x7F7F7F00u);
  }
  // Getter ids outside 26..38 answer 0 and write nothing.
  EXPECT_EQ(lib.Get(LF_PARAM_DEBAND_SET_DEPTH_Y, 77), 77);
  EXPECT_EQ(lib.Get(39, 77), 77);

  EXPECT_EQ(lib.lf->SetParam(LF_FILTER_FAST_DEBAND, LF_PARAM_DEBAND_SET_STRENGTH, nullptr), LF_INVALID_PARAMETER);
  EXPECT_EQ(lib.lf->GetParam(LF_FILTER_FAST_DEBAND, LF_PARAM_DEBAND_GET_STRENGTH, nullptr), LF_INVALID_PARAMETER);
  // A null record keeps every setting.
  EXPECT_EQ(lib.lf->Init(LF_FILTER_FAST_DEBAND, nullptr, 0), LF_OK);
  for (const auto& p : read) EXPECT_EQ(lib.Get(p[0]), p[1]) << p[0];
}

using Log = LogCapture<5>;

// A frame of the configured size after frames of another size: the
// picture's own map (read here from a heap block of exactly its size) is
// averaged over its own block count. With the parity seed and the 16-frame
// history refilled, the output then equals a fresh filter's.
TEST(FastDeband, AMapIsReadOverItsOwnPicturesBlocks) {
  const FastDebandConfig config = {64, 48, 8, 6, 6, LF_I420, 0, 1};
  Deband shared, fresh;
  for (Deband* d : {&shared, &fresh}) {
    ASSERT_EQ(d->Init(config), LF_OK);
    d->Set(LF_PARAM_DEBAND_SET_SEED_METHOD, 1);
    d->Set(LF_PARAM_DEBAND_SET_AUTO, 1);
  }
  AlignedPicture bigIn(128, 96, 8), bigOut(128, 96, 8);
  for (int i = 0; i < 8; ++i) {
    bigIn.Fill(i, true);
    ASSERT_EQ(shared.Run(&bigIn.picture, &bigOut.picture), LF_OK);
  }
  std::vector<uint8_t> map(4 * 3, 105);  // 64x48: 4 x 3 blocks
  AlignedPicture inA(64, 48, 8), outA(64, 48, 8), inB(64, 48, 8), outB(64, 48, 8);
  for (int i = 0; i < 18; ++i) {
    inA.Fill(i, true), inB.Fill(i, true), outA.Fill(1, false), outB.Fill(1, false);
    inA.picture.qpMap = map.data(), inB.picture.qpMap = map.data();
    ASSERT_EQ(shared.Run(&inA.picture, &outA.picture), LF_OK);
    ASSERT_EQ(fresh.Run(&inB.picture, &outB.picture), LF_OK);
    if (i >= 16) {
      EXPECT_TRUE(outA.Read() == outB.Read()) << "frame " << i;
    }
  }
}

int LinesWith(const std::string& text) {
  return static_cast<int>(std::count_if(Log::Lines().begin(), Log::Lines().end(),
                                        [&](const LogLine& l) { return l.text.find(text) != std::string::npos; }));
}

TEST(FastDeband, LogsTheMembersTheQpListAndTheAutomaticChoice) {
  Deband lib;
  Log::Lines().clear();
  uint64_t callback = reinterpret_cast<uint64_t>(&Log::Callback);
  int32_t level = LF_LOG_DETAIL;
  lib.lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_CALLBACK, &callback);
  lib.lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &level);
  Case c{64, 48, 64, 48};
  ASSERT_EQ(lib.Init(ConfigOf(c)), LF_OK);
  ASSERT_EQ(lib.Set(LF_PARAM_DEBAND_SET_AUTO, 1), LF_OK);
  c.qp = [](int) { return QpMap(64, 48, 85); };
  for (int t = 0; t < 17; ++t) {
    Frame f(c, t);
    ASSERT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_OK);
  }
  EXPECT_EQ(LinesWith("m_iWidth=64 m_iHeight=48 m_iFrameIndex=0 m_iStrength=8 m_iDither=6 m_iLog2Size=6 "
                      "m_iDepthY=1 m_iDepthUV=1 m_iSeedMethod=0 m_bAutoMode=1 m_iBlockSize=16"),
            1);
  EXPECT_EQ(LinesWith("strength 2, size 4 dither 6 qp 85"), 1);
  const std::string allocated = "CFastDeband::AllocateQPList(), allocate(reallocate) QPList buffer, size=";
  EXPECT_EQ(LinesWith(allocated + "4*3"), 1);
  // A picture of another size than the configured one reallocates every frame.
  for (int t = 0; t < 2; ++t) {
    Frame f({64, 48, 40, 20}, t);
    ASSERT_EQ(lib.Run(&f.in.picture, &f.out.picture), LF_OK);
  }
  EXPECT_EQ(LinesWith(allocated + "3*2"), 2);
}

}  // namespace
}  // namespace Lumaforge::test
