// UTF-8 file names for the platform's wide-character file APIs.
#ifndef LUMAFORGE_FRAMEWORK_PLATFORM_WIDE_PATH_H_
#define LUMAFORGE_FRAMEWORK_PLATFORM_WIDE_PATH_H_

#if defined(_WIN32)

#include <string>

namespace Lumaforge::platform {

// UTF-16 form of a UTF-8 path; null reads as empty, invalid UTF-8 gives an
// empty string.
std::wstring WidePath(const char* utf8);

}  // namespace Lumaforge::platform

#endif  // _WIN32

#endif  // LUMAFORGE_FRAMEWORK_PLATFORM_WIDE_PATH_H_
