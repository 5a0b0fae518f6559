// The denoise filter driven as a host drives it: one silent manager, one
// level, frames changed in place.
#ifndef LUMAFORGE_BENCH_DENOISER_H_
#define LUMAFORGE_BENCH_DENOISER_H_

#include <cstdint>

#include "bench/sr_upscaler.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge::bench {

class Denoiser {
 public:
  // `level`: 0 automatic, 1..4 fixed.
  Denoiser(int32_t level, uint32_t width, uint32_t height) {
    CreateLumaforge(&m_pManager);
    int32_t silent = -1;
    m_pManager->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    DenoiseConfig config = {width, height, LF_I420, level};
    m_pManager->Init(LF_FILTER_DENOISE, &config, 0);
  }
  ~Denoiser() { DestroyLumaforge(m_pManager); }
  Denoiser(const Denoiser&) = delete;
  Denoiser& operator=(const Denoiser&) = delete;

  int32_t Process(I420Frame& frame) {
    VideoPicture unused = {};
    return m_pManager->Process(LF_FILTER_DENOISE, &frame.picture, &unused);
  }
  int32_t Get(ParamId id) {
    int32_t value = 0;
    m_pManager->GetParam(LF_FILTER_DENOISE, id, &value);
    return value;
  }
  void Set(ParamId id, int32_t value) { m_pManager->SetParam(LF_FILTER_DENOISE, id, &value); }

 private:
  ILumaforge* m_pManager = nullptr;
};

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_DENOISER_H_
