#include "core/translation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "core/globals.h"
#include "core/line_reader.h"
#include "core/line_scanner.h"

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

// Opens the input as a regular readable file; a directory counts as a failure.
int OpenInput(std::string_view path, const TranslationOptions& options) {
  if (IsStandardStream(path, options)) return STDIN_FILENO;
  const int fd = ::open(std::string(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return -1;
  struct stat info {};
  if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
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

void CloseUnlessStandard(int fd) {
  if (fd > STDERR_FILENO) ::close(fd);
}

}  // namespace

const OutcomeMessage& DescribeOutcome(TranslationOutcome outcome) {
  return kOutcomeMessages[static_cast<int>(outcome)];
}

TranslationOutcome TranslateTraceFile(std::string_view inputPath, std::string_view outputPath,
                                      const TranslationOptions& options) {
  if (inputPath.empty()) return TranslationOutcome::InputNotSelected;
  if (outputPath.empty()) return TranslationOutcome::OutputNotSelected;
  if (inputPath == outputPath && !(IsStandardStream(inputPath, options))) return TranslationOutcome::OutputSameAsInput;

  const int inputFd = OpenInput(inputPath, options);
  if (inputFd < 0) return TranslationOutcome::InputOpenFailed;
  const bool outputIsStandard = IsStandardStream(outputPath, options);
  if (options.refuseSameFile && !outputIsStandard && !IsStandardStream(inputPath, options) &&
      NamesSameFile(inputFd, outputPath)) {
    CloseUnlessStandard(inputFd);
    return TranslationOutcome::OutputSameAsInput;
  }
  const int outputFd = outputIsStandard
                           ? STDOUT_FILENO
                           : ::open(std::string(outputPath).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (outputFd < 0) {
    CloseUnlessStandard(inputFd);
    return TranslationOutcome::OutputOpenFailed;
  }

  FdSink sink(outputFd);
  OutputWriter writer(sink);
  g_outputFile = &writer;
  g_frameFound = false;
  {
    LineReader reader(inputFd);
    reader.SetBeforeRead([&writer] { writer.Flush(); });
    while (const auto line = reader.Next()) TranslateTraceLine(*line);
    writer.Flush();
    if (options.report != nullptr) {
      options.report->readError = reader.Error();
      options.report->bytesRead = reader.BytesRead();
    }
  }
  g_outputFile = nullptr;
  int closeError = 0;
  if (!outputIsStandard && ::close(outputFd) != 0) closeError = errno;
  CloseUnlessStandard(inputFd);
  if (options.report != nullptr) {
    options.report->writeError = writer.Failed() ? writer.Error() : closeError;
    options.report->bytesWritten = writer.BytesWritten();
  }
  return g_frameFound ? TranslationOutcome::TranslationDone : TranslationOutcome::NoFrameFound;
}

}  // namespace velmora
