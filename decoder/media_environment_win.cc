// Media Foundation, loaded at run time, on a COM single-threaded apartment.
#include <objbase.h>
#include <windows.h>

#include "decoder/media_environment.h"
#include "decoder/media_foundation_entry_points.h"
#include "framework/platform/dynload.h"

namespace Lumaforge {
namespace {

constexpr unsigned long kMediaFoundationFullStartup = 0x20070;  // version 2.0x70, full start-up

platform::LibraryHandle g_platformModule = nullptr;
platform::LibraryHandle g_readerModule = nullptr;

template <typename Fn>
void Resolve(platform::LibraryHandle module, const char* name, Fn& entry) {
  entry = reinterpret_cast<Fn>(platform::FindSymbol(module, name));
}

}  // namespace

MediaFoundationEntryPoints g_mediaFoundation;

bool StartMediaEnvironment() {
  const HRESULT com = CoInitialize(nullptr);
  if (com != S_OK && com != S_FALSE) return false;
  // No nesting count: a second start only adds a COM initialisation.
  if (g_platformModule && g_readerModule) return true;

  g_readerModule = platform::LoadSharedLibrary("mfreadwrite.dll");
  if (!g_readerModule) {
    CoUninitialize();
    return false;
  }
  Resolve(g_readerModule, "MFCreateSourceReaderFromMediaSource", g_mediaFoundation.createSourceReaderFromMediaSource);
  Resolve(g_readerModule, "MFCreateSourceReaderFromURL", g_mediaFoundation.createSourceReaderFromURL);

  g_platformModule = platform::LoadSharedLibrary("Mfplat.dll");
  if (g_platformModule) {
    Resolve(g_platformModule, "MFCreateAttributes", g_mediaFoundation.createAttributes);
    Resolve(g_platformModule, "MFStartup", g_mediaFoundation.startup);
    Resolve(g_platformModule, "MFShutdown", g_mediaFoundation.shutdown);
    Resolve(g_platformModule, "MFCreateMediaType", g_mediaFoundation.createMediaType);
    Resolve(g_platformModule, "MFCreateDXGIDeviceManager", g_mediaFoundation.createDXGIDeviceManager);
    if (g_mediaFoundation.startup && SUCCEEDED(g_mediaFoundation.startup(kMediaFoundationFullStartup, 0))) {
      return true;
    }
    platform::FreeSharedLibrary(g_platformModule);
  }
  platform::FreeSharedLibrary(g_readerModule);
  g_platformModule = nullptr;
  g_readerModule = nullptr;
  CoUninitialize();
  return false;
}

void StopMediaEnvironment() {
  // The resolved entry points are kept; only the modules are released.
  if (g_mediaFoundation.shutdown) g_mediaFoundation.shutdown();
  platform::FreeSharedLibrary(g_platformModule);
  g_platformModule = nullptr;
  platform::FreeSharedLibrary(g_readerModule);
  g_readerModule = nullptr;
  CoUninitialize();
}

}  // namespace Lumaforge
