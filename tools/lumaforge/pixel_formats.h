// Format names the tool accepts and the tightly packed layout of each format.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::cli {

// Code 31 read as one 8-bit grey plane, as blur and downsample do.
inline constexpr uint32_t kGrey = LF_VYUY;

std::optional<uint32_t> FormatByName(std::string_view name);
std::string FormatName(uint32_t code);
std::vector<std::string> FormatNames();
std::vector<uint32_t> AllFormats();
// "i420, yv12, ..." for messages and help.
std::string JoinedFormatNames(const std::vector<uint32_t>& codes);

struct PlaneShape {
  uint32_t rowBytes = 0;
  uint32_t rows = 0;
};

// Planes in memory order, rows packed (stride = row bytes).
struct Layout {
  int planes = 0;
  PlaneShape plane[3];
  size_t PlaneBytes(int k) const { return size_t{plane[k].rowBytes} * plane[k].rows; }
  size_t Bytes() const { return PlaneBytes(0) + PlaneBytes(1) + PlaneBytes(2); }
};

Layout LayoutOf(uint32_t code, uint32_t width, uint32_t height);

// "1280x720".
std::string SizeText(uint32_t width, uint32_t height);

// Why `width` x `height` cannot hold a picture of this format; empty if it can.
std::string SizeProblem(uint32_t code, uint32_t width, uint32_t height);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_
