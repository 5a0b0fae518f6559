// The OpenCV side of sr_bench: plane headers over the filter's frames and
// OpenCV's resize as the reference upscalers.
#ifndef LUMAFORGE_BENCH_SR_BENCH_FRAMES_H_
#define LUMAFORGE_BENCH_SR_BENCH_FRAMES_H_

#include <opencv2/core.hpp>

#include "bench/sr_upscaler.h"

namespace Lumaforge::bench {

// A header over plane `k` of `frame` (no copy).
cv::Mat PlaneMat(const I420Frame& frame, int k);

// OpenCV's luma resize to an exact size.
LumaPicture OpenCvResize(const LumaPicture& source, int32_t width, int32_t height, int interpolation);

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_SR_BENCH_FRAMES_H_
