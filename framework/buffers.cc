#include "framework/buffers.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "framework/safe_string.h"

namespace Lumaforge {
namespace {

// Room below the aligned address for the heap start (8 bytes) and the size
// (4 bytes, 12 below the address); the alignment adds up to alignment - 1.
constexpr uint32_t kHeaderBytes = 12;

std::atomic<uint64_t> g_allocations{0};

uint8_t* StoredStart(const void* block) {
  uint8_t* start;
  std::memcpy(&start, static_cast<const uint8_t*>(block) - 8, sizeof(start));
  return start;
}

uint32_t StoredSize(const void* block) {
  uint32_t size;
  std::memcpy(&size, static_cast<const uint8_t*>(block) - 12, sizeof(size));
  return size;
}

}  // namespace

uint8_t* AlignedAlloc(uint32_t size, uint32_t alignment) {
  const size_t room = kHeaderBytes + alignment - 1;
  auto* start = static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size) + room, 1));
  if (!start) return nullptr;
  const uintptr_t aligned = (reinterpret_cast<uintptr_t>(start) + room) & ~uintptr_t{alignment - 1};
  auto* block = reinterpret_cast<uint8_t*>(aligned);
  std::memcpy(block - 8, &start, sizeof(start));
  std::memcpy(block - 12, &size, sizeof(size));
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  return block;
}

uint64_t AlignedAllocCount() { return g_allocations.load(std::memory_order_relaxed); }

void AlignedFree(void* block) {
  if (block) std::free(StoredStart(block));
}

uint8_t* EnsureCapacity(uint8_t* buffer, uint32_t& capacity, uint32_t needed) {
  if (capacity >= needed) return buffer;
  const uint32_t grown = ((needed + 15) & ~15u) + 32;
  if (!buffer) {
    uint8_t* fresh = AlignedAlloc(grown);
    if (fresh) capacity = grown;
    return fresh;
  }
  const uint32_t oldSize = StoredSize(buffer);
  if (oldSize == 0) return nullptr;
  uint8_t* fresh = AlignedAlloc(grown);
  if (!fresh) {
    if (oldSize < grown) return nullptr;
    capacity = grown;  // the old block already holds that much
    return buffer;
  }
  const uint32_t keep = oldSize < grown ? oldSize : grown;
  memcpy_s(fresh, grown, buffer, keep);
  AlignedFree(buffer);
  capacity = grown;
  return fresh;
}

uint8_t* WorkBlock::Reserve(uint32_t bytes, uint32_t alignment) {
  if (m_pData && m_uCapacity >= bytes) return m_pData;
  Free();
  m_pData = AlignedAlloc(bytes, alignment);
  m_uCapacity = m_pData ? bytes : 0;
  return m_pData;
}

uint8_t* WorkBlock::Grow(uint32_t bytes) {
  uint8_t* grown = EnsureCapacity(m_pData, m_uCapacity, bytes);
  if (grown) m_pData = grown;
  return grown;
}

void WorkBlock::Free() {
  AlignedFree(m_pData);
  m_pData = nullptr;
  m_uCapacity = 0;
}

void PadPlaneEdges(uint8_t* plane, int32_t stride, int32_t width, int32_t height, int32_t pad) {
  if (!plane || width <= 0 || height <= 0 || pad <= 0) return;
  auto row = [&](int32_t y) { return plane + static_cast<ptrdiff_t>(y) * stride; };
  for (int32_t y = -pad; y < 0; ++y) std::memcpy(row(y), plane, width);
  // Rows below the plane are written whole by the last loop, so only the top
  // margin rows and the plane rows need their sides filled here.
  for (int32_t y = -pad; y < height; ++y) {
    std::memset(row(y) - pad, row(y)[0], pad);
    std::memset(row(y) + width, row(y)[width - 1], pad);
  }
  for (int32_t y = height; y < height + pad; ++y) std::memcpy(row(y) - pad, row(height - 1) - pad, width + 2 * pad);
}

void FillPlaneMargin(uint8_t* plane, int32_t width, int32_t paddedWidth, int32_t height, int32_t paddedHeight,
                     int32_t stride, uint8_t value) {
  if (!plane) return;
  if (paddedWidth > width) {
    for (int32_t y = 0; y < height; ++y) {
      std::memset(plane + static_cast<ptrdiff_t>(y) * stride + width, value, paddedWidth - width);
    }
  }
  if (paddedHeight > height) {
    for (int32_t y = height; y < paddedHeight; ++y) {
      std::memset(plane + static_cast<ptrdiff_t>(y) * stride, value, paddedWidth);
    }
  }
}

}  // namespace Lumaforge
