#include "parallel_run.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#if defined(__linux__)
#include <sched.h>
#endif
#include <vector>

#include "decode_context.h"
#include "lapd.h"
#include "line_reader.h"
#include "line_scanner.h"
#include "pieces.h"

namespace velmora {

namespace {

// A chunk's output as the worker's writer filled it: its full buffers, kept
// as they are rather than copied, and written on in order.
class ChunkOutput final : public ByteSink {
 public:
  // Blocks of the run's chunk size: full ones are kept for the next chunk.
  void SetBlockSize(std::size_t size) { blockSize_ = size; }
  std::size_t BlockSize() const { return blockSize_; }

  // The writer's last, partial buffer: copied into a block of the full
  // size, so that every block can serve again (no allocation of odd sizes
  // from chunk to chunk, which would spread over each thread's heap).
  bool Write(const char* data, std::size_t size, int& /*error*/) override {
    std::unique_ptr<char[]> copy;
    if (size <= blockSize_ && !spare_.empty()) {
      copy = std::move(spare_.back());
      spare_.pop_back();
    } else {
      copy.reset(new char[std::max(size, blockSize_)]);
    }
    std::memcpy(copy.get(), data, size);
    blocks_.push_back({std::move(copy), size, std::max(size, blockSize_)});
    return true;
  }
  bool Keep(std::unique_ptr<char[]>& buffer, std::size_t size) override {
    blocks_.push_back({std::move(buffer), size, blockSize_});
    if (!spare_.empty()) {
      buffer = std::move(spare_.back());
      spare_.pop_back();
    }
    return true;
  }

  // Empties the output; its buffers are filled again by the next decoding.
  void Clear() {
    for (Block& block : blocks_)
      if (block.capacity == blockSize_) spare_.push_back(std::move(block.text));
    blocks_.clear();
  }
  // Puts `text` at an offset of the output, across a block's end if need be.
  void Replace(std::uint64_t at, std::string_view text) {
    for (Block& block : blocks_) {
      if (at < block.size) {
        const std::size_t here = std::min<std::size_t>(text.size(), block.size - at);
        std::memcpy(block.text.get() + at, text.data(), here);
        text.remove_prefix(here);
        if (text.empty()) return;
        at = 0;
      } else {
        at -= block.size;
      }
    }
  }
  void WriteTo(OutputWriter& writer) const {
    for (const Block& block : blocks_) writer.PutBlock({block.text.get(), block.size});
  }

 private:
  struct Block {
    std::unique_ptr<char[]> text;
    std::size_t size;
    std::size_t capacity;
  };
  std::vector<Block> blocks_;
  std::vector<std::unique_ptr<char[]>> spare_;
  std::size_t blockSize_ = OutputWriter::kDefaultCapacity;
};

struct Chunk {
  // The carried tail of the chunk before (less than a chunk) and a chunk's read.
  std::unique_ptr<char[]> input;
  std::size_t size = 0;
  std::uint64_t endOffset = 0;  // where the chunk ends in the input
  ChunkOutput output;
  // Where the chunk's UA lines wrote their wording before a SABME or DISC of
  // the chunk itself decided the link memory.
  std::vector<std::uint64_t> pendingUaWordings;
  LinkSetup linkSetupAtEnd = LinkSetup::Unknown;  // unknown: no SABME or DISC in the chunk
  bool frameFound = false;
  bool decoded = false;
  // Whole lines in the chunk, and the notes numbered from its first line.
  std::uint64_t lines = 0;
  ScanNotes scanNotes = {};
};

// The calling thread reads chunks and writes their outputs in input order;
// the workers decode them. A chunk is decoded before the link memory at its
// start is known: the UA lines it decides are put right when it is written.
class ParallelRun {
 public:
  ParallelRun(int inputFd, OutputWriter& writer, unsigned jobs, bool stopOnWriteError,
              const std::function<void(std::uint64_t)>& onRead, std::size_t chunkSize, DetailLevel detail)
      : inputFd_(inputFd),
        writer_(writer),
        stopOnWriteError_(stopOnWriteError),
        onRead_(onRead),
        chunkSize_(chunkSize),
        detail_(detail),
        chunks_(jobs + 2) {
    // Room for the carried tail of the chunk before (less than a piece) and a chunk.
    for (Chunk& chunk : chunks_) {
      chunk.input.reset(new char[chunkSize_ + kMaxPiece]);
      chunk.output.SetBlockSize(chunkSize_);
    }
    for (unsigned i = 0; i < jobs; ++i) workers_.emplace_back([this] { Work(); });
  }

