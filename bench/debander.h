// The deband filter driven as a host drives it: one silent manager, frames
// from an input picture into an output one (both with 64-byte aligned
// planes, as I420Frame gives them).
#ifndef LUMAFORGE_BENCH_DEBANDER_H_
#define LUMAFORGE_BENCH_DEBANDER_H_

#include <cstdint>

#include "bench/sr_upscaler.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge::bench {

class Debander {
 public:
  // The filter's defaults: strength 8, dither 6, span 64, one pass per plane.
  Debander(uint32_t width, uint32_t height) {
    CreateLumaforge(&m_pManager);
    int32_t silent = -1;
    m_pManager->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    FastDebandConfig config = {width, height, 8, 6, 6, LF_I420, 0, 1};
    m_pManager->Init(LF_FILTER_FAST_DEBAND, &config, 0);
  }
  ~Debander() { DestroyLumaforge(m_pManager); }
  Debander(const Debander&) = delete;
  Debander& operator=(const Debander&) = delete;

  int32_t Process(I420Frame& in, I420Frame& out) {
    return m_pManager->Process(LF_FILTER_FAST_DEBAND, &in.picture, &out.picture);
  }

 private:
  ILumaforge* m_pManager = nullptr;
};

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_DEBANDER_H_
