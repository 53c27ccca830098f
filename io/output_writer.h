#pragma once
// The one buffered writer the decoders print to: an append-only buffer with fast
// paths for constant text and small numbers, handed to its sink in large blocks.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "decimal_text.h"
#include "field_sink.h"
#include "io_thread.h"
#include "octet.h"

// For the few small functions every decoded line goes through: inlined
// wherever they are called, whatever the compiler's estimate of the
// callers' number says.
#if defined(__GNUC__) || defined(__clang__)
#define VELMORA_HOT_PATH [[gnu::always_inline]] inline
#else
#define VELMORA_HOT_PATH inline
#endif

namespace velmora {

// Where flushed blocks go: a file descriptor, a string (tests), the blocks
// of a parallel run's chunk.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Writes all of the block; false (with errno-style code in error) when it cannot.
  virtual bool Write(const char* data, std::size_t size, int& error) = 0;
  // A sink that keeps blocks rather than writing them on may take a full
  // buffer itself instead of a copy: it returns true and leaves in `buffer`
  // one to fill next, or null for the writer to allocate.
  virtual bool Keep(std::unique_ptr<char[]>& /*buffer*/, std::size_t /*size*/) { return false; }
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

namespace writer_tables {

// " 0x%x" of an octet, at the start of a slot wide enough to be copied whole
// from its first or second character, and its length.
struct OctetHexText {
  std::array<char, 15> text{};
  std::uint8_t size = 0;
};
inline constexpr std::array<OctetHexText, 256> kOctetHex = [] {
  std::array<OctetHexText, 256> table{};
  for (unsigned octet = 0; octet < 256; ++octet) {
    OctetHexText& hex = table[octet];
    for (const char c : std::string_view(" 0x")) hex.text[hex.size++] = c;
    if (octet >= 16) hex.text[hex.size++] = kHexDigits[octet >> 4];
    hex.text[hex.size++] = kHexDigits[octet & 0xF];
  }
  return table;
}();

// The eight binary digits of an octet, most significant first.
inline constexpr std::array<std::array<char, 8>, 256> kOctetBits = [] {
  std::array<std::array<char, 8>, 256> table{};
  for (unsigned octet = 0; octet < 256; ++octet)
    for (unsigned bit = 0; bit < 8; ++bit) table[octet][bit] = ((octet >> (7 - bit)) & 1U) ? '1' : '0';
  return table;
}();

}  // namespace writer_tables

// Whether the sink's writes wait for the decoding (Inline) or run on a
// thread of their own while the next block fills (Behind).
enum class SinkWrites { Inline, Behind };

inline constexpr std::size_t kTextPadding = 64;

// Text with at least kTextPadding characters of its storage behind its end,
// which OutputWriter::PutPadded may read though it prints none of them. Made
// only by the storage that has that room (PaddedText, the field lines' book),
// so that the promise is kept by the type rather than by a comment.
class PaddedView {
 public:
  constexpr PaddedView() = default;  // no text, the room behind it a blank block
  template <std::size_t N>
  static constexpr PaddedView Within(const std::array<char, N>& storage, std::size_t at, std::size_t size) {
    if (at + size + kTextPadding > N) throw "the text has not the room behind it that PaddedView promises";
    return PaddedView(storage.data() + at, size);
  }
  constexpr std::string_view View() const { return {data_, size_}; }
  constexpr std::size_t size() const { return size_; }
  constexpr bool empty() const { return size_ == 0; }
  // Without its first `count` characters; the room behind stays.
  constexpr PaddedView DropFront(std::size_t count) const {
    return count < size_ ? PaddedView(data_ + count, size_ - count) : PaddedView(data_ + size_, 0);
  }

 private:
  static constexpr std::array<char, kTextPadding> kNothing{};
  constexpr PaddedView(const char* data, std::size_t size) : data_(data), size_(size) {}
  const char* data_ = kNothing.data();
  std::size_t size_ = 0;
};

// A short text joined from pieces at compile time and stored with the room
// behind it that OutputWriter::PutPadded may read: a heading, a name line,
// constant lines printed together.
template <std::size_t Capacity>
class PaddedText {
 public:
  constexpr PaddedText() = default;
  constexpr PaddedText(std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) Put(piece);
  }
  // For tables of texts with numbers in them, built at compile time.
  constexpr void Put(std::string_view piece) {
    if (size_ + piece.size() > Capacity) throw "text too long for its PaddedText";
    for (const char c : piece) text_[size_++] = c;
  }
  constexpr void Decimal(unsigned value) {
    char digits[10] = {};
    std::size_t count = 0;
    do {
      digits[count++] = static_cast<char>('0' + value % 10);
      value /= 10;
    } while (value != 0);
    while (count > 0) Put(std::string_view(&digits[--count], 1));
  }
  constexpr std::string_view View() const { return {text_.data(), size_}; }
  constexpr PaddedView Padded() const { return PaddedView::Within(text_, 0, size_); }

 private:
  std::array<char, Capacity + kTextPadding> text_{};
  std::size_t size_ = 0;
};

class OutputWriter {
 public:
  static constexpr std::size_t kDefaultCapacity = 256 * 1024;
  // Writing behind: each block handed over costs the two threads a wake-up
  // or two, so blocks are larger; much larger ones would leave the cache
  // while they fill.
  static constexpr std::size_t kBehindCapacity = 1024 * 1024;

