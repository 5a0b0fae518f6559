#include "enhance/kernels/deband.h"

#include "enhance/kernels/deband_rows.h"
#include "framework/cpu_features.h"

namespace Lumaforge {

using namespace deband;

void DebandPlane_c(const DebandJob& job) {
  const int32_t kh = HoldSpan(job.spanH), kv = HoldSpan(job.spanV);
  const int32_t hx = (1 << kh) / 2, rows = 1 << kv, hv = rows / 2;
  const int32_t t = HeldStrength(job.strength);
  const int32_t* oh = kOffsets[kh];
  const int32_t* ov = kOffsets[kv];
  uint32_t state = FillDitherTable(job.dither, job.seed, job.ditherTable, NextState);
  const int32_t width = job.width;
  for (int32_t r = -hv; r < job.height + hv; ++r) {
    if (r + job.firstRow >= 0 && r + job.firstRow < job.rowLimit) {
      const uint8_t* s = job.src + r * job.srcStride;
      uint16_t* ring = job.ring + static_cast<ptrdiff_t>(r & (rows - 1)) * width;
      for (int32_t x = 0; x < width; ++x) {
        const int32_t c = s[x];
        int32_t sum = 4 * c;
        if (x >= hx && x < width - hx) {
          sum = 0;
          for (int32_t i = 0; i < 4; ++i) sum += Tap(s[x + oh[i]], c, t);
        }
        ring[x] = static_cast<uint16_t>(sum);
      }
    }
    const int32_t y = r + 1 - hv;
    if (y < 0) continue;
    if (y + job.firstRow >= job.rowLimit) break;
    const bool inner = hv <= y + job.firstRow && y + hv + job.firstRow < job.rowLimit;
    const uint16_t* centre = job.ring + static_cast<ptrdiff_t>(y & (rows - 1)) * width;
    uint8_t* out = job.dst + y * job.dstStride;
    for (int32_t x = 0; x < width; ++x) {
      if ((x & 31) == 0) state = NextState(state);
      const int32_t noise = job.ditherTable[(state & 0x7FF) + (x & 31)];
      const int32_t c = centre[x];
      int32_t sum = 4 * c;
      if (inner) {
        sum = 0;
        for (int32_t i = 0; i < 4; ++i)
          sum += Tap(job.ring[static_cast<ptrdiff_t>((y + ov[i]) & (rows - 1)) * width + x], c, 4 * t);
      }
      out[x] = ToByte((sum + noise) >> 4);
    }
  }
}

void InitDebandKernels(DebandKernels* kernels, uint32_t cpuFeatures) {
  kernels->plane = DebandPlane_c;
  ClimbLadder(kernels, cpuFeatures,
              {{kCpuSSE2, sse2::Install},
               {kCpuSSSE3, ssse3::Install},
               {kCpuSSE42, sse42::Install},
               {kCpuAVX, avx::Install},
               {kCpuAVX2, avx2::Install}});
}

}  // namespace Lumaforge
