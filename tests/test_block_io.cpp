// The blocks of input and output: the reader's whole pieces, inline and
// read ahead, and the writer's writes behind the decoding.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "line_reader.h"
#include "output_writer.h"
#include "trace_files.h"

namespace velmora {
namespace {

using BlockIo = testing::ScratchDirectoryTest;

// Lines of many lengths, one longer than a piece, and no line end at the end.
std::string MixedLines() {
  std::string text;
  for (int k = 0; k < 400; ++k) text += std::string(static_cast<std::size_t>(k * 7 % 90), 'a' + k % 26) + "\n";
  return text + std::string(5000, 'z') + "\n" + std::string(100, 'q');
}

// Small blocks, so that pieces straddle them and the rest of one block is
// carried in front of the next.
TEST_F(BlockIo, ReaderHandsOnWholePiecesInOrderAsReadAheadOrNot) {
  const std::string text = MixedLines();
  Write("in.txt", text);
  for (const SourceReads reads : {SourceReads::Inline, SourceReads::Ahead}) {
    const int fd = ::open(Path("in.txt").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    std::string joined;
    {
      LineReader reader(fd, 3000, reads);
      while (const auto pieces = reader.NextPieces()) {
        ASSERT_FALSE(pieces->empty());
        // Whole pieces: a line end or a full piece last, unless the input ends.
        if (joined.size() + pieces->size() < text.size()) {
          EXPECT_TRUE(pieces->back() == '\n' || WholePiecesLength(*pieces, true) == pieces->size());
        }
        joined += *pieces;
      }
      EXPECT_FALSE(reader.Failed());
      EXPECT_EQ(reader.BytesRead(), text.size());
    }
    ::close(fd);
    EXPECT_EQ(joined, text);
  }
}

// Fails from its second write on, and counts the writes it is asked for.
class FailingSink final : public ByteSink {
 public:
  bool Write(const char* data, std::size_t size, int& error) override {
    if (++writes_ == 1) {
      first_.assign(data, size);
      return true;
    }
    error = ENOSPC;
    return false;
  }
  int writes_ = 0;
  std::string first_;
};

TEST(WriteBehind, KeepsTheOrderAndStopsAtTheFirstFailedWrite) {
  std::string text;
  StringSink sink(text);
  {
    OutputWriter writer(sink, 64, SinkWrites::Behind);
    for (int k = 0; k < 1000; ++k) writer.Put("line " + std::to_string(k) + "\n");
    writer.Flush();
    EXPECT_FALSE(writer.Failed());
  }
  std::string expected;
  for (int k = 0; k < 1000; ++k) expected += "line " + std::to_string(k) + "\n";
  EXPECT_EQ(text, expected);

  FailingSink failing;
  OutputWriter writer(failing, 64, SinkWrites::Behind);
  for (int k = 0; k < 100; ++k) writer.Put(std::string(50, 'x'));
  writer.Flush();
  EXPECT_TRUE(writer.Failed());
  EXPECT_EQ(writer.Error(), ENOSPC);
  // Nothing is written after the failure has come back.
  EXPECT_EQ(failing.writes_, 2);
  EXPECT_EQ(failing.first_.size(), 64U);
}

// An empty text, also one that points nowhere (a meaning a table does not
// have), writes nothing, whether the buffer has room or is full: the call
// tracker's fuzz target once found the null view handed on to memcpy.
TEST(OutputWriterPut, EmptyTextWritesNothing) {
  std::string text;
  StringSink sink(text);
  {
    OutputWriter writer(sink, 4);
    writer.Put(std::string_view());
    writer.Put("abcd");
    writer.Put(std::string_view());  // the buffer is full
    writer.Put(std::string_view("", 0));
    writer.Put('e');
    writer.Flush();
  }
  EXPECT_EQ(text, "abcde");
}

}  // namespace
}  // namespace velmora
