// The velmora command against files that cannot be opened, read or written,
// full devices, one file under two names, odd input and a gigabyte line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>

#include "trace_files.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kCannotOpenInput = "Cannot open Input log file!\n";
constexpr const char* kCannotOpenOutput = "Cannot open output message file!\n";
constexpr const char* kSameFile =
    "The output message file is as same as the input log file.\nPlease select them again!\n";

const std::string kNothingUseful = "The input log file contains no useful information!\n";
const std::string kDoneText = "Translation is done!";
using velmora::testing::kSabmeText;
const std::string kSabmeLine = velmora::testing::FrameLine("0x00 0x81 0x7f");
const std::string kUaLine = velmora::testing::FrameLine("0x00 0x81 0x73");

struct Finished {
  int status = -1;  // -1: ended by a signal
  std::string out, err;
};

// A command line, its exit status and, unless null, its standard error.
struct Case {
  std::string args;
  int status;
  const char* err;
};

class ErrorPaths : public velmora::testing::ScratchDirectoryTest {
 protected:
  // Runs velmora in the test's directory; `args` is shell text whose own
  // redirections win over the default ones.
  Finished Velmora(const std::string& args) const {
    const std::string command =
        "cd " + dir_.string() + " && " + VELMORA_CLI_PATH + " </dev/null >stdout 2>stderr " + args;
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Read("stdout"), Read("stderr")};
  }
  void ExpectRuns(std::span<const Case> cases) const {
    for (const Case& c : cases) {
      const Finished run = Velmora(c.args);
      EXPECT_EQ(run.status, c.status) << c.args;
      if (c.err != nullptr) {
        EXPECT_EQ(run.err, c.err) << c.args;
      }
    }
  }
};

TEST_F(ErrorPaths, UsageAndOutcomes) {
  Write("frames.txt", kSabmeLine);
  Write("ua.txt", kUaLine);
  const Case cases[] = {
      {"", 64, nullptr},
      {"only-one", 64, nullptr},
      {"--bogus a b", 64, nullptr},
      {"'' out.txt", 64, "Please select input log file!\n"},
      {"-q frames.txt out.txt", 0, ""},
      {"frames.txt out.txt", 0, "Translation is done!\n"},
      // Several pairs: the second sees the SABME of the first.
      {"frames.txt o1.txt ua.txt o2.txt", 0,
       "frames.txt: Translation is done!\n"
       "ua.txt: Translation is done!\n"},
  };
  ExpectRuns(cases);
  EXPECT_EQ(Read("out.txt"), kSabmeLine + kSabmeText);
  EXPECT_EQ(Read("o2.txt"), kUaLine + velmora::testing::kUaAfterSabmeText);
  EXPECT_NE(Velmora("--help").out.find("Usage: velmora"), std::string::npos);
  EXPECT_EQ(Velmora("--version").out, "velmora 1.0.0.1\n");
}

TEST_F(ErrorPaths, OpenFailures) {
  Write("frames.txt", kSabmeLine);
  fs::create_directories(dir_ / "folder");
  fs::create_symlink(Path("frames.txt"), Path("link.txt"));
  fs::create_hard_link(Path("frames.txt"), Path("hard.txt"));

  const Case cases[] = {
      {"missing.txt out.txt", 66, kCannotOpenInput},
      {"folder out.txt", 66, kCannotOpenInput},     // a directory opens but is no log
      {"- out.txt <folder", 66, kCannotOpenInput},  // a directory on standard input
      {"frames.txt nowhere/out.txt", 73, kCannotOpenOutput},
      {"frames.txt folder", 73, kCannotOpenOutput},
      // One file under two spellings, or two names.
      {"./frames.txt ../" + dir_.filename().string() + "//frames.txt", 64, kSameFile},
      {"link.txt frames.txt", 64, kSameFile},
      {"frames.txt hard.txt", 64, kSameFile},
  };
  ExpectRuns(cases);
  EXPECT_EQ(Read("frames.txt"), kSabmeLine);
  EXPECT_FALSE(fs::exists(Path("out.txt")));
  EXPECT_FALSE(fs::exists(Path("nowhere")));
}

