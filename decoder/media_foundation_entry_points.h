// Media Foundation functions resolved at run time by the media environment,
// for the Windows decoders.
#ifndef LUMAFORGE_DECODER_MEDIA_FOUNDATION_ENTRY_POINTS_H_
#define LUMAFORGE_DECODER_MEDIA_FOUNDATION_ENTRY_POINTS_H_

#if defined(_WIN32)

#include <windows.h>

namespace Lumaforge {

// Signatures as declared by the Media Foundation headers; interface
// pointers are kept opaque here.
struct MediaFoundationEntryPoints {
  HRESULT(WINAPI* createSourceReaderFromMediaSource)(void* source, void* attributes, void** reader) = nullptr;
  HRESULT(WINAPI* createSourceReaderFromURL)(const wchar_t* url, void* attributes, void** reader) = nullptr;
  HRESULT(WINAPI* createAttributes)(void** attributes, UINT32 initialSize) = nullptr;
  HRESULT(WINAPI* startup)(ULONG version, DWORD flags) = nullptr;
  HRESULT(WINAPI* shutdown)() = nullptr;
  HRESULT(WINAPI* createMediaType)(void** type) = nullptr;
  HRESULT(WINAPI* createDXGIDeviceManager)(UINT* resetToken, void** manager) = nullptr;
};

// Filled by StartMediaEnvironment; process-wide and unguarded.
extern MediaFoundationEntryPoints g_mediaFoundation;

}  // namespace Lumaforge

#endif  // _WIN32

#endif  // LUMAFORGE_DECODER_MEDIA_FOUNDATION_ENTRY_POINTS_H_
