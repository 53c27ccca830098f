#include "line_reader.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace velmora {

LineReader::LineReader(int fd, std::size_t blockSize)
    : fd_(fd), blockSize_(blockSize < kMaxPiece ? kMaxPiece : blockSize), buffer_(new char[blockSize_ + kMaxPiece]) {}

// Moves the unread rest to the front and reads more behind it.
bool LineReader::Refill() {
  if (atEnd_) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (beforeRead_) beforeRead_();
  for (;;) {
    const ssize_t got = ::read(fd_, buffer_.get() + end_, blockSize_ + kMaxPiece - end_);
    if (got > 0) {
      end_ += static_cast<std::size_t>(got);
      bytesRead_ += static_cast<std::uint64_t>(got);
      return true;
    }
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error_ = errno;
    atEnd_ = true;
    return false;
  }
}

std::optional<std::string_view> LineReader::NextPieces() {
  for (;;) {
    const std::string_view unread(buffer_.get() + begin_, end_ - begin_);
    if (const std::size_t size = WholePiecesLength(unread, !atEnd_); size > 0) {
      begin_ += size;
      return unread.substr(0, size);
    }
    if (!Refill() && end_ == begin_) return std::nullopt;
  }
}

}  // namespace velmora
