#include "tools/lumaforge/library_params.h"

namespace Lumaforge::cli {

bool IsToolSettable(const ParamDescriptor& param) {
  return (param.access & kParamSet) &&
         (param.type == ParamType::kFloat || param.type == ParamType::kUint32 || param.type == ParamType::kInt32);
}

void ApplyLibraryParams(Library& library, const FilterDescriptor& filter, const ParamSet& params) {
  for (const ParamDescriptor& p : filter.params) {
    if (!IsToolSettable(p) || params.Text(p.name, "").empty()) continue;
    if (p.type == ParamType::kFloat) {
      float value = params.Real(p.name, 0.0f, static_cast<float>(p.min), static_cast<float>(p.max));
      library.SetParam(filter.type, p.id, &value);
    } else if (p.type == ParamType::kInt32) {
      auto value =
          static_cast<int32_t>(*params.Integer(p.name, static_cast<int64_t>(p.min), static_cast<int64_t>(p.max)));
      library.SetParam(filter.type, p.id, &value);
    } else {
      uint32_t value = *params.Whole(p.name, static_cast<uint32_t>(p.min), static_cast<uint32_t>(p.max));
      library.SetParam(filter.type, p.id, &value);
    }
  }
}

}  // namespace Lumaforge::cli
