// Run-time loading of shared libraries (the platform's media services).
#ifndef LUMAFORGE_FRAMEWORK_PLATFORM_DYNLOAD_H_
#define LUMAFORGE_FRAMEWORK_PLATFORM_DYNLOAD_H_

namespace Lumaforge::platform {

using LibraryHandle = void*;

// Null when the library cannot be loaded.
LibraryHandle LoadSharedLibrary(const char* name);
// Null when the symbol is missing or the handle is null.
void* FindSymbol(LibraryHandle library, const char* symbol);
// A null handle is ignored.
void FreeSharedLibrary(LibraryHandle library);

}  // namespace Lumaforge::platform

#endif  // LUMAFORGE_FRAMEWORK_PLATFORM_DYNLOAD_H_
