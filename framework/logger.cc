#include "framework/logger.h"

#include <cstdio>
#include <utility>

#include "framework/safe_string.h"

namespace Lumaforge {
namespace {

const char* const kLevelWords[] = {"ERROR", "WARNING", "INFO", "DEBUG", "DETAIL"};

}  // namespace

int WriteLogLineToStdStreams(uint64_t /*userValue*/, int32_t level, const char* text) {
  return std::fprintf(level == LF_LOG_ERROR ? stderr : stdout, "%s\n", text);
}

Logger::Logger(uint64_t owner, std::string name) : m_uOwner(owner), m_strName(std::move(name)) {}

void Logger::SetCallback(LumaforgeLogCallback callback) {
  if (callback != nullptr) m_pCallback = callback;
}

void Logger::SetLevel(int32_t level) {
  if (level < 0) {
    m_iLevel = -1;
  } else {
    m_iLevel = level > LF_LOG_DETAIL ? LF_LOG_DETAIL : level;
  }
}

void Logger::FormatLine(char* line, int32_t level, const char* format, va_list args) const {
  char pattern[kLogLineSize] = {};
  const char* word = (level >= 0 && level <= LF_LOG_DETAIL) ? kLevelWords[level] : "";
  std::snprintf(pattern, sizeof(pattern), "[lf][%s] %s=%p, %s: ", m_strName.c_str(), m_strName.c_str(),
                reinterpret_cast<void*>(m_uOwner), word);
  // Bounded append: whatever does not fit is cut off rather than failing the line.
  const size_t used = strnlen_s(pattern, sizeof(pattern));
  if (used + 1 < sizeof(pattern)) strncat_s(pattern, sizeof(pattern), format, sizeof(pattern) - used - 1);

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::vsnprintf(line, kLogLineSize, pattern, args);
#pragma GCC diagnostic pop
}

int Logger::LogV(int32_t level, const char* format, va_list args) {
  if (m_iLevel < 0 || level > m_iLevel) return m_iLevel;
  char line[kLogLineSize];
  FormatLine(line, level, format, args);
  return m_pCallback(m_uUserValue, level, line);
}

int Logger::Log(int32_t level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = LogV(level, format, args);
  va_end(args);
  return result;
}

#define LUMAFORGE_LOG_SHORTHAND(Name, level)      \
  int Logger::Name(const char* format, ...) {     \
    va_list args;                                 \
    va_start(args, format);                       \
    const int result = LogV(level, format, args); \
    va_end(args);                                 \
    return result;                                \
  }

LUMAFORGE_LOG_SHORTHAND(Error, LF_LOG_ERROR)
LUMAFORGE_LOG_SHORTHAND(Warning, LF_LOG_WARNING)
LUMAFORGE_LOG_SHORTHAND(Info, LF_LOG_INFO)
LUMAFORGE_LOG_SHORTHAND(Debug, LF_LOG_DEBUG)
LUMAFORGE_LOG_SHORTHAND(Detail, LF_LOG_DETAIL)

#undef LUMAFORGE_LOG_SHORTHAND

}  // namespace Lumaforge
