// Opening a text file by a UTF-8 path, on every platform.
#ifndef LUMAFORGE_FRAMEWORK_PLATFORM_TEXT_FILE_H_
#define LUMAFORGE_FRAMEWORK_PLATFORM_TEXT_FILE_H_

#include <cstdio>

namespace Lumaforge::platform {

// The file opened for reading in text mode, or null (a null path included).
std::FILE* OpenTextFileForReading(const char* utf8Path);

}  // namespace Lumaforge::platform

#endif  // LUMAFORGE_FRAMEWORK_PLATFORM_TEXT_FILE_H_
