// velmora INPUT OUTPUT [INPUT OUTPUT ...]: the translation run on the command
// line. Exit status follows sysexits.h.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "call_report.h"
#include "calls_output.h"
#include "frame_json.h"
#include "input_formats.h"
#include "pcap_export.h"
#include "progress_bar.h"
#include "trace_filter.h"
#include "translation.h"
#include "velmora_version.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitNoFrame = 1;
constexpr int kExitUsage = 64;       // EX_USAGE
constexpr int kExitDataError = 65;   // EX_DATAERR
constexpr int kExitNoInput = 66;     // EX_NOINPUT
constexpr int kExitCantCreate = 73;  // EX_CANTCREAT
constexpr int kExitIoError = 74;     // EX_IOERR

// The frames and calls a run keeps, from --call, --tei, --message, --cause
// and --failed. A selection that needs the calls for its frames (--cause,
// --failed on the message file, JSON or a capture) reads the input once
// before, for the lines of the selected calls' messages.
struct Selection {
  velmora::TraceFilter filter;
  std::shared_ptr<std::vector<std::uint64_t>> callLines;  // sorted; null when not needed

  velmora::FrameSelection Frames() const {
    return [this](velmora::OctetSpan frame, std::uint64_t line) {
      return filter.FrameSelected(frame) &&
             (!callLines || std::binary_search(callLines->begin(), callLines->end(), line));
    };
  }
  velmora::CallSelection Calls() const {
    return [this](const velmora::CallRecord& call) { return filter.CallSelected(call); };
  }
};

// What velmora can write of a trace. Each kind but the message file comes
// from a library beside the translation core. `selection` is null when no
// filter is given.
struct OutputKind {
  std::string_view name;
  std::string_view help;
  // Null, or a factory of a null function: the message file, at full speed.
  velmora::TraceConsumerFactory (*make)(const std::string& input, const Selection* selection,
                                        velmora::DetailLevel detail);
  bool framesOut;  // writes frames (a filter keeps frames), not calls
};
velmora::TraceConsumerFactory MessageFactory(const std::string&, const Selection* selection,
                                             velmora::DetailLevel detail) {
  if (selection == nullptr) return nullptr;
  return [selection, detail](velmora::OutputWriter& out, velmora::LinkMemory& link) {
    return velmora::MakeSelectedFramesConsumer(out, link, selection->Frames(), detail);
  };
}
velmora::TraceConsumerFactory PcapFactory(const std::string&, const Selection* selection, velmora::DetailLevel) {
  velmora::TraceConsumerFactory pcap = velmora::PcapExport();
  if (selection == nullptr) return pcap;
  return [pcap, selection](velmora::OutputWriter& out, velmora::LinkMemory& link) {
    return velmora::MakeFrameFilteredConsumer(pcap(out, link), selection->Frames());
  };
}
velmora::TraceConsumerFactory JsonFactory(const std::string&, const Selection* selection, velmora::DetailLevel detail) {
  return [selection, detail](velmora::OutputWriter& out, velmora::LinkMemory& link) {
    return velmora::MakeJsonConsumer(out, link, detail, selection != nullptr ? selection->Frames() : nullptr);
  };
}
template <velmora::CallsForm form>
velmora::TraceConsumerFactory CallsFactory(const std::string&, const Selection* selection, velmora::DetailLevel) {
  return [selection](velmora::OutputWriter& out, velmora::LinkMemory&) {
    return velmora::MakeCallsConsumer(out, form, selection != nullptr ? selection->Calls() : nullptr);
  };
}
// The report names its input and gives a regular file's size.
velmora::TraceConsumerFactory ReportFactory(const std::string& input, const Selection* selection,
                                            velmora::DetailLevel) {
  velmora::ReportInput report{input == "-" ? "standard input" : input, std::nullopt,
                              selection != nullptr ? selection->Calls() : nullptr};
  struct stat info {};
  if (input != "-" && ::stat(input.c_str(), &info) == 0 && S_ISREG(info.st_mode))
    report.size = static_cast<std::uint64_t>(info.st_size);
  return velmora::CallReport(std::move(report));
}

