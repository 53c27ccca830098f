#pragma once
// Reads a file descriptor in large blocks and hands out its lines as views
// into the block, in pieces of at most 2047 characters, the line end kept:
// as many whole pieces at a time as the block holds.
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "pieces.h"

namespace velmora {

class LineReader {
 public:
  static constexpr std::size_t kDefaultBlock = 1 << 20;

  explicit LineReader(int fd, std::size_t blockSize = kDefaultBlock);

  // Called before every read of the descriptor that may wait for input, so
  // that output already produced reaches its reader first (pipelines).
  void SetBeforeRead(std::function<void()> beforeRead) { beforeRead_ = std::move(beforeRead); }

  // The next whole pieces (pieces.h), one or more, as read so far. Valid
  // until the next call. Nothing at the end of the input or after a read
  // error.
  std::optional<std::string_view> NextPieces();

  bool Failed() const { return error_ != 0; }
  int Error() const { return error_; }
  std::uint64_t BytesRead() const { return bytesRead_; }

 private:
  bool Refill();

  int fd_;
  std::size_t blockSize_;
  std::unique_ptr<char[]> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool atEnd_ = false;
  int error_ = 0;
  std::uint64_t bytesRead_ = 0;
  std::function<void()> beforeRead_;
};

}  // namespace velmora
