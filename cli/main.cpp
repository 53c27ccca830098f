// velmora INPUT OUTPUT [INPUT OUTPUT ...]: the translation run on the command
// line. Exit status follows sysexits.h.
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "core/translation.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitNoFrame = 1;
constexpr int kExitUsage = 64;     // EX_USAGE
constexpr int kExitNoInput = 66;   // EX_NOINPUT
constexpr int kExitCantCreate = 73;  // EX_CANTCREAT
constexpr int kExitIoError = 74;   // EX_IOERR

constexpr std::string_view kUsage =
    "Usage: velmora [-q] INPUT OUTPUT [INPUT OUTPUT ...]\n"
    "Translate an ISDN D-channel trace log into a message file: every input line\n"
    "copied, and behind each frame line its Q.921 frame kind and Q.931 message.\n"
    "\n"
    "  INPUT    the trace log; - reads standard input\n"
    "  OUTPUT   the message file to write; - writes standard output\n"
    "  -q       say nothing when a translation is done\n"
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

// Runs one pair; prints its outcome (or the I/O failure) on standard error.
int TranslatePair(const std::string& input, const std::string& output, bool quiet, bool labelled) {
  velmora::TranslationReport report;
  velmora::TranslationOptions options;
  options.dashMeansStandardStream = true;
  options.refuseSameFile = true;
  options.report = &report;
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceFile(input, output, options);
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
  int status = kExitOk;
  const bool labelled = paths.size() > 2;
  for (std::size_t i = 0; i < paths.size(); i += 2) {
    const int pairStatus = TranslatePair(paths[i], paths[i + 1], quiet, labelled);
    if (status == kExitOk) status = pairStatus;
  }
  return status;
}
