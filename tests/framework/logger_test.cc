#include "framework/logger.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/log_capture.h"

namespace Lumaforge {
namespace {

// The logger hands the callback's answer back to its caller.
using Log = test::LogCapture<0, 77>;
std::vector<test::LogLine>& g_lines = Log::Lines();

class LoggerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    g_lines.clear();
    logger.SetCallback(Log::Callback);
  }
  Logger logger{0x1234, "IMAGECROP"};
};

TEST_F(LoggerTest, PrefixNamesOwnerAndLevelWord) {
  EXPECT_EQ(logger.Info("CImageCrop::Process(), %d of %s", 3, "four"), 77);
  ASSERT_EQ(g_lines.size(), 1u);
  char address[32];
  std::snprintf(address, sizeof(address), "%p", reinterpret_cast<void*>(0x1234));
  EXPECT_EQ(g_lines[0].text,
            std::string("[lf][IMAGECROP] IMAGECROP=") + address + ", INFO: CImageCrop::Process(), 3 of four");
  EXPECT_EQ(g_lines[0].level, LF_LOG_INFO);

  const char* words[] = {"ERROR", "WARNING", "INFO", "DEBUG", "DETAIL"};
  logger.SetLevel(LF_LOG_DETAIL);
  for (int32_t level = 0; level <= LF_LOG_DETAIL; ++level) {
    logger.Log(level, "x");
    EXPECT_NE(g_lines.back().text.find(std::string(", ") + words[level] + ": x"), std::string::npos);
  }
}

TEST_F(LoggerTest, LevelFiltersAndClamps) {
  // Default INFO: DEBUG and DETAIL are dropped, and Log answers the level.
  EXPECT_EQ(logger.Debug("hidden"), LF_LOG_INFO);
  EXPECT_EQ(logger.Detail("hidden"), LF_LOG_INFO);
  EXPECT_TRUE(g_lines.empty());

  logger.SetLevel(10);
  EXPECT_EQ(logger.GetLevel(), LF_LOG_DETAIL);
  logger.Detail("shown");
  EXPECT_EQ(g_lines.size(), 1u);

  logger.SetLevel(-5);
  EXPECT_EQ(logger.GetLevel(), -1);
  EXPECT_EQ(logger.Error("silenced"), -1);
  EXPECT_EQ(g_lines.size(), 1u);
}

TEST_F(LoggerTest, NullCallbackKeepsTheInstalledOneAndUserValuePassesThrough) {
  logger.SetCallback(nullptr);
  EXPECT_EQ(logger.GetCallback(), &Log::Callback);
  logger.SetUserValue(0);
  logger.SetUserValue(99);
  logger.Warning("w");
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_EQ(g_lines[0].user, 99u);
}

TEST_F(LoggerTest, NameGoesThroughTheFormatterTwice) {
  // A '%' in the owner's name is interpreted by the second formatting pass.
  Logger percent(0, "100%%");
  percent.SetCallback(Log::Callback);
  percent.Info("done");
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_EQ(g_lines[0].text.rfind("[lf][100%] 100%=", 0), 0u) << g_lines[0].text;
}

TEST_F(LoggerTest, LongLinesAreTruncatedWithinTheBuffer) {
  const std::string longText(3000, 'z');
  logger.Info("%s", longText.c_str());
  ASSERT_EQ(g_lines.size(), 1u);
  EXPECT_EQ(g_lines[0].text.size(), kLogLineSize - 1);
  EXPECT_EQ(g_lines[0].text.back(), 'z');

  // A long format text (not only long arguments) is cut as well.
  const std::string longFormat(2000, 'f');
  logger.Info("%s", "x");
  logger.Log(LF_LOG_INFO, "%s", longFormat.c_str());
  EXPECT_EQ(g_lines.back().text.size(), kLogLineSize - 1);
}

TEST_F(LoggerTest, FormatLineFillsACallerBufferWithoutTheCallback) {
  char line[kLogLineSize];
  auto format = [&](const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    logger.FormatLine(line, LF_LOG_DEBUG, fmt, args);
    va_end(args);
  };
  format("value %d", 5);
  EXPECT_TRUE(g_lines.empty());
  EXPECT_NE(std::string(line).find(", DEBUG: value 5"), std::string::npos);
}

TEST(LoggerStreams, ErrorsGoToStandardErrorOthersToStandardOutput) {
  Logger logger(1, "lf");
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  logger.Error("bad %d", 1);
  logger.Info("fine %d", 2);
  const std::string out = ::testing::internal::GetCapturedStdout();
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find(", ERROR: bad 1\n"), std::string::npos);
  EXPECT_EQ(err.find("fine"), std::string::npos);
  EXPECT_NE(out.find(", INFO: fine 2\n"), std::string::npos);
}

}  // namespace
}  // namespace Lumaforge
