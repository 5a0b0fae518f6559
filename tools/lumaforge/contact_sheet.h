// The demo's picture per filter: rows of input | output thumbnails, each in
// a 640x360 cell, shrunk by the library's downsample filter and letterboxed.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CONTACT_SHEET_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CONTACT_SHEET_H_

#include <cstdint>
#include <string>

#include "tools/lumaforge/converter.h"
#include "tools/lumaforge/frame.h"
#include "tools/lumaforge/library.h"

namespace Lumaforge::cli {

class ContactSheet {
 public:
  static constexpr uint32_t kCellWidth = 640;
  static constexpr uint32_t kCellHeight = 360;

  ContactSheet(uint32_t rows, bool verbose);
  // Any format and size; `label` is written in the cell's corner.
  void Place(uint32_t row, uint32_t column, const Frame& frame, const std::string& label);
  void Write(const std::string& path) const;

 private:
  // RGBA, fitting the cell.
  Frame Thumbnail(const Frame& frame);

  Library library_;
  Converter converter_;
  Frame sheet_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CONTACT_SHEET_H_
