// The velmora command against files that cannot be opened, read or written,
// devices that fill up, one file under two names, empty and cut-off input,
// and a line of gigabytes arriving through a pipe. Each case checks the exit
// status, the message on standard error and what became of the files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kDone = 0;
constexpr int kNoFrame = 1;
constexpr int kUsage = 64;
constexpr int kNoInput = 66;
constexpr int kCannotCreate = 73;
constexpr int kIoError = 74;

const std::string kCannotOpenInput = "Cannot open Input log file!\n";
const std::string kCannotOpenOutput = "Cannot open output message file!\n";
const std::string kSameFile = "The output message file is as same as the input log file.\nPlease select them again!\n";
const std::string kNothingUseful = "The input log file contains no useful information!\n";
const std::string kDoneText = "Translation is done!";
const std::string kSabme = "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n";

// A SABME frame line, padded to 90 characters with its line end.
std::string SabmeLine() {
  std::string line = "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f";
  return line + std::string(89 - line.size(), ' ') + "\n";
}

struct Finished {
  int exitCode = -1;  // -1 when a signal ended the process
  int signal = 0;
  std::string out;
  std::string err;
};

// VmHWM of a running process, in kB; -1 when it cannot be read.
long HighWaterRssKb(pid_t pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6));
  return -1;
}

struct Launch {
  std::vector<std::string> args;
  std::string stdinPath = "/dev/null";
  std::string stdoutPath;  // empty: a file in the test directory
  std::string workingDirectory;
  bool asNobody = false;  // through setpriv, for permission cases when root
};

bool IsRoot() { return ::geteuid() == 0; }

