#include "tools/lumaforge/pixel_formats.h"

namespace Lumaforge::cli {
namespace {

struct NamedFormat {
  const char* name;
  uint32_t code;
};

// Lower-case names of the header's LF_ formats, in the order help lists them.
constexpr NamedFormat kFormats[] = {
    {"i420", LF_I420}, {"yv12", LF_YV12}, {"nv12", LF_NV12},   {"nv21", LF_NV21},   {"yuy2", LF_YUY2},
    {"uyvy", LF_UYVY}, {"yvyu", LF_YVYU}, {"rgb24", LF_RGB24}, {"bgr24", LF_BGR24}, {"rgba", LF_RGBA},
    {"bgra", LF_BGRA}, {"argb", LF_ARGB}, {"abgr", LF_ABGR},   {"rgbp", LF_RGBP},   {"grey", kGrey},
};

bool Is420(uint32_t code) { return code == LF_I420 || code == LF_YV12 || code == LF_NV12 || code == LF_NV21; }
bool Is422(uint32_t code) { return code == LF_YUY2 || code == LF_UYVY || code == LF_YVYU; }

}  // namespace

std::optional<uint32_t> FormatByName(std::string_view name) {
  for (const NamedFormat& f : kFormats) {
    if (name == f.name) return f.code;
  }
  return std::nullopt;
}

std::string FormatName(uint32_t code) {
  for (const NamedFormat& f : kFormats) {
    if (code == f.code) return f.name;
  }
  return "format " + std::to_string(code);
}

std::vector<std::string> FormatNames() {
  std::vector<std::string> names;
  for (const NamedFormat& f : kFormats) names.emplace_back(f.name);
  return names;
}

std::vector<uint32_t> AllFormats() {
  std::vector<uint32_t> codes;
  for (const NamedFormat& f : kFormats) codes.push_back(f.code);
  return codes;
}

std::string JoinedFormatNames(const std::vector<uint32_t>& codes) {
  std::string text;
  for (uint32_t code : codes) text += (text.empty() ? "" : ", ") + FormatName(code);
  return text;
}

std::string SizeText(uint32_t width, uint32_t height) { return std::to_string(width) + "x" + std::to_string(height); }

std::string SizeProblem(uint32_t code, uint32_t w, uint32_t h) {
  const std::string size = SizeText(w, h);
  if (w == 0 || h == 0) return "a " + size + " picture is empty";
  if (Is420(code) && ((w | h) & 1)) return FormatName(code) + " needs an even width and height, not " + size;
  if (Is422(code) && (w & 1)) return FormatName(code) + " needs an even width, not " + size;
  return {};
}

}  // namespace Lumaforge::cli
