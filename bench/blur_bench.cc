// Gaussian blur speed at 1920x1080 for sigma 2, 5 and 20: the filter at
// every processor level against a plain separable FIR Gaussian of the same
// sigma (taps out to 3 sigma, edges clamped), written here as the reference.
// The recursive filter's time should not depend on sigma; the FIR's grows
// with it.
//
//   blur_bench [frames-per-batch]
#include <cmath>
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

// Separable FIR Gaussian of one plane with `channels` interleaved channels.
class FirGaussian {
 public:
  explicit FirGaussian(float sigma) {
    const int radius = static_cast<int>(std::ceil(3.0f * sigma));
    float sum = 0;
    for (int k = -radius; k <= radius; ++k) {
      m_taps.push_back(std::exp(-0.5f * k * k / (sigma * sigma)));
      sum += m_taps.back();
    }
    for (float& tap : m_taps) tap /= sum;
    m_radius = radius;
  }

  void Blur(const uint8_t* src, uint8_t* dst, int w, int h, int channels) {
    const int rowSamples = w * channels;
    m_rows.resize(static_cast<size_t>(rowSamples) * h);
    m_line.resize(static_cast<size_t>(w + 2 * m_radius) * channels);
    m_accumulator.resize(rowSamples);
    const int taps = static_cast<int>(m_taps.size());
    for (int y = 0; y < h; ++y) {
      const uint8_t* row = src + static_cast<size_t>(y) * rowSamples;
      for (int x = -m_radius; x < w + m_radius; ++x) {
        const int clamped = x < 0 ? 0 : x >= w ? w - 1 : x;
        for (int c = 0; c < channels; ++c) m_line[(x + m_radius) * channels + c] = row[clamped * channels + c];
      }
      float* out = &m_rows[static_cast<size_t>(y) * rowSamples];
      for (int i = 0; i < rowSamples; ++i) {
        float sum = 0;
        for (int k = 0; k < taps; ++k) sum += m_taps[k] * m_line[i + k * channels];
        out[i] = sum;
      }
    }
    for (int y = 0; y < h; ++y) {
      std::fill(m_accumulator.begin(), m_accumulator.end(), 0.0f);
      for (int k = 0; k < taps; ++k) {
        const int from = std::clamp(y + k - m_radius, 0, h - 1);
        const float* in = &m_rows[static_cast<size_t>(from) * rowSamples];
        for (int i = 0; i < rowSamples; ++i) m_accumulator[i] += m_taps[k] * in[i];
      }
      uint8_t* out = dst + static_cast<size_t>(y) * rowSamples;
      for (int i = 0; i < rowSamples; ++i) out[i] = static_cast<uint8_t>(m_accumulator[i] + 0.5f);
    }
  }

 private:
  std::vector<float> m_taps, m_rows, m_line, m_accumulator;
  int m_radius = 0;
};

double TimeFir(float sigma, OwnedPicture& in, OwnedPicture& out, int frames) {
  FirGaussian fir(sigma);
  const VideoPicture &a = in.picture, &b = out.picture;
  if ((a.format & LF_FORMAT_CODE_MASK) == LF_BGRA) {
    return TimeMs([&] { fir.Blur(a.planes[0], b.planes[0], kWidth, kHeight, 4); }, frames);
  }
  return TimeMs(
      [&] {
        fir.Blur(a.planes[0], b.planes[0], kWidth, kHeight, 1);
        fir.Blur(a.planes[1], b.planes[1], kWidth / 2, kHeight / 2, 1);
        fir.Blur(a.planes[2], b.planes[2], kWidth / 2, kHeight / 2, 1);
      },
      frames);
}

void Row(const char* name, uint32_t format, float sigma, int frames) {
  OwnedPicture in(format, kWidth, kHeight, 0), out(format, kWidth, kHeight, 0);
  in.FillRandom(7);
  std::printf("%-6s %5.1f", name, sigma);
  double best = 0;
  Lumaforge::bench::ForEachLevel(LF_FILTER_GAUSS_BLUR, 0, [&](const Lumaforge::CpuLevel&, ILumaforge* lf) {
    lf->Init(LF_FILTER_GAUSS_BLUR, &sigma, 0);
    best = TimeMs([&] { lf->Process(LF_FILTER_GAUSS_BLUR, &in.picture, &out.picture); }, frames);
    std::printf(" %7.3f", best);
  });
  const double fir = TimeFir(sigma, in, out, std::max(1, frames / 4));
  std::printf(" %8.3f %9.2f\n", fir, best / fir);
}

}  // namespace

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::max(1, std::atoi(argv[1])) : 4;
  const int32_t available = Lumaforge::bench::AvailableTier();
  std::printf("1920x1080, ms per frame (best of 7 batches of %d); processor tier %d\n\n", frames, available);
  std::printf("%-6s %5s", "format", "sigma");
  Lumaforge::bench::PrintLevelTitles(7);
  std::printf(" %8s %9s\n", "FIR", "ours/FIR");
  for (float sigma : {2.0f, 5.0f, 20.0f}) {
    Row("BGRA", LF_BGRA, sigma, frames);
    Row("I420", LF_I420, sigma, frames);
  }
  return 0;
}
