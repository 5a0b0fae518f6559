#include "tools/lumaforge/contact_sheet.h"

#include <algorithm>

#include "tools/lumaforge/canvas.h"
#include "tools/lumaforge/still_image.h"

namespace Lumaforge::cli {
namespace {

constexpr uint32_t kMinDownsampleSide = 16;

// The middle of an RGBA picture, at most one cell large.
Frame CentreOfCell(Frame& rgba) {
  VideoPicture middle = rgba.Picture();
  const uint32_t width = std::min(rgba.width(), ContactSheet::kCellWidth);
  const uint32_t height = std::min(rgba.height(), ContactSheet::kCellHeight);
  middle.planes[0] += size_t{(rgba.height() - height) / 2} * middle.strides[0] + size_t{(rgba.width() - width) / 2} * 4;
  middle.width = width;
  middle.height = height;
  return Frame::CopyOf(middle);
}

}  // namespace

ContactSheet::ContactSheet(uint32_t rows, bool verbose)
    : library_(verbose), converter_(library_), sheet_(LF_RGBA, 2 * kCellWidth, rows * kCellHeight) {
  library_.Init(LF_FILTER_DOWNSAMPLE, nullptr, 1);
  FillRect(sheet_, 0, 0, static_cast<int>(sheet_.width()), static_cast<int>(sheet_.height()), {0, 0, 0, 255});
}

Frame ContactSheet::Thumbnail(const Frame& frame) {
  Frame rgba = converter_.To(frame, LF_RGBA);
  const double scale = std::min(double(kCellWidth) / rgba.width(), double(kCellHeight) / rgba.height());
  if (scale >= 1.0) return rgba;
  const uint32_t width = static_cast<uint32_t>(rgba.width() * scale) & ~1u;
  const uint32_t height = static_cast<uint32_t>(rgba.height() * scale) & ~1u;
  // Too thin for the filter: shown cut to the cell instead.
  if (width < kMinDownsampleSide || height < kMinDownsampleSide) return CentreOfCell(rgba);
  Frame small(LF_RGBA, width, height);
  VideoPicture input = rgba.Picture(), output = small.Picture();
  library_.Process(LF_FILTER_DOWNSAMPLE, &input, &output);
  return small;
}

void ContactSheet::Place(uint32_t row, uint32_t column, const Frame& frame, const std::string& label) {
  const Frame thumbnail = Thumbnail(frame);
  const int cellX = static_cast<int>(column * kCellWidth), cellY = static_cast<int>(row * kCellHeight);
  Paste(sheet_, thumbnail, cellX + (static_cast<int>(kCellWidth) - static_cast<int>(thumbnail.width())) / 2,
        cellY + (static_cast<int>(kCellHeight) - static_cast<int>(thumbnail.height())) / 2);
  constexpr int kTextScale = 2;
  FillRect(sheet_, cellX, cellY, TextWidth(label, kTextScale) + 8, 12 * kTextScale + 4, {0, 0, 0, 255});
  DrawText(sheet_, cellX + 4, cellY + 4, kTextScale, label, {255, 255, 255, 255});
}

void ContactSheet::Write(const std::string& path) const { WritePng(path, sheet_); }

}  // namespace Lumaforge::cli
