// The object handed to the host: one filter per type, created on first Init.
#ifndef LUMAFORGE_FRAMEWORK_LUMAFORGE_MANAGER_H_
#define LUMAFORGE_FRAMEWORK_LUMAFORGE_MANAGER_H_

#include <memory>

#include "framework/filter_descriptor.h"
#include "framework/logger.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

class CLumaforgeManager : public ILumaforge {
 public:
  CLumaforgeManager();
  ~CLumaforgeManager() override;
  CLumaforgeManager(const CLumaforgeManager&) = delete;
  CLumaforgeManager& operator=(const CLumaforgeManager&) = delete;

  int32_t Init(int32_t type, void* config, uint8_t flag) override;
  int32_t Uninit(int32_t type) override;
  int32_t Process(int32_t type, VideoPicture* input, VideoPicture* output) override;
  int32_t SetParam(int32_t type, ParamId id, void* value) override;
  int32_t GetParam(int32_t type, ParamId id, void* value) override;

 private:
  // Applies one logging setting (ids 43, 44, 49) to `logger`.
  static void ApplyLogSetting(Logger* logger, ParamId id, const void* value);

  // Index = filter type; index 0 is never used.
  CLumaforgeFramework* m_pFilters[kMaxFilterType + 1] = {};
  std::unique_ptr<Logger> m_pLogger;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_LUMAFORGE_MANAGER_H_
