#include "framework/lumaforge_manager.h"

#include <cstring>
#include <new>

#include "framework/cpu_features.h"
#include "framework/version.h"

namespace Lumaforge {
namespace {

bool IsFilterType(int32_t type) { return type >= 1 && type <= kMaxFilterType; }

bool IsLogSetting(ParamId id) {
  return id == LF_PARAM_LOG_CALLBACK || id == LF_PARAM_LOG_LEVEL || id == LF_PARAM_LOG_USER_VALUE;
}

}  // namespace

CLumaforgeManager::CLumaforgeManager() : m_pLogger(new (std::nothrow) Logger(reinterpret_cast<uint64_t>(this), "lf")) {}

CLumaforgeManager::~CLumaforgeManager() {
  for (int32_t type = 1; type <= kMaxFilterType; ++type) {
    // A filter that refuses to uninitialise is left alive rather than freed
    // while it may still hold resources.
    if (m_pFilters[type] && m_pFilters[type]->Uninit() == LF_OK) {
      delete m_pFilters[type];
      m_pFilters[type] = nullptr;
    }
  }
}

int32_t CLumaforgeManager::Init(int32_t type, void* config, uint8_t flag) {
  const uint32_t cpuFeatures = DetectCpuFeatures();
  const int32_t level = m_pLogger ? m_pLogger->GetLevel() : LF_LOG_INFO;
  const LumaforgeLogCallback callback = m_pLogger ? m_pLogger->GetCallback() : nullptr;
  const uint64_t userValue = m_pLogger ? m_pLogger->GetUserValue() : 0;
  if (m_pLogger) m_pLogger->Info("Lumaforge Init(), version: %s, commit=%s", kVersionText, kCommitId);

  const FilterDescriptor* info = FindFilterDescriptor(type);
  if (!info) {
    if (m_pLogger) m_pLogger->Info("Invalid parameter");
    return LF_INVALID_PARAMETER;
  }
  CLumaforgeFramework*& filter = m_pFilters[type];
  if (!filter) filter = info->create(cpuFeatures);
  if (!filter) return LF_FAILED;

  if (Logger* logger = filter->GetLogger()) {
    logger->SetLevel(level);
    logger->SetCallback(callback);
    logger->SetUserValue(userValue);
  }
  if (m_pLogger) m_pLogger->Info(info->createdText, static_cast<void*>(filter));
  return filter->Init(config, info->receivesInitFlag ? flag : 0);
}

int32_t CLumaforgeManager::Uninit(int32_t type) {
  if (!IsFilterType(type)) return LF_INVALID_PARAMETER;
  CLumaforgeFramework*& filter = m_pFilters[type];
  if (!filter) return LF_OK;
  if (filter->Uninit() != LF_OK) return LF_FAILED;
  delete filter;
  filter = nullptr;
  return LF_OK;
}

int32_t CLumaforgeManager::Process(int32_t type, VideoPicture* input, VideoPicture* output) {
  if (!IsFilterType(type)) return LF_INVALID_PARAMETER;
  if (!m_pFilters[type]) return LF_NOT_CREATED;
  return m_pFilters[type]->Process(input, output);
}

int32_t CLumaforgeManager::GetParam(int32_t type, ParamId id, void* value) {
  if (!value || !IsFilterType(type)) return LF_INVALID_PARAMETER;
  if (!m_pFilters[type]) return LF_PARAM_NOT_READY;
  return m_pFilters[type]->GetParam(id, value);
}

void CLumaforgeManager::ApplyLogSetting(Logger* logger, ParamId id, const void* value) {
  if (!logger) return;
  if (id == LF_PARAM_LOG_LEVEL) {
    int32_t level;
    std::memcpy(&level, value, sizeof(level));
    logger->SetLevel(level);
    return;
  }
  uint64_t word;
  std::memcpy(&word, value, sizeof(word));
  if (id == LF_PARAM_LOG_CALLBACK) {
    logger->SetCallback(reinterpret_cast<LumaforgeLogCallback>(word));
  } else {
    logger->SetUserValue(word);
  }
}

int32_t CLumaforgeManager::SetParam(int32_t type, ParamId id, void* value) {
  if (type < 0 || type > kMaxFilterType) return LF_INVALID_PARAMETER;
  // With type 0 the call reaches every existing filter; otherwise the one addressed.
  const int32_t first = type == 0 ? 1 : type;
  const int32_t last = type == 0 ? kMaxFilterType : type;

  if (IsLogSetting(id)) {
    if (!value) return LF_INVALID_PARAMETER;
    ApplyLogSetting(m_pLogger.get(), id, value);
    for (int32_t t = first; t <= last; ++t) {
      if (m_pFilters[t]) ApplyLogSetting(m_pFilters[t]->GetLogger(), id, value);
    }
    return LF_OK;
  }
  if (id == LF_PARAM_TIMING_INTERVAL) {
    if (!value) return LF_INVALID_PARAMETER;
    for (int32_t t = first; t <= last; ++t) {
      if (m_pFilters[t]) m_pFilters[t]->SetLogInterval(static_cast<const int32_t*>(value));
    }
    return LF_FAILED;  // the fixed answer to this id; hosts ignore it
  }
  if (type == 0) return value ? LF_OK : LF_INVALID_PARAMETER;
  if (!m_pFilters[type]) return LF_PARAM_NOT_READY;
  return m_pFilters[type]->SetParam(id, value);
}

}  // namespace Lumaforge
