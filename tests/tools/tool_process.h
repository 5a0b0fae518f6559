// Runs the built lumaforge tool as a child process, as a user would, in a
// fresh temporary directory per test.
#ifndef LUMAFORGE_TESTS_TOOLS_TOOL_PROCESS_H_
#define LUMAFORGE_TESTS_TOOLS_TOOL_PROCESS_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Lumaforge::test {

struct ToolResult {
  int exitCode = -1;  // -1 when the tool did not exit normally (a crash)
  std::string out;
  std::string err;
};

class ToolTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Runs `lumaforge ARGS...` with the temporary directory as working directory.
  ToolResult Run(const std::vector<std::string>& args);
  std::string Path(const std::string& name) const { return (directory_ / name).string(); }

 private:
  std::filesystem::path directory_;
};

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_TOOLS_TOOL_PROCESS_H_
