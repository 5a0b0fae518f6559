#include <windows.h>

#include "framework/platform/wide_path.h"

namespace Lumaforge::platform {

std::wstring WidePath(const char* utf8) {
  if (!utf8 || !*utf8) return std::wstring();
  const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
  if (length <= 0) return std::wstring();
  std::wstring wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, wide.data(), length);
  wide.resize(static_cast<size_t>(length) - 1);  // drop the terminator the count includes
  return wide;
}

}  // namespace Lumaforge::platform
