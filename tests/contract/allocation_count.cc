#include "tests/contract/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "framework/buffers.h"

namespace {

std::atomic<uint64_t> g_newCalls{0};

void* Allocate(std::size_t size) {
  g_newCalls.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size ? size : 1);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* p = Allocate(size)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }

namespace Lumaforge::test {

uint64_t HeapAllocations() { return g_newCalls.load(std::memory_order_relaxed) + AlignedAllocCount(); }

}  // namespace Lumaforge::test
