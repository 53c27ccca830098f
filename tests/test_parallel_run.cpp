// A run on several threads writes exactly what the single-threaded run
// writes, whatever lands on either side of a chunk boundary.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>

#include "trace_files.h"
#include "translation.h"

namespace velmora::testing {
namespace {

using ParallelRun = ScratchDirectoryTest;

const std::string kSabme = FrameLine("0x00 0x81 0x7f");
const std::string kDisc = FrameLine("0x00 0x81 0x53");
const std::string kUa = FrameLine("0x00 0x81 0x73");
const std::string kSetup = FrameLine(
    "0x00 0x81 0x00 0x00 0x08 0x01 0x05 0x05 0xa1 0x04 0x03 0x80 0x90 0xa3 0x18 0x01 0x83 0x70 0x04 0x81 0x31 0x32 "
    "0x33");
const std::string kRelease = FrameLine("0x02 0x81 0x02 0x02 0x08 0x01 0x85 0x5a 0x08 0x02 0x80 0x90");

// Several megabytes of trace: link frames now dense, now many chunks apart,
// lines longer than a piece and longer than a chunk, NUL bytes, and a last
// line without a line end.
std::string BuildTrace(unsigned seed) {
  std::mt19937 random(seed);
  std::string trace;
  const std::string frames[] = {kSabme, kDisc, kUa, kSetup, kRelease};
  while (trace.size() < 6 * 1024 * 1024) {
    switch (random() % 10) {
      case 0:  // a quiet stretch of more than one chunk, then a UA
        trace += frames[random() % 2];
        while (trace.size() % (700 * 1024) > 1000) trace += "09:00:00.000 L1: idle, no frame here\n";
        trace += kUa;
        break;
      case 1: {  // a line longer than a piece, or than several chunks, with frame
                 // forms at piece boundaries inside it
        std::string line(2047 * (1 + random() % 3) + random() % 5, 'x');
        if (random() % 4 == 0) line.resize(1200 * 1024 + random() % 4096, 'y');
        for (std::size_t at = 2047; at + 100 < line.size(); at += 2047 * (1 + random() % 60)) {
          const std::string& frame = frames[random() % 5];
          line.replace(at, frame.size() - 1, frame.substr(0, frame.size() - 1));
        }
        trace += line + "\n";
        break;
      }
      case 2:
        trace += std::string("nul\0byte line ****HDLC", 22) + "\n";
        break;
      default:
        for (int i = 0; i < 40; ++i) trace += frames[random() % 5];
        trace += "plain text between frames\n";
    }
  }
  trace += kUa.substr(0, kUa.size() - 1);
  return trace;
}

TEST_F(ParallelRun, OutputAndLinkMemoryMatchTheSingleThreadedRun) {
  for (const unsigned seed : {1U, 2U}) {
    Write("trace.txt", BuildTrace(seed));
    for (const bool setupPending : {false, true}) {
      LinkMemory singleLink{setupPending};
      ASSERT_EQ(TranslateTraceFile(Path("trace.txt"), Path("single.txt"), singleLink),
                TranslationOutcome::TranslationDone);
      const std::string expected = Read("single.txt");
      for (const unsigned jobs : {2U, 3U, 7U}) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", jobs " + std::to_string(jobs) + ", setup pending " +
                     std::to_string(setupPending));
        LinkMemory parallelLink{setupPending};
        TranslationOptions parallel;
        parallel.jobs = jobs;
        ASSERT_EQ(TranslateTraceFile(Path("trace.txt"), Path("parallel.txt"), parallelLink, parallel),
                  TranslationOutcome::TranslationDone);
        EXPECT_EQ(parallelLink.setupPending, singleLink.setupPending);
        const std::string actual = Read("parallel.txt");
        // The first difference, rather than megabytes of both.
        const auto [differs, _] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
        EXPECT_TRUE(actual == expected) << "outputs differ from byte " << (differs - actual.begin());
      }
    }
  }
}

// Also: 256 jobs on a 5 MB file start no more threads than it has chunks
// of work (256 KB each).
TEST_F(ParallelRun, FileWithoutFramesStaysNoFrameFound) {
  std::string text;
  while (text.size() < 5 * 1024 * 1024) text += "a line without any frame in it at all\n";
  Write("in.txt", text);
  LinkMemory link;
  TranslationOptions parallel;
  parallel.jobs = 256;
  std::ptrdiff_t mostThreads = 0;
  parallel.progress = [&](std::uint64_t, std::uint64_t) {
    const auto tasks = std::filesystem::directory_iterator("/proc/self/task");
    mostThreads = std::max(mostThreads, std::distance(begin(tasks), end(tasks)));
  };
  EXPECT_EQ(TranslateTraceFile(Path("in.txt"), Path("out.txt"), link, parallel), TranslationOutcome::NoFrameFound);
  EXPECT_TRUE(Read("out.txt") == text);
  EXPECT_GT(mostThreads, 2);
  EXPECT_LE(mostThreads, 5 * 4 + 1 + 1) << "workers beyond the 21 chunks, or the calling thread";
}

}  // namespace
}  // namespace velmora::testing