  explicit OutputWriter(ByteSink& sink, std::size_t capacity = kDefaultCapacity,
                        SinkWrites writes = SinkWrites::Inline);
  ~OutputWriter();
  OutputWriter(const OutputWriter&) = delete;
  OutputWriter& operator=(const OutputWriter&) = delete;

  // An empty text, whose data may be null, takes the slow path, which copies
  // nothing: memcpy must not see a null pointer even for no bytes. The one
  // compare (size - 1 wraps around for 0) tells both cases apart.
  VELMORA_HOT_PATH void Put(std::string_view text) {
    if (text.size() - 1 < capacity_ - used_) {
      std::memcpy(buffer_.get() + used_, text.data(), text.size());
      used_ += text.size();
    } else {
      PutSlow(text);
    }
  }
  // Text with room behind it: a short one is copied in one fixed-size move,
  // which costs no branch on its length.
  static constexpr std::size_t kPadding = kTextPadding;
  VELMORA_HOT_PATH void PutPadded(PaddedView text) {
    if (text.size() <= kPadding && capacity_ - used_ >= kPadding) {
      std::memcpy(buffer_.get() + used_, text.View().data(), kPadding);
      used_ += text.size();
    } else {
      Put(text.View());
    }
  }
  // A block handed to the sink as it is, uncopied, behind the text
  // buffered so far.
  void PutBlock(std::string_view block);
  VELMORA_HOT_PATH void Put(char c) {
    if (used_ == capacity_) Spill();
    buffer_[used_++] = c;
  }
  // "0x%x": lower-case hexadecimal, no leading zeros, always unsigned.
  void Hex(std::uint32_t value) {
    if (value < 256) {
      PutOctetHex(value, 1);
    } else {
      HexSlow(value);
    }
  }
  // " 0x%x", the octet-string form.
  void SpaceHex(std::uint32_t value) {
    if (value < 256) {
      PutOctetHex(value, 0);
    } else {
      Put(' ');
      HexSlow(value);
    }
  }
  // "%d". Values below 1000, most of what a trace counts, take a table.
  VELMORA_HOT_PATH void Decimal(std::int64_t value) {
    if (static_cast<std::uint64_t>(value) < 1000) {
      const SmallDecimal& text = kSmallDecimals[static_cast<std::size_t>(value)];
      Reserve(4);
      std::memcpy(buffer_.get() + used_, text.digits.data(), 4);
      used_ += text.size;
      return;
    }
    DecimalSlow(value);
  }
  // The low `width` bits of value as 0 and 1 digits, most significant first.
  void Bits(std::uint32_t value, unsigned width) {
    if (width > 8) return BitsSlow(value, width);
    // The octet's eight digits, shifted so that the field's stand first.
    Reserve(8);
    std::memcpy(buffer_.get() + used_, writer_tables::kOctetBits[(value << (8 - width)) & 0xFF].data(), 8);
    used_ += width;
  }

  // Writing in place: room for `size` characters at the pointer returned,
  // filled by the caller and ended by Commit at the character behind the
  // last one written. Null when `size` is more than the buffer holds: the
  // caller puts its text piece by piece instead.
  VELMORA_HOT_PATH char* Claim(std::size_t size) {
    if (capacity_ - used_ < size) {
      if (size > capacity_) return nullptr;
      Spill();
    }
    return buffer_.get() + used_;
  }
  VELMORA_HOT_PATH void Commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

  // Hands the buffered text to the sink and, when the sink writes behind,
  // waits until everything handed over so far is written. After a failed
  // write the writer drops further text and remembers the first error.
  void Flush();
  bool Failed() const { return error_ != 0; }
  int Error() const { return error_; }
  std::uint64_t BytesWritten() const { return flushed_ + used_; }

  // The text buffered since the last hand-over to the sink, and dropping it
  // unwritten: for a scratch writer whose text is read in place.
  std::string_view Buffered() const { return {buffer_.get(), used_}; }
  void DropBuffered() {
    flushed_ += used_;
    used_ = 0;
  }

  // The structured sink that decoders tell where their parts begin; null,
  // the message file's case, costs one test an element.
  void SetFieldSink(FieldSink* sink) { fieldSink_ = sink; }
  FieldSink* Fields() const { return fieldSink_; }

 private:
  void Reserve(std::size_t size) {
    if (capacity_ - used_ < size) Spill();
  }
  // The octet's " 0x%x" without its first `skip` characters.
  void PutOctetHex(std::uint32_t octet, std::size_t skip) {
    const writer_tables::OctetHexText& hex = writer_tables::kOctetHex[octet];
    Reserve(8);
    std::memcpy(buffer_.get() + used_, hex.text.data() + skip, 8);
    used_ += hex.size - skip;
  }
  // Hands a full buffer on; writing behind, without waiting for its write.
  void Spill();
  void WriteToSink(const char* data, std::size_t size, int& error);
  void WaitForWriteBehind();
  void PutSlow(std::string_view text);
  void HexSlow(std::uint32_t value);
  void DecimalSlow(std::int64_t value);
  void BitsSlow(std::uint32_t value, unsigned width);

  ByteSink& sink_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::uint64_t flushed_ = 0;
  int error_ = 0;
  // Writing behind: the buffer the writer thread has in hand, the thread,
  // and the first error of its writes, read after waiting for it.
  std::unique_ptr<char[]> spare_;
  std::unique_ptr<IoThread> behind_;
  int behindError_ = 0;
  FieldSink* fieldSink_ = nullptr;
};

}  // namespace velmora