TEST_F(ErrorPaths, ReadFailureNeverClaimsSuccess) {
  // Opening a process's own memory works; reading its first page fails (EIO).
  // Quiet mode hides success only.
  Write("frames.txt", kSabmeLine);
  for (const std::string quiet : {"", "-q "}) {
    const Finished run = Velmora(quiet + "/proc/self/mem out.txt");
    EXPECT_EQ(run.status, 74);
    EXPECT_NE(run.err.find("reading /proc/self/mem failed part-way: " + std::string(std::strerror(EIO))),
              std::string::npos)
        << run.err;
    EXPECT_EQ(run.err.find(kDoneText), std::string::npos);
    EXPECT_EQ(run.err.find(kNothingUseful), std::string::npos) << "a read failure is not an empty log";
  }
}

TEST_F(ErrorPaths, FullDeviceIsAnIoErrorWhateverTheSizeOrStream) {
  const std::string incomplete = " failed: " + std::string(std::strerror(ENOSPC)) + "; the output is incomplete\n";
  // Enough lines to fill the writer's buffer many times over, translated by
  // several threads to a file, and by one to standard output.
  std::string many;
  while (many.size() < 6 * 1024 * 1024) many += kSabmeLine;
  Write("one.txt", kSabmeLine);
  Write("many.txt", many);
  for (const auto& [args, err] : {std::pair{"-q --jobs 2 many.txt /dev/full", "velmora: writing /dev/full"},
                                  std::pair{"many.txt - >/dev/full", "velmora: writing standard output"}}) {
    const Finished run = Velmora(args);
    EXPECT_EQ(run.status, 74) << args;
    EXPECT_EQ(run.err, err + incomplete);
  }

  // A failed pair keeps its status; the pairs after it still run.
  const Finished run = Velmora("one.txt /dev/full one.txt out.txt");
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(Read("out.txt"), kSabmeLine + kSabmeText);
  EXPECT_NE(run.err.find("one.txt: " + kDoneText), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find(kDoneText), run.err.rfind(kDoneText)) << "only the second pair is done";
}

// One line of 3 GiB with no line end comes through a pipe: every piece is a
// SABME frame line, so the output is the input with the layer-2 line behind
// each 2047-character piece. A shell makes the input and compares the output
// as it streams; velmora's resident memory must stay flat meanwhile.
TEST_F(ErrorPaths, GigabyteLineThroughAPipeInConstantMemory) {
  constexpr std::size_t kPiece = 2047;
  constexpr std::uint64_t kTotal = 3ULL << 30;
  constexpr long kRssLimitKb = 32 * 1024;
  std::string unit = "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f";
  unit += std::string(kPiece - unit.size(), '.');
  const std::size_t tailSize = kTotal % kPiece;
  const std::string tail = unit.substr(0, tailSize) + (tailSize >= 80 ? kSabmeText : "");
  const std::string period = unit + kSabmeText;  // `yes` adds its line end
  const std::uint64_t periods = kTotal / kPiece * period.size();
  FILE* source = ::popen(("yes '" + unit + "' | tr -d '\\n' | head -c " + std::to_string(kTotal)).c_str(), "r");
  FILE* check = ::popen(("bash -c \"cmp - <({ yes '" + period.substr(0, period.size() - 1) + "' | head -c " +
                         std::to_string(periods) + "; printf %s '" + tail + "'; })\"")
                            .c_str(),
                        "w");
  ASSERT_TRUE(source && check);
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::dup2(::fileno(source), STDIN_FILENO);
    ::dup2(::fileno(check), STDOUT_FILENO);
    ::dup2(::open(Path("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
    ::execl(VELMORA_CLI_PATH, "velmora", "-", "-", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  // Velmora's high-water mark of resident memory, now and then (wait4's
  // would include the test's own pages from before the exec).
  long peakRssKb = -1;
  int status = 0;
  do {
    std::ifstream proc("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(proc, line);)
      if (line.rfind("VmHWM:", 0) == 0) peakRssKb = std::max(peakRssKb, std::stol(line.substr(6)));
    ::usleep(20000);
  } while (::waitpid(pid, &status, WNOHANG) == 0);
  ::pclose(source);

  EXPECT_EQ(::pclose(check), 0) << "the output differs from the expected stream (see cmp above)";
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
  EXPECT_EQ(Read("stderr"), kDoneText + "\n");
  ASSERT_GT(peakRssKb, 0) << "velmora's memory could not be read from /proc";
  EXPECT_LT(peakRssKb, kRssLimitKb) << "peak resident memory " << peakRssKb << " kB";
  RecordProperty("peak_rss_kb", std::to_string(peakRssKb));
}

}  // namespace
