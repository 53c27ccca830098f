// The velmora command against files that cannot be opened, read or written,
// full devices, one file under two names, odd input and a gigabyte line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "scratch_directory.h"

namespace {

namespace fs = std::filesystem;

const std::string kCannotOpenInput = "Cannot open Input log file!\n";
const std::string kCannotOpenOutput = "Cannot open output message file!\n";
const std::string kSameFile = "The output message file is as same as the input log file.\nPlease select them again!\n";
const std::string kUaEstablished =
    "ISDN Layer 2: UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n";
const std::string kNothingUseful = "The input log file contains no useful information!\n";
const std::string kDoneText = "Translation is done!";
const std::string kSabme = "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n";

// A frame line with octets 0x00 0x81 and `control`, padded to 90 characters with its line end.
std::string FrameLine(const char* control = "7f") {
  const std::string line = "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:3  | 0x00 0x81 0x" + std::string(control);
  return line + std::string(89 - line.size(), ' ') + "\n";
}

struct Finished { int status = -1; std::string out, err; };  // status -1: ended by a signal

class ErrorPaths : public velmora::testing::ScratchDirectoryTest {
 protected:
  // Runs velmora in the test's directory behind `wrapper` (such as setpriv);
  // `args` is shell text whose own redirections win over the default ones.
  Finished Velmora(const std::string& args, const std::string& wrapper = "") const {
    const std::string command = "cd " + dir_.string() + " && " + wrapper + " " + VELMORA_CLI_PATH +
                                " </dev/null >stdout 2>stderr " + args;
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Read("stdout"), Read("stderr")};
  }
};