constexpr OutputKind kOutputKinds[] = {
    {"message", "the message file (the default)", MessageFactory, true},
    {"json", "the decode as data, one JSON object a frame line (JSON Lines)", JsonFactory, true},
    {"pcap", "a pcap capture of every frame line's octets", PcapFactory, true},
    {"calls", "a table of the calls, one row a call, and totals", CallsFactory<velmora::CallsForm::Table>, false},
    {"calls-csv", "the table's rows as CSV", CallsFactory<velmora::CallsForm::Csv>, false},
    {"calls-json", "one JSON object a call (JSON Lines)", CallsFactory<velmora::CallsForm::JsonLines>, false},
    {"report", "an HTML page of the calls, with a ladder diagram for each", ReportFactory, false},
};

constexpr std::string_view kUsageHead =
    "Usage: velmora [-q] [-j N] [--to KIND] [--from FORMAT] [--] INPUT OUTPUT [INPUT OUTPUT ...]\n"
    "Translate an ISDN D-channel trace log into a message file: every input line\n"
    "copied, and behind each frame line its Q.921 frame kind and Q.931 message.\n"
    "\n"
    "  INPUT    the trace log, a pcap or pcapng capture of LAPD frames, a\n"
    "           PBX's PRI-stack debug, a router's ISDN debug or a hex dump;\n"
    "           - reads standard input\n"
    "  OUTPUT   the message file to write; - writes standard output\n"
    "  -q       say nothing when a translation is done\n"
    "  -j N, --jobs N  threads for a large input file, 1 to 256 (default: the\n"
    "           number of cores), never more than the cores it may run on;\n"
    "           the output is the same for every N\n"
    "  --to KIND  what to write instead of the message file (one thread):\n";
constexpr std::string_view kUsageTail =
    "  --from FORMAT  read INPUT as trace (a trace log), pcap (a capture),\n"
    "           pbx (a PRI-stack debug: lines marked > and < carrying\n"
    "           \"Protocol Discriminator: Q.931\" headers and [hex] elements) or\n"
    "           router (debug isdn q931/q921: \"TX -> SETUP pd = 8 callref =\",\n"
    "           \"i = 0x...\" elements, \"RRr sapi = 0 tei = 89 nr = 1\") or hex (a\n"
    "           TX or RX line with a time, the frame's hex in the lines below);\n"
    "           without it the input's first 2 KB tell\n"
    "  --detail LEVEL  description (the default): the message file as\n"
    "           described; full: also each frame's address and control\n"
    "           fields, TEI management, Q.931 in UI frames, the call\n"
    "           reference, Q.932 messages and Facility, codesets, numbers as\n"
    "           text\n"
    "  --call N, --tei N, --message NAME, --cause N\n"
    "           keep the frames (message, json, pcap) or the calls (calls,\n"
    "           report) of call reference N, TEI N, a message type (as the\n"
    "           message file names it, or 0xNN), or calls cleared with cause\n"
    "           N; N,M,... any of them; options given together all hold\n"
    "  --failed keep the calls not answered or cleared with a cause other than\n"
    "           16 and 31 (or those calls' frames)\n"
    "  --help   show this help\n"
    "  --version  show the version\n"
    "  --       end of options: every later argument is a path, even one\n"
    "           that begins with a dash\n"
    "\n"
    "Several pairs run in order in one process; the LAPD link memory (SABME\n"
    "before UA) carries over from one pair to the next.\n"
    "\n"
    "An output that is the input under another name (a link, another spelling,\n"
    "or a redirected standard stream) is refused before anything is written.\n"
    "\n"
    "Exit status: 0 done, 1 no frame line found, 64 usage error or paths not\n"
    "usable together, 65 a capture that is not LAPD or is damaged, 66 input\n"
    "cannot be opened, 73 output cannot be created, 74 reading or writing\n"
    "failed part-way (a capture cut off included).\n";

void PrintUsage(std::ostream& out) {
  out << kUsageHead;
  for (const OutputKind& kind : kOutputKinds) out << "             " << kind.name << "  " << kind.help << '\n';
  out << kUsageTail;
}

// "trace, pcap, pbx, router or hex".
std::string FormatNames() {
  std::string names;
  const auto entries = velmora::InputFormatEntries();
  for (std::size_t e = 0; e < entries.size(); ++e) {
    if (e > 0) names += e + 1 == entries.size() ? " or " : ", ";
    names += entries[e].name;
  }
  return names;
}

const OutputKind* FindOutputKind(std::string_view name) {
  for (const OutputKind& kind : kOutputKinds)
    if (kind.name == name) return &kind;
  return nullptr;
}

