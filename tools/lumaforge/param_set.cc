#include "tools/lumaforge/param_set.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "tools/lumaforge/errors.h"

namespace Lumaforge::cli {
namespace {

// The whole text as one number, or nullopt.
template <typename T>
std::optional<T> Number(std::string_view text) {
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string Quoted(const std::string& name, std::string_view value) { return name + "=" + std::string(value); }

std::string Range(double min, double max) {
  char text[64];
  std::snprintf(text, sizeof(text), " is out of range (%g to %g)", min, max);
  return text;
}

}  // namespace

std::string ParamSet::Text(const std::string& name, std::string_view fallback) const {
  const auto it = values_.find(name);
  return it == values_.end() ? std::string(fallback) : it->second;
}

std::optional<int64_t> ParamSet::Integer(const std::string& name, int64_t min, int64_t max) const {
  const auto it = values_.find(name);
  if (it == values_.end()) return std::nullopt;
  const std::optional<int64_t> value = Number<int64_t>(it->second);
  if (!value) throw ToolError(Quoted(name, it->second) + " is not a whole number");
  if (*value < min || *value > max) {
    throw ToolError(Quoted(name, it->second) + Range(static_cast<double>(min), static_cast<double>(max)));
  }
  return *value;
}

std::optional<uint32_t> ParamSet::Whole(const std::string& name, uint32_t min, uint32_t max) const {
  const std::optional<int64_t> value = Integer(name, min, max);
  if (!value) return std::nullopt;
  return static_cast<uint32_t>(*value);
}

float ParamSet::Real(const std::string& name, float fallback, float min, float max) const {
  const auto it = values_.find(name);
  if (it == values_.end()) return fallback;
  const std::optional<float> value = Number<float>(it->second);
  if (!value || !std::isfinite(*value)) throw ToolError(Quoted(name, it->second) + " is not a number");
  if (*value < min || *value > max) {
    throw ToolError(Quoted(name, it->second) + Range(min, max));
  }
  return *value;
}

std::optional<Ratio> ParamSet::AspectRatio(const std::string& name) const {
  const auto it = values_.find(name);
  if (it == values_.end()) return std::nullopt;
  const std::string_view text = it->second;
  const size_t colon = text.find(':');
  const auto numerator = Number<uint32_t>(text.substr(0, colon));
  const auto denominator = colon == text.npos ? std::nullopt : Number<uint32_t>(text.substr(colon + 1));
  if (!numerator || !denominator || *numerator == 0 || *denominator == 0)
    throw ToolError(Quoted(name, text) + " is not a ratio W:H of whole numbers");
  return Ratio{*numerator, *denominator};
}

}  // namespace Lumaforge::cli
