// The library's filters, in type order: a new filter adds its descriptor here.
#include "framework/filter_descriptor.h"

namespace Lumaforge {

extern const FilterDescriptor kCscDescriptor;
extern const FilterDescriptor kDownsampleDescriptor;
extern const FilterDescriptor kCropDescriptor;
extern const FilterDescriptor kVideoFilterDescriptor;
extern const FilterDescriptor kAlphaBlendDescriptor;
extern const FilterDescriptor kGaussBlurDescriptor;

std::span<const FilterDescriptor* const> FilterList() {
  static const FilterDescriptor* const kList[] = {
      &kCscDescriptor,         &kDownsampleDescriptor, &kCropDescriptor,
      &kVideoFilterDescriptor, &kAlphaBlendDescriptor, &kGaussBlurDescriptor,
  };
  return kList;
}

}  // namespace Lumaforge
