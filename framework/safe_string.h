// The bounds-checked memory and string functions (memcpy_s, memset_s,
// strcpy_s, strncat_s, ...) from safeclib.
#ifndef LUMAFORGE_FRAMEWORK_SAFE_STRING_H_
#define LUMAFORGE_FRAMEWORK_SAFE_STRING_H_

extern "C" {
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
}

#endif  // LUMAFORGE_FRAMEWORK_SAFE_STRING_H_
