// Format changes through the library's colour space converter (filter type 1).
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CONVERTER_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CONVERTER_H_

#include <cstdint>
#include <memory>

#include "tools/lumaforge/frame.h"
#include "tools/lumaforge/library.h"

namespace Lumaforge::cli {

class Converter {
 public:
  // With its own library object.
  explicit Converter(bool verbose);
  // On a library object shared with its owner, whose Process time then
  // includes the conversions.
  explicit Converter(Library& library);

  // `frame` in `format`. The converter works on even sizes, so an odd last
  // column or row is dropped. Grey (code 31) is no format the converter
  // knows: it travels as the luma plane of I420 with neutral chroma.
  Frame To(Frame frame, uint32_t format);

 private:
  std::unique_ptr<Library> owned_;
  Library& library_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CONVERTER_H_
