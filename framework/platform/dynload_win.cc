#include <windows.h>

#include "framework/platform/dynload.h"

namespace Lumaforge::platform {

LibraryHandle LoadSharedLibrary(const char* name) { return name ? LoadLibraryA(name) : nullptr; }

void* FindSymbol(LibraryHandle library, const char* symbol) {
  if (!library || !symbol) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), symbol));
}

void FreeSharedLibrary(LibraryHandle library) {
  if (library) FreeLibrary(static_cast<HMODULE>(library));
}

}  // namespace Lumaforge::platform
