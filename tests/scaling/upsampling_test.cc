// The upsampler's mode reduction, case by case from its rules: box survives
// only a shrink by more than half, bilinear falls back to linear when no
// rows need blending, and nothing falls to nearest.
#include <gtest/gtest.h>

#include "scaling/upsampling.h"

namespace Lumaforge {
namespace {

struct Case {
  int32_t mode, w, h, W, H, expected;
};

TEST(UpsampleModeReduction, FollowsTheRulesAndNeverReachesNearest) {
  const Case cases[] = {
      {LF_UPSAMPLE_BOX, 100, 100, 40, 100, LF_UPSAMPLE_BOX},         // width shrinks by more than half
      {LF_UPSAMPLE_BOX, 100, 100, 100, 40, LF_UPSAMPLE_BOX},         // height does
      {LF_UPSAMPLE_BOX, 100, 100, 50, 50, LF_UPSAMPLE_BILINEAR},     // exactly half: bilinear
      {LF_UPSAMPLE_BOX, 100, 100, 200, 200, LF_UPSAMPLE_BILINEAR},   // enlarging
      {LF_UPSAMPLE_BOX, 100, 100, 200, 100, LF_UPSAMPLE_LINEAR},     // via bilinear, same height
      {LF_UPSAMPLE_BILINEAR, 100, 1, 200, 2, LF_UPSAMPLE_LINEAR},    // one source row
      {LF_UPSAMPLE_BILINEAR, 100, -1, 200, 2, LF_UPSAMPLE_LINEAR},   // one row, bottom-up
      {LF_UPSAMPLE_BILINEAR, 100, 90, 200, 90, LF_UPSAMPLE_LINEAR},  // same height
      {LF_UPSAMPLE_BILINEAR, 100, 90, 200, 30, LF_UPSAMPLE_LINEAR},  // a third of the height
      {LF_UPSAMPLE_BILINEAR, 1, 90, 2, 180, LF_UPSAMPLE_LINEAR},     // one source column
      {LF_UPSAMPLE_BILINEAR, 100, 90, 200, 180, LF_UPSAMPLE_BILINEAR},
      {LF_UPSAMPLE_LINEAR, 1, 1, 5, 5, LF_UPSAMPLE_LINEAR},  // never nearest
      {LF_UPSAMPLE_LINEAR, 100, 90, 100, 180, LF_UPSAMPLE_LINEAR},
      {LF_UPSAMPLE_LINEAR, 300, 90, 100, 180, LF_UPSAMPLE_LINEAR},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ReducedUpsampleMode(c.mode, c.w, c.h, c.W, c.H), c.expected)
        << "mode " << c.mode << ", " << c.w << "x" << c.h << " to " << c.W << "x" << c.H;
  }
}

}  // namespace
}  // namespace Lumaforge
