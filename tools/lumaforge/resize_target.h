// What the scaling steps share: frames cut to even sizes, and the target
// size from the width and height options.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_RESIZE_TARGET_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_RESIZE_TARGET_H_

#include <cstdint>
#include <optional>
#include <utility>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

// The frame without an odd last column or row, as the converter drops them.
Frame EvenFrame(Frame frame);

// The size to scale `inWidth` x `inHeight` to: both options as given, one
// of them with the other keeping the aspect (rounded down to even), or
// `byDefault` when neither is given.
std::pair<uint32_t, uint32_t> ResizeTarget(std::optional<uint32_t> width, std::optional<uint32_t> height,
                                           uint32_t inWidth, uint32_t inHeight,
                                           std::pair<uint32_t, uint32_t> byDefault);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_RESIZE_TARGET_H_
