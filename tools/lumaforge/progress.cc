#include "tools/lumaforge/progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace Lumaforge::cli {
namespace {

// Redrawn at most this often, so that drawing costs nothing measurable.
constexpr auto kRedrawInterval = std::chrono::milliseconds(200);

}  // namespace

Progress::Progress(std::string label, uint64_t total)
    : shown_(isatty(STDERR_FILENO) != 0),
      label_(std::move(label)),
      total_(total),
      start_(std::chrono::steady_clock::now()),
      drawn_(start_) {}

Progress::~Progress() {
  if (shown_ && done_ > 0) std::fprintf(stderr, "\r\033[K");
}

void Progress::Advance() {
  ++done_;
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - drawn_ < kRedrawInterval && done_ != total_) return;
  drawn_ = now;
  Draw();
}

void Progress::Draw() {
  const double seconds = std::chrono::duration<double>(drawn_ - start_).count();
  const double fps = seconds > 0 ? done_ / seconds : 0.0;
  if (total_ > 0) {
    const double left = fps > 0 && total_ > done_ ? (total_ - done_) / fps : 0.0;
    std::fprintf(stderr, "\r\033[K%s: %llu / %llu frames, %.1f fps, %.0f s left", label_.c_str(),
                 static_cast<unsigned long long>(done_), static_cast<unsigned long long>(total_), fps, left);
  } else {
    std::fprintf(stderr, "\r\033[K%s: %llu frames, %.1f fps", label_.c_str(), static_cast<unsigned long long>(done_),
                 fps);
  }
  std::fflush(stderr);
}

}  // namespace Lumaforge::cli
