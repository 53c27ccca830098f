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
#include <optional>
#include <span>
#include <string>

#include "trace_files.h"

namespace {

namespace fs = std::filesystem;

const std::string kCannotOpenInput = "Cannot open Input log file!\n";
const std::string kCannotOpenOutput = "Cannot open output message file!\n";
const std::string kSameFile = "The output message file is as same as the input log file.\nPlease select them again!\n";

const std::string kTryHelp = "Try 'velmora --help'.\n";
const std::string kNothingUseful = "The input log file contains no useful information!\n";
const std::string kDoneText = "Translation is done!";
using velmora::testing::kSabmeText;
const std::string kSabmeLine = velmora::testing::FrameLine("0x00 0x81 0x7f");
const std::string kUaLine = velmora::testing::FrameLine("0x00 0x81 0x73");

// A command line, its exit status and, unless null, its standard error.
struct Case {
  std::string args;
  int status;
  std::optional<std::string> err;
};

using velmora::testing::Finished;

class ErrorPaths : public velmora::testing::ScratchDirectoryTest {
 protected:
  void ExpectRuns(std::span<const Case> cases) const {
    for (const Case& c : cases) {
      const Finished run = Velmora(c.args);
      EXPECT_EQ(run.status, c.status) << c.args;
      if (c.err) {
        EXPECT_EQ(run.err, c.err) << c.args;
      }
    }
  }
};

TEST_F(ErrorPaths, UsageAndOutcomes) {
  Write("frames.txt", kSabmeLine);
  Write("ua.txt", kUaLine);
  const Case cases[] = {
      // A usage error says what is wrong and where help is, not the whole help.
      {"", 64, "velmora: expected INPUT OUTPUT pairs\n" + kTryHelp},
      {"only-one", 64, "velmora: expected INPUT OUTPUT pairs\n" + kTryHelp},
      {"--bogus a b", 64, "velmora: unknown option --bogus\n" + kTryHelp},
      {"--to", 64, "velmora: --to needs an output kind\n" + kTryHelp},
      {"-- --bogus out.txt", 66, std::nullopt},  // after "--", a path
      {"'' out.txt", 64, "Please select input log file!\nvelmora: the input path is empty\n"},
      {"frames.txt ''", 64, "Please select output message file!\nvelmora: the output path is empty\n"},
      {"-q frames.txt out.txt", 0, ""},
      {"frames.txt out.txt", 0, "Translation is done!\n"},
      // Several pairs: the second sees the SABME of the first.
      {"frames.txt o1.txt ua.txt o2.txt", 0,
       "frames.txt: Translation is done!\n"
       "ua.txt: Translation is done!\n"},
      // Character devices on both sides are never one file to protect.
      {"- - </dev/null >/dev/null", 1, kNothingUseful},
      {"-q frames.txt - >/dev/null", 0, ""},
      // Every spelling of the thread count; a bad one is named.
      {"-q -j 2 frames.txt out.txt", 0, ""},
      {"-q -j2 frames.txt out.txt", 0, ""},
      {"-q --jobs 256 frames.txt out.txt", 0, ""},
      {"-q --jobs=1 frames.txt out.txt", 0, ""},
      {"-q -j 007 frames.txt out.txt", 0, ""},
      {"--jobs 1x2 frames.txt out.txt", 64,
       "velmora: --jobs: '1x2' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"--jobs x3 frames.txt out.txt", 64,
       "velmora: --jobs: 'x3' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"--jobs= frames.txt out.txt", 64,
       "velmora: --jobs: '' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"-j0 frames.txt out.txt", 64, "velmora: -j: '0' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"-j 257 frames.txt out.txt", 64,
       "velmora: -j: '257' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"-j -1 frames.txt out.txt", 64,
       "velmora: -j: '-1' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
      {"-j 99999999999 frames.txt out.txt", 64,
       "velmora: -j: '99999999999' is not a whole number from 1 to 256\nTry \'velmora --help\'.\n"},
  };
  ExpectRuns(cases);
  EXPECT_EQ(Read("out.txt"), kSabmeLine + kSabmeText);
  EXPECT_EQ(Read("o2.txt"), kUaLine + velmora::testing::kUaAfterSabmeText);
  EXPECT_NE(Velmora("--help").out.find("Usage: velmora"), std::string::npos);
  EXPECT_NE(Velmora("--help").out.find("\n  --       end of options"), std::string::npos);
  EXPECT_EQ(Velmora("--version").out, "velmora 1.0.0.1\n");
}

TEST_F(ErrorPaths, OpenFailures) {
  Write("frames.txt", kSabmeLine);
  fs::create_directories(dir_ / "folder");
  fs::create_symlink(Path("frames.txt"), Path("link.txt"));
  fs::create_hard_link(Path("frames.txt"), Path("hard.txt"));
  // Each refusal keeps the outcome sentence and says where and why.
  const auto input = [](const std::string& name, const char* why) {
    return kCannotOpenInput + ("velmora: " + name + ": " + why + "\n");
  };
  const auto output = [](const std::string& name, const char* why) {
    return kCannotOpenOutput + ("velmora: " + name + ": " + why + "\n");
  };
  const auto same = [](const std::string& out, const std::string& in) {
    return kSameFile + ("velmora: " + out + " and " + in + " are the same file\n");
  };
  const std::string viaParent = "../" + dir_.filename().string() + "//frames.txt";
  const Case cases[] = {
      {"missing.txt out.txt", 66, input("missing.txt", "No such file or directory")},
      {"folder out.txt", 66, input("folder", "Is a directory")},  // a directory opens but is no log
      {"- out.txt <folder", 66, input("standard input", "Is a directory")},
      {"frames.txt nowhere/out.txt", 73, output("nowhere/out.txt", "No such file or directory")},
      {"frames.txt folder", 73, output("folder", "Is a directory")},
      // One file under two spellings or two names, also behind a redirected standard stream.
      {"./frames.txt " + viaParent, 64, same(viaParent, "./frames.txt")},
      {"link.txt frames.txt", 64, same("frames.txt", "link.txt")},
      {"frames.txt hard.txt", 64, same("hard.txt", "frames.txt")},
      {"- frames.txt <frames.txt", 64, same("frames.txt", "standard input")},
      {"- hard.txt <link.txt", 64, same("hard.txt", "standard input")},
      {"frames.txt - >>frames.txt", 64, same("standard output", "frames.txt")},
      {"link.txt - >>hard.txt", 64, same("standard output", "link.txt")},
      {"- - <frames.txt >>frames.txt", 64, same("standard output", "standard input")},
  };
  ExpectRuns(cases);
  EXPECT_EQ(Read("frames.txt"), kSabmeLine);
  EXPECT_FALSE(fs::exists(Path("out.txt")));
  EXPECT_FALSE(fs::exists(Path("nowhere")));
}

// Root opens any file: the permission is taken away from user nobody.
TEST_F(ErrorPaths, PermissionDeniedReadsDifferently) {
  Write("locked.txt", kSabmeLine);
  fs::permissions(Path("locked.txt"), fs::perms::none);
  fs::permissions(dir_, fs::perms::others_all, fs::perm_options::add);
  const std::string asNobody = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  if (Velmora("--version", asNobody).status != 0) GTEST_SKIP() << "velmora cannot run as user nobody here";
  const Finished run = Velmora("locked.txt out.txt", asNobody);
  EXPECT_EQ(run.status, 66);
  EXPECT_EQ(run.err, kCannotOpenInput + ("velmora: locked.txt: " + std::string(std::strerror(EACCES)) + "\n"));
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
  constexpr std::uint64_t kTotal = VELMORA_LONG_LINE_BYTES;
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
  // A last piece shorter than a frame line that holds both markers is no
  // frame line, and said so.
  const bool shortMarkedTail = tailSize < 80 && tail.find("HDLC") != std::string::npos;
  EXPECT_EQ(Read("stderr"), (shortMarkedTail ? "velmora: warning: standard input: 1 line holds \"HDLC\" and \"****\" "
                                               "but is shorter than 80 characters, so it was not read as a frame line "
                                               "(first: line 1)\n"
                                             : "") +
                                kDoneText + "\n");
  ASSERT_GT(peakRssKb, 0) << "velmora's memory could not be read from /proc";
  EXPECT_LT(peakRssKb, kRssLimitKb) << "peak resident memory " << peakRssKb << " kB";
  RecordProperty("peak_rss_kb", std::to_string(peakRssKb));
}

}  // namespace
