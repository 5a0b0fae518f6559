#include <dlfcn.h>

#include "framework/platform/dynload.h"

namespace Lumaforge::platform {

LibraryHandle LoadSharedLibrary(const char* name) { return name ? dlopen(name, RTLD_NOW | RTLD_LOCAL) : nullptr; }

void* FindSymbol(LibraryHandle library, const char* symbol) {
  return (library && symbol) ? dlsym(library, symbol) : nullptr;
}

void FreeSharedLibrary(LibraryHandle library) {
  if (library) dlclose(library);
}

}  // namespace Lumaforge::platform
