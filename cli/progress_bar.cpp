#include "progress_bar.h"

#include <algorithm>

namespace velmora {

void ProgressBar::Update(std::uint64_t bytesRead, std::uint64_t inputSize) {
  if (inputSize < kShownFrom) return;
  // An input that grows while it is read has read more than its size.
  if (bytesRead > inputSize) bytesRead = inputSize;
  const auto now = std::chrono::steady_clock::now();
  if (!started_) {
    started_ = true;
    start_ = now;
  }
  if (now - lastDrawn_ < std::chrono::milliseconds(200) && bytesRead < inputSize) return;
  lastDrawn_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double megabytesPerSecond = seconds > 0 ? static_cast<double>(bytesRead) / 1e6 / seconds : 0.0;
  const double left =
      megabytesPerSecond > 0 ? static_cast<double>(inputSize - bytesRead) / 1e6 / megabytesPerSecond : 0.0;
  const int percent = static_cast<int>(100 * bytesRead / inputSize);
  const int filled = percent * kBarWidth / 100;
  char line[kMaxColumns + 1];
  const int length = std::snprintf(line, sizeof line, "[%.*s%*s] %3d%%  %7.1f MB/s  %5.0f s left", filled,
                                   "##############################", kBarWidth - filled, "", percent,
                                   std::min(megabytesPerSecond, 99999.9), std::min(left, 99999.0));
  const int shown = std::clamp(length, 0, kMaxColumns);
  // Blanks over whatever a longer earlier line left behind.
  std::fprintf(terminal_, "\r%.*s%*s", shown, line, std::max(drawnWidth_ - shown, 0), "");
  std::fflush(terminal_);
  drawnWidth_ = std::max(drawnWidth_, shown);
}

void ProgressBar::Finish() {
  if (drawnWidth_ > 0) {
    std::fprintf(terminal_, "\r%*s\r", drawnWidth_, "");
    std::fflush(terminal_);
  }
  drawnWidth_ = 0;
  started_ = false;
}

}  // namespace velmora
