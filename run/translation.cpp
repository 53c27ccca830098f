#include "translation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>

#include "decode_context.h"
#include "line_reader.h"
#include "line_scanner.h"
#include "parallel_run.h"

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

// Opens the input as a readable file; a directory counts as a failure.
// Returns the descriptor, or -1 with the reason in `error`.
int OpenInput(std::string_view path, int& error) {
  const int fd = ::open(std::string(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = errno;
    return -1;
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
    error = S_ISDIR(info.st_mode) ? EISDIR : errno;
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
std::optional<std::uint64_t> RegularFileSize(int fd) {
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(info.st_size);
}

}  // namespace

const OutcomeMessage& DescribeOutcome(TranslationOutcome outcome) {
  return kOutcomeMessages[static_cast<int>(outcome)];
}

TranslationOutcome TranslateTraceFile(std::string_view inputPath, std::string_view outputPath, LinkMemory& link,
                                      const TranslationOptions& options) {
  if (inputPath.empty()) return TranslationOutcome::InputNotSelected;
  if (outputPath.empty()) return TranslationOutcome::OutputNotSelected;
  const bool inputIsStandard = IsStandardStream(inputPath, options);
  const bool outputIsStandard = IsStandardStream(outputPath, options);
  if (inputPath == outputPath && !inputIsStandard) return TranslationOutcome::OutputSameAsInput;

  TranslationReport unusedReport;
  TranslationReport& report = options.report != nullptr ? *options.report : unusedReport;
  report = TranslationReport{};

  int inputFd = STDIN_FILENO;
  if (inputIsStandard) {
    struct stat info {};
    if (::fstat(STDIN_FILENO, &info) != 0 || S_ISDIR(info.st_mode)) {
      report.openError = S_ISDIR(info.st_mode) ? EISDIR : errno;
      return TranslationOutcome::InputOpenFailed;
    }
  } else {
    inputFd = OpenInput(inputPath, report.openError);
    if (inputFd < 0) return TranslationOutcome::InputOpenFailed;
  }
  const auto closeInput = [&] {
    if (!inputIsStandard) ::close(inputFd);
  };
  // Before the output is opened, and so emptied: the input must survive.
  if (options.refuseSameFile &&
      SameFile(IdentityOfDescriptor(inputFd),
               outputIsStandard ? IdentityOfDescriptor(STDOUT_FILENO) : IdentityOfPath(outputPath))) {
    closeInput();
    return TranslationOutcome::OutputSameAsInput;
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
  const std::optional<std::uint64_t> regularInputSize = RegularFileSize(inputFd);
  const std::uint64_t inputSize = regularInputSize.value_or(0);
  const bool parallel = options.jobs > 1 && !inputIsStandard && inputSize >= kParallelMinimum;
  // One decoding thread leaves the writes to a thread of their own where a
  // write costs (a file, a pipe; not /dev/null or another device); a
  // parallel run's decoding threads have the cores already.
  const bool writesBehind = !parallel && WritesCost(outputFd);
  OutputWriter writer(sink, writesBehind ? OutputWriter::kBehindCapacity : OutputWriter::kDefaultCapacity,
                      writesBehind ? SinkWrites::Behind : SinkWrites::Inline);
  const auto reportProgress = [&options, inputSize](std::uint64_t bytesRead) {
    if (options.progress) options.progress(bytesRead, inputSize);
  };
  bool frameFound = false;
  int readError = 0;
  std::uint64_t bytesRead = 0;
  if (parallel) {
    const ParallelRunResult result =
        TranslateInParallel(inputFd, inputSize, writer, link, options.jobs, options.stopOnWriteError, reportProgress);
    writer.Flush();
    frameFound = result.frameFound;
    readError = result.readError;
    bytesRead = result.bytesRead;
  } else {
    DecodeContext context{writer, link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending};
    LineReader reader(inputFd, LineReader::kDefaultBlock, regularInputSize ? SourceReads::Ahead : SourceReads::Inline);
    // Output produced so far reaches its reader before the run may wait
    // for more input: `velmora - -` works as a filter. A regular file's
    // read does not wait for anyone.
    const bool readMayWait = !regularInputSize;
    reader.SetBeforeRead([&] {
      if (readMayWait) writer.Flush();
      reportProgress(reader.BytesRead());
    });
    while (const auto pieces = reader.NextPieces()) {
      TranslateTracePieces(context, *pieces);
      if (options.stopOnWriteError && writer.Failed()) break;
    }
    writer.Flush();
    link.setupPending = context.linkSetup == LinkSetup::Pending;
    frameFound = context.frameFound;
    readError = reader.Error();
    bytesRead = reader.BytesRead();
  }
  int closeError = 0;
  if (!outputIsStandard && ::close(outputFd) != 0) closeError = errno;
  closeInput();
  report.readError = readError;
  report.bytesRead = bytesRead;
  report.writeError = writer.Failed() ? writer.Error() : closeError;
  report.bytesWritten = writer.BytesWritten();
  return frameFound ? TranslationOutcome::TranslationDone : TranslationOutcome::NoFrameFound;
}

}  // namespace velmora
