// The velmora command: outcomes on standard error and sysexits statuses.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "scratch_directory.h"

namespace {

namespace fs = std::filesystem;

struct CommandResult {
  int status = -1;
  std::string out;
  std::string err;
};

class Cli : public velmora::testing::ScratchDirectoryTest {
 protected:
  // Runs velmora through the shell; `args` is shell text.
  CommandResult Velmora(const std::string& args, const std::string& stdinText = "") const {
    Write("stdin", stdinText);
    const std::string command = std::string(VELMORA_CLI_PATH) + " " + args + " <" + Path("stdin") + " >" +
                                Path("stdout") + " 2>" + Path("stderr");
    CommandResult run;
    const int raw = std::system(command.c_str());
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = Read("stdout");
    run.err = Read("stderr");
    return run;
  }
};

std::string FrameLine(const char* control) {
  std::string line = "00001 10:00:00.000 **** D-CH RX HDLC:3  | 0x00 0x81 0x";
  line += control;
  return line + std::string(90 - line.size(), ' ') + "\n";
}
const std::string kSabme = "SABME(set asynchronous balanced mode extended), Request to establish link\n";
const std::string kUaEstablished = "UA(unnumbered acknowledgement), Acknowledge to SABME, link established\n";

TEST_F(Cli, HelpVersionAndUsageErrors) {
  CommandResult run = Velmora("--help");
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("Usage: velmora"), std::string::npos);
  run = Velmora("--version");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "velmora 1.0.0.1\n");
  EXPECT_EQ(Velmora("").status, 64);
  EXPECT_EQ(Velmora("only-one").status, 64);
  EXPECT_EQ(Velmora("--bogus a b").status, 64);
  run = Velmora("'' out");
  EXPECT_EQ(run.status, 64);
  EXPECT_EQ(run.err, "Please select input log file!\n");
}

TEST_F(Cli, TranslationOutcomesAndTheirStatuses) {
  Write("frames.txt", FrameLine("7f"));
  Write("plain.txt", "no frame here\n");
  CommandResult run = Velmora(Path("frames.txt") + " " + Path("out.txt"));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "Translation is done!\n");
  EXPECT_EQ(Read("out.txt"), FrameLine("7f") + "ISDN Layer 2: " + kSabme);

  EXPECT_EQ(Velmora("-q " + Path("frames.txt") + " " + Path("out.txt")).err, "");
  run = Velmora(Path("plain.txt") + " " + Path("out.txt"));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "The input log file contains no useful information!\n");
  run = Velmora(Path("frames.txt") + " " + Path("frames.txt"));
  EXPECT_EQ(run.status, 64);
  EXPECT_EQ(run.err, "The output message file is as same as the input log file.\nPlease select them again!\n");
}

TEST_F(Cli, OpenFailures) {
  Write("frames.txt", FrameLine("01"));
  CommandResult run = Velmora(Path("missing.txt") + " " + Path("out.txt"));
  EXPECT_EQ(run.status, 66);
  EXPECT_EQ(run.err, "Cannot open Input log file!\n");
  EXPECT_EQ(Velmora(dir_.string() + " " + Path("out.txt")).status, 66);
  run = Velmora(Path("frames.txt") + " " + Path("nowhere/out.txt"));
  EXPECT_EQ(run.status, 73);
  EXPECT_EQ(run.err, "Cannot open output message file!\n");
}

TEST_F(Cli, SameFileUnderAnotherSpellingIsRefusedAndKept) {
  Write("frames.txt", FrameLine("01"));
  const CommandResult run = Velmora(Path("frames.txt") + " " + (dir_ / "." / "frames.txt").string());
  EXPECT_EQ(run.status, 64);
  EXPECT_EQ(Read("frames.txt"), FrameLine("01"));
}

TEST_F(Cli, FullDeviceIsAnIoErrorNeverSuccess) {
  Write("frames.txt", FrameLine("01"));
  const CommandResult run = Velmora(Path("frames.txt") + " /dev/full");
  EXPECT_EQ(run.status, 74);
  EXPECT_EQ(run.err.find("Translation is done!"), std::string::npos);
  EXPECT_NE(run.err.find("/dev/full"), std::string::npos);
}

TEST_F(Cli, StandardStreamsThatFail) {
  // A directory as standard input cannot be read as a file at all.
  const int fromDirectory = std::system((std::string(VELMORA_CLI_PATH) + " - " + Path("out.txt") + " <" +
                                          dir_.string() + " 2>" + Path("stderr")).c_str());
  EXPECT_TRUE(WIFEXITED(fromDirectory));
  EXPECT_EQ(WEXITSTATUS(fromDirectory), 66);
  EXPECT_EQ(Read("stderr"), "Cannot open Input log file!\n");

  // A reader that goes away is a write failure, reported, not a silent death.
  std::string big;
  while (big.size() < 4 * 1024 * 1024) big += FrameLine("01");
  Write("big.txt", big);
  const std::string command = std::string("set -o pipefail; ") + VELMORA_CLI_PATH + " " + Path("big.txt") +
                              " - 2>" + Path("stderr") + " | head -c 10 >/dev/null";
  const int raw = std::system(("bash -c '" + command + "'").c_str());
  EXPECT_TRUE(WIFEXITED(raw));
  EXPECT_EQ(WEXITSTATUS(raw), 74);
  EXPECT_NE(Read("stderr").find("Broken pipe"), std::string::npos);
}

TEST_F(Cli, DashesMakeAFilter) {
  const CommandResult run = Velmora("-q - -", FrameLine("7f"));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, FrameLine("7f") + "ISDN Layer 2: " + kSabme);
}

// In a pipeline the decoded text of a line comes out while the writer of
// the input still holds the pipe open: nothing waits for the end of input.
TEST_F(Cli, FilterAnswersEachLineBeforeTheInputEnds) {
  int toVelmora[2];
  int fromVelmora[2];
  ASSERT_EQ(::pipe(toVelmora), 0);
  ASSERT_EQ(::pipe(fromVelmora), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::dup2(toVelmora[0], STDIN_FILENO);
    ::dup2(fromVelmora[1], STDOUT_FILENO);
    ::close(toVelmora[1]);
    ::close(fromVelmora[0]);
    ::execl(VELMORA_CLI_PATH, "velmora", "-q", "-", "-", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(toVelmora[0]);
  ::close(fromVelmora[1]);
  const std::string line = FrameLine("7f");
  ASSERT_EQ(::write(toVelmora[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));

  const std::string wanted = line + "ISDN Layer 2: " + kSabme;
  std::string received;
  pollfd readable{fromVelmora[0], POLLIN, 0};
  while (received.size() < wanted.size() && ::poll(&readable, 1, 5000) == 1) {
    char buffer[4096];
    const ssize_t got = ::read(fromVelmora[0], buffer, sizeof buffer);
    if (got <= 0) break;
    received.append(buffer, static_cast<std::size_t>(got));
  }
  EXPECT_EQ(received, wanted);
  ::close(toVelmora[1]);
  ::close(fromVelmora[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(Cli, SeveralPairsShareTheLinkMemory) {
  Write("sabme.txt", FrameLine("7f"));
  Write("ua.txt", FrameLine("73"));
  const CommandResult run = Velmora(Path("sabme.txt") + " " + Path("o1.txt") + " " + Path("ua.txt") + " " + Path("o2.txt"));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(Read("o2.txt"), FrameLine("73") + "ISDN Layer 2: " + kUaEstablished);
  EXPECT_EQ(run.err, Path("sabme.txt") + ": Translation is done!\n" + Path("ua.txt") + ": Translation is done!\n");
}

}  // namespace
