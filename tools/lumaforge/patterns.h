// Synthetic pictures: the blend filter's default overlay and the demo clip.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_PATTERNS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_PATTERNS_H_

#include <cstdint>
#include <vector>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

// Seven 75% bars (white, yellow, cyan, green, magenta, red, blue), RGBA.
Frame ColourBars(uint32_t width, uint32_t height);

// Frame `index` of `count`, RGBA: gradients that band, a zone plate, a
// checker and thin lines, noise, a block of text and objects that move.
Frame DemoFrame(uint32_t width, uint32_t height, uint32_t index, uint32_t count);

// The whole clip in I420, converted by the library.
std::vector<Frame> DemoClip(uint32_t width, uint32_t height, uint32_t count, bool verbose);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_PATTERNS_H_
