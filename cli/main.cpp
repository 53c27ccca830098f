// velmora INPUT OUTPUT [INPUT OUTPUT ...]: the translation run on the command
// line. Exit status follows sysexits.h.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "progress_bar.h"
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
    "Usage: velmora [-q] [-j N] INPUT OUTPUT [INPUT OUTPUT ...]\n"
    "Translate an ISDN D-channel trace log into a message file: every input line\n"
    "copied, and behind each frame line its Q.921 frame kind and Q.931 message.\n"
    "\n"
    "  INPUT    the trace log; - reads standard input\n"
    "  OUTPUT   the message file to write; - writes standard output\n"
    "  -q       say nothing when a translation is done\n"
    "  -j N, --jobs N  threads for a large input file, 1 to 256 (default: the\n"
    "           number of cores); the output is the same for every N\n"
    "  --help   show this help\n"
    "  --version  show the version\n"
    "\n"
    "Several pairs run in order in one process; the LAPD link memory (SABME\n"
    "before UA) carries over from one pair to the next.\n"
    "\n"
    "An output that is the input under another name (a link, another spelling,\n"
    "or a redirected standard stream) is refused before anything is written.\n"
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

std::string StreamName(const std::string& path, const char* standardName) { return path == "-" ? standardName : path; }

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
  velmora::ProgressBar progress(stderr);
  if (::isatty(STDERR_FILENO))
    options.progress = [&progress](std::uint64_t done, std::uint64_t size) { progress.Update(done, size); };
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceFile(input, output, link, options);
  progress.Finish();
  const std::string inputName = StreamName(input, "standard input");
  const std::string outputName = StreamName(output, "standard output");
  if (report.readError != 0 || report.writeError != 0) {
    if (report.readError != 0)
      std::cerr << "velmora: reading " << inputName << " failed part-way: " << std::strerror(report.readError) << '\n';
    if (report.writeError != 0)
      std::cerr << "velmora: writing " << outputName << " failed: " << std::strerror(report.writeError)
                << "; the output is incomplete\n";
    return kExitIoError;
  }
  if (!(quiet && outcome == velmora::TranslationOutcome::TranslationDone))
    std::cerr << (labelled ? input + ": " : std::string()) << velmora::DescribeOutcome(outcome).text << '\n';
  // The outcome sentence says what failed; this line says where and why.
  switch (outcome) {
    case velmora::TranslationOutcome::InputOpenFailed:
      std::cerr << "velmora: " << inputName << ": " << std::strerror(report.openError) << '\n';
      break;
    case velmora::TranslationOutcome::OutputOpenFailed:
      std::cerr << "velmora: " << outputName << ": " << std::strerror(report.openError) << '\n';
      break;
    case velmora::TranslationOutcome::OutputSameAsInput:
      std::cerr << "velmora: " << outputName << " is " << inputName << " under another name\n";
      break;
    default:
      break;
  }
  return ExitStatus(outcome);
}

// The thread count of -j/--jobs: a whole number from 1 to kMaxJobs.
constexpr unsigned kMaxJobs = 256;

std::optional<unsigned> ParseJobs(std::string_view text) {
  if (text.empty()) return std::nullopt;
  unsigned value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<unsigned>(c - '0');
    if (value > kMaxJobs) return std::nullopt;
  }
  if (value < 1) return std::nullopt;
  return value;
}

}  // namespace

int main(int argc, char** argv) {
  bool quiet = false;
  unsigned jobs = std::clamp(std::thread::hardware_concurrency(), 1U, kMaxJobs);
  std::vector<std::string> paths;
  bool optionsEnded = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (optionsEnded || arg == "-" || !arg.starts_with('-')) {
      paths.emplace_back(arg);
    } else if (arg == "--") {
      optionsEnded = true;
    } else if (arg == "--help" || arg == "-h") {
      std::cout << kUsage;
      return kExitOk;
    } else if (arg == "--version") {
      std::cout << "velmora " << VELMORA_VERSION << '\n';
      return kExitOk;
    } else if (arg == "-q") {
      quiet = true;
    } else if (arg.starts_with("-j") || arg == "--jobs" || arg.starts_with("--jobs=")) {
      // -j N, -jN, --jobs N, --jobs=N.
      std::string_view value;
      if (arg.starts_with("--jobs=")) {
        value = arg.substr(7);
      } else if (arg.starts_with("-j") && arg.size() > 2) {
        value = arg.substr(2);
      } else if (i + 1 < argc) {
        value = argv[++i];
      } else {
        std::cerr << "velmora: " << arg << " needs a thread count\n" << kUsage;
        return kExitUsage;
      }
      const std::optional<unsigned> parsed = ParseJobs(value);
      if (!parsed) {
        std::cerr << "velmora: " << (arg.starts_with("--") ? "--jobs" : "-j") << ": '" << value
                  << "' is not a whole number from 1 to " << kMaxJobs << '\n';
        return kExitUsage;
      }
      jobs = *parsed;
    } else {
      std::cerr << "velmora: unknown option " << arg << "\n" << kUsage;
      return kExitUsage;
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
    const int pairStatus = TranslatePair(paths[i], paths[i + 1], link, quiet, labelled, jobs);
    if (status == kExitOk) status = pairStatus;
  }
  return status;
}
