// Working pictures of the scaling filters: a caller's record used in place,
// or a padded, aligned copy in a block the filter owns and keeps between
// frames of the same size and format.
#ifndef LUMAFORGE_SCALING_WORK_PICTURE_H_
#define LUMAFORGE_SCALING_WORK_PICTURE_H_

#include <cstdint>

#include "framework/buffers.h"
#include "framework/plane_layout.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// A picture a filter works on: three planes, their strides and the size.
struct WorkPicture {
  uint8_t* planes[3] = {};
  uint32_t strides[3] = {};
  uint32_t width = 0, height = 0;
};

// The planes, strides and size of a caller's record.
WorkPicture RecordPicture(const VideoPicture& p);

// Whether every plane of `layout` starts and steps on `alignment` bytes.
bool IsAligned(const VideoPicture& picture, const PlaneLayout& layout, uint32_t alignment);

// Copies the rows of every plane of `code` (as scaling reads it) at
// from's size.
void CopyPicture(uint32_t code, const WorkPicture& from, const WorkPicture& to);

// A filter's own block for one working picture.
class WorkPictureBuffer {
 public:
  // Cuts `picture` for `code` at width x height: rows padded to `alignment`
  // (packed rows: padded width x bytes per pixel), the first plane past the
  // next alignment boundary. The block is kept (and its contents) for the
  // same size and format, else grown and zeroed; `*bytes` is set to the bytes
  // needed when it is. Returns LF_OK, or LF_SETUP_ALLOC_FAILED.
  int32_t Cut(uint32_t code, uint32_t width, uint32_t height, uint32_t alignment, WorkPicture& picture,
              uint64_t* bytes);
  void Free();

 private:
  WorkBlock block_;
  bool allocated_ = false;
  uint32_t width_ = 0, height_ = 0, code_ = 0;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_SCALING_WORK_PICTURE_H_
