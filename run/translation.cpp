#include "translation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

bool IsDirectory(int fd) {
  struct stat info {};
  return ::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode);
}

// Opens the input as a readable file; a directory counts as a failure.
int OpenInput(std::string_view path) {
  const int fd = ::open(std::string(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return -1;
  if (IsDirectory(fd)) {
    ::close(fd);
    return -1;
  }
  return fd;
}

bool NamesSameFile(int inputFd, std::string_view outputPath) {
  struct stat input {};
  struct stat output {};
  if (::fstat(inputFd, &input) != 0 || ::stat(std::string(outputPath).c_str(), &output) != 0) return false;
  return input.st_dev == output.st_dev && input.st_ino == output.st_ino;
}

// A parallel run pays off from a few chunks on, and only for input that
// can be read ahead freely.
constexpr std::uint64_t kParallelMinimum = 4 * 1024 * 1024;

std::uint64_t RegularFileSize(int fd) {
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) return 0;
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

  const int inputFd = inputIsStandard ? STDIN_FILENO : OpenInput(inputPath);
  if (inputFd < 0 || (inputIsStandard && IsDirectory(inputFd))) return TranslationOutcome::InputOpenFailed;
  const auto closeInput = [&] {
    if (!inputIsStandard) ::close(inputFd);
  };
  if (options.refuseSameFile && !outputIsStandard && !inputIsStandard && NamesSameFile(inputFd, outputPath)) {
    closeInput();
    return TranslationOutcome::OutputSameAsInput;
  }
  const int outputFd = outputIsStandard
                           ? STDOUT_FILENO
                           : ::open(std::string(outputPath).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (outputFd < 0) {
    closeInput();
    return TranslationOutcome::OutputOpenFailed;
  }

  FdSink sink(outputFd);
  OutputWriter writer(sink);
  const std::uint64_t inputSize = RegularFileSize(inputFd);
  const auto reportProgress = [&options, inputSize](std::uint64_t bytesRead) {
    if (options.progress) options.progress(bytesRead, inputSize);
  };
  bool frameFound = false;
  int readError = 0;
  std::uint64_t bytesRead = 0;
  if (options.jobs > 1 && !inputIsStandard && inputSize >= kParallelMinimum) {
    const ParallelRunResult result =
        TranslateInParallel(inputFd, writer, link, options.jobs, options.stopOnWriteError, reportProgress);
    writer.Flush();
    frameFound = result.frameFound;
    readError = result.readError;
    bytesRead = result.bytesRead;
  } else {
    DecodeContext context{writer, link.setupPending ? LinkSetup::Pending : LinkSetup::NotPending};
    LineReader reader(inputFd);
    // Output produced so far reaches its reader before the run may wait
    // for more input: `velmora - -` works as a filter.
    reader.SetBeforeRead([&] {
      writer.Flush();
      reportProgress(reader.BytesRead());
    });
    while (const auto line = reader.Next()) {
      TranslateTraceLine(context, *line);
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
  if (options.report != nullptr) {
    options.report->readError = readError;
    options.report->bytesRead = bytesRead;
    options.report->writeError = writer.Failed() ? writer.Error() : closeError;
    options.report->bytesWritten = writer.BytesWritten();
  }
  return frameFound ? TranslationOutcome::TranslationDone : TranslationOutcome::NoFrameFound;
}

}  // namespace velmora
