#include "tests/tools/tool_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace Lumaforge::test {
namespace {

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

void ToolTest::SetUp() {
  std::string pattern = (std::filesystem::temp_directory_path() / "lumaforge-tool-XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  directory_ = pattern;
}

void ToolTest::TearDown() {
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

ToolResult ToolTest::Run(const std::vector<std::string>& args) {
  const std::filesystem::path out = directory_ / ".stdout", err = directory_ / ".stderr";
  std::vector<char*> argv;
  std::string tool = LUMAFORGE_TOOL_PATH;
  argv.push_back(tool.data());
  std::vector<std::string> copies = args;
  for (std::string& arg : copies) argv.push_back(arg.data());
  argv.push_back(nullptr);

  const pid_t child = fork();
  if (child == 0) {
    const int outFd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int errFd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (outFd < 0 || errFd < 0 || chdir(directory_.c_str()) != 0) _exit(127);
    dup2(outFd, STDOUT_FILENO);
    dup2(errFd, STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  ToolResult result;
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return result;
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  result.out = Slurp(out);
  result.err = Slurp(err);
  return result;
}

}  // namespace Lumaforge::test
