#include "output_writer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

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

OutputWriter::OutputWriter(ByteSink& sink, std::size_t capacity)
    : sink_(sink), buffer_(new char[capacity < 64 ? 64 : capacity]), capacity_(capacity < 64 ? 64 : capacity) {}

OutputWriter::~OutputWriter() { Flush(); }

void OutputWriter::Flush() {
  if (used_ == 0) return;
  if (error_ == 0 && !sink_.Write(buffer_.get(), used_, error_) && error_ == 0) error_ = EIO;
  flushed_ += used_;
  used_ = 0;
}

void OutputWriter::PutSlow(std::string_view text) {
  // A block larger than the buffer goes to the sink as it is, uncopied.
  if (text.size() >= capacity_) {
    Flush();
    if (error_ == 0 && !sink_.Write(text.data(), text.size(), error_) && error_ == 0) error_ = EIO;
    flushed_ += text.size();
    return;
  }
  while (!text.empty()) {
    if (used_ == capacity_) Flush();
    const std::size_t chunk = std::min(text.size(), capacity_ - used_);
    std::memcpy(buffer_.get() + used_, text.data(), chunk);
    used_ += chunk;
    text.remove_prefix(chunk);
  }
}

void OutputWriter::Hex(std::uint32_t value) {
  static constexpr char kDigits[] = "0123456789abcdef";
  Reserve(10);
  char* out = buffer_.get() + used_;
  *out++ = '0';
  *out++ = 'x';
  unsigned shift = 28;
  while (shift > 0 && (value >> shift) == 0) shift -= 4;
  for (;;) {
    *out++ = kDigits[(value >> shift) & 0xF];
    if (shift == 0) break;
    shift -= 4;
  }
  used_ = static_cast<std::size_t>(out - buffer_.get());
}

void OutputWriter::Decimal(std::int64_t value) {
  Reserve(21);
  char digits[20];
  std::size_t count = 0;
  std::uint64_t magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  do {
    digits[count++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (value < 0) buffer_[used_++] = '-';
  while (count > 0) buffer_[used_++] = digits[--count];
}

void OutputWriter::Bits(std::uint32_t value, unsigned width) {
  Reserve(width);
  for (unsigned bit = width; bit > 0; --bit) buffer_[used_++] = ((value >> (bit - 1)) & 1U) ? '1' : '0';
}

}  // namespace velmora
