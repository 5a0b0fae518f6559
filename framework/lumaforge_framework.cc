#include "framework/lumaforge_framework.h"

#include <cstring>
#include <new>

#include "framework/clock.h"

namespace Lumaforge {

CLumaforgeFramework::CLumaforgeFramework() : m_pTiming(new (std::nothrow) TimingRecord) {
  if (m_pTiming) m_pTiming->startMs = NowMilliseconds();
}

CLumaforgeFramework::~CLumaforgeFramework() = default;

void CLumaforgeFramework::CreateLogger() {
  if (!m_pLogger) m_pLogger.reset(new (std::nothrow) Logger(reinterpret_cast<uint64_t>(this), m_strName));
}

void CLumaforgeFramework::SetLogInterval(const int32_t* milliseconds) {
  if (milliseconds) m_iLogInterval = *milliseconds;
}

void CLumaforgeFramework::ResetTiming() {
  if (!m_pTiming) return;
  m_pTiming->startMs = NowMilliseconds();
  m_pTiming->accumulatedUs = 0;
  m_pTiming->frames = 0;
  m_pTiming->spare = 0;
}

void CLumaforgeFramework::FinishFrameTiming(int64_t startUs) {
  if (!m_pTiming) return;
  m_pTiming->accumulatedUs += NowMicroseconds() - startUs;
  m_pTiming->frames += 1;
  LogFrameTiming(m_pTiming.get());
}

double CLumaforgeFramework::MicrosecondsPerFrame() const {
  if (!m_pTiming) return 0.0;
  return static_cast<double>(m_pTiming->accumulatedUs) / static_cast<double>(m_pTiming->frames);
}

void CLumaforgeFramework::AnswerTimePerFrame(ParamId id, void* value) const {
  if (id != LF_PARAM_TIME_PER_FRAME || !value) return;
  const double us = MicrosecondsPerFrame();
  std::memcpy(value, &us, sizeof(us));
}

int32_t CLumaforgeFramework::SetParam(ParamId /*id*/, void* value) { return value ? LF_OK : LF_INVALID_PARAMETER; }

int32_t CLumaforgeFramework::GetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  AnswerTimePerFrame(id, value);
  return LF_OK;
}

void CLumaforgeFramework::LogFrameTiming(TimingRecord* record) {
  if (!record || !m_pLogger) return;
  const int64_t now = NowMilliseconds();
  if (now - record->startMs <= LogIntervalMs()) return;
  m_pLogger->Info("%f ms per frame",
                  static_cast<double>(record->accumulatedUs) / (static_cast<double>(record->frames) * 1000.0));
  record->startMs = now;
  record->accumulatedUs = 0;
  record->frames = 0;
}

}  // namespace Lumaforge
