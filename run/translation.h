#pragma once
// The translation run: the one operation behind the dialog's Translate
// button and the velmora command. This header is all the front ends use.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "detail_level.h"
#include "scan_notes.h"

namespace velmora {

class ByteSink;
class InputFormat;
class OutputWriter;
class PieceSource;
class TraceConsumer;

enum class TranslationOutcome {
  InputNotSelected,
  OutputNotSelected,
  OutputSameAsInput,
  InputOpenFailed,
  OutputOpenFailed,
  NoFrameFound,
  TranslationDone,
};

// Message-box icon kinds, with the values the original platform gave them.
enum class OutcomeIcon { Error = 16, Information = 64 };

struct OutcomeMessage {
  std::string_view text;  // "\n" inside is a line break
  std::string_view caption;
  OutcomeIcon icon;
};

// The exact text, caption and icon that tell the user how a run ended.
const OutcomeMessage& DescribeOutcome(TranslationOutcome outcome);

// What one run leaves for the next: whether a SABME awaits its UA (no DISC
// since), which decides the wording of the next UA line. The caller keeps
// one across runs: the command line across its INPUT OUTPUT pairs, the
// dialog across presses of Translate. A run never resets it.
struct LinkMemory {
  bool setupPending = false;
};

// What is wrong with an input of a recognised format (a capture).
enum class InputFault : std::uint8_t {
  None,
  // Its header is unusable (cut short, a link type that is not LAPD): the
  // run ends with InputOpenFailed before the output is opened.
  Refused,
  // It ends in the middle of a record; the records before were translated.
  CutOff,
  // A record in it cannot be read; the records before it were translated.
  Damaged,
};

// What the run saw of its two files, beyond the outcome.
struct TranslationReport {
  int openError = 0;   // errno behind InputOpenFailed or OutputOpenFailed, or 0
  int readError = 0;   // errno of a read that failed part-way, or 0
  int writeError = 0;  // errno of the first write that failed, or 0
  std::uint64_t bytesRead = 0;
  std::uint64_t bytesWritten = 0;
  InputFault inputFault = InputFault::None;
  std::string inputFaultText;  // what is wrong and where, in words; empty with None
  // Lines the scanner read by its rules that the user should hear about.
  ScanNotes scanNotes = {};
  // A debug dump's messages with fewer octets than their header announced,
  // and the first line of the first of them.
  std::uint64_t cutOffMessages = 0;
  std::uint64_t firstCutOffLine = 0;
};

// Makes what a run writes instead of the message file (trace_consumer.h),
// once both files are open; it writes through `out`.
using TraceConsumerFactory = std::function<std::unique_ptr<TraceConsumer>(OutputWriter& out, LinkMemory& link)>;

struct TranslationOptions {
  // "-" as the input reads standard input, "-" as the output writes
  // standard output (the command line's convention).
  bool dashMeansStandardStream = false;
  // Refuse, as OutputSameAsInput, an output that is the same existing file
  // as the input under another spelling (same device and inode), standard
  // streams included; no file is touched then. Pipes, terminals and other
  // character devices such as /dev/null are never the same file.
  bool refuseSameFile = false;
  // Stop reading once a write to the output has failed (the command line,
  // which reports the failure). Otherwise the run goes on to the end of the
  // input, as the dialog's run does, so that the link memory and the
  // outcome do not depend on the output.
  bool stopOnWriteError = false;
  // Threads for a regular input file of several megabytes, never more than
  // it has chunks; the output is the same whatever the count. Standard
  // input is always read by one.
  unsigned jobs = 1;
  // Called now and then with the bytes read so far and the input's size
  // (0 when unknown), from the calling thread.
  std::function<void(std::uint64_t bytesRead, std::uint64_t inputSize)> progress;
  // Filled in when not null.
  TranslationReport* report = nullptr;
  // Another output than the message file (one thread, whatever `jobs`
  // says); empty: the message file.
  TraceConsumerFactory makeConsumer;
  // How much each frame's decoding tells in the message file.
  DetailLevel detail = DetailLevel::Description;
  // Formats told by their first bytes (input_format.h), tried in order
  // before the input is read as a trace log; such an input is translated on
  // one thread. Empty: every input is a trace log.
  std::vector<const InputFormat*> inputFormats;
  // A format to read the input as whatever its start (--from); null: the
  // start tells, among `inputFormats`, or the input is a trace log.
  const InputFormat* forcedFormat = nullptr;
};

// The in-memory core: copies and decodes every piece that `source` hands
// out into `output`, on the calling thread, with no path, file or thread of
// its own; returns TranslationDone or NoFrameFound. Of the options it takes
// makeConsumer, stopOnWriteError, progress, report, detail and forcedFormat
// (a debug dump's). The link memory is read at the start and left as the
// last SABME or DISC of the input sets it.
TranslationOutcome TranslateTrace(PieceSource& source, ByteSink& output, LinkMemory& link,
                                  const TranslationOptions& options = {});

// TranslateTrace of a whole input held in memory, handed out in slices so
// that `progress` hears of each. Without forcedFormat, its start tells a
// debug dump among `inputFormats`, as a file's does; formats read from a
// descriptor (captures) are not read from memory, and such text is read as
// a trace log.
TranslationOutcome TranslateTraceText(std::string_view trace, ByteSink& output, LinkMemory& link,
                                      const TranslationOptions& options = {});

// The file front end: checks the paths, opens both files, tells the
// input's format, copies and decodes every line of the input into the
// output (on several threads for a large file), closes both files and
// returns the outcome. The
// link memory is read at the start and left as the last SABME or DISC of
// the input sets it.
TranslationOutcome TranslateTraceFile(std::string_view inputPath, std::string_view outputPath, LinkMemory& link,
                                      const TranslationOptions& options = {});

}  // namespace velmora
