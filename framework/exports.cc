// The library's six exported entry points.
#include <new>

#include "decoder/media_environment.h"
#include "framework/cpu_features.h"
#include "framework/lumaforge_manager.h"
#include "framework/version.h"

extern "C" {

LUMAFORGE_API int32_t CreateLumaforge(ILumaforge** out) {
  if (!out) return LF_INVALID_PARAMETER;
  *out = new (std::nothrow) Lumaforge::CLumaforgeManager();
  return *out ? LF_OK : LF_FAILED;
}

LUMAFORGE_API void DestroyLumaforge(ILumaforge* instance) { delete instance; }

LUMAFORGE_API int32_t GetLumaforgeArch(void) { return Lumaforge::CpuTier(Lumaforge::DetectCpuFeatures()); }

LUMAFORGE_API LumaforgeVersion GetLumaforgeVersion(void) { return Lumaforge::kVersion; }

LUMAFORGE_API bool InitMediaDecoderEnvironment(void) { return Lumaforge::StartMediaEnvironment(); }

LUMAFORGE_API void UninitMediaDecoderEnvironment(void) { Lumaforge::StopMediaEnvironment(); }

}  // extern "C"
