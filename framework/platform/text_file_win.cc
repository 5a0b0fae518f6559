#include <string>

#include "framework/platform/text_file.h"
#include "framework/platform/wide_path.h"

namespace Lumaforge::platform {

// The wide-character call opens names outside the process's code page.
std::FILE* OpenTextFileForReading(const char* utf8Path) {
  const std::wstring path = WidePath(utf8Path);
  return path.empty() ? nullptr : _wfopen(path.c_str(), L"r");
}

}  // namespace Lumaforge::platform
