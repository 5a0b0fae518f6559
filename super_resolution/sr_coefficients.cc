#include "super_resolution/sr_coefficients.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "framework/platform/text_file.h"

namespace Lumaforge {
namespace {

// Lines are read in pieces of at most this many characters; a longer line
// continues as further lines.
constexpr int kLineChars = 1023;

// Fields separated by runs of spaces (tabs belong to the field), as strtok
// splits them, without its hidden state.
class Fields {
 public:
  explicit Fields(char* line) : next_(line) {}
  // The next field, or null at the end of the line.
  const char* Next() {
    while (*next_ == ' ') ++next_;
    if (*next_ == '\0') return nullptr;
    const char* field = next_;
    while (*next_ != ' ' && *next_ != '\0') ++next_;
    if (*next_ == ' ') *next_++ = '\0';
    return field;
  }

 private:
  char* next_;
};

// Leading decimal digits (with an optional sign); anything else reads as 0.
int64_t LeadingInteger(const char* field) {
  if (!field) return 0;
  return std::strtoll(field, nullptr, 10);
}

// A decimal floating-point number, read the same in every locale (leading
// blanks and a plus sign allowed, as strtod takes them); malformed reads as 0.
double LeadingDouble(const char* field) {
  while (*field == ' ' || *field == '\t' || *field == '\r' || *field == '\n') ++field;
  if (*field == '+') ++field;
  double value = 0;
  const std::from_chars_result r = std::from_chars(field, field + std::strlen(field), value);
  return r.ec == std::errc() ? value : 0;
}

}  // namespace

int32_t setup_enhSR_coeffs_c(const char* path, double* table, uint8_t* valid, Logger* logger) {
  std::memset(table, 0, kSrTableBytes);
  std::memset(valid, 0, kSrClasses);
  std::FILE* file = platform::OpenTextFileForReading(path);
  if (!file) {
    if (logger) logger->Error("setup_enhSR_coeffs_c: ERROR, Could not open filter coeffs file, %s\n", path ? path : "");
    return 1;
  }
  char line[kLineChars + 1];
  int64_t lastClass = 0;
  while (std::fgets(line, sizeof(line), file)) {
    Fields fields(line);
    const int64_t cls = LeadingInteger(fields.Next());
    lastClass = cls;
    if (cls == 0) continue;
    const int64_t position = LeadingInteger(fields.Next());
    for (int skipped = 0; skipped < 4; ++skipped) fields.Next();
    // Slots the table does not have are never written.
    const bool inTable = cls > 0 && cls <= kSrFlatClass && position >= 0 && position < kSrPositions;
    if (!inTable) continue;
    double* weights = table + SrWeightIndex(static_cast<int32_t>(cls), static_cast<int32_t>(position), 0);
    for (int32_t k = 0; k < kSrTaps; ++k) {
      const char* field = fields.Next();
      if (!field) break;
      weights[k] = LeadingDouble(field);
    }
    valid[cls] = 1;
  }
  std::fclose(file);
  if (logger)
    logger->Info("setup_enhSR_coeffs_c: Loaded filter coefficients for %d numClass.\n", static_cast<int>(lastClass));
  return 0;
}

}  // namespace Lumaforge
