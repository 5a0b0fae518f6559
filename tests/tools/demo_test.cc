// `lumaforge demo` writes a contact sheet per filter and the timing table.
#include <gtest/gtest.h>

#include "tests/tools/media_files.h"
#include "tests/tools/tool_process.h"

namespace Lumaforge::test {
namespace {

using DemoTest = ToolTest;

TEST_F(DemoTest, WritesOneSheetPerFilterAndTheTimings) {
  const ToolResult result = Run({"demo", "--frames", "3", "--out", "sheets"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const Bytes table = ReadFile(Path("sheets/timings.txt"));
  const std::string timings(table.begin(), table.end());
  for (const char* filter : {"csc", "crop", "downsample", "blend", "blur", "effect"}) {
    const Image sheet = LoadPng(Path(std::string("sheets/") + filter + ".png"));
    EXPECT_EQ(sheet.width, 1280) << filter;   // input | output, 640 wide each
    EXPECT_EQ(sheet.height, 1080) << filter;  // three sample frames, 360 high each
    EXPECT_NE(timings.find(filter), std::string::npos) << timings;
    EXPECT_NE(result.out.find(filter), std::string::npos) << result.out;
  }
}

}  // namespace
}  // namespace Lumaforge::test
