// Writes the trained filters as the library's coefficient text file.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_FILE_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_FILE_H_

#include <string>

#include "tools/sr_train/coefficient_table.h"

namespace Lumaforge::sr_train {

// One line per valid class and position, in class then position order:
//   class position n=SAMPLES ridge=RIDGE rms_plain=RMS rms_filter=RMS w0 .. w8
// The four named fields are skipped by the loader and tell a reader how the
// filter was made. Numbers are written locale-independently, weights in the
// shortest form that reads back to the same double; '\n' ends every line.
std::string FormatCoefficientFile(const CoefficientTable& table);

// Writes `text` to `path` byte for byte. False when the file cannot be written.
bool WriteTextFile(const std::string& path, const std::string& text);

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_COEFFICIENT_FILE_H_
