// The base every filter derives from: name, logger, timing record and the
// periodic "ms per frame" line.
#ifndef LUMAFORGE_FRAMEWORK_LUMAFORGE_FRAMEWORK_H_
#define LUMAFORGE_FRAMEWORK_LUMAFORGE_FRAMEWORK_H_

#include <cstdint>
#include <memory>
#include <string>

#include "framework/logger.h"
#include "lumaforge/lumaforge.h"

namespace Lumaforge {

inline constexpr int64_t kDefaultLogIntervalMs = 10000;

struct TimingRecord {
  int64_t startMs = 0;        // clock when the current interval began
  int64_t accumulatedUs = 0;  // processing time summed over the interval
  uint32_t frames = 0;        // frames summed over the interval
  uint32_t spare = 0;         // cleared on reset; free for one filter's own statistic
};

class CLumaforgeFramework {
 public:
  CLumaforgeFramework();
  virtual ~CLumaforgeFramework();
  CLumaforgeFramework(const CLumaforgeFramework&) = delete;
  CLumaforgeFramework& operator=(const CLumaforgeFramework&) = delete;

  virtual int32_t Init(void* config, uint8_t flag) = 0;
  // Frees what the filter holds; filters without buffers keep this answer.
  virtual int32_t Uninit() { return LF_OK; }
  virtual int32_t Process(VideoPicture* input, VideoPicture* output) = 0;
  // The answers of a filter without parameters of its own: a value is
  // needed, SetParam changes nothing, GetParam gives the time per frame.
  virtual int32_t SetParam(ParamId id, void* value);
  virtual int32_t GetParam(ParamId id, void* value);
  // Writes "%f ms per frame" when more than the log interval has passed
  // since the record's interval began, then starts a new interval.
  virtual void LogFrameTiming(TimingRecord* record);

  Logger* GetLogger() const { return m_pLogger.get(); }
  const std::string& GetName() const { return m_strName; }
  // Stores the interval in milliseconds; a value below 1 means 10000.
  void SetLogInterval(const int32_t* milliseconds);
  // The interval in force, in milliseconds.
  int64_t LogIntervalMs() const { return m_iLogInterval < 1 ? kDefaultLogIntervalMs : m_iLogInterval; }

 protected:
  // Called by derived constructors after they set their name.
  void SetName(const char* name) { m_strName = name; }
  // Creates the logger, named after the filter, unless one exists.
  void CreateLogger();
  void DestroyLogger() { m_pLogger.reset(); }

  void ResetTiming();
  // Success path of a timed Process: adds the time since `startUs` (a
  // NowMicroseconds() reading) and one frame, then calls LogFrameTiming.
  void FinishFrameTiming(int64_t startUs);
  // Microseconds per frame over the current interval (not finite without frames).
  double MicrosecondsPerFrame() const;
  // The GetParam answer every timed filter gives: for LF_PARAM_TIME_PER_FRAME
  // writes MicrosecondsPerFrame() as a double to `value` (when not null).
  void AnswerTimePerFrame(ParamId id, void* value) const;

  std::unique_ptr<Logger> m_pLogger;
  bool m_bInitialised = false;
  uint32_t m_uAlignment = 16;
  std::string m_strName = "Null";
  std::unique_ptr<TimingRecord> m_pTiming;
  int64_t m_iLogInterval = -1;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_LUMAFORGE_FRAMEWORK_H_
