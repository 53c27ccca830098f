// A run on several threads writes exactly what the single-threaded run
// writes, whatever lands on either side of a chunk boundary.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "core/globals.h"
#include "core/translation.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::string FrameLine(const std::string& cells, int octets) {
  std::string line = "00042 09:00:00.000 **** D-CH RX HDLC:" + std::to_string(octets) + "  | " + cells;
  if (line.size() < 84) line += std::string(84 - line.size(), ' ');
  return line + "\n";
}
const std::string kSabme = FrameLine("0x00 0x81 0x7f ", 3);
const std::string kDisc = FrameLine("0x00 0x81 0x53 ", 3);
const std::string kUa = FrameLine("0x00 0x81 0x73 ", 3);
const std::string kSetup = FrameLine(
    "0x00 0x81 0x00 0x00 0x08 0x01 0x05 0x05 0xa1 0x04 0x03 0x80 0x90 0xa3 0x18 0x01 0x83 "
    "0x70 0x04 0x81 0x31 0x32 0x33 ",
    23);
const std::string kRelease = FrameLine("0x02 0x81 0x02 0x02 0x08 0x01 0x85 0x5a 0x08 0x02 0x80 0x90 ", 12);

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

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(ParallelRun, OutputAndLinkMemoryMatchTheSingleThreadedRun) {
  const fs::path dir = fs::temp_directory_path() / ("velmora_parallel_" + std::to_string(::getpid()));
  fs::create_directories(dir);
  for (const unsigned seed : {1U, 2U}) {
    const fs::path input = dir / "trace.txt";
    std::ofstream(input, std::ios::binary) << BuildTrace(seed);

    for (const int startState : {0, 1}) {
      g_linkSetupPending = startState;
      TranslationOptions single;
      ASSERT_EQ(TranslateTraceFile(input.string(), (dir / "single.txt").string(), single),
                TranslationOutcome::TranslationDone);
      const int singleEnd = g_linkSetupPending;
      const std::string expected = ReadAll(dir / "single.txt");
      ASSERT_GT(expected.size(), fs::file_size(input));

      for (const unsigned jobs : {2U, 3U, 7U}) {
        g_linkSetupPending = startState;
        TranslationOptions parallel;
        parallel.jobs = jobs;
        ASSERT_EQ(TranslateTraceFile(input.string(), (dir / "parallel.txt").string(), parallel),
                  TranslationOutcome::TranslationDone);
        EXPECT_EQ(g_linkSetupPending, singleEnd) << "jobs " << jobs;
        const std::string actual = ReadAll(dir / "parallel.txt");
        if (actual != expected) {
          std::size_t at = 0;
          while (at < actual.size() && at < expected.size() && actual[at] == expected[at]) ++at;
          ADD_FAILURE() << "seed " << seed << " jobs " << jobs << " start " << startState
                        << ": outputs differ from byte " << at << " (sizes " << actual.size() << ", "
                        << expected.size() << ")";
        }
      }
    }
  }
  fs::remove_all(dir);
}

// Also: 256 jobs on a 5 MB file start no more threads than it has chunks
// of work (256 KB each).
TEST(ParallelRun, FileWithoutFramesStaysNoFrameFound) {
  const fs::path dir = fs::temp_directory_path() / ("velmora_parallel_plain_" + std::to_string(::getpid()));
  fs::create_directories(dir);
  std::string text;
  while (text.size() < 5 * 1024 * 1024) text += "a line without any frame in it at all\n";
  std::ofstream(dir / "in.txt", std::ios::binary) << text;
  TranslationOptions parallel;
  parallel.jobs = 256;
  std::ptrdiff_t mostThreads = 0;
  parallel.progress = [&](std::uint64_t, std::uint64_t) {
    const auto tasks = fs::directory_iterator("/proc/self/task");
    mostThreads = std::max(mostThreads, std::distance(fs::begin(tasks), fs::end(tasks)));
  };
  EXPECT_EQ(TranslateTraceFile((dir / "in.txt").string(), (dir / "out.txt").string(), parallel),
            TranslationOutcome::NoFrameFound);
  EXPECT_EQ(ReadAll(dir / "out.txt"), text);
  EXPECT_GT(mostThreads, 2);
  EXPECT_LE(mostThreads, 5 * 4 + 1 + 1) << "workers beyond the 21 chunks, or the calling thread";
  fs::remove_all(dir);
}

}  // namespace
}  // namespace velmora
