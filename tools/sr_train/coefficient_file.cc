#include "tools/sr_train/coefficient_file.h"

#include <charconv>
#include <cstdio>
#include <memory>

namespace Lumaforge::sr_train {
namespace {

// std::to_chars ignores the locale; without a format it gives the shortest
// text that reads back to the same value.
template <typename... Format>
void Append(std::string& text, double value, Format... format) {
  char buffer[64];
  const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof(buffer), value, format...);
  text.append(buffer, r.ptr);
}

void Append(std::string& text, int64_t value) {
  char buffer[24];
  const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof(buffer), value);
  text.append(buffer, r.ptr);
}

}  // namespace

std::string FormatCoefficientFile(const CoefficientTable& table) {
  std::string text;
  for (int32_t cls = 1; cls < kSrClasses; ++cls) {
    if (!table.valid[cls]) continue;
    const ClassFit& fit = table.fits[cls];
    for (int32_t n = 0; n < kSrPositions; ++n) {
      Append(text, int64_t{cls});
      text += ' ';
      Append(text, int64_t{n});
      text += " n=";
      Append(text, fit.samples);
      text += " ridge=";
      Append(text, fit.ridge, std::chars_format::scientific, 4);
      text += " rms_plain=";
      Append(text, fit.rmsPlain[n], std::chars_format::fixed, 4);
      text += " rms_filter=";
      Append(text, fit.rmsFilter[n], std::chars_format::fixed, 4);
      const double* w = table.Weights(cls, n);
      for (int32_t k = 0; k < kSrTaps; ++k) {
        text += ' ';
        Append(text, w[k]);
      }
      text += '\n';
    }
  }
  return text;
}

bool WriteTextFile(const std::string& path, const std::string& text) {
  // Binary mode: '\n' stays one byte on every platform.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
  if (!file) return false;
  if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) return false;
  return std::fflush(file.get()) == 0;
}

}  // namespace Lumaforge::sr_train
