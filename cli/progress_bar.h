#pragma once
// The progress line that velmora draws on a terminal while it reads a large
// input: percent, MB/s and the time left.
#include <chrono>
#include <cstdint>
#include <cstdio>

namespace velmora {

// Redrawn at most a few times a second; it stays within 80 columns and is
// wiped whole before anything else is said on the terminal.
class ProgressBar {
 public:
  static constexpr std::uint64_t kShownFrom = 64ULL * 1024 * 1024;
  static constexpr int kMaxColumns = 79;  // the cursor stays on an 80-column line

  explicit ProgressBar(std::FILE* terminal) : terminal_(terminal) {}

  void Update(std::uint64_t bytesRead, std::uint64_t inputSize);
  // Wipes the line, so the next text starts at the line's beginning.
  void Finish();

 private:
  static constexpr int kBarWidth = 30;
  std::FILE* terminal_;
  bool started_ = false;
  int drawnWidth_ = 0;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace velmora
