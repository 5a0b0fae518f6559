// The one exception type of the tool: a message for the user, caught in main.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_ERRORS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_ERRORS_H_

#include <stdexcept>

namespace Lumaforge::cli {

class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_ERRORS_H_
