// The demo's super-resolution sheet: each sample frame is halved, then
// enlarged back by bicubic interpolation (left) and by the library's
// enhanced super resolution (right), both shown at full size (the middle of
// the picture, one cell large).
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_SR_SHEET_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_SR_SHEET_H_

#include <string>
#include <vector>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

// `frames` are I420 pictures of even sizes, at least two cells large.
void WriteSrSheet(const std::vector<Frame>& frames, const std::string& path, bool verbose);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_SR_SHEET_H_
