// Work-memory helpers shared by the filters.
#ifndef LUMAFORGE_FRAMEWORK_BUFFERS_H_
#define LUMAFORGE_FRAMEWORK_BUFFERS_H_

#include <cstdint>

namespace Lumaforge {

// A zeroed block of `size` bytes at an `alignment`-aligned address (a power
// of two), or null. The block's heap start and `size` are kept just below
// the returned address.
uint8_t* AlignedAlloc(uint32_t size, uint32_t alignment = 16);
// Blocks AlignedAlloc has handed out in this process: tests read it to
// check that a filter's steady state allocates nothing.
uint64_t AlignedAllocCount();
// Frees a block from AlignedAlloc; null is ignored.
void AlignedFree(void* block);

// Grow-only buffer: returns `buffer` when `capacity` already covers `needed`;
// otherwise a new block of (needed rounded up to 16) + 32 bytes holding the
// old contents, with `capacity` updated. Null on failure.
uint8_t* EnsureCapacity(uint8_t* buffer, uint32_t& capacity, uint32_t needed);

// A work block a filter owns: it grows, never shrinks, and is freed by
// Free() or the destructor. A failed growth leaves no block.
class WorkBlock {
 public:
  WorkBlock() = default;
  ~WorkBlock() { Free(); }
  WorkBlock(const WorkBlock&) = delete;
  WorkBlock& operator=(const WorkBlock&) = delete;

  // At least `bytes`, zeroed when newly allocated (then of exactly `bytes`;
  // the old contents are dropped). Null on failure.
  uint8_t* Reserve(uint32_t bytes, uint32_t alignment = 16);
  // At least `bytes`, keeping the contents; grows as EnsureCapacity does.
  uint8_t* Grow(uint32_t bytes);
  void Free();

  uint8_t* data() const { return m_pData; }
  uint32_t capacity() const { return m_uCapacity; }

 private:
  uint8_t* m_pData = nullptr;
  uint32_t m_uCapacity = 0;
};

// Replicates the edges of a width x height plane into `pad` samples on every
// side (the memory around the plane must exist); corners take the corner samples.
void PadPlaneEdges(uint8_t* plane, int32_t stride, int32_t width, int32_t height, int32_t pad);

// Sets columns width..paddedWidth-1 of the first `height` rows, and rows
// height..paddedHeight-1 over paddedWidth bytes, to `value`.
void FillPlaneMargin(uint8_t* plane, int32_t width, int32_t paddedWidth, int32_t height, int32_t paddedHeight,
                     int32_t stride, uint8_t value);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_BUFFERS_H_
