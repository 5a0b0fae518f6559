// How the vector blur passes walk their lines: blocks of four chains, each
// chain taking `perChain` lines side by side, then one smaller block for
// the whole chains left. Included inside each level's anonymous namespace.
#include <cstdint>
#include <type_traits>

// Calls block(chains, firstLine) with chains as an integral constant;
// returns the first line no block covered (fewer than perChain remain).
template <int32_t perChain, typename Block>
int32_t RunBlocks(int32_t count, Block block) {
  int32_t i = 0;
  for (; i + perChain * 4 <= count; i += perChain * 4) block(std::integral_constant<int32_t, 4>{}, i);
  switch ((count - i) / perChain) {
    case 3: block(std::integral_constant<int32_t, 3>{}, i); break;
    case 2: block(std::integral_constant<int32_t, 2>{}, i); break;
    case 1: block(std::integral_constant<int32_t, 1>{}, i); break;
    default: break;
  }
  return i + (count - i) / perChain * perChain;
}
