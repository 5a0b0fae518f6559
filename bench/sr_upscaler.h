// The super resolution filter driven as a host drives it, for the
// benchmark and the photograph tests: I420 frames with aligned planes built
// around a luma picture, the filter in each of its four modes, libyuv's
// bilinear upscale as the everyday reference, and luma PSNR.
#ifndef LUMAFORGE_BENCH_SR_UPSCALER_H_
#define LUMAFORGE_BENCH_SR_UPSCALER_H_

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "lumaforge/lumaforge.h"
#include "tools/sr_train/luma_picture.h"
#include "tools/sr_train/upscalers.h"

namespace Lumaforge::bench {

using sr_train::LumaPicture;

// An I420 picture whose planes start on 64-byte boundaries with strides in
// multiples of 64, so the filter's caller-buffer mode works in place.
class I420Frame {
 public:
  I420Frame(int32_t width, int32_t height);
  // `luma` in plane 0; chroma planes of 128, or `chroma` (half size) in both.
  explicit I420Frame(const LumaPicture& luma, const LumaPicture* chroma = nullptr);

  LumaPicture Luma() const;
  // A frame of its own with the same pixels.
  I420Frame Clone() const;

  VideoPicture picture = {};

 private:
  std::unique_ptr<uint8_t, decltype(&std::free)> m_pMemory{nullptr, &std::free};
};

enum class SrMode { kStandard2x, kEnhanced2x, kStandard15, kAlternative15 };

const char* SrModeName(SrMode mode);
// The enlarged size of `size` (even) in `mode`.
inline int32_t SrScaled(SrMode mode, int32_t size) {
  return mode == SrMode::kStandard2x || mode == SrMode::kEnhanced2x ? 2 * size : 3 * size / 2;
}

// One silent manager with the filter set up for `mode`, writing into the
// caller's planes; the enhanced mode reads `coefficientFile`.
class SrUpscaler {
 public:
  explicit SrUpscaler(SrMode mode, const char* coefficientFile = LUMAFORGE_SR_COEFFICIENT_FILE);
  ~SrUpscaler();
  SrUpscaler(const SrUpscaler&) = delete;
  SrUpscaler& operator=(const SrUpscaler&) = delete;

  // The filter's status (0 on success).
  int32_t Process(I420Frame& in, I420Frame& out) {
    return m_pManager->Process(LF_FILTER_SUPER_RESOLUTION, &in.picture, &out.picture);
  }
  // The luma of the enlarged picture, or an empty picture when the filter
  // refused the frame.
  LumaPicture Upscale(const LumaPicture& source, int32_t width, int32_t height);

 private:
  ILumaforge* m_pManager = nullptr;
};

// libyuv's bilinear luma upscale to an exact size.
LumaPicture LibyuvBilinear(const LumaPicture& source, int32_t width, int32_t height);

// Copies `picture`'s top-left `width` x `height` corner.
LumaPicture Cropped(const LumaPicture& picture, int32_t width, int32_t height);
// Luma PSNR, as the coefficient trainer measures it.
using sr_train::Psnr;

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_SR_UPSCALER_H_
