// Drawing on RGBA frames: the demo clip, colour bars and contact sheets.
// Everything is clipped to the frame.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CANVAS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CANVAS_H_

#include <cstdint>
#include <string>

#include "tools/lumaforge/frame.h"

namespace Lumaforge::cli {

struct Rgba {
  uint8_t r, g, b, a;
};

void SetPixel(Frame& rgba, uint32_t x, uint32_t y, Rgba colour);
void FillRect(Frame& rgba, int x, int y, int width, int height, Rgba colour);
void FillDisc(Frame& rgba, int centreX, int centreY, int radius, Rgba colour);
// stb_easy_font's glyphs, each font pixel drawn as `scale` x `scale`.
void DrawText(Frame& rgba, int x, int y, int scale, const std::string& text, Rgba colour);
int TextWidth(const std::string& text, int scale);
void Paste(Frame& rgba, const Frame& picture, int x, int y);
// Nearest-neighbour resize.
Frame Stretched(const Frame& rgba, uint32_t width, uint32_t height);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CANVAS_H_
