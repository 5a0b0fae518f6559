// The --param values one filter received, read as the types it needs. Bad
// values throw with the parameter named.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_PARAM_SET_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_PARAM_SET_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Lumaforge::cli {

struct Ratio {
  uint32_t numerator;
  uint32_t denominator;
};

class ParamSet {
 public:
  void Set(const std::string& name, const std::string& value) { values_[name] = value; }

  std::string Text(const std::string& name, std::string_view fallback) const;
  // Absent: nullopt. Present: a whole number in [min, max].
  std::optional<uint32_t> Whole(const std::string& name, uint32_t min, uint32_t max) const;
  // The same for signed numbers.
  std::optional<int64_t> Integer(const std::string& name, int64_t min, int64_t max) const;
  float Real(const std::string& name, float fallback, float min, float max) const;
  // "W:H" with both parts at least 1.
  std::optional<Ratio> AspectRatio(const std::string& name) const;

 private:
  std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_PARAM_SET_H_
