// Executes the processor identification instructions. Decoding the answers
// into a feature word is separate (framework/cpu_features.h), so tests can
// describe processors that this machine is not.
#ifndef LUMAFORGE_FRAMEWORK_PLATFORM_CPUID_H_
#define LUMAFORGE_FRAMEWORK_PLATFORM_CPUID_H_

#include <cstdint>

namespace Lumaforge::platform {

struct CpuidRegisters {
  uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
};

// False on a processor without the identification instruction.
bool HasCpuid();
CpuidRegisters Cpuid(uint32_t leaf, uint32_t subleaf);
// Extended control register 0; only valid when cpuid leaf 1 reports OSXSAVE.
uint64_t ReadXcr0();

}  // namespace Lumaforge::platform

#endif  // LUMAFORGE_FRAMEWORK_PLATFORM_CPUID_H_
