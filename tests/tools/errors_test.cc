// Bad input ends with a message naming what was wrong and a non-zero exit,
// never a crash.
#include <gtest/gtest.h>

#include "tests/tools/media_files.h"
#include "tests/tools/tool_process.h"

namespace Lumaforge::test {
namespace {

class ErrorsTest : public ToolTest {
 protected:
  // Fails the test unless the tool exits with an error that mentions every `words`.
  void ExpectRefused(const std::vector<std::string>& args, const std::vector<std::string>& words) {
    const ToolResult result = Run(args);
    EXPECT_GT(result.exitCode, 0) << "exit " << result.exitCode << "; stderr: " << result.err;
    for (const std::string& word : words) EXPECT_NE(result.err.find(word), std::string::npos) << result.err;
  }

  void WriteClip(const std::string& name) { WriteY4m(Path(name), 64, 48, {RandomBytes(64 * 48 * 3 / 2, 1)}); }
};

TEST_F(ErrorsTest, TruncatedY4mNamesTheFileAndTheFrame) {
  WriteY4m(Path("in.y4m"), 64, 48, {RandomBytes(4608, 1), RandomBytes(4608, 2)});
  Bytes bytes = ReadFile(Path("in.y4m"));
  bytes.resize(bytes.size() - 100);
  WriteFile(Path("cut.y4m"), bytes);
  ExpectRefused({"run", "blur", "cut.y4m", "out.y4m"}, {"cut.y4m", "frame 2", "truncated"});
}

TEST_F(ErrorsTest, Y4mOtherThan420IsRefused) {
  const std::string header = "YUV4MPEG2 W64 H48 F25:1 C444\n";
  WriteFile(Path("in.y4m"), Bytes(header.begin(), header.end()));
  ExpectRefused({"run", "blur", "in.y4m", "out.y4m"}, {"in.y4m", "C444"});
}

TEST_F(ErrorsTest, UnknownFilter) {
  WriteClip("in.y4m");
  ExpectRefused({"run", "blur,sharpen", "in.y4m", "out.y4m"}, {"sharpen"});
}

TEST_F(ErrorsTest, UnknownFormatName) {
  WriteFile(Path("in.raw"), RandomBytes(64 * 48 * 4, 1));
  ExpectRefused({"run", "blur", "in.raw", "out.raw", "--size", "64x48", "--format", "bgrx"}, {"bgrx"});
  ExpectRefused({"run", "csc", "--param", "format=bgrx", "in.raw", "out.raw", "--size", "64x48", "--format", "bgra"},
                {"csc", "bgrx"});
}

TEST_F(ErrorsTest, OddSizedI420) {
  WriteFile(Path("in.yuv"), RandomBytes(63 * 48 * 2, 1));
  ExpectRefused({"run", "effect", "in.yuv", "out.yuv", "--size", "63x48", "--format", "i420"}, {"in.yuv", "63x48"});
}

TEST_F(ErrorsTest, ParameterOutOfRangeOrUnknown) {
  WriteClip("in.y4m");
  ExpectRefused({"run", "blur", "--param", "sigma=5000", "in.y4m", "out.y4m"}, {"blur", "sigma=5000"});
  ExpectRefused({"run", "effect", "--param", "look=neon", "in.y4m", "out.y4m"}, {"effect", "neon"});
  ExpectRefused({"run", "blur", "--param", "radius=3", "in.y4m", "out.y4m"}, {"radius"});
  ExpectRefused({"run", "downsample", "--param", "width=80", "in.y4m", "out.y4m"}, {"downsample", "frame 1", "in.y4m"});
}

TEST_F(ErrorsTest, MissingInput) {
  ExpectRefused({"run", "blur", "missing.y4m", "out.y4m"}, {"missing.y4m"});
  ExpectRefused({"run", "blur", "missing.png", "out.png"}, {"missing.png"});
}

TEST_F(ErrorsTest, BadOrMissingSize) {
  WriteFile(Path("in.yuv"), RandomBytes(64 * 48 * 3 / 2, 1));
  ExpectRefused({"run", "blur", "in.yuv", "out.yuv", "--size", "64by48", "--format", "i420"}, {"--size"});
  ExpectRefused({"run", "blur", "in.yuv", "out.yuv", "--size", "0x48", "--format", "i420"}, {"--size"});
  ExpectRefused({"run", "blur", "in.yuv", "out.yuv"}, {"in.yuv", "--size"});
}

}  // namespace
}  // namespace Lumaforge::test
