#include "framework/platform/text_file.h"

namespace Lumaforge::platform {

std::FILE* OpenTextFileForReading(const char* utf8Path) { return utf8Path ? std::fopen(utf8Path, "r") : nullptr; }

}  // namespace Lumaforge::platform
