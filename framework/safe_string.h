// The bounds-checked memory and string functions (memcpy_s, strncat_s,
// strnlen_s, ...): safeclib on Linux, the C runtime's own on Windows.
#ifndef LUMAFORGE_FRAMEWORK_SAFE_STRING_H_
#define LUMAFORGE_FRAMEWORK_SAFE_STRING_H_

#if defined(_WIN32)
#include <string.h>
#else
extern "C" {
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
}
#endif

#endif  // LUMAFORGE_FRAMEWORK_SAFE_STRING_H_
