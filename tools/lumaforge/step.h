// One filter of a chain, with its own library object so that filters of the
// same type in one chain keep their own settings.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_STEP_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_STEP_H_

#include <chrono>

#include "tools/lumaforge/frame.h"
#include "tools/lumaforge/library.h"

namespace Lumaforge::cli {

class Step {
 public:
  explicit Step(bool verbose) : library_(verbose) {}
  virtual ~Step() = default;

  // Takes a frame in one of the filter's formats; may return it changed in place.
  virtual Frame Run(Frame frame) = 0;
  // Time inside the filter's Process calls.
  std::chrono::nanoseconds ProcessTime() const { return library_.ProcessTime(); }

 protected:
  Library library_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_STEP_H_
