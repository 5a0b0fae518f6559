// The library's own filter parameters, as the tool reads them from the
// filter descriptors: which ones --param can set, and setting them.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_PARAMS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_PARAMS_H_

#include "framework/filter_descriptor.h"
#include "tools/lumaforge/library.h"
#include "tools/lumaforge/param_set.h"

namespace Lumaforge::cli {

// Numbers SetParam takes: --param can give them. Records cannot.
bool IsToolSettable(const ParamDescriptor& param);

// Sets, through SetParam, every parameter of `filter` that `params` names.
// Values outside the descriptor's range throw.
void ApplyLibraryParams(Library& library, const FilterDescriptor& filter, const ParamSet& params);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_PARAMS_H_
