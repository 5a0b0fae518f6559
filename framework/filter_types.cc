#include "framework/filter_types.h"

#include <new>

#include "color/alpha_blend.h"
#include "color/color_space_convertor.h"
#include "color/image_crop.h"
#include "filters/gauss_blur.h"
#include "filters/video_filter.h"
#include "scaling/downsampling.h"

namespace Lumaforge {
namespace {

template <typename Filter>
CLumaforgeFramework* Create(uint32_t cpuFeatures) {
  return new (std::nothrow) Filter(cpuFeatures);
}

}  // namespace

const FilterTypeInfo* FindFilterType(int32_t type) {
  static const FilterTypeInfo kCsc{Create<CColorSpaceConvertor>, "Create ColorSpaceConvertion CSC(%p)", false};
  static const FilterTypeInfo kCrop{Create<CImageCrop>, "Create ImageCrop(%p)", false};
  static const FilterTypeInfo kDownsample{Create<CDownsampling>, "Create Downsample(%p)", true};
  static const FilterTypeInfo kAlphaBlend{Create<CAlphaBlend>, "Create AlphaBlend(%p)", false};
  static const FilterTypeInfo kVideoFilter{Create<CVideoFilter>, "Create VideoFilter(%p)", false};
  static const FilterTypeInfo kGaussBlur{Create<CGaussBlur>, "Create GaussBlur(%p)", false};
  switch (type) {
    case LF_FILTER_CSC: return &kCsc;
    case LF_FILTER_ALPHA_BLEND: return &kAlphaBlend;
    case LF_FILTER_DOWNSAMPLE: return &kDownsample;
    case LF_FILTER_CROP: return &kCrop;
    case LF_FILTER_VIDEO_FILTER: return &kVideoFilter;
    case LF_FILTER_GAUSS_BLUR: return &kGaussBlur;
    default: return nullptr;
  }
}

}  // namespace Lumaforge
