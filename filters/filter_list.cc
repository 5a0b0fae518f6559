// The library's filters, in type order: a new filter adds one line here.
#include "framework/filter_descriptor.h"

#define LUMAFORGE_FILTER_LIST(FILTER) \
  FILTER(kCscDescriptor)              \
  FILTER(kDenoiseDescriptor)          \
  FILTER(kFastDebandDescriptor)       \
  FILTER(kDownsampleDescriptor)       \
  FILTER(kCropDescriptor)             \
  FILTER(kSuperResolutionDescriptor)  \
  FILTER(kUpsampleDescriptor)         \
  FILTER(kVideoFilterDescriptor)      \
  FILTER(kAlphaBlendDescriptor)       \
  FILTER(kGaussBlurDescriptor)

namespace Lumaforge {

// Each filter defines its descriptor in its own source file.
#define LUMAFORGE_DECLARE_DESCRIPTOR(descriptor) extern const FilterDescriptor descriptor;
LUMAFORGE_FILTER_LIST(LUMAFORGE_DECLARE_DESCRIPTOR)

std::span<const FilterDescriptor* const> FilterList() {
#define LUMAFORGE_DESCRIPTOR_ADDRESS(descriptor) &descriptor,
  static const FilterDescriptor* const kList[] = {LUMAFORGE_FILTER_LIST(LUMAFORGE_DESCRIPTOR_ADDRESS)};
  return kList;
}

}  // namespace Lumaforge
