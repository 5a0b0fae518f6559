// Heap allocations of this test program: operator new is replaced to count
// its calls, and the library's aligned blocks are counted by the library.
#ifndef LUMAFORGE_TESTS_CONTRACT_ALLOCATION_COUNT_H_
#define LUMAFORGE_TESTS_CONTRACT_ALLOCATION_COUNT_H_

#include <cstdint>

namespace Lumaforge::test {

// operator new calls plus AlignedAlloc blocks since the program started.
uint64_t HeapAllocations();

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_CONTRACT_ALLOCATION_COUNT_H_
