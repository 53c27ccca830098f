// The terminal progress line: within 80 columns, never past 100%, and
// wiped whole at the end.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "progress_bar.h"

namespace velmora {
namespace {

// What the bar drew, read back from a memory stream.
class DrawnText {
 public:
  DrawnText() : stream_(::open_memstream(&data_, &size_)) {}
  ~DrawnText() {
    std::fclose(stream_);
    std::free(data_);
  }
  std::FILE* Stream() const { return stream_; }
  std::string Text() {
    std::fflush(stream_);
    return std::string(data_, size_);
  }

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

// Each redraw starts with "\r"; the widest one is what the terminal shows.
std::size_t WidestLine(const std::string& text) {
  std::size_t widest = 0;
  std::size_t start = 0;
  while ((start = text.find('\r', start)) != std::string::npos) {
    const std::size_t end = text.find('\r', start + 1);
    widest = std::max(widest, (end == std::string::npos ? text.size() : end) - start - 1);
    start = start + 1;
  }
  return widest;
}

TEST(ProgressBar, StaysWithin80ColumnsNeverPasses100AndIsWipedWhole) {
  constexpr std::uint64_t kSize = ProgressBar::kShownFrom;
  DrawnText drawn;
  ProgressBar bar(drawn.Stream());
  bar.Update(kSize / 2, kSize);
  const std::string half = drawn.Text();
  EXPECT_NE(half.find(" 50%"), std::string::npos) << half;
  // The input grew while it was read: more bytes than its size at the start.
  bar.Update(3 * kSize, kSize);
  const std::string grown = drawn.Text().substr(half.size());
  EXPECT_NE(grown.find("100%"), std::string::npos) << grown;
  EXPECT_EQ(grown.find("300%"), std::string::npos) << grown;
  EXPECT_LE(WidestLine(drawn.Text()), 79U);

  bar.Finish();
  const std::string all = drawn.Text();
  const std::size_t widest = WidestLine(all.substr(0, all.size() - 1));
  EXPECT_EQ(all.substr(all.size() - widest - 2), "\r" + std::string(widest, ' ') + "\r") << "a partial wipe";
}

TEST(ProgressBar, SmallInputsShowNothing) {
  DrawnText drawn;
  ProgressBar bar(drawn.Stream());
  bar.Update(10, ProgressBar::kShownFrom - 1);
  bar.Finish();
  EXPECT_EQ(drawn.Text(), "");
}

}  // namespace
}  // namespace velmora
