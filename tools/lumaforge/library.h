// One ILumaforge owned by the tool. Every call that does not answer LF_OK
// throws, with the status code and its meaning in the message.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_H_

#include <chrono>
#include <cstdint>
#include <string>

#include "lumaforge/lumaforge.h"

namespace Lumaforge::cli {

// "status -4 (unsupported format)".
std::string StatusText(int32_t status);

class Library {
 public:
  // Silences the library's log unless `verbose`.
  explicit Library(bool verbose);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  void Init(int32_t type, void* config, uint8_t flag);
  void SetParam(int32_t type, ParamId id, void* value);
  // Timed: ProcessTime() adds up the time spent inside these calls only.
  void Process(int32_t type, VideoPicture* input, VideoPicture* output);
  std::chrono::nanoseconds ProcessTime() const { return processTime_; }

 private:
  ILumaforge* lf_ = nullptr;
  std::chrono::nanoseconds processTime_{0};
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_LIBRARY_H_
