// The library's version and the build's source revision.
#ifndef LUMAFORGE_FRAMEWORK_VERSION_H_
#define LUMAFORGE_FRAMEWORK_VERSION_H_

#include "lumaforge/lumaforge.h"

namespace Lumaforge {

constexpr LumaforgeVersion kVersion = {3, 4, 2, 0};
constexpr const char kVersionText[] = "Lumaforge Version: 3.4.2.0";
// Seven hex digits of the source revision, fixed when the build is configured.
extern const char kCommitId[];

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_VERSION_H_
