#include "line_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace velmora {

LineReader::LineReader(int fd, std::size_t blockSize, SourceReads reads)
    : fd_(fd), blockSize_(blockSize < kMaxPiece ? kMaxPiece : blockSize) {
  buffers_[0].reset(new char[kMaxPiece + blockSize_]);
  if (reads == SourceReads::Ahead) {
    buffers_[1].reset(new char[kMaxPiece + blockSize_]);
    ahead_ = std::make_unique<IoThread>();
    ahead_->Start([this] { aheadResult_ = ReadBlock(Buffer(1) + kMaxPiece); });
  }
}

LineReader::~LineReader() = default;

void LineReader::Preload(std::string_view bytes) {
  // They stand where the unread rest of a block waits for the next read.
  const std::size_t size = std::min(bytes.size(), kMaxPiece - 1);
  std::memcpy(Buffer(current_) + kMaxPiece - size, bytes.data(), size);
  begin_ = kMaxPiece - size;
  bytesRead_ += size;
}

ReadResult ReadRetrying(int fd, char* into, std::size_t size) {
  for (;;) {
    const ssize_t got = ::read(fd, into, size);
    if (got >= 0) return {static_cast<std::size_t>(got), 0};
    if (errno != EINTR) return {0, errno};
  }
}

ReadResult PreadRetrying(int fd, char* into, std::size_t size, off_t offset) {
  for (;;) {
    const ssize_t got = ::pread(fd, into, size, offset);
    if (got >= 0) return {static_cast<std::size_t>(got), 0};
    if (errno != EINTR) return {0, errno};
  }
}

bool LineReader::Refill() {
  if (atEnd_) return false;
  if (beforeRead_) beforeRead_();
  // The block read lands behind the room for the rest; reading ahead, in
  // the other buffer, which the thread may be filling still.
  const int next = ahead_ != nullptr ? 1 - current_ : current_;
  const std::size_t rest = end_ - begin_;
  ReadResult got;
  if (ahead_ != nullptr) {
    ahead_->Wait();
    got = aheadResult_;
  }
  std::memmove(Buffer(next) + kMaxPiece - rest, Buffer(current_) + begin_, rest);
  current_ = next;
  begin_ = kMaxPiece - rest;
  end_ = kMaxPiece;
  if (ahead_ == nullptr) got = ReadBlock(Buffer(current_) + kMaxPiece);
  if (got.size == 0) {
    error_ = got.error;
    atEnd_ = true;
    return false;
  }
  end_ += got.size;
  bytesRead_ += got.size;
  if (ahead_ != nullptr)
    ahead_->Start([this, into = Buffer(1 - current_) + kMaxPiece] { aheadResult_ = ReadBlock(into); });
  return true;
}

std::optional<std::string_view> LineReader::NextPieces() {
  for (;;) {
    const std::string_view unread(Buffer(current_) + begin_, end_ - begin_);
    if (const std::size_t size = WholePiecesLength(unread, !atEnd_); size > 0) {
      begin_ += size;
      return unread.substr(0, size);
    }
    if (!Refill() && end_ == begin_) return std::nullopt;
  }
}

}  // namespace velmora
