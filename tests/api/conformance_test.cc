// Byte conformance across platforms and processor levels: a digest of the
// outputs of every conversion pair on fixed pictures. The expected value is
// the same for the Linux and the Windows build; a change to any output byte
// changes it.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "lumaforge/lumaforge.h"
#include "tests/api/cpu_levels.h"
#include "tests/api/csc_model.h"
#include "tests/api/test_pictures.h"

namespace Lumaforge::test {
namespace {

constexpr uint64_t kExpectedDigest = 0xe372d37964d369ebull;

constexpr uint32_t kFormats[] = {LF_RGB24, LF_RGBA, LF_BGR24, LF_BGRA, LF_ABGR, LF_ARGB, LF_RGBP, LF_BGRP, LF_YUY2,
                                 LF_YVYU,  LF_UYVY, LF_VYUY,  LF_I420, LF_YV12, LF_NV12, LF_NV21, LF_I440};

// FNV-1a over the bytes of every row of every plane of a picture.
uint64_t Digest(uint64_t digest, OwnedPicture& picture) {
  const PlaneLayout g = GeometryOf(picture.picture.format, picture.picture.width, picture.picture.height);
  for (int k = 0; k < g.planes; ++k) {
    for (uint32_t y = 0; y < g.plane[k].height; ++y) {
      for (uint32_t x = 0; x < g.plane[k].rowBytes; ++x) {
        digest = (digest ^ picture.At(k, x, y)) * 0x100000001b3ull;
      }
    }
  }
  return digest;
}

uint64_t ConversionDigest(ILumaforge* lf, bool verbose) {
  uint64_t digest = 0xcbf29ce484222325ull;
  for (uint32_t inCode : kFormats) {
    for (uint32_t outCode : kFormats) {
      if (!ConversionSupported(inCode, outCode)) continue;
      for (const uint32_t flag : {0u, LF_FORMAT_BOTTOM_UP}) {
        OwnedPicture in(inCode | flag, 98, 6, 7), out(outCode, 98, 6, 3);
        in.FillRandom(inCode * 977 + outCode * 31 + flag % 7);
        EXPECT_EQ(lf->Process(LF_FILTER_CSC, &in.picture, &out.picture), LF_OK);
        const uint64_t before = digest;
        digest = Digest(digest, out);
        if (verbose)
          std::printf("%u -> %u%s: %016llx\n", inCode, outCode, flag ? " mirrored" : "",
                      static_cast<unsigned long long>(digest ^ before));
      }
    }
  }
  return digest;
}

TEST(Conformance, ConversionOutputsMatchTheRecordedDigestAtEveryLevel) {
  ForEachCpuLevel([&](const CpuLevel& level) {
    ILumaforge* lf = nullptr;
    ASSERT_EQ(CreateLumaforge(&lf), LF_OK);
    const int32_t silent = -1;
    lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, const_cast<int32_t*>(&silent));
    lf->Init(LF_FILTER_CSC, nullptr, 0);
    const uint64_t digest = ConversionDigest(lf, false);
    EXPECT_EQ(digest, kExpectedDigest) << level.name << ": digest " << std::hex << digest;
    if (digest != kExpectedDigest) ConversionDigest(lf, true);
    DestroyLumaforge(lf);
  });
}

}  // namespace
}  // namespace Lumaforge::test
