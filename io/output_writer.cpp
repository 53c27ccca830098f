#include "output_writer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>

namespace velmora {

bool FdSink::Write(const char* data, std::size_t size, int& error) {
  while (size > 0) {
    const ssize_t written = ::write(fd_, data, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      error = errno;
      return false;
    }
    data += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool StringSink::Write(const char* data, std::size_t size, int& /*error*/) {
  target_.append(data, size);
  return true;
}

namespace {

std::size_t UsableCapacity(std::size_t capacity) { return capacity < 64 ? 64 : capacity; }

}  // namespace

OutputWriter::OutputWriter(ByteSink& sink, std::size_t capacity, SinkWrites writes)
    : sink_(sink), buffer_(new char[UsableCapacity(capacity)]), capacity_(UsableCapacity(capacity)) {
  if (writes == SinkWrites::Behind) {
    spare_.reset(new char[capacity_]);
    behind_ = std::make_unique<IoThread>();
  }
}

OutputWriter::~OutputWriter() { Flush(); }

void OutputWriter::WriteToSink(const char* data, std::size_t size, int& error) {
  if (error == 0 && !sink_.Write(data, size, error) && error == 0) error = EIO;
}

void OutputWriter::WaitForWriteBehind() {
  behind_->Wait();
  if (error_ == 0) error_ = behindError_;
}

void OutputWriter::Spill() {
  if (used_ == 0) return;
  if (behind_ != nullptr) {
    // The spare buffer is free once its block is written.
    WaitForWriteBehind();
    if (error_ == 0) {
      behind_->Start([this, block = buffer_.get(), size = used_] { WriteToSink(block, size, behindError_); });
      std::swap(buffer_, spare_);
    }
  } else if (error_ == 0 && sink_.Keep(buffer_, used_)) {
    if (buffer_ == nullptr) buffer_.reset(new char[capacity_]);
  } else {
    WriteToSink(buffer_.get(), used_, error_);
  }
  flushed_ += used_;
  used_ = 0;
}

void OutputWriter::Flush() {
  Spill();
  if (behind_ != nullptr) WaitForWriteBehind();
}

void OutputWriter::PutBlock(std::string_view block) {
  Flush();
  WriteToSink(block.data(), block.size(), error_);
  flushed_ += block.size();
}

void OutputWriter::PutSlow(std::string_view text) {
  // A block larger than the buffer goes to the sink as it is, uncopied.
  if (text.size() >= capacity_) return PutBlock(text);
  while (!text.empty()) {
    if (used_ == capacity_) Spill();
    const std::size_t chunk = std::min(text.size(), capacity_ - used_);
    std::memcpy(buffer_.get() + used_, text.data(), chunk);
    used_ += chunk;
    text.remove_prefix(chunk);
  }
}

void OutputWriter::HexSlow(std::uint32_t value) {
  Reserve(10);
  char* out = buffer_.get() + used_;
  *out++ = '0';
  *out++ = 'x';
  unsigned shift = 28;
  while (shift > 0 && (value >> shift) == 0) shift -= 4;
  for (;;) {
    *out++ = kHexDigits[(value >> shift) & 0xF];
    if (shift == 0) break;
    shift -= 4;
  }
  used_ = static_cast<std::size_t>(out - buffer_.get());
}

void OutputWriter::DecimalSlow(std::int64_t value) {
  Reserve(20);  // a sign and 19 digits
  char* at = buffer_.get() + used_;
  used_ += static_cast<std::size_t>(std::to_chars(at, at + 20, value).ptr - at);
}

void OutputWriter::BitsSlow(std::uint32_t value, unsigned width) {
  Reserve(width);
  for (unsigned bit = width; bit > 0; --bit) buffer_[used_++] = ((value >> (bit - 1)) & 1U) ? '1' : '0';
}

}  // namespace velmora
