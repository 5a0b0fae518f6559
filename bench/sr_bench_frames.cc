#include "bench/sr_bench_frames.h"

#include <opencv2/imgproc.hpp>

namespace Lumaforge::bench {
namespace {

cv::Mat MatOf(const LumaPicture& picture) {
  return cv::Mat(picture.height, picture.width, CV_8UC1, const_cast<uint8_t*>(picture.pixels.data()));
}

}  // namespace

cv::Mat PlaneMat(const I420Frame& frame, int k) {
  const VideoPicture& picture = frame.picture;
  const int shift = k == 0 ? 0 : 1;
  return cv::Mat(static_cast<int>(picture.height >> shift), static_cast<int>(picture.width >> shift), CV_8UC1,
                 picture.planes[k], picture.strides[k]);
}

LumaPicture OpenCvResize(const LumaPicture& source, int32_t width, int32_t height, int interpolation) {
  LumaPicture result(width, height);
  cv::Mat to = MatOf(result);
  cv::resize(MatOf(source), to, to.size(), 0, 0, interpolation);
  return result;
}

}  // namespace Lumaforge::bench
