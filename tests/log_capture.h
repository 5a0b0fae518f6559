// Log lines a test's callback received. Each LogCapture<N> keeps its own
// list behind its own callback, so a test can watch two loggers at once;
// kAnswer is what the callback returns to the logger.
#ifndef LUMAFORGE_TESTS_LOG_CAPTURE_H_
#define LUMAFORGE_TESTS_LOG_CAPTURE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace Lumaforge::test {

struct LogLine {
  uint64_t user;
  int32_t level;
  std::string text;
};

template <int kList, int kAnswer = 0>
struct LogCapture {
  static std::vector<LogLine>& Lines() {
    static std::vector<LogLine> lines;
    return lines;
  }
  static int Callback(uint64_t user, int32_t level, const char* text) {
    Lines().push_back({user, level, text});
    return kAnswer;
  }
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_LOG_CAPTURE_H_
