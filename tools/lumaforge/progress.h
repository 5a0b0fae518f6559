// A progress line on standard error (frames done / total, fps, time left),
// drawn only when standard error is a terminal.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_PROGRESS_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <string>

namespace Lumaforge::cli {

class Progress {
 public:
  // `total` 0: unknown, shown without a total or time left.
  Progress(std::string label, uint64_t total);
  ~Progress();  // clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Advance();

 private:
  void Draw();

  bool shown_;
  std::string label_;
  uint64_t total_;
  uint64_t done_ = 0;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point drawn_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_PROGRESS_H_
