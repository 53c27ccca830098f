#include "translation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>

#include "decode_context.h"
#include "input_format.h"
#include "lapd.h"
#include "line_reader.h"
#include "line_scanner.h"
#if !defined(VELMORA_NO_THREADS)
#include "parallel_run.h"
#endif
#include "trace_consumer.h"

namespace velmora {

namespace {

constexpr OutcomeMessage kOutcomeMessages[] = {
    {"Please select input log file!", "Error", OutcomeIcon::Error},
    {"Please select output message file!", "Error", OutcomeIcon::Error},
    {"The output message file is as same as the input log file.\nPlease select them again!", "Error",
     OutcomeIcon::Error},
    {"Cannot open Input log file!", "Error", OutcomeIcon::Error},
    {"Cannot open output message file!", "Error", OutcomeIcon::Error},
    {"The input log file contains no useful information!", "Error", OutcomeIcon::Error},
    {"Translation is done!", "Velmora", OutcomeIcon::Information},
};

bool IsStandardStream(std::string_view path, const TranslationOptions& options) {
  return options.dashMeansStandardStream && path == "-";
}

// Looks at an open input; a directory counts as a failure. Returns the
// reason, or 0 with what the input is in `info`.
int InspectInput(int fd, struct stat& info) {
  if (::fstat(fd, &info) != 0) return errno;
  return S_ISDIR(info.st_mode) ? EISDIR : 0;
}

// Opens the input as a readable file, not a directory. Returns the
// descriptor, or -1 with the reason in `error`.
int OpenInput(std::string_view path, int& error, struct stat& info) {
  const int fd = ::open(std::string(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = errno;
    return -1;
  }
  error = InspectInput(fd, info);
  if (error != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// Where a file lives, for telling whether two names reach one file. Only
// files whose content a run could destroy count: regular files and block
// devices. A pipe, a terminal or /dev/null on both sides is no conflict.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  bool known = false;
};

FileIdentity IdentityOf(const struct stat& info) {
  if (!S_ISREG(info.st_mode) && !S_ISBLK(info.st_mode)) return {};
  return {info.st_dev, info.st_ino, true};
}

FileIdentity IdentityOfDescriptor(int fd) {
  struct stat info {};
  return ::fstat(fd, &info) == 0 ? IdentityOf(info) : FileIdentity{};
}

FileIdentity IdentityOfPath(std::string_view path) {
  struct stat info {};
  return ::stat(std::string(path).c_str(), &info) == 0 ? IdentityOf(info) : FileIdentity{};
}

bool SameFile(const FileIdentity& a, const FileIdentity& b) {
  return a.known && b.known && a.device == b.device && a.inode == b.inode;
}

// A parallel run pays off from a few chunks on, and only for input that
// can be read ahead freely.
constexpr std::uint64_t kParallelMinimum = 4 * 1024 * 1024;

// Whether writing to the descriptor copies the bytes somewhere: a regular
// file, a pipe or a socket, unlike a device such as /dev/null.
bool WritesCost(int fd) {
  struct stat info {};
  return ::fstat(fd, &info) == 0 && (S_ISREG(info.st_mode) || S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode));
}

// The size of a regular file; nothing for a pipe, a terminal or a device.
std::optional<std::uint64_t> RegularFileSize(const struct stat& info) {
  if (!S_ISREG(info.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(info.st_size);
}

// Hands every piece of the input, with its line number and a frame line's
// octets, to the consumer. Returns whether a frame line was seen.
template <typename Source, typename Stopped>
bool ConsumeTrace(Source& source, TraceConsumer& consumer, ScanNotes& notes, Stopped stopped) {
  bool frameFound = false;
  std::uint64_t lineNumber = 1;
  Octet frame[kFrameCapacity];
  while (const auto pieces = source.NextPieces()) {
    ForEachPiece(*pieces, [&](std::string_view piece) {
      const std::optional<std::size_t> count = ScanFrameLine(piece, frame, notes, lineNumber);
      frameFound = frameFound || count.has_value();
      consumer.Consume({piece, lineNumber, count.has_value(), OctetSpan(frame, count.value_or(0))});
      if (piece.back() == '\n') ++lineNumber;
    });
    if (stopped()) break;
  }
  consumer.Finish();
  return frameFound;
}

// The lines of a debug dump, each copied, and each message the dump's
// reader completes decoded in front of the line that tells it ended (or
// handed to the consumer there). Returns whether a message was seen.
template <typename Stopped>
bool TranslateDump(PieceSource& source, OutputWriter& writer, LinkMemory& link, const TranslationOptions& options,
                   MessageDump& dump, TranslationReport& report, Stopped stopped) {
  const std::unique_ptr<TraceConsumer> consumer = options.makeConsumer ? options.makeConsumer(writer, link) : nullptr;
  DecodeContext context{writer, link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending};
  context.detail = options.detail;
  bool messageFound = false;
  std::uint64_t lineNumber = 1;
  const auto deliver = [&](const DumpMessage* message) {
    if (message == nullptr) return;
    messageFound = true;
    if (message->cutOff && report.cutOffMessages++ == 0) report.firstCutOffLine = message->firstLine;
    if (consumer) {
      consumer->Consume(
          {{}, message->firstLine, message->wholeFrame, message->wholeFrame ? message->octets : OctetSpan{}, message});
    } else {
      DecodeDumpMessage(context, message->octets, message->wholeFrame, message->commandResponseKnown);
    }
  };
  bool lineStarts = true;
  while (const auto pieces = source.NextPieces()) {
    ForEachPiece(*pieces, [&](std::string_view piece) {
      if (lineStarts) {
        std::string_view line = piece;
        if (line.ends_with('\n')) line.remove_suffix(1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        deliver(dump.Before(line, lineNumber));
      }
      if (consumer) {
        consumer->Consume({piece, lineNumber, false, {}});
      } else {
        writer.Put(piece);
      }
      lineStarts = piece.back() == '\n';
      if (lineStarts) ++lineNumber;
    });
    if (stopped()) break;
  }
  deliver(dump.Finish());
  if (consumer) {
    consumer->Finish();
  } else {
    link.setupPending = context.linkSetup == LinkSetup::Pending;
  }
  return messageFound;
}

// Every piece of a source (the line reader, a recognised format's source,
// text in memory) into the message file or the consumer, on this thread;
// through `dump`, when given, as a debug dump's lines. Returns whether a
// frame line (a dump's message) was seen; fills in the report's reading side.
bool TranslatePieces(PieceSource& source, OutputWriter& writer, LinkMemory& link, const TranslationOptions& options,
                     bool readMayWait, std::uint64_t inputSize, TranslationReport& report,
                     MessageDump* dump = nullptr) {
  // Output produced so far reaches its reader before the run may wait
  // for more input: `velmora - -` works as a filter.
  source.SetBeforeRead([&] {
    if (readMayWait) writer.Flush();
    if (options.progress) options.progress(source.BytesRead(), inputSize);
  });
  const auto stopped = [&] { return options.stopOnWriteError && writer.Failed(); };
  bool frameFound = false;
  if (dump != nullptr) {
    frameFound = TranslateDump(source, writer, link, options, *dump, report, stopped);
  } else if (options.makeConsumer) {
    frameFound = ConsumeTrace(source, *options.makeConsumer(writer, link), report.scanNotes, stopped);
  } else {
    DecodeContext context{writer, link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending};
    context.detail = options.detail;
    while (const auto pieces = source.NextPieces()) {
      TranslateTracePieces(context, *pieces);
      if (stopped()) break;
    }
    link.setupPending = context.linkSetup == LinkSetup::Pending;
    report.scanNotes = context.notes;
    frameFound = context.frameFound;
  }
  report.readError = source.Error();
  report.bytesRead = source.BytesRead();
  report.inputFault = source.Fault();
  report.inputFaultText = source.FaultText();
  return frameFound;
}

// A trace log read from a descriptor, as a piece source.
class LineReaderSource final : public PieceSource {
 public:
  explicit LineReaderSource(LineReader& reader) : reader_(reader) {}
  std::optional<std::string_view> NextPieces() override { return reader_.NextPieces(); }
  void SetBeforeRead(std::function<void()> beforeRead) override { reader_.SetBeforeRead(std::move(beforeRead)); }
  std::uint64_t BytesRead() const override { return reader_.BytesRead(); }
  int Error() const override { return reader_.Error(); }

 private:
  LineReader& reader_;
};

// A whole trace log held in memory: all of it at once, as whole pieces.
// Text in memory in slices of whole pieces, the hook called before each as
// before a read of a file, so that the run tells its progress.
class TextSource final : public PieceSource {
 public:
  explicit TextSource(std::string_view text) : text_(text) {}
  std::optional<std::string_view> NextPieces() override {
    if (beforeRead_) beforeRead_();
    if (at_ == text_.size()) return std::nullopt;
    const std::string_view slice = text_.substr(at_, kSlice);
    // Cut behind the slice's last whole piece; only the text's end cuts a piece short.
    const std::size_t size = WholePiecesLength(slice, at_ + slice.size() < text_.size());
    at_ += size;
    return slice.substr(0, size);
  }
  void SetBeforeRead(std::function<void()> beforeRead) override { beforeRead_ = std::move(beforeRead); }
  std::uint64_t BytesRead() const override { return at_; }
  int Error() const override { return 0; }

 private:
  static constexpr std::size_t kSlice = 4 * 1024 * 1024;
  std::string_view text_;
  std::size_t at_ = 0;
  std::function<void()> beforeRead_;
};

TranslationReport& ReportOf(const TranslationOptions& options, TranslationReport& unused) {
  TranslationReport& report = options.report != nullptr ? *options.report : unused;
  report = TranslationReport{};
  return report;
}

// The writing side of the report, once the writer is flushed.
void ReportWrites(const OutputWriter& writer, int closeError, TranslationReport& report) {
  report.writeError = writer.Failed() ? writer.Error() : closeError;
  report.bytesWritten = writer.BytesWritten();
}

// The start of the input, looked at to tell its format: read with pread
// from a regular file, which leaves it in place, or taken from anything
// else (a pipe, a terminal), and then handed on. Reading stops as soon as
// no format asks for more, so a filter's first line is not held back.
struct InputHead {
  std::unique_ptr<char[]> bytes{new char[kRecognitionBytes]};
  std::size_t size = 0;
  bool consumed = false;
  int error = 0;
  std::string_view View() const { return {bytes.get(), size}; }
};

InputHead ReadInputHead(int fd, bool regularFile, const std::vector<const InputFormat*>& formats) {
  const auto needsMore = [&formats](std::string_view head) {
    return head.size() < kRecognitionBytes &&
           std::any_of(formats.begin(), formats.end(),
                       [head](const InputFormat* format) { return format->Recognise(head) == Recognition::NeedMore; });
  };
  InputHead head;
  const off_t offset = regularFile ? ::lseek(fd, 0, SEEK_CUR) : -1;
  head.consumed = offset < 0;
  while (needsMore(head.View())) {
    char* into = head.bytes.get() + head.size;
    const std::size_t wanted = kRecognitionBytes - head.size;
    const ReadResult got = head.consumed ? ReadRetrying(fd, into, wanted)
                                         : PreadRetrying(fd, into, wanted, offset + static_cast<off_t>(head.size));
    head.error = got.error;
    if (got.size == 0) break;
    head.size += got.size;
  }
  return head;
}

const InputFormat* RecognisedFormat(const std::vector<const InputFormat*>& formats, std::string_view head) {
  for (const InputFormat* format : formats)
    if (format->Recognise(head) == Recognition::Yes) return format;
  return nullptr;
}

}  // namespace

const OutcomeMessage& DescribeOutcome(TranslationOutcome outcome) {
  return kOutcomeMessages[static_cast<int>(outcome)];
}

namespace {

// The in-memory core, a debug dump read with `dumpFormat`'s reader where it
// has one.
TranslationOutcome TranslateTraceAs(PieceSource& source, ByteSink& output, LinkMemory& link,
                                    const TranslationOptions& options, const InputFormat* dumpFormat) {
  TranslationReport unusedReport;
  TranslationReport& report = ReportOf(options, unusedReport);
  OutputWriter writer(output);
  const std::unique_ptr<MessageDump> dump = dumpFormat != nullptr ? dumpFormat->Dump() : nullptr;
  const bool frameFound = TranslatePieces(source, writer, link, options, false, 0, report, dump.get());
  writer.Flush();
  ReportWrites(writer, 0, report);
  return frameFound ? TranslationOutcome::TranslationDone : TranslationOutcome::NoFrameFound;
}

}  // namespace

TranslationOutcome TranslateTrace(PieceSource& source, ByteSink& output, LinkMemory& link,
                                  const TranslationOptions& options) {
  return TranslateTraceAs(source, output, link, options, options.forcedFormat);
}

TranslationOutcome TranslateTraceText(std::string_view trace, ByteSink& output, LinkMemory& link,
                                      const TranslationOptions& options) {
  TextSource source(trace);
  const InputFormat* format = options.forcedFormat != nullptr
                                  ? options.forcedFormat
                                  : RecognisedFormat(options.inputFormats, trace.substr(0, kRecognitionBytes));
  return TranslateTraceAs(source, output, link, options, format);
}

TranslationOutcome TranslateTraceFile(std::string_view inputPath, std::string_view outputPath, LinkMemory& link,
                                      const TranslationOptions& options) {
  if (inputPath.empty()) return TranslationOutcome::InputNotSelected;
  if (outputPath.empty()) return TranslationOutcome::OutputNotSelected;
  const bool inputIsStandard = IsStandardStream(inputPath, options);
  const bool outputIsStandard = IsStandardStream(outputPath, options);
  if (inputPath == outputPath && !inputIsStandard) return TranslationOutcome::OutputSameAsInput;

  TranslationReport unusedReport;
  TranslationReport& report = ReportOf(options, unusedReport);

  int inputFd = STDIN_FILENO;
  struct stat inputInfo {};
  if (inputIsStandard) {
    report.openError = InspectInput(STDIN_FILENO, inputInfo);
    if (report.openError != 0) return TranslationOutcome::InputOpenFailed;
  } else {
    inputFd = OpenInput(inputPath, report.openError, inputInfo);
    if (inputFd < 0) return TranslationOutcome::InputOpenFailed;
  }
  const auto closeInput = [&] {
    if (!inputIsStandard) ::close(inputFd);
  };
  // Before the output is opened, and so emptied: the input must survive.
  if (options.refuseSameFile && SameFile(IdentityOf(inputInfo), outputIsStandard ? IdentityOfDescriptor(STDOUT_FILENO)
                                                                                 : IdentityOfPath(outputPath))) {
    closeInput();
    return TranslationOutcome::OutputSameAsInput;
  }
  // A capture or another recognised format is told, and its header
  // checked, before the output is opened: a refused input leaves no output.
  InputHead head;
  std::unique_ptr<PieceSource> formatted;
  std::unique_ptr<MessageDump> dump;
  if (!options.inputFormats.empty() || options.forcedFormat != nullptr) {
    if (options.forcedFormat == nullptr)
      head = ReadInputHead(inputFd, S_ISREG(inputInfo.st_mode), options.inputFormats);
    const InputFormat* format = options.forcedFormat != nullptr ? options.forcedFormat
                                : head.error == 0               ? RecognisedFormat(options.inputFormats, head.View())
                                                                : nullptr;
    if (format != nullptr) dump = format->Dump();
    if (format != nullptr && !dump) {
      OpenedInput opened = format->Open(inputFd, head.consumed ? head.View() : std::string_view());
      if (!opened.source) {
        report.inputFault = InputFault::Refused;
        report.inputFaultText = std::move(opened.refusal);
        closeInput();
        return TranslationOutcome::InputOpenFailed;
      }
      formatted = std::move(opened.source);
    }
  }
  const int outputFd = outputIsStandard
                           ? STDOUT_FILENO
                           : ::open(std::string(outputPath).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (outputFd < 0) {
    report.openError = errno;
    closeInput();
    return TranslationOutcome::OutputOpenFailed;
  }

  FdSink sink(outputFd);
  const std::optional<std::uint64_t> regularInputSize = RegularFileSize(inputInfo);
  const std::uint64_t inputSize = regularInputSize.value_or(0);
#if !defined(VELMORA_NO_THREADS)
  const unsigned jobs = std::min(options.jobs, UsableCores());
#else
  const unsigned jobs = 1;
#endif
  const bool parallel = head.error == 0 && !formatted && !dump && jobs > 1 && !options.makeConsumer &&
                        !inputIsStandard && inputSize >= kParallelMinimum;
  // One decoding thread leaves the writes to a thread of their own where a
  // write costs (a file, a pipe; not /dev/null or another device); a
  // parallel run's decoding threads have the cores already.
  const bool writesBehind = !parallel && WritesCost(outputFd);
  OutputWriter writer(sink, writesBehind ? OutputWriter::kBehindCapacity : OutputWriter::kDefaultCapacity,
                      writesBehind ? SinkWrites::Behind : SinkWrites::Inline);
  const std::function<void(std::uint64_t)> reportProgress = [&options, inputSize](std::uint64_t bytesRead) {
    if (options.progress) options.progress(bytesRead, inputSize);
  };
  bool frameFound = false;
  // A regular file's read does not wait for anyone; a pipe's may.
  const bool readMayWait = !regularInputSize;
  if (head.error != 0) {
    // The input could not be read from its first byte on.
    report.readError = head.error;
  } else if (formatted) {
    frameFound = TranslatePieces(*formatted, writer, link, options, readMayWait, inputSize, report);
#if !defined(VELMORA_NO_THREADS)
  } else if (parallel) {
    const ParallelRunResult result =
        TranslateInParallel(inputFd, inputSize, writer, link, jobs, options.stopOnWriteError, reportProgress,
                            kDefaultChunk, options.detail);
    frameFound = result.frameFound;
    report.scanNotes = result.scanNotes;
    report.readError = result.readError;
    report.bytesRead = result.bytesRead;
#endif
  } else {
    LineReader reader(inputFd, LineReader::kDefaultBlock, regularInputSize ? SourceReads::Ahead : SourceReads::Inline);
    if (head.consumed) reader.Preload(head.View());
    LineReaderSource source(reader);
    frameFound = TranslatePieces(source, writer, link, options, readMayWait, inputSize, report, dump.get());
  }
  writer.Flush();
  int closeError = 0;
  if (!outputIsStandard && ::close(outputFd) != 0) closeError = errno;
  closeInput();
  ReportWrites(writer, closeError, report);
  return frameFound ? TranslationOutcome::TranslationDone : TranslationOutcome::NoFrameFound;
}

}  // namespace velmora