  ParallelRunResult Run(LinkMemory& link) {
    bool setupPending = link.setupPending;
    std::uint64_t filled = 0;
    std::uint64_t written = 0;
    std::uint64_t linesWritten = 0;
    bool atEnd = false;
    while (!atEnd || written < filled) {
      if (stopOnWriteError_ && writer_.Failed()) atEnd = true;
      if (!atEnd && filled - written < chunks_.size()) {
        Chunk& chunk = chunks_[filled % chunks_.size()];
        atEnd = !Fill(chunk);
        if (chunk.size == 0) continue;
        ++filled;
        std::lock_guard lock(mutex_);
        chunk.decoded = false;
        queue_.push_back(&chunk);
        changed_.notify_all();
        continue;
      }
      Chunk& chunk = chunks_[written % chunks_.size()];
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return chunk.decoded; });
      }
      if (setupPending)
        for (const std::uint64_t at : chunk.pendingUaWordings) chunk.output.Replace(at, kUaAfterSabme);
      if (chunk.linkSetupAtEnd != LinkSetup::Unknown) setupPending = chunk.linkSetupAtEnd == LinkSetup::Pending;
      chunk.output.WriteTo(writer_);
      result_.frameFound = result_.frameFound || chunk.frameFound;
      result_.scanNotes.Append(chunk.scanNotes, linesWritten);
      linesWritten += chunk.lines;
      if (onRead_) onRead_(chunk.endOffset);
      ++written;
    }
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
      changed_.notify_all();
    }
    for (std::thread& worker : workers_) worker.join();
    link.setupPending = setupPending;
    return result_;
  }

 private:
  // Reads the next chunk behind the carried tail of the last one, and cuts it
  // behind its whole pieces, so the next chunk also starts at a piece
  // boundary. False at the end of the input.
  bool Fill(Chunk& chunk) {
    std::memcpy(chunk.input.get(), carry_.data(), carry_.size());
    chunk.size = carry_.size();
    carry_.clear();
    const std::size_t limit = chunk.size + chunkSize_;
    while (!inputEnded_ && chunk.size < limit) {
      const ReadResult got = ReadRetrying(inputFd_, chunk.input.get() + chunk.size, limit - chunk.size);
      if (got.size == 0) {
        if (got.error != 0) result_.readError = got.error;
        inputEnded_ = true;
        break;
      }
      chunk.size += got.size;
      result_.bytesRead += got.size;
    }
    if (!inputEnded_) {
      const std::size_t cut = WholePiecesLength({chunk.input.get(), chunk.size}, true);
      carry_.assign(chunk.input.get() + cut, chunk.size - cut);
      chunk.size = cut;
    }
    chunk.endOffset = result_.bytesRead - carry_.size();
    return !inputEnded_;
  }

  void Work() {
    for (;;) {
      Chunk* chunk = nullptr;
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return stopping_ || !queue_.empty(); });
        if (queue_.empty()) return;
        chunk = queue_.front();
        queue_.pop_front();
      }
      Decode(*chunk, detail_);
      std::lock_guard lock(mutex_);
      chunk->decoded = true;
      changed_.notify_all();
    }
  }

  static void Decode(Chunk& chunk, DetailLevel detail) {
    chunk.output.Clear();
    chunk.pendingUaWordings.clear();
    // Full blocks go on to the run's sink uncopied (OutputWriter::PutBlock).
    OutputWriter writer(chunk.output, chunk.output.BlockSize());
    DecodeContext context{writer, LinkSetup::Unknown, false, &chunk.pendingUaWordings};
    context.detail = detail;
    TranslateTracePieces(context, {chunk.input.get(), chunk.size});
    writer.Flush();
    chunk.frameFound = context.frameFound;
    chunk.linkSetupAtEnd = context.linkSetup;
    chunk.lines = context.linesDone;
    chunk.scanNotes = context.notes;
  }

  int inputFd_;
  OutputWriter& writer_;
  bool stopOnWriteError_;
  const std::function<void(std::uint64_t)>& onRead_;
  std::size_t chunkSize_;
  DetailLevel detail_;
  std::vector<Chunk> chunks_;
  std::string carry_;
  bool inputEnded_ = false;
  ParallelRunResult result_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Chunk*> queue_;
  bool stopping_ = false;
  std::vector<std::thread> workers_;
};

}  // namespace

unsigned UsableCores() {
#if defined(__linux__)
  // The cores this process may run on (taskset, a container's cpuset), not
  // all that the machine has.
  cpu_set_t cores;
  if (sched_getaffinity(0, sizeof cores, &cores) == 0) return std::max(1, CPU_COUNT(&cores));
#endif
  return std::max(1U, std::thread::hardware_concurrency());
}

ParallelRunResult TranslateInParallel(int inputFd, std::uint64_t inputSize, OutputWriter& writer, LinkMemory& link,
                                      unsigned jobs, bool stopOnWriteError,
                                      const std::function<void(std::uint64_t)>& onRead, std::size_t chunkSize,
                                      DetailLevel detail) {
  chunkSize = std::max(std::min(chunkSize, ChunkSizeForJobs(jobs)), kSmallestChunk);
  // A thread without a chunk of its own would only wait.
  const std::uint64_t chunks = inputSize / chunkSize + 1;
  if (jobs > chunks) jobs = static_cast<unsigned>(chunks);
  ParallelRun run(inputFd, writer, jobs == 0 ? 1 : jobs, stopOnWriteError, onRead, chunkSize, detail);
  return run.Run(link);
}

}  // namespace velmora