// How every pair of one command line runs.
struct PairSettings {
  bool quiet = false;
  velmora::DetailLevel detail = velmora::DetailLevel::Description;
  unsigned jobs = 1;
  const OutputKind* kind = &kOutputKinds[0];
  Selection* selection = nullptr;                   // null: everything
  const velmora::InputFormatEntry* from = nullptr;  // null: the input's start tells
};

// The formats a run tries, or the one --from names.
void SetInputFormat(velmora::TranslationOptions& options, const velmora::InputFormatEntry* from) {
  if (from == nullptr) {
    options.inputFormats = velmora::RecognisedInputFormats();
  } else {
    options.forcedFormat = from->format;  // null for a trace log: no format tried
  }
}

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

// "1 line", "2 lines".
std::string Count(std::uint64_t count, std::string_view singular, std::string_view plural) {
  return std::to_string(count) + ' ' + std::string(count == 1 ? singular : plural);
}

// The lines the scanner read by its rules that were likely meant otherwise:
// one warning a kind, with the count and the first line's number.
void WarnAboutScannedLines(const velmora::ScanNotes& notes, const std::string& inputName) {
  const auto warn = [&](const velmora::ScanNote& note, const std::string& what) {
    if (note.lines == 0) return;
    std::cerr << "velmora: warning: " << inputName << ": " << what << " (first: line " << note.firstLine << ")\n";
  };
  const std::uint64_t shortLines = notes.shortMarkedLines.lines;
  warn(notes.shortMarkedLines,
       Count(shortLines, "line holds", "lines hold") + " \"HDLC\" and \"****\" but " +
           (shortLines == 1 ? "is shorter than 80 characters, so it was not read as a frame line"
                            : "are shorter than 80 characters, so they were not read as frame lines"));
  const std::uint64_t upper = notes.upperCaseCells.lines;
  warn(notes.upperCaseCells, Count(upper, "frame line has", "frame lines have") + " upper-case hexadecimal digits in " +
                                 (upper == 1 ? "its" : "their") +
                                 " cells, read as the trace format defines (\"A\" to \"F\" as 17 to 22): " +
                                 (upper == 1 ? "its" : "their") + " octets are likely wrong");
  const std::uint64_t misplaced = notes.misplacedCells.lines;
  warn(notes.misplacedCells, Count(misplaced, "frame line has", "frame lines have") +
                                 " cells that are not \"0x\" and two hexadecimal digits where cells are read"
                                 " (one blank instead of two before \"|\", say): " +
                                 (misplaced == 1 ? "its" : "their") + " octets are likely wrong");
}

// The lines of the messages of the calls a selection keeps, for the frames
// of those calls: a first reading of the input, which a pipe cannot give.
int ReadSelectedCallLines(const std::string& input, const velmora::LinkMemory& link, Selection& selection,
                          const velmora::InputFormatEntry* from) {
  if (input == "-") {
    std::cerr << "velmora: --cause and --failed keep the frames of calls, which takes reading the input twice: "
                 "name a file, not standard input\nTry 'velmora --help'.\n";
    return kExitUsage;
  }
  auto lines = std::make_shared<std::vector<std::uint64_t>>();
  velmora::TranslationOptions options;
  SetInputFormat(options, from);
  options.makeConsumer = [&selection, lines](velmora::OutputWriter&, velmora::LinkMemory&) {
    return velmora::MakeSelectedCallLinesConsumer(selection.filter, *lines);
  };
  // The real run reports an input that cannot be read.
  velmora::LinkMemory firstReading = link;
  velmora::TranslateTraceFile(input, "/dev/null", firstReading, options);
  selection.callLines = std::move(lines);
  return kExitOk;
}

