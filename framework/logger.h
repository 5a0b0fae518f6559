// Levelled, prefixed log lines for the manager and every filter.
#ifndef LUMAFORGE_FRAMEWORK_LOGGER_H_
#define LUMAFORGE_FRAMEWORK_LOGGER_H_

#include <cstdarg>
#include <cstdint>
#include <string>

#include "lumaforge/lumaforge.h"

namespace Lumaforge {

// Size of one finished line, terminator included; longer lines are truncated.
constexpr size_t kLogLineSize = 1024;

// Writes "%s\n" to standard error for ERROR lines and to standard output otherwise.
int WriteLogLineToStdStreams(uint64_t userValue, int32_t level, const char* text);

class Logger {
 public:
  Logger(uint64_t owner, std::string name);
  virtual ~Logger() = default;

  // Formats one line: the prefix "[lf][name] name=owner, LEVEL: " followed by
  // `format`. The prefix and the caller's format pass through the formatter
  // together with the caller's arguments, so a '%' in the name is interpreted
  // there. Returns the callback's answer, or the logger's level when the line
  // is suppressed.
  int Log(int32_t level, const char* format, ...) __attribute__((format(printf, 3, 4)));
  int LogV(int32_t level, const char* format, va_list args);
  int Error(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int Warning(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int Info(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int Debug(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int Detail(const char* format, ...) __attribute__((format(printf, 2, 3)));

  // Formats the same line into `line` (kLogLineSize bytes) without calling
  // the callback and whatever the level setting.
  void FormatLine(char* line, int32_t level, const char* format, va_list args) const;

  void SetCallback(LumaforgeLogCallback callback);  // null keeps the current callback
  void SetUserValue(uint64_t value) { m_uUserValue = value; }
  void SetLevel(int32_t level);  // clamped to -1..4

  int32_t GetLevel() const { return m_iLevel; }
  LumaforgeLogCallback GetCallback() const { return m_pCallback; }
  uint64_t GetUserValue() const { return m_uUserValue; }

 private:
  int32_t m_iLevel = LF_LOG_INFO;
  LumaforgeLogCallback m_pCallback = WriteLogLineToStdStreams;
  uint64_t m_uUserValue = 0;
  uint64_t m_uOwner;
  std::string m_strName;
};

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_LOGGER_H_
