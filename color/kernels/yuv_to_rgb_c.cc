#include <array>

#include "color/kernels/yuv_to_rgb.h"
#include "framework/cpu_features.h"

namespace Lumaforge {
namespace {

// One exact 256-entry table per term of the matrix.
struct YuvTables {
  std::array<int32_t, 256> y, ub, ug, vg, vr;
};

constexpr YuvTables MakeTables() {
  YuvTables t{};
  for (int32_t x = 0; x < 256; ++x) {
    t.y[x] = (x - 16) * 74;
    t.ub[x] = (x - 128) * 129;
    t.ug[x] = (x - 128) * 25;
    t.vg[x] = (x - 128) * 52;
    t.vr[x] = (x - 128) * 102;
  }
  return t;
}

constexpr YuvTables kTables = MakeTables();

// The shift is arithmetic: it rounds toward minus infinity.
inline uint8_t Clamp6(int32_t value) {
  const int32_t shifted = value >> 6;
  return static_cast<uint8_t>(shifted < 0 ? 0 : (shifted > 255 ? 255 : shifted));
}

inline void StorePixel(uint8_t* bgra, int32_t y, int32_t blue, int32_t green, int32_t red) {
  bgra[0] = Clamp6(y + blue);
  bgra[1] = Clamp6(y - green);
  bgra[2] = Clamp6(y + red);
  bgra[3] = 255;
}

}  // namespace

void I422ToBgraRow_c(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* bgra, int32_t width) {
  for (int32_t x = 0; x + 1 < width; x += 2) {
    const int32_t c = x / 2;
    const int32_t blue = kTables.ub[u[c]];
    const int32_t green = kTables.ug[u[c]] + kTables.vg[v[c]];
    const int32_t red = kTables.vr[v[c]];
    StorePixel(bgra + 4 * x, kTables.y[y[x]], blue, green, red);
    StorePixel(bgra + 4 * x + 4, kTables.y[y[x + 1]], blue, green, red);
  }
}

void InitYuvToRgbKernels(YuvToRgbKernels* kernels, uint32_t cpuFeatures) {
  *kernels = {I422ToBgraRow_c};
  ClimbLadder(
      kernels, cpuFeatures,
      {{kCpuSSE2, sse2::Install}, {kCpuSSSE3, ssse3::Install}, {kCpuAVX, avx::Install}, {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