// Runs one pair; prints its outcome (or the I/O failure) on standard error.
int TranslatePair(const std::string& input, const std::string& output, velmora::LinkMemory& link,
                  const PairSettings& settings, bool labelled) {
  velmora::TranslationReport report;
  velmora::TranslationOptions options;
  options.dashMeansStandardStream = true;
  options.refuseSameFile = true;
  options.stopOnWriteError = true;
  options.jobs = settings.jobs;
  options.report = &report;
  SetInputFormat(options, settings.from);
  if (settings.selection != nullptr && settings.kind->framesOut && settings.selection->filter.NeedsCalls()) {
    if (const int status = ReadSelectedCallLines(input, link, *settings.selection, settings.from); status != kExitOk)
      return status;
  }
  options.makeConsumer = settings.kind->make(input, settings.selection, settings.detail);
  options.detail = settings.detail;
  velmora::ProgressBar progress(stderr);
  if (::isatty(STDERR_FILENO))
    options.progress = [&progress](std::uint64_t done, std::uint64_t size) { progress.Update(done, size); };
  const velmora::TranslationOutcome outcome = velmora::TranslateTraceFile(input, output, link, options);
  progress.Finish();
  const std::string inputName = StreamName(input, "standard input");
  const std::string outputName = StreamName(output, "standard output");
  if (!settings.quiet) WarnAboutScannedLines(report.scanNotes, inputName);
  if (!settings.quiet && report.cutOffMessages > 0)
    std::cerr << "velmora: warning: " << inputName << ": "
              << Count(report.cutOffMessages, "message has", "messages have")
              << " fewer octets than the dump's length says (cut off, or a wrapped line missing); decoded as far as "
              << (report.cutOffMessages == 1 ? "it goes" : "they go") << " (first: line " << report.firstCutOffLine
              << ")\n";
  if (!settings.quiet && settings.selection != nullptr && settings.kind->framesOut &&
      outcome == velmora::TranslationOutcome::TranslationDone)
    std::cerr << "velmora: " << StreamName(output, "standard output")
              << " holds the selected frame lines only; every other line is left out\n";
  const bool captureBroken =
      report.inputFault == velmora::InputFault::CutOff || report.inputFault == velmora::InputFault::Damaged;
  if (report.readError != 0 || report.writeError != 0 || captureBroken) {
    if (report.readError != 0)
      std::cerr << "velmora: reading " << inputName << " failed part-way: " << std::strerror(report.readError) << '\n';
    if (captureBroken)
      std::cerr << "velmora: " << inputName << ": " << report.inputFaultText << "; the output is incomplete\n";
    if (report.writeError != 0)
      std::cerr << "velmora: writing " << outputName << " failed: " << std::strerror(report.writeError)
                << "; the output is incomplete\n";
    const bool dataError =
        report.inputFault == velmora::InputFault::Damaged && report.readError == 0 && report.writeError == 0;
    return dataError ? kExitDataError : kExitIoError;
  }
  if (!(settings.quiet && outcome == velmora::TranslationOutcome::TranslationDone))
    std::cerr << (labelled ? input + ": " : std::string()) << velmora::DescribeOutcome(outcome).text << '\n';
  // The outcome sentence says what failed; this line says where and why.
  switch (outcome) {
    case velmora::TranslationOutcome::InputOpenFailed:
      if (report.inputFault == velmora::InputFault::Refused) {
        std::cerr << "velmora: " << inputName << ": " << report.inputFaultText << '\n';
        return kExitDataError;
      }
      std::cerr << "velmora: " << inputName << ": " << std::strerror(report.openError) << '\n';
      break;
    case velmora::TranslationOutcome::OutputOpenFailed:
      std::cerr << "velmora: " << outputName << ": " << std::strerror(report.openError) << '\n';
      break;
    case velmora::TranslationOutcome::InputNotSelected:
      std::cerr << "velmora: the input path is empty\n";
      break;
    case velmora::TranslationOutcome::OutputNotSelected:
      std::cerr << "velmora: the output path is empty\n";
      break;
    case velmora::TranslationOutcome::OutputSameAsInput:
      std::cerr << "velmora: " << outputName << " and " << inputName << " are the same file\n";
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

// The value of an option that takes one: "-xV", "-x V", "--long V" or
// "--long=V" (`shortName` may be empty). Nothing when `arg` is another
// option; `missing` tells an option whose value the command line lacks.
std::optional<std::string_view> OptionValue(std::string_view arg, std::string_view shortName, std::string_view longName,
                                            int& i, int argc, char** argv, bool& missing) {
  missing = false;
  if (!shortName.empty() && arg.starts_with(shortName) && arg.size() > shortName.size())
    return arg.substr(shortName.size());
  if (arg.starts_with(longName) && arg.size() > longName.size() && arg[longName.size()] == '=')
    return arg.substr(longName.size() + 1);
  if (arg != longName && (shortName.empty() || arg != shortName)) return std::nullopt;
  if (i + 1 < argc) return std::string_view(argv[++i]);
  missing = true;
  return std::string_view();
}

int UsageError(const std::string& message) {
  std::cerr << "velmora: " << message << "\nTry 'velmora --help'.\n";
  return kExitUsage;
}

// The filter options and what each selects.
struct FilterOption {
  std::string_view name;
  velmora::FilterKind kind;
};
constexpr FilterOption kFilterOptions[] = {
    {"--call", velmora::FilterKind::CallReference},
    {"--tei", velmora::FilterKind::Tei},
    {"--message", velmora::FilterKind::MessageType},
    {"--cause", velmora::FilterKind::Cause},
};

}  // namespace

int main(int argc, char** argv) {
  PairSettings settings;
  Selection selection;
  settings.jobs = std::clamp(std::thread::hardware_concurrency(), 1U, kMaxJobs);
  std::vector<std::string> paths;
  bool optionsEnded = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    bool missing = false;
    if (optionsEnded || arg == "-" || !arg.starts_with('-')) {
      paths.emplace_back(arg);
    } else if (arg == "--") {
      optionsEnded = true;
    } else if (arg == "--help" || arg == "-h") {
      PrintUsage(std::cout);
      return kExitOk;
    } else if (arg == "--version") {
      std::cout << "velmora " << VELMORA_VERSION << '\n';
      return kExitOk;
    } else if (arg == "-q") {
      settings.quiet = true;
    } else if (const auto count = OptionValue(arg, "-j", "--jobs", i, argc, argv, missing)) {
      if (missing) return UsageError(std::string(arg) + " needs a thread count");
      const std::optional<unsigned> parsed = ParseJobs(*count);
      if (!parsed)
        return UsageError(std::string(arg.starts_with("--") ? "--jobs" : "-j") + ": '" + std::string(*count) +
                          "' is not a whole number from 1 to " + std::to_string(kMaxJobs));
      settings.jobs = *parsed;
    } else if (const auto name = OptionValue(arg, "", "--to", i, argc, argv, missing)) {
      if (missing) return UsageError("--to needs an output kind");
      settings.kind = FindOutputKind(*name);
      if (settings.kind == nullptr) return UsageError("--to: unknown output kind '" + std::string(*name) + "'");
    } else if (const auto format = OptionValue(arg, "", "--from", i, argc, argv, missing)) {
      if (missing) return UsageError("--from needs an input format");
      settings.from = velmora::FindInputFormat(*format);
      if (settings.from == nullptr)
        return UsageError("--from: unknown input format '" + std::string(*format) + "' (" + FormatNames() + ")");
    } else if (const auto level = OptionValue(arg, "", "--detail", i, argc, argv, missing)) {
      if (missing) return UsageError("--detail needs a level");
      if (*level != "description" && *level != "full")
        return UsageError("--detail: '" + std::string(*level) + "' is no level (description or full)");
      settings.detail = *level == "full" ? velmora::DetailLevel::Full : velmora::DetailLevel::Description;
    } else if (arg == "--failed") {
      selection.filter.Add(velmora::FilterKind::Failed, {});
    } else if (const auto filter = std::find_if(std::begin(kFilterOptions), std::end(kFilterOptions),
                                                [arg](const FilterOption& option) {
                                                  return arg == option.name || (arg.starts_with(option.name) &&
                                                                                arg.size() > option.name.size() &&
                                                                                arg[option.name.size()] == '=');
                                                });
               filter != std::end(kFilterOptions)) {
      const std::optional<std::string_view> values = OptionValue(arg, "", filter->name, i, argc, argv, missing);
      if (missing) return UsageError(std::string(filter->name) + " needs a value");
      if (const std::optional<std::string> wrong = selection.filter.Add(filter->kind, *values))
        return UsageError(std::string(filter->name) + ": " + *wrong);
    } else {
      return UsageError("unknown option " + std::string(arg));
    }
  }
  if (paths.empty() || paths.size() % 2 != 0) return UsageError("expected INPUT OUTPUT pairs");
  if (!selection.filter.Empty()) settings.selection = &selection;
  std::ios::sync_with_stdio(false);
  // A closed pipe on the output (velmora ... - | head) is a write error
  // like any other: reported, exit status 74, rather than a silent death.
  std::signal(SIGPIPE, SIG_IGN);
  int status = kExitOk;
  const bool labelled = paths.size() > 2;
  // A SABME of one pair is still pending for the UA of the next.
  velmora::LinkMemory link;
  for (std::size_t i = 0; i < paths.size(); i += 2) {
    const int pairStatus = TranslatePair(paths[i], paths[i + 1], link, settings, labelled);
    if (status == kExitOk) status = pairStatus;
  }
  return status;
}
