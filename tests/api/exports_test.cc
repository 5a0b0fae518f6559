// The plain exported functions.
#include <gtest/gtest.h>

#include <cstdlib>

#include "lumaforge/lumaforge.h"
#include "tests/environment.h"

namespace {

TEST(Exports, VersionIsFixed) {
  const LumaforgeVersion v = GetLumaforgeVersion();
  EXPECT_EQ(v.major, 3u);
  EXPECT_EQ(v.minor, 4u);
  EXPECT_EQ(v.patch, 2u);
  EXPECT_EQ(v.build, 0u);
}

TEST(Exports, ArchFollowsTheProcessorAndTheMask) {
  const int32_t tier = GetLumaforgeArch();
  EXPECT_GE(tier, 1);  // every x86-64 processor has SSE2
  EXPECT_LE(tier, 5);
  Lumaforge::test::SetEnv("LUMAFORGE_CPU_MASK", "0x208");  // SSE2 and SSSE3 only
  EXPECT_EQ(GetLumaforgeArch(), tier >= 2 ? 2 : tier);
  Lumaforge::test::SetEnv("LUMAFORGE_CPU_MASK", "0");
  EXPECT_EQ(GetLumaforgeArch(), 0);
  Lumaforge::test::UnsetEnv("LUMAFORGE_CPU_MASK");
  EXPECT_EQ(GetLumaforgeArch(), tier);
}

TEST(Exports, CreateAndDestroy) {
  EXPECT_EQ(CreateLumaforge(nullptr), LF_INVALID_PARAMETER);
  ILumaforge* lf = nullptr;
  ASSERT_EQ(CreateLumaforge(&lf), LF_OK);
  ASSERT_NE(lf, nullptr);
  DestroyLumaforge(lf);
  DestroyLumaforge(nullptr);
}

TEST(Exports, MediaEnvironmentStartsAndStops) {
  EXPECT_TRUE(InitMediaDecoderEnvironment());
  UninitMediaDecoderEnvironment();
}

}  // namespace
