// GCC's <cpuid.h> and the xgetbv intrinsic exist for both the Linux and the
// MinGW-w64 toolchains, so this file serves both platforms.
#include <cpuid.h>
#include <immintrin.h>

#include "framework/platform/cpuid.h"

namespace Lumaforge::platform {

// The ID flag test matters only on 32-bit processors; every x86-64 one has cpuid.
bool HasCpuid() { return true; }

CpuidRegisters Cpuid(uint32_t leaf, uint32_t subleaf) {
  CpuidRegisters r;
  __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
  return r;
}

__attribute__((target("xsave"))) uint64_t ReadXcr0() { return _xgetbv(0); }

}  // namespace Lumaforge::platform