TEST_F(ErrorPaths, UsageAndOutcomes) {
  Write("frames.txt", FrameLine());
  Write("ua.txt", FrameLine("73"));
  struct Case { std::string args; int status; const char* err; };  // err nullptr: not checked
  const Case cases[] = {
      {"--help", 0, nullptr},
      {"--version", 0, nullptr},
      {"", 64, nullptr},
      {"only-one", 64, nullptr},
      {"--bogus a b", 64, nullptr},
      {"'' out.txt", 64, "Please select input log file!\n"},
      {"-q frames.txt out.txt", 0, ""},
      {"frames.txt out.txt", 0, "Translation is done!\n"},
      // Several pairs: the second sees the SABME of the first.
      {"frames.txt o1.txt ua.txt o2.txt", 0, "frames.txt: Translation is done!\n"
                                             "ua.txt: Translation is done!\n"},
      // Character devices on both sides are never one file to protect.
      {"- - </dev/null >/dev/null", 1, kNothingUseful.c_str()},
      {"-q frames.txt - >/dev/null", 0, ""},
      // Every spelling of the thread count; a bad one is named.
      {"-q -j 2 frames.txt out.txt", 0, ""},
      {"-q -j2 frames.txt out.txt", 0, ""},
      {"-q --jobs 256 frames.txt out.txt", 0, ""},
      {"-q --jobs=1 frames.txt out.txt", 0, ""},
      {"--jobs 1x2 frames.txt out.txt", 64, "velmora: --jobs: '1x2' is not a whole number from 1 to 256\n"},
      {"--jobs x3 frames.txt out.txt", 64, "velmora: --jobs: 'x3' is not a whole number from 1 to 256\n"},
      {"--jobs= frames.txt out.txt", 64, "velmora: --jobs: '' is not a whole number from 1 to 256\n"},
      {"-j0 frames.txt out.txt", 64, "velmora: -j: '0' is not a whole number from 1 to 256\n"},
      {"-j 257 frames.txt out.txt", 64, "velmora: -j: '257' is not a whole number from 1 to 256\n"},
      {"-j -1 frames.txt out.txt", 64, "velmora: -j: '-1' is not a whole number from 1 to 256\n"},
      {"-q -j 007 frames.txt out.txt", 0, ""},
      {"-j 99999999999 frames.txt out.txt", 64,
       "velmora: -j: '99999999999' is not a whole number from 1 to 256\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const Finished run = Velmora(c.args);
    EXPECT_EQ(run.status, c.status);
    if (c.err) { EXPECT_EQ(run.err, c.err); }
  }
  EXPECT_EQ(Read("out.txt"), FrameLine() + kSabme);
  EXPECT_EQ(Read("o2.txt"), FrameLine("73") + kUaEstablished);
  EXPECT_NE(Velmora("--help").out.find("Usage: velmora"), std::string::npos);
  EXPECT_EQ(Velmora("--version").out, "velmora 1.0.0.1\n");
}

TEST_F(ErrorPaths, OpenFailures) {
  Write("frames.txt", FrameLine());
  fs::create_directories(dir_ / "folder");
  fs::create_symlink(Path("frames.txt"), Path("link.txt"));
  fs::create_hard_link(Path("frames.txt"), Path("hard.txt"));
  // A Unix socket: a file that open() refuses even to root (ENXIO).
  const int socketFd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(Path("socket").size(), sizeof address.sun_path);
  std::strncpy(address.sun_path, Path("socket").c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socketFd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << std::strerror(errno);
  // Each refusal keeps the outcome sentence and says where and why.
  const auto input = [](const std::string& name, const char* why) {
    return kCannotOpenInput + "velmora: " + name + ": " + why + "\n";
  };
  const auto output = [](const std::string& name, const char* why) {
    return kCannotOpenOutput + "velmora: " + name + ": " + why + "\n";
  };
  const auto same = [](const std::string& out, const std::string& in) {
    return kSameFile + "velmora: " + out + " is " + in + " under another name\n";
  };
  const std::string longName(300, 'n');
  const std::string viaParent = "../" + dir_.filename().string() + "/frames.txt";
  struct Case { std::string args; int status; std::string err; };
  const Case cases[] = {
      {"missing.txt out.txt", 66, input("missing.txt", "No such file or directory")},
      {"folder out.txt", 66, input("folder", "Is a directory")},
      {"frames.txt/inner out.txt", 66, input("frames.txt/inner", "Not a directory")},
      {longName + " out.txt", 66, input(longName, "File name too long")},
      {"socket out.txt", 66, input("socket", "No such device or address")},
      {"- out.txt <folder", 66, input("standard input", "Is a directory")},
      {"frames.txt nowhere/out.txt", 73, output("nowhere/out.txt", "No such file or directory")},
      {"frames.txt folder", 73, output("folder", "Is a directory")},
      {"frames.txt frames.txt/out.txt", 73, output("frames.txt/out.txt", "Not a directory")},
      {"frames.txt socket", 73, output("socket", "No such device or address")},
      // One file under two spellings, or behind a redirected standard stream.
      {Path("frames.txt") + " " + dir_.string() + "//frames.txt", 64,
       same(dir_.string() + "//frames.txt", Path("frames.txt"))},
      {Path("frames.txt") + " " + dir_.string() + "/./frames.txt", 64,
       same(dir_.string() + "/./frames.txt", Path("frames.txt"))},
      {"frames.txt link.txt", 64, same("link.txt", "frames.txt")},
      {"link.txt frames.txt", 64, same("frames.txt", "link.txt")},
      {"frames.txt hard.txt", 64, same("hard.txt", "frames.txt")},
      {"frames.txt " + Path("frames.txt"), 64, same(Path("frames.txt"), "frames.txt")},
      {"./frames.txt " + viaParent, 64, same(viaParent, "./frames.txt")},
      {"- frames.txt <frames.txt", 64, same("frames.txt", "standard input")},
      {"- hard.txt <link.txt", 64, same("hard.txt", "standard input")},
      {"frames.txt - >>frames.txt", 64, same("standard output", "frames.txt")},
      {"link.txt - >>hard.txt", 64, same("standard output", "link.txt")},
      {"- - <frames.txt >>frames.txt", 64, same("standard output", "standard input")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args.substr(0, 120));
    const Finished run = Velmora(c.args);
    EXPECT_EQ(run.status, c.status);
    EXPECT_EQ(run.err, c.err);
    EXPECT_EQ(Read("frames.txt"), FrameLine());
    EXPECT_FALSE(fs::exists(Path("out.txt")));
    EXPECT_FALSE(fs::exists(Path("nowhere")));
  }
  ::close(socketFd);
}

TEST_F(ErrorPaths, FilesWithoutPermission) {
  Write("frames.txt", FrameLine());
  Write("locked.txt", FrameLine());
  fs::permissions(Path("locked.txt"), fs::perms::none);
  Write("readonly.txt", "earlier results\n");
  fs::permissions(Path("readonly.txt"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::create_directories(dir_ / "public");
  fs::permissions(dir_ / "public", fs::perms::all);
  fs::permissions(dir_, fs::perms::others_read | fs::perms::others_exec, fs::perm_options::add);
  // Root reads and writes any file: take the permission away from user nobody instead.
  const std::string wrapper = ::geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups" : "";
  const Finished probe = Velmora("--version", wrapper);
  if (probe.status != 0) GTEST_SKIP() << "velmora cannot be run as user nobody here: " << probe.err;

  const std::string denied = ": " + std::string(std::strerror(EACCES)) + "\n";
  for (const auto& [args, status, err] :
       {std::tuple{"locked.txt public/out.txt", 66, kCannotOpenInput + "velmora: locked.txt" + denied},
        std::tuple{"frames.txt readonly.txt", 73, kCannotOpenOutput + "velmora: readonly.txt" + denied}}) {
    SCOPED_TRACE(args);
    const Finished run = Velmora(args, wrapper);
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.err, err);
    EXPECT_FALSE(fs::exists(Path("public/out.txt")));
    EXPECT_EQ(Read("readonly.txt"), "earlier results\n");
  }
}

TEST_F(ErrorPaths, ReadAndWriteFailuresNeverClaimSuccess) {
  // Opening a process's own memory works; reading its first page fails (EIO).
  // Quiet mode hides success only.
  Write("frames.txt", FrameLine());
  for (const std::string quiet : {"", "-q "}) {
    const Finished run = Velmora(quiet + "/proc/self/mem out.txt");
    EXPECT_EQ(run.status, 74);
    EXPECT_NE(run.err.find("reading /proc/self/mem failed part-way: " + std::string(std::strerror(EIO))),
              std::string::npos) << run.err;
    EXPECT_EQ(run.err.find(kDoneText), std::string::npos);
    EXPECT_EQ(run.err.find(kNothingUseful), std::string::npos) << "a read failure is not an empty log";
  }

  const Finished run = Velmora("frames.txt /proc/version");
  if (::geteuid() == 0 && run.status == 74) {
    // Root may open it for writing; then the write itself fails.
    EXPECT_NE(run.err.find("writing /proc/version failed: "), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("the output is incomplete"), std::string::npos) << run.err;
  } else {
    EXPECT_EQ(run.status, 73);
    EXPECT_EQ(run.err.rfind(kCannotOpenOutput, 0), 0U) << run.err;
  }
  EXPECT_EQ(run.err.find(kDoneText), std::string::npos);
}

TEST_F(ErrorPaths, FullDeviceIsAnIoErrorWhateverTheSizeOrStream) {
  const std::string incomplete = " failed: " + std::string(std::strerror(ENOSPC)) + "; the output is incomplete\n";
  // One line, and enough lines to fill the writer's buffer many times over,
  // translated by one thread and by several, to a file and to standard output.
  std::string many;
  while (many.size() < 6 * 1024 * 1024) many += FrameLine();
  Write("one.txt", FrameLine());
  Write("many.txt", many);
  struct Case { std::string args; std::string err; };
  const Case cases[] = {
      {"-q --jobs 1 one.txt /dev/full", "velmora: writing /dev/full" + incomplete},
      {"-q --jobs 1 many.txt /dev/full", "velmora: writing /dev/full" + incomplete},
      {"-q --jobs 2 one.txt /dev/full", "velmora: writing /dev/full" + incomplete},
      {"-q --jobs 2 many.txt /dev/full", "velmora: writing /dev/full" + incomplete},
      {"many.txt - >/dev/full", "velmora: writing standard output" + incomplete},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const Finished run = Velmora(c.args);
    EXPECT_EQ(run.status, 74);
    EXPECT_EQ(run.err, c.err);
  }

  // A failed pair keeps its status; the pairs after it still run.
  const Finished run = Velmora("one.txt /dev/full one.txt out.txt");
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(Read("out.txt"), FrameLine() + kSabme);
  EXPECT_NE(run.err.find("one.txt: " + kDoneText), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find(kDoneText), run.err.rfind(kDoneText)) << "only the second pair is done";
}

TEST_F(ErrorPaths, EmptyCutOffAndOddInputByFileAndThroughStandardInput) {
  // A SETUP cut off inside its tenth cell: that cell has one digit and does
  // not count; the nine before it hold the message up to Sending complete.
  const std::string cut =
      "# capture\n"
      "00007 2026-03-14 10:00:07.000 **** D-CH RX HDLC:12  | 0x02 0x81 0x00 0x00 0x08 0x01 0x05 0x05 0xa1 0x0";
  const std::string setup =
      "ISDN Layer 2: Information transfer\n"
      "ISDN Layer 3: Q.931 protocol message\n"
      "Message type:SETUP\n"
      "\tInformation element:Sending complete\n";
  // Bytes of every value, NULs and CRs included, and a stretch of 5000
  // without a line end: copied byte for byte, no frame found.
  std::string binary;
  for (int value = 0; value < 4 * 256; ++value) binary += static_cast<char>(value % 256);
  binary += std::string(5000, '\x80') + std::string(3, '\0');
  // A length field of 20 digits reads the three cells the line holds.
  const std::string absurd =
      "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:99999999999999999999  | 0x00 0x81 0x7f\n";
  struct Case { std::string name; std::string input; int status; std::string output; };
  const Case cases[] = {
      {"cut", cut, 0, cut + setup},
      {"plain", "first\nsecond % line\nthird without end", 1, "first\nsecond % line\nthird without end"},
      {"empty", "", 1, ""},
      {"binary", binary, 1, binary},
      {"absurd", absurd, 0, absurd + kSabme},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Write("in.txt", c.input);
    const std::string err = c.status == 0 ? kDoneText + "\n" : kNothingUseful;
    for (const std::string args : {"in.txt out.txt", "- - <in.txt"}) {
      const Finished run = Velmora(args);
      EXPECT_EQ(run.status, c.status) << args;
      EXPECT_EQ(run.err, err) << args;
      EXPECT_EQ(args[0] == '-' ? run.out : Read("out.txt"), c.output) << args;
    }
    EXPECT_TRUE(fs::exists(Path("out.txt")));
  }
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
  const std::string tail = unit.substr(0, tailSize) + (tailSize >= 80 ? kSabme : "");
  const std::string period = unit + kSabme;  // `yes` adds its line end
  const std::uint64_t periods = kTotal / kPiece * period.size();
  FILE* source = ::popen(("yes '" + unit + "' | tr -d '\\n' | head -c " + std::to_string(kTotal)).c_str(), "r");
  FILE* check = ::popen(("bash -c \"cmp - <({ yes '" + period.substr(0, period.size() - 1) + "' | head -c " +
                         std::to_string(periods) + "; printf %s '" + tail + "'; })\"").c_str(), "w");
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
