#include "framework/buffers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Lumaforge {
namespace {

TEST(AlignedAlloc, ZeroedAlignedAndFreed) {
  for (uint32_t size : {0u, 1u, 15u, 16u, 1000u, 1u << 20}) {
    uint8_t* block = AlignedAlloc(size);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
    for (uint32_t i = 0; i < size; ++i) ASSERT_EQ(block[i], 0) << i;
    uint32_t stored;
    std::memcpy(&stored, block - 12, sizeof(stored));
    EXPECT_EQ(stored, size);
    std::memset(block, 0xff, size);  // the whole block is writable
    AlignedFree(block);
  }
  AlignedFree(nullptr);
}

TEST(EnsureCapacity, GrowsRoundedKeepsContentsAndNeverShrinks) {
  uint32_t capacity = 0;
  uint8_t* buffer = EnsureCapacity(nullptr, capacity, 100);
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(capacity, 112u + 32u);
  for (int i = 0; i < 100; ++i) buffer[i] = static_cast<uint8_t>(i);

  EXPECT_EQ(EnsureCapacity(buffer, capacity, 144), buffer);  // already large enough
  EXPECT_EQ(EnsureCapacity(buffer, capacity, 10), buffer);
  EXPECT_EQ(capacity, 144u);

  uint8_t* grown = EnsureCapacity(buffer, capacity, 1001);
  ASSERT_NE(grown, nullptr);
  EXPECT_EQ(capacity, 1008u + 32u);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(grown[i], i);
  EXPECT_EQ(grown[500], 0);
  AlignedFree(grown);
}

// A 4x3 plane inside a buffer with a 2-sample margin on every side.
TEST(PadPlaneEdges, ReplicatesEdgesAndCorners) {
  const int32_t width = 4, height = 3, pad = 2, stride = width + 2 * pad;
  std::vector<uint8_t> buffer(stride * (height + 2 * pad), 0xEE);
  uint8_t* plane = buffer.data() + pad * stride + pad;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) plane[y * stride + x] = static_cast<uint8_t>(10 * y + x);
  }
  PadPlaneEdges(plane, stride, width, height, pad);
  auto at = [&](int32_t x, int32_t y) { return plane[y * stride + x]; };
  for (int32_t y = -pad; y < height + pad; ++y) {
    for (int32_t x = -pad; x < width + pad; ++x) {
      const int32_t sx = std::min(std::max(x, 0), width - 1);
      const int32_t sy = std::min(std::max(y, 0), height - 1);
      ASSERT_EQ(at(x, y), 10 * sy + sx) << x << "," << y;
    }
  }
}

TEST(FillPlaneMargin, FillsRightColumnsAndBottomRows) {
  const int32_t stride = 8;
  std::vector<uint8_t> plane(stride * 5, 1);
  FillPlaneMargin(plane.data(), 5, 7, 3, 5, stride, 9);
  for (int32_t y = 0; y < 5; ++y) {
    for (int32_t x = 0; x < stride; ++x) {
      const bool filled = (y < 3 && x >= 5 && x < 7) || (y >= 3 && x < 7);
      ASSERT_EQ(plane[y * stride + x], filled ? 9 : 1) << x << "," << y;
    }
  }
}

}  // namespace
}  // namespace Lumaforge
