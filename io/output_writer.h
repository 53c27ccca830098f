#pragma once
// The one buffered writer the decoders print to: an append-only buffer with fast
// paths for constant text and small numbers, handed to its sink in large blocks.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace velmora {

// Where flushed blocks go: a file descriptor, a string (tests, parallel chunks).
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Writes all of the block; false (with errno-style code in error) when it cannot.
  virtual bool Write(const char* data, std::size_t size, int& error) = 0;
};

class FdSink final : public ByteSink {
 public:
  explicit FdSink(int fd) : fd_(fd) {}
  bool Write(const char* data, std::size_t size, int& error) override;

 private:
  int fd_;
};

class StringSink final : public ByteSink {
 public:
  explicit StringSink(std::string& target) : target_(target) {}
  bool Write(const char* data, std::size_t size, int& error) override;

 private:
  std::string& target_;
};

class OutputWriter {
 public:
  static constexpr std::size_t kDefaultCapacity = 256 * 1024;

  explicit OutputWriter(ByteSink& sink, std::size_t capacity = kDefaultCapacity);
  ~OutputWriter();
  OutputWriter(const OutputWriter&) = delete;
  OutputWriter& operator=(const OutputWriter&) = delete;

  void Put(std::string_view text) {
    if (text.size() <= capacity_ - used_) {
      std::memcpy(buffer_.get() + used_, text.data(), text.size());
      used_ += text.size();
    } else {
      PutSlow(text);
    }
  }
  void Put(char c) {
    if (used_ == capacity_) Flush();
    buffer_[used_++] = c;
  }
  // "0x%x": lower-case hexadecimal, no leading zeros, always unsigned.
  void Hex(std::uint32_t value);
  // " 0x%x", the octet-string form.
  void SpaceHex(std::uint32_t value) {
    Put(' ');
    Hex(value);
  }
  // "%d".
  void Decimal(std::int64_t value);
  // The low `width` bits of value as 0 and 1 digits, most significant first.
  void Bits(std::uint32_t value, unsigned width);

  // Hands the buffered text to the sink. After a failed write the writer
  // drops further text and remembers the first error.
  void Flush();
  bool Failed() const { return error_ != 0; }
  int Error() const { return error_; }
  std::uint64_t BytesWritten() const { return flushed_ + used_; }

 private:
  void Reserve(std::size_t size) {
    if (capacity_ - used_ < size) Flush();
  }
  void PutSlow(std::string_view text);

  ByteSink& sink_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
  int error_ = 0;
};

}  // namespace velmora
