// What a filter says about itself, once, in its own source file: type, name,
// creation line, factory, Init-flag policy, accepted formats and parameters.
// The manager, the command-line tool and the tests read the same list.
#ifndef LUMAFORGE_FRAMEWORK_FILTER_DESCRIPTOR_H_
#define LUMAFORGE_FRAMEWORK_FILTER_DESCRIPTOR_H_

#include <algorithm>
#include <cstdint>
#include <new>
#include <span>

#include "framework/lumaforge_framework.h"
#include "framework/plane_layout.h"

namespace Lumaforge {

constexpr int32_t kMaxFilterType = 27;

enum class ParamType : uint8_t { kInt32, kUint32, kUint64, kFloat, kDouble, kRecord };

// Whether SetParam, GetParam or both take an id.
enum ParamAccess : uint8_t { kParamSet = 1, kParamGet = 2 };

struct ParamDescriptor {
  ParamId id;
  ParamType type;
  uint8_t access;       // ParamAccess bits
  const char* name;     // a short name, as the tool's --param takes it
  const char* meaning;  // one line for help texts
  // Numbers the filter takes as given (the meaning says what happens to others).
  double min = 0, max = 0;
};

struct FilterDescriptor {
  int32_t type;      // the manager's slot
  const char* name;  // the name its log lines carry
  // Logged with the filter's address after each successful creation step.
  const char* createdText;
  // Null when the allocation fails.
  CLumaforgeFramework* (*create)(uint32_t cpuFeatures);
  // Whether the filter's Init receives the caller's flag (the others get 0).
  bool receivesInitFlag;
  // How the filter reads the codes whose meaning differs between filters.
  FormatReading reading;
  // Format codes Process accepts, the preferred one first.
  std::span<const uint32_t> formats;
  // Ids beyond the manager's own and LF_PARAM_TIME_PER_FRAME.
  std::span<const ParamDescriptor> params;
};

// Whether `code` is one of a filter's `formats`.
inline bool ListsFormat(std::span<const uint32_t> formats, uint32_t code) {
  return std::find(formats.begin(), formats.end(), code) != formats.end();
}

// A factory for a descriptor: new (nothrow) Filter(cpuFeatures).
template <typename Filter>
CLumaforgeFramework* CreateFilter(uint32_t cpuFeatures) {
  return new (std::nothrow) Filter(cpuFeatures);
}

// Every filter of the library, in type order. Defined beside the filters,
// outside the framework, which includes no filter header.
std::span<const FilterDescriptor* const> FilterList();

// The descriptor of `type`; null for types without a filter.
const FilterDescriptor* FindFilterDescriptor(int32_t type);

}  // namespace Lumaforge

#endif  // LUMAFORGE_FRAMEWORK_FILTER_DESCRIPTOR_H_
