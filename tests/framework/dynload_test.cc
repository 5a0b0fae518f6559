#include "framework/platform/dynload.h"

#include <gtest/gtest.h>

namespace Lumaforge::platform {
namespace {

// A system library every machine has, and a function it exports.
#if defined(_WIN32)
constexpr char kSystemLibrary[] = "kernel32.dll";
constexpr char kMissingLibrary[] = "lumaforge-does-not-exist.dll";
constexpr char kSymbol[] = "GetTickCount";
#else
constexpr char kSystemLibrary[] = "libm.so.6";
constexpr char kMissingLibrary[] = "liblumaforge-does-not-exist.so";
constexpr char kSymbol[] = "cos";
#endif

TEST(Dynload, LoadsFindsAndFrees) {
  LibraryHandle library = LoadSharedLibrary(kSystemLibrary);
  ASSERT_NE(library, nullptr);
  EXPECT_NE(FindSymbol(library, kSymbol), nullptr);
  EXPECT_EQ(FindSymbol(library, "no_such_symbol_here"), nullptr);
  FreeSharedLibrary(library);
}

TEST(Dynload, MissingLibraryAndNullHandles) {
  EXPECT_EQ(LoadSharedLibrary(kMissingLibrary), nullptr);
  EXPECT_EQ(LoadSharedLibrary(nullptr), nullptr);
  EXPECT_EQ(FindSymbol(nullptr, kSymbol), nullptr);
  FreeSharedLibrary(nullptr);
}

}  // namespace
}  // namespace Lumaforge::platform

#if defined(_WIN32)
#include "framework/platform/wide_path.h"

namespace Lumaforge::platform {
namespace {

TEST(WidePath, Utf8BecomesUtf16) {
  EXPECT_EQ(WidePath("C:\\clips\\a.mp4"), L"C:\\clips\\a.mp4");
  EXPECT_EQ(WidePath("\xc3\xa9t\xc3\xa9.png"), L"\u00e9t\u00e9.png");
  EXPECT_EQ(WidePath(nullptr), L"");
  EXPECT_EQ(WidePath("\xff\xfe"), L"");  // not UTF-8
}

}  // namespace
}  // namespace Lumaforge::platform
#endif