class ErrorPaths : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { ::signal(SIGPIPE, SIG_IGN); }

  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("velmora_errors_" + std::to_string(::getpid()) + "_" +
                                         ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    // Others may pass through it (the cases run as nobody).
    fs::permissions(dir_, fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec |
                              fs::perms::group_read | fs::perms::others_read);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
  std::string Read(const std::string& name) const { return ReadFile(Path(name)); }

  static std::vector<char*> Argv(std::vector<std::string>& words) {
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    return argv;
  }

  std::vector<std::string> CommandWords(const Launch& launch) const {
    std::vector<std::string> words;
    if (launch.asNobody) words = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    words.emplace_back(VELMORA_CLI_PATH);
    words.insert(words.end(), launch.args.begin(), launch.args.end());
    return words;
  }

  // Runs velmora with the given standard streams and waits for it.
  Finished Velmora(const Launch& launch) const {
    std::vector<std::string> words = CommandWords(launch);
    std::vector<char*> argv = Argv(words);
    const std::string outPath = launch.stdoutPath.empty() ? Path("stdout") : launch.stdoutPath;
    const std::string errPath = Path("stderr");
    const pid_t pid = ::fork();
    if (pid == 0) {
      if (!launch.workingDirectory.empty() && ::chdir(launch.workingDirectory.c_str()) != 0) ::_exit(126);
      const int in = ::open(launch.stdinPath.c_str(), O_RDONLY);
      const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      if (in < 0 || out < 0 || err < 0) ::_exit(126);
      ::dup2(in, STDIN_FILENO);
      ::dup2(out, STDOUT_FILENO);
      ::dup2(err, STDERR_FILENO);
      ::signal(SIGPIPE, SIG_DFL);
      ::execvp(argv[0], argv.data());
      ::_exit(127);
    }
    Finished run = Wait(pid);
    if (launch.stdoutPath.empty()) run.out = ReadFile(outPath);
    run.err = ReadFile(errPath);
    return run;
  }
  Finished Velmora(std::vector<std::string> args) const {
    Launch launch;
    launch.args = std::move(args);
    return Velmora(launch);
  }

  static Finished Wait(pid_t pid) {
    Finished run;
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
    return run;
  }

  // Whether this machine can run velmora as user nobody (setpriv present,
  // the binary reachable for others); the reason when it cannot.
  std::string CannotRunAsNobody() const {
    Launch probe;
    probe.asNobody = true;
    probe.args = {"--version"};
    const Finished run = Velmora(probe);
    if (run.exitCode == 0) return "";
    return "velmora cannot be run as user nobody here (setpriv missing or the build not readable by others): " +
           run.err;
  }

  // Binds a Unix socket at `name`: a file that open() refuses even to root.
  int BindSocket(const std::string& name) const {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = Path(name);
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (fd < 0 || path.size() >= sizeof address.sun_path ||
        ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
      return -1;
    return fd;
  }

  fs::path dir_;
};

// --- Input ---------------------------------------------------------------

TEST_F(ErrorPaths, InputThatCannotBeOpenedCreatesNoOutput) {
  Write("frames.txt", SabmeLine());
  fs::create_directories(dir_ / "folder");
  const int socketFd = BindSocket("socket");
  ASSERT_GE(socketFd, 0) << std::strerror(errno);
  const std::vector<std::string> inputs = {
      Path("missing.txt"),              // ENOENT
      Path("folder"),                   // a directory opens but is no log
      Path("frames.txt") + "/inner",    // ENOTDIR, for root too
      Path(std::string(300, 'n')),      // ENAMETOOLONG
      Path("socket"),                   // ENXIO: sockets cannot be opened
  };
  for (const std::string& input : inputs) {
    SCOPED_TRACE(input.substr(0, 120));
    const Finished run = Velmora({input, Path("out.txt")});
    EXPECT_EQ(run.exitCode, kNoInput);
    EXPECT_EQ(run.err, kCannotOpenInput);
    EXPECT_FALSE(fs::exists(Path("out.txt")));
  }
  ::close(socketFd);
}

TEST_F(ErrorPaths, InputWithoutReadPermission) {
  Write("locked.txt", SabmeLine());
  fs::permissions(Path("locked.txt"), fs::perms::none);
  fs::create_directories(dir_ / "public");
  fs::permissions(dir_ / "public", fs::perms::all);
  Launch launch;
  launch.args = {Path("locked.txt"), Path("public/out.txt")};
  // Root reads any file: take the permission away from user nobody instead.
  if (IsRoot()) {
    const std::string reason = CannotRunAsNobody();
    if (!reason.empty()) GTEST_SKIP() << reason;
    launch.asNobody = true;
  }
  const Finished run = Velmora(launch);
  EXPECT_EQ(run.exitCode, kNoInput);
  EXPECT_EQ(run.err, kCannotOpenInput);
  EXPECT_FALSE(fs::exists(Path("public/out.txt")));
}

TEST_F(ErrorPaths, InputThatFailsWhileBeingReadIsAnIoError) {
  // Opening a process's own memory works; reading its first page fails (EIO).
  Write("out.txt", "old contents\n");
  Finished run = Velmora({"/proc/self/mem", Path("out.txt")});
  EXPECT_EQ(run.exitCode, kIoError);
  EXPECT_NE(run.err.find("reading /proc/self/mem failed part-way: " + std::string(std::strerror(EIO))),
            std::string::npos)
      << run.err;
  EXPECT_EQ(run.err.find(kDoneText), std::string::npos);
  EXPECT_EQ(run.err.find(kNothingUseful), std::string::npos) << "a read failure is not an empty log";

  // Quiet mode hides success only.
  run = Velmora({"-q", "/proc/self/mem", Path("out.txt")});
  EXPECT_EQ(run.exitCode, kIoError);
  EXPECT_NE(run.err.find("failed part-way"), std::string::npos);
}

// --- Output --------------------------------------------------------------

TEST_F(ErrorPaths, OutputThatCannotBeCreatedLeavesTheInputAlone) {
  Write("frames.txt", SabmeLine());
  fs::create_directories(dir_ / "folder");
  const int socketFd = BindSocket("socket");
  ASSERT_GE(socketFd, 0) << std::strerror(errno);
  const std::vector<std::string> outputs = {
      Path("nowhere/out.txt"),         // missing directory
      Path("folder"),                  // a directory
      Path("frames.txt") + "/out.txt",  // through a regular file
      Path("socket"),                  // a socket
  };
  for (const std::string& output : outputs) {
    SCOPED_TRACE(output);
    const Finished run = Velmora({Path("frames.txt"), output});
    EXPECT_EQ(run.exitCode, kCannotCreate);
    EXPECT_EQ(run.err, kCannotOpenOutput);
    EXPECT_EQ(Read("frames.txt"), SabmeLine());
  }
  EXPECT_FALSE(fs::exists(Path("nowhere")));
  ::close(socketFd);
}

TEST_F(ErrorPaths, ReadOnlyOutputFileIsNeitherEmptiedNorClaimed) {
  Write("frames.txt", SabmeLine());
  Write("out.txt", "earlier results\n");
  fs::permissions(Path("out.txt"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  Launch launch;
  launch.args = {Path("frames.txt"), Path("out.txt")};
  // Root writes any file: take the permission away from user nobody instead.
  if (IsRoot()) {
    const std::string reason = CannotRunAsNobody();
    if (!reason.empty()) GTEST_SKIP() << reason;
    launch.asNobody = true;
  }
  const Finished run = Velmora(launch);
  EXPECT_EQ(run.exitCode, kCannotCreate);
  EXPECT_EQ(run.err, kCannotOpenOutput);
  EXPECT_EQ(Read("out.txt"), "earlier results\n");
}

TEST_F(ErrorPaths, ReadOnlyLocationNeverClaimsSuccess) {
  Write("frames.txt", SabmeLine());
  const Finished run = Velmora({Path("frames.txt"), "/proc/version"});
  if (IsRoot() && run.exitCode == kIoError) {
    // Root may open it for writing; then the write itself fails.
    EXPECT_NE(run.err.find("writing /proc/version failed: "), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("the output is incomplete"), std::string::npos) << run.err;
  } else {
    EXPECT_EQ(run.exitCode, kCannotCreate);
    EXPECT_EQ(run.err, kCannotOpenOutput);
  }
  EXPECT_EQ(run.err.find(kDoneText), std::string::npos);
}

TEST_F(ErrorPaths, FullDeviceIsAnIoErrorWhateverTheSizeOrStream) {
  const std::string noSpace = std::strerror(ENOSPC);
  // One line, and enough lines to fill the writer's buffer many times over,
  // translated by one thread and by several.
  std::string many;
  while (many.size() < 6 * 1024 * 1024) many += SabmeLine();
  Write("one.txt", SabmeLine());
  Write("many.txt", many);
  for (const std::string jobs : {"1", "2"}) {
    for (const char* name : {"one.txt", "many.txt"}) {
      SCOPED_TRACE(std::string(name) + " with --jobs " + jobs);
      const Finished run = Velmora({"-q", "--jobs", jobs, Path(name), "/dev/full"});
      EXPECT_EQ(run.exitCode, kIoError);
      EXPECT_EQ(run.err, "velmora: writing /dev/full failed: " + noSpace + "; the output is incomplete\n");
    }
  }

  // Standard output on the full device.
  Launch launch;
  launch.args = {Path("many.txt"), "-"};
  launch.stdoutPath = "/dev/full";
  Finished run = Velmora(launch);
  EXPECT_EQ(run.exitCode, kIoError);
  EXPECT_EQ(run.err, "velmora: writing standard output failed: " + noSpace + "; the output is incomplete\n");

  // A failed pair keeps its status; the pairs after it still run.
  run = Velmora({Path("one.txt"), "/dev/full", Path("one.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kIoError);
  EXPECT_EQ(Read("out.txt"), SabmeLine() + kSabme);
  EXPECT_NE(run.err.find(Path("one.txt") + ": " + kDoneText), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find(kDoneText), run.err.rfind(kDoneText)) << "only the second pair is done";
}

// --- Paths ---------------------------------------------------------------

TEST_F(ErrorPaths, OneFileUnderTwoSpellingsIsRefusedAndKept) {
  Write("frames.txt", SabmeLine());
  fs::create_symlink(Path("frames.txt"), Path("link.txt"));
  fs::create_hard_link(Path("frames.txt"), Path("hard.txt"));
  struct Spelling {
    std::string input;
    std::string output;
    std::string workingDirectory;
  };
  const std::vector<Spelling> spellings = {
      {Path("frames.txt"), dir_.string() + "//frames.txt", ""},
      {Path("frames.txt"), Path("link.txt"), ""},
      {Path("link.txt"), Path("frames.txt"), ""},
      {Path("frames.txt"), Path("hard.txt"), ""},
      {"frames.txt", Path("frames.txt"), dir_.string()},
      {"./frames.txt", "../" + dir_.filename().string() + "/frames.txt", dir_.string()},
  };
  for (const Spelling& spelling : spellings) {
    SCOPED_TRACE(spelling.input + " / " + spelling.output);
    Launch launch;
    launch.args = {spelling.input, spelling.output};
    launch.workingDirectory = spelling.workingDirectory;
    const Finished run = Velmora(launch);
    EXPECT_EQ(run.exitCode, kUsage);
    EXPECT_EQ(run.err, kSameFile);
    EXPECT_EQ(Read("frames.txt"), SabmeLine());
  }
}

// --- Content -------------------------------------------------------------

TEST_F(ErrorPaths, EmptyInputGivesAnEmptyOutput) {
  Write("empty.txt", "");
  Write("out.txt", "to be emptied\n");
  Finished run = Velmora({Path("empty.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kNoFrame);
  EXPECT_EQ(run.err, kNothingUseful);
  EXPECT_TRUE(fs::exists(Path("out.txt")));
  EXPECT_EQ(Read("out.txt"), "");

  run = Velmora({"-", "-"});  // standard input is /dev/null
  EXPECT_EQ(run.exitCode, kNoFrame);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, kNothingUseful);
}

TEST_F(ErrorPaths, InputThatStopsMidLine) {
  // A SETUP cut off inside its tenth cell: that cell has one digit and does
  // not count; the nine before it hold the message up to Sending complete.
  const std::string cut =
      "00007 2026-03-14 10:00:07.000 **** D-CH RX HDLC:12  | 0x02 0x81 0x00 0x00 0x08 0x01 0x05 0x05 0xa1 0x0";
  const std::string decoded =
      "ISDN Layer 2: Information transfer\n"
      "ISDN Layer 3: Q.931 protocol message\n"
      "Message type:SETUP\n"
      "\tInformation element:Sending complete\n";
  Write("cut.txt", "# capture\n" + cut);
  Finished run = Velmora({Path("cut.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kDone);
  EXPECT_EQ(Read("out.txt"), "# capture\n" + cut + decoded);

  // The same through standard input.
  Launch launch;
  launch.args = {"-q", "-", "-"};
  launch.stdinPath = Path("cut.txt");
  run = Velmora(launch);
  EXPECT_EQ(run.exitCode, kDone);
  EXPECT_EQ(run.out, "# capture\n" + cut + decoded);

  // A plain line cut off is copied as it is, without a line end added.
  Write("plain.txt", "09:15:02.118 L1: activation req");
  run = Velmora({Path("plain.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kNoFrame);
  EXPECT_EQ(Read("out.txt"), "09:15:02.118 L1: activation req");
}

TEST_F(ErrorPaths, BinaryInputAndAbsurdLengthFields) {
  // Bytes of every value, NULs and CRs included, and a stretch of 5000
  // without a line end: copied byte for byte, no frame found.
  std::string binary;
  for (int round = 0; round < 4; ++round)
    for (int value = 0; value < 256; ++value) binary += static_cast<char>(value);
  binary += std::string(5000, '\x80') + std::string(3, '\0');
  Write("binary.txt", binary);
  Finished run = Velmora({Path("binary.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kNoFrame);
  EXPECT_EQ(Read("out.txt"), binary);

  // A length field of 20 digits reads the three cells the line holds.
  const std::string absurd =
      "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:99999999999999999999  | 0x00 0x81 0x7f\n";
  Write("absurd.txt", absurd);
  run = Velmora({Path("absurd.txt"), Path("out.txt")});
  EXPECT_EQ(run.exitCode, kDone);
  EXPECT_EQ(Read("out.txt"), absurd + kSabme);
}

// One line of 3 GiB with no line end, written into a pipe while velmora's
// output is read from another: every piece is a SABME frame line, so the
// output is the input with the layer-2 line behind each 2047-character
// piece. Memory must stay flat while the gigabytes stream through.
TEST_F(ErrorPaths, GigabyteLineThroughAPipeInConstantMemory) {
  constexpr std::size_t kPiece = 2047;
  constexpr std::uint64_t kTotal = 3ULL << 30;
  constexpr long kRssLimitKb = 32 * 1024;

  std::string unit = "00001 2026-03-14 10:00:00.000 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f";
  unit += std::string(kPiece - unit.size(), '.');
  const std::uint64_t fullPieces = kTotal / kPiece;
  const std::size_t tailSize = static_cast<std::size_t>(kTotal % kPiece);
  const std::string period = unit + kSabme;
  const std::string tail = unit.substr(0, tailSize) + (tailSize >= 80 ? kSabme : "");
  const std::uint64_t expectedSize = fullPieces * period.size() + tail.size();

  int input[2];
  int output[2];
  ASSERT_EQ(::pipe2(input, O_CLOEXEC), 0);
  ASSERT_EQ(::pipe2(output, O_CLOEXEC), 0);
  std::vector<std::string> words = {VELMORA_CLI_PATH, "-", "-"};
  std::vector<char*> argv = Argv(words);
  const std::string errPath = Path("stderr");
  const pid_t pid = ::fork();
  if (pid == 0) {
    const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(input[0], STDIN_FILENO);
    ::dup2(output[1], STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    ::signal(SIGPIPE, SIG_DFL);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  ::close(input[0]);
  ::close(output[1]);

  std::thread writer([&] {
    std::string block;
    while (block.size() < (1U << 20)) block += unit;
    std::uint64_t left = kTotal;
    std::size_t offset = 0;  // where in `unit` the stream stands
    while (left > 0) {
      // Start each write at the stream's position within the unit.
      const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(left, block.size() - kPiece));
      const char* start = block.data() + offset;
      std::size_t done = 0;
      while (done < size) {
        const ssize_t wrote = ::write(input[1], start + done, size - done);
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) {
          left = 0;
          break;
        }
        done += static_cast<std::size_t>(wrote);
      }
      left -= std::min<std::uint64_t>(left, done);
      offset = (offset + done) % kPiece;
    }
    ::close(input[1]);
  });

  // Compare the output as it arrives with the expected stream, and look at
  // velmora's high-water mark of resident memory now and then (the one that
  // wait4 reports would include the test's own pages from before the exec).
  std::vector<char> buffer(1 << 20);
  std::uint64_t received = 0;
  std::uint64_t nextLook = 0;
  long peakRssKb = -1;
  std::uint64_t firstDifference = UINT64_MAX;
  for (;;) {
    const ssize_t got = ::read(output[0], buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    for (std::size_t at = 0; at < static_cast<std::size_t>(got) && firstDifference == UINT64_MAX;) {
      const std::uint64_t position = received + at;
      const bool inTail = position >= fullPieces * period.size();
      const std::string& expected = inTail ? tail : period;
      const std::size_t from = static_cast<std::size_t>(inTail ? position - fullPieces * period.size()
                                                                 : position % period.size());
      if (from >= expected.size()) {
        firstDifference = position;
        break;
      }
      const std::size_t span = std::min(expected.size() - from, static_cast<std::size_t>(got) - at);
      if (std::memcmp(buffer.data() + at, expected.data() + from, span) != 0) firstDifference = position;
      at += span;
    }
    received += static_cast<std::uint64_t>(got);
    if (received >= nextLook) {
      peakRssKb = std::max(peakRssKb, HighWaterRssKb(pid));
      nextLook = received + (64U << 20);
    }
  }
  ::close(output[0]);
  writer.join();
  const Finished run = Wait(pid);
  const std::string err = ReadFile(errPath);

  EXPECT_EQ(run.exitCode, kDone);
  EXPECT_EQ(err, kDoneText + "\n");
  EXPECT_EQ(received, expectedSize);
  EXPECT_EQ(firstDifference, UINT64_MAX) << "output differs from byte " << firstDifference;
  ASSERT_GT(peakRssKb, 0) << "velmora's memory could not be read from /proc";
  EXPECT_LT(peakRssKb, kRssLimitKb) << "peak resident memory " << peakRssKb << " kB";
  RecordProperty("peak_rss_kb", std::to_string(peakRssKb));
}

}  // namespace
