#include "framework/platform/dynload.h"

#include <gtest/gtest.h>

namespace Lumaforge::platform {
namespace {

TEST(Dynload, LoadsFindsAndFrees) {
  LibraryHandle library = LoadSharedLibrary("libm.so.6");
  ASSERT_NE(library, nullptr);
  using CosFn = double (*)(double);
  auto cosine = reinterpret_cast<CosFn>(FindSymbol(library, "cos"));
  ASSERT_NE(cosine, nullptr);
  EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(FindSymbol(library, "no_such_symbol_here"), nullptr);
  FreeSharedLibrary(library);
}

TEST(Dynload, MissingLibraryAndNullHandles) {
  EXPECT_EQ(LoadSharedLibrary("liblumaforge-does-not-exist.so"), nullptr);
  EXPECT_EQ(LoadSharedLibrary(nullptr), nullptr);
  EXPECT_EQ(FindSymbol(nullptr, "cos"), nullptr);
  FreeSharedLibrary(nullptr);
}

}  // namespace
}  // namespace Lumaforge::platform
