#pragma once
// Reads a file descriptor in large blocks and hands out its lines as views
// into the block, in pieces of at most 2047 characters, the line end kept:
// as many whole pieces at a time as the block holds.
#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "io_thread.h"
#include "pieces.h"

namespace velmora {

// Whether the descriptor is read when more input is needed (Inline), or one
// block ahead on a thread of its own (Ahead): for a regular file, whose
// reads never wait for a writer.
enum class SourceReads { Inline, Ahead };

// One read() of up to `size` bytes, again when a signal interrupts it.
struct ReadResult {
  std::size_t size = 0;  // 0 at the end of the input or on an error
  int error = 0;
};
ReadResult ReadRetrying(int fd, char* into, std::size_t size);
// The same with pread(), at `offset`, which leaves the file's own offset.
ReadResult PreadRetrying(int fd, char* into, std::size_t size, off_t offset);

class LineReader {
 public:
  static constexpr std::size_t kDefaultBlock = 1 << 20;

  explicit LineReader(int fd, std::size_t blockSize = kDefaultBlock, SourceReads reads = SourceReads::Inline);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // Called before the reader takes in more input, which may wait for it, so
  // that output already produced reaches its reader first (pipelines).
  void SetBeforeRead(std::function<void()> beforeRead) { beforeRead_ = std::move(beforeRead); }

  // Bytes already taken from the descriptor (a pipe's first bytes, read to
  // tell its format), handed out before what is read after them. Fewer than
  // a piece; before the first NextPieces().
  void Preload(std::string_view bytes);

  // The next whole pieces (pieces.h), one or more, as read so far. Valid
  // until the next call. Nothing at the end of the input or after a read
  // error.
  std::optional<std::string_view> NextPieces();

  bool Failed() const { return error_ != 0; }
  int Error() const { return error_; }
  std::uint64_t BytesRead() const { return bytesRead_; }

 private:
  ReadResult ReadBlock(char* into) const { return ReadRetrying(fd_, into, blockSize_); }
  // Puts the unread rest in front of the next block read.
  bool Refill();
  char* Buffer(int index) const { return buffers_[index].get(); }

  int fd_;
  std::size_t blockSize_;
  // Each buffer: room for the unread rest of the block before (less than a
  // piece), then a block. Reading ahead, the thread fills the other one.
  std::unique_ptr<char[]> buffers_[2];
  int current_ = 0;
  std::size_t begin_ = kMaxPiece;
  std::size_t end_ = kMaxPiece;
  bool atEnd_ = false;
  int error_ = 0;
  std::uint64_t bytesRead_ = 0;
  std::function<void()> beforeRead_;
  std::unique_ptr<IoThread> ahead_;  // after the buffers: stops before they go
  ReadResult aheadResult_;
};

}  // namespace velmora
