// Format names the tool accepts and the tightly packed layout of each format.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/plane_layout.h"
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

// The tool's frames: planes in memory order, rows packed (stride = row
// bytes), formats read as scaling reads them (grey is one plane, RGBP three).
inline PlaneLayout LayoutOf(uint32_t code, uint32_t width, uint32_t height) {
  return Lumaforge::LayoutOf(code, FormatReading::kPlanes, width, height);
}

// "1280x720".
std::string SizeText(uint32_t width, uint32_t height);

// Why `width` x `height` cannot hold a picture of this format; empty if it can.
std::string SizeProblem(uint32_t code, uint32_t width, uint32_t height);

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_PIXEL_FORMATS_H_
