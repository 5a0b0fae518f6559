// How every kernel family is put together.
//
// Declaration. A family header writes each kernel signature once, as a
// function type (`using BlendRowKernel = void(...)`), then a table of
// pointers to those types, the plain `_c` routines declared through them,
// and one installer per level that has variants of its own, declared with
// LUMAFORGE_KERNEL_LEVEL(avx2, AlphaBlendKernels).
// A level's file keeps its kernels to itself; its installer assigns the
// slots that level makes faster and leaves the others as they are.
//
// Ladder. The family's Init fills the table with the `_c` routines, then
// ClimbLadder runs the installers of the levels the feature word holds,
// lowest first, so the highest present level wins each slot.
//
// Tails. Vector kernels run their body over whole steps and hand the rest of
// the row to the plain routine (ForEachStep). A header says how far a
// kernel reads or writes past its width: nowhere, unless it says otherwise.
#ifndef LUMAFORGE_FRAMEWORK_KERNEL_FAMILY_H_
#define LUMAFORGE_FRAMEWORK_KERNEL_FAMILY_H_

#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace Lumaforge {

// Declares `level::Install(Table*)`, which the level's own file defines.
#define LUMAFORGE_KERNEL_LEVEL(level, Table) \
  namespace level {                          \
  void Install(Table* kernels);              \
  }

template <typename Table>
struct LadderStep {
  uint32_t feature;         // the feature bit that admits the level
  void (*install)(Table*);  // assigns the slots the level improves
};

template <typename Table>
void ClimbLadder(Table* table, uint32_t features,
                 std::initializer_list<LadderStep<std::type_identity_t<Table>>> steps) {
  for (const auto& step : steps) {
    if (features & step.feature) step.install(table);
  }
}

// The one tail policy: body(x) for x = 0, kStep, 2 kStep, ... while a whole
// step fits in `count`, then tail(x) once from the first position the body
// left, if any. Both are inlined at compile time.
template <int32_t kStep, typename Body, typename Tail>
inline void ForEachStep(int32_t count, Body&& body, Tail&& tail) {
  int32_t x = 0;
  for (; x + kStep <= count; x += kStep) body(x);
  if (x < count) tail(x);
}

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_KERNEL_FAMILY_H_
