// velmora INPUT OUTPUT [INPUT OUTPUT ...]: the translation run on the command
// line. Exit status follows sysexits.h.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "translation.h"
#include "velmora_version.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitNoFrame = 1;
constexpr int kExitUsage = 64;       // EX_USAGE
constexpr int kExitNoInput = 66;     // EX_NOINPUT
constexpr int kExitCantCreate = 73;  // EX_CANTCREAT
constexpr int kExitIoError = 74;     // EX_IOERR

constexpr std::string_view kUsage =
    "Usage: velmora [-q] [--jobs N] INPUT OUTPUT [INPUT OUTPUT ...]\n"
    "Translate an ISDN D-channel trace log into a message file: every input line\n"
    "copied, and behind each frame line its Q.921 frame kind and Q.931 message.\n"
    "\n"
    "  INPUT    the trace log; - reads standard input\n"
    "  OUTPUT   the message file to write; - writes standard output\n"
    "  -q       say nothing when a translation is done\n"
    "  -j, --jobs N  threads for a large input file (default: the number of\n"
    "           cores); the output is the same for every N\n"
    "  --help   show this help\n"
    "  --version  show the version\n"
    "\n"
    "Several pairs run in order in one process; the LAPD link memory (SABME\n"
    "before UA) carries over from one pair to the next.\n"
    "\n"
    "Exit status: 0 done, 1 no frame line found, 64 usage error or paths not\n"
    "usable together, 66 input cannot be opened, 73 output cannot be created,\n"
    "74 reading or writing failed part-way.\n";

int ExitStatus(velmora::TranslationOutcome outcome) {
  using velmora::TranslationOutcome;
  switch (outcome) {
    case TranslationOutcome::TranslationDone:
      return kExitOk;
    case TranslationOutcome::NoFrameFound:
      return kExitNoFrame;
    case TranslationOutcome::InputOpenFailed:
      return kExitNoInput;
    case TranslationOutcome::OutputOpenFailed:
      return kExitCantCreate;
    case TranslationOutcome::InputNotSelected:
    case TranslationOutcome::OutputNotSelected:
    case TranslationOutcome::OutputSameAsInput:
      return kExitUsage;
  }
  return kExitUsage;
}

// A progress line on standard error for large inputs, when it is a terminal:
// percent, MB/s and the time left, redrawn at most a few times a second.
class ProgressBar {
 public:
  static constexpr std::uint64_t kShownFrom = 64ULL * 1024 * 1024;

  void Update(std::uint64_t bytesRead, std::uint64_t inputSize) {
    if (inputSize < kShownFrom) return;
    const auto now = std::chrono::steady_clock::now();
    if (!started_) {
      started_ = true;
      start_ = now;
    }
    if (now - lastDrawn_ < std::chrono::milliseconds(200) && bytesRead < inputSize) return;
    lastDrawn_ = now;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double megabytesPerSecond = seconds > 0 ? static_cast<double>(bytesRead) / 1e6 / seconds : 0.0;
    const double left =
        megabytesPerSecond > 0 ? static_cast<double>(inputSize - bytesRead) / 1e6 / megabytesPerSecond : 0.0;
    const int percent = static_cast<int>(100.0 * static_cast<double>(bytesRead) / static_cast<double>(inputSize));
    const int filled = percent * kWidth / 100;
    std::fprintf(stderr, "\r[%.*s%*s] %3d%%  %7.1f MB/s  %4.0f s left ", filled,
                 "########################################", kWidth - filled, "", percent, megabytesPerSecond, left);
    std::fflush(stderr);
    drawn_ = true;
  }
  // Clears the line before the outcome is printed.
  void Finish() {
    if (drawn_) std::fprintf(stderr, "\r%*s\r", kWidth + 40, "");
    drawn_ = false;
    started_ = false;
  }

 private:
  static constexpr int kWidth = 40;
  bool started_ = false;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point lastDrawn_;
};

// Runs one pair; prints its outcome (or the I/O failure) on standard error.
int TranslatePair(const std::string& input, const std::string& output, velmora::LinkMemory& link, bool quiet,
                  bool labelled, unsigned jobs) {
  velmora::TranslationReport report;
  velmora::TranslationOptions options;
  options.dashMeansStandardStream = true;
  options.refuseSameFile = true;
  options.stopOnWriteError = true;
  options.jobs = jobs;
  options.report = &report;
  ProgressBar progress;
  if (::isatty(STDERR_FILENO))
    options.progress = [&progress](std::uint64_t done, std::uint64_t size) { progress.Update(done, size); };
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceFile(input, output, link, options);
  progress.Finish();
  const std::string label = labelled ? input + ": " : std::string();
  if (report.readError != 0 || report.writeError != 0) {
    if (report.readError != 0)
      std::cerr << "velmora: reading " << (input == "-" ? "standard input" : input)
                << " failed part-way: " << std::strerror(report.readError) << '\n';
    if (report.writeError != 0)
      std::cerr << "velmora: writing " << (output == "-" ? "standard output" : output)
                << " failed: " << std::strerror(report.writeError) << "; the output is incomplete\n";
    return kExitIoError;
  }
  if (!(quiet && outcome == velmora::TranslationOutcome::TranslationDone))
    std::cerr << label << velmora::DescribeOutcome(outcome).text << '\n';
  return ExitStatus(outcome);
}

}  // namespace

int main(int argc, char** argv) {
  bool quiet = false;
  unsigned jobs = std::thread::hardware_concurrency();
  std::vector<std::string> paths;
  bool optionsEnded = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (!optionsEnded && arg == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && (arg == "--help" || arg == "-h")) {
      std::cout << kUsage;
      return kExitOk;
    } else if (!optionsEnded && arg == "--version") {
      std::cout << "velmora " << VELMORA_VERSION << '\n';
      return kExitOk;
    } else if (!optionsEnded && arg == "-q") {
      quiet = true;
    } else if (!optionsEnded && (arg == "-j" || arg == "--jobs" || arg.starts_with("--jobs="))) {
      std::string_view count = arg.starts_with("--jobs=") ? arg.substr(7) : std::string_view();
      if (count.empty() && i + 1 < argc) count = argv[++i];
      unsigned parsed = 0;
      for (const char c : count) parsed = (c >= '0' && c <= '9' && parsed < 1000) ? parsed * 10 + unsigned(c - '0') : 0;
      if (count.empty() || parsed == 0 || count.size() > 4) {
        std::cerr << "velmora: --jobs takes a whole number from 1 to 9999\n";
        return kExitUsage;
      }
      jobs = parsed;
    } else if (!optionsEnded && arg.size() > 1 && arg[0] == '-') {
      std::cerr << "velmora: unknown option " << arg << "\n" << kUsage;
      return kExitUsage;
    } else {
      paths.emplace_back(arg);
    }
  }
  if (paths.empty() || paths.size() % 2 != 0) {
    std::cerr << "velmora: expected INPUT OUTPUT pairs\n" << kUsage;
    return kExitUsage;
  }
  std::ios::sync_with_stdio(false);
  // A closed pipe on the output (velmora ... - | head) is a write error
  // like any other: reported, exit status 74, rather than a silent death.
  std::signal(SIGPIPE, SIG_IGN);
  int status = kExitOk;
  const bool labelled = paths.size() > 2;
  // A SABME of one pair is still pending for the UA of the next.
  velmora::LinkMemory link;
  for (std::size_t i = 0; i < paths.size(); i += 2) {
    const int pairStatus = TranslatePair(paths[i], paths[i + 1], link, quiet, labelled, jobs == 0 ? 1 : jobs);
    if (status == kExitOk) status = pairStatus;
  }
  return status;
}
