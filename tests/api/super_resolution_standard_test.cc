// Standard super resolution through the public interface: under the
// coarsest quantiser the 2x kernel is plain linear interpolation at the
// quarter-sample positions of the outputs (a picture's own qpMap steers it),
// and a frame after itself gives the bytes it gives after nothing.
#include <gtest/gtest.h>

#include <vector>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

class SuperResolution {
 public:
  explicit SuperResolution(uint8_t callerBuffers) {
    CreateLumaforge(&lf);
    int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
    lf->Init(LF_FILTER_SUPER_RESOLUTION, nullptr, callerBuffers);
  }
  ~SuperResolution() { DestroyLumaforge(lf); }
  SuperResolution(const SuperResolution&) = delete;
  SuperResolution& operator=(const SuperResolution&) = delete;
  int32_t Run(OwnedPicture& in, OwnedPicture& out) {
    return lf->Process(LF_FILTER_SUPER_RESOLUTION, &in.picture, &out.picture);
  }
  ILumaforge* lf = nullptr;
};

int32_t ClampIndex(int32_t v, int32_t n) { return v < 0 ? 0 : v >= n ? n - 1 : v; }

// Output (2x + i, 2y + j) sits a quarter sample from source (x, y) toward
// its neighbour on side i, j: 3/4 of the nearer sample and 1/4 of the other
// in each direction (edges repeated), in 1/64 steps: rows first, then
// columns, rounded once at the end.
std::vector<uint8_t> QuarterLinear(OwnedPicture& in, int plane, int32_t w, int32_t h) {
  std::vector<uint8_t> out;
  for (int32_t Y = 0; Y < 2 * h; ++Y) {
    const int32_t y = Y / 2, far = ClampIndex(Y & 1 ? y + 1 : y - 1, h);
    for (int32_t X = 0; X < 2 * w; ++X) {
      const int32_t x = X / 2, side = ClampIndex(X & 1 ? x + 1 : x - 1, w);
      const auto across = [&](int32_t row) {
        return 48 * in.At(plane, static_cast<uint32_t>(x), static_cast<uint32_t>(row)) +
               16 * in.At(plane, static_cast<uint32_t>(side), static_cast<uint32_t>(row));
      };
      out.push_back(static_cast<uint8_t>((48 * across(y) + 16 * across(far) + 2048) >> 12));
    }
  }
  return out;
}

std::vector<uint8_t> PlaneRows(OwnedPicture& p, int plane, int32_t w, int32_t h) {
  std::vector<uint8_t> bytes;
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) bytes.push_back(p.At(plane, static_cast<uint32_t>(x), static_cast<uint32_t>(y)));
  }
  return bytes;
}

TEST(SuperResolutionStandard, TheCoarsestQuantiserGivesQuarterSampleLinearInterpolation) {
  OwnedPicture in(LF_I420, 100, 36);
  in.FillRandom(20);
  std::vector<uint8_t> qp(((100 + 15) / 16) * ((36 + 15) / 16), 51);
  in.picture.qpMap = qp.data();
  ForEachCpuLevel([&](const CpuLevel& level) {
    OwnedPicture out(LF_I420, 200, 72);
    SuperResolution filter(1);
    ASSERT_EQ(filter.Run(in, out), LF_OK);
    for (int k = 0; k < 3; ++k) {
      const int32_t w = k ? 50 : 100, h = k ? 18 : 36;
      EXPECT_EQ(PlaneRows(out, k, 2 * w, 2 * h), QuarterLinear(in, k, w, h)) << "plane " << k << " at " << level.name;
    }
  });
}

TEST(SuperResolutionStandard, SharperUnderAFineQuantiserThanACoarseOne) {
  OwnedPicture in(LF_I420, 64, 32);
  for (uint32_t y = 0; y < 32; ++y) {
    for (uint32_t x = 0; x < 64; ++x) in.At(0, x, y) = x < 32 ? 40 : 200;  // one vertical edge
  }
  std::vector<uint8_t> qp(4 * 2);
  auto edgeSteepness = [&](uint8_t quantiser) {
    qp.assign(qp.size(), quantiser);
    in.picture.qpMap = qp.data();
    OwnedPicture out(LF_I420, 128, 64);
    SuperResolution filter(1);
    EXPECT_EQ(filter.Run(in, out), LF_OK);
    return out.At(0, 64, 10) - out.At(0, 63, 10);
  };
  EXPECT_GT(edgeSteepness(20), edgeSteepness(51));
}

TEST(SuperResolutionStandard, AFrameAfterItselfGivesTheBytesOfAFreshFilter) {
  OwnedPicture in(LF_I420, 64, 48), first(LF_I420, 128, 96), again(LF_I420, 128, 96), fresh(LF_I420, 128, 96);
  in.FillRandom(9);
  SuperResolution filter(0);
  ASSERT_EQ(filter.Run(in, first), LF_OK);
  ASSERT_EQ(filter.Run(in, again), LF_OK);
  SuperResolution other(0);
  ASSERT_EQ(other.Run(in, fresh), LF_OK);
  for (int k = 0; k < 3; ++k) {
    const int32_t w = k ? 64 : 128, h = k ? 48 : 96;
    EXPECT_EQ(PlaneRows(again, k, w, h), PlaneRows(fresh, k, w, h)) << "plane " << k;
  }
}

}  // namespace
}  // namespace Lumaforge::test
