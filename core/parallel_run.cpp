#include "core/parallel_run.h"

#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/globals.h"
#include "core/line_scanner.h"
#include "core/link_prescan.h"
#include "core/pieces.h"

namespace velmora {

namespace {

// Small chunks keep the memory flat: a chunk's output is several times its
// input, and jobs + 2 chunks are in flight at most.
constexpr std::size_t kChunkSize = 256 * 1024;

struct Chunk {
  std::string input;
  std::string output;
  std::uint64_t index = 0;
  LinkEffect effect = LinkEffect::None;
  bool prescanned = false;
  bool startKnown = false;
  int startState = 0;
  bool decoded = false;
  bool frameFound = false;
};

class ParallelRun {
 public:
  ParallelRun(int inputFd, OutputWriter& writer, unsigned jobs, const std::function<void(std::uint64_t)>& onRead)
      : inputFd_(inputFd), writer_(writer), onRead_(onRead), chunks_(jobs + 2), nextState_(g_linkSetupPending) {
    for (unsigned i = 0; i < jobs; ++i) workers_.emplace_back([this] { Work(); });
  }

  ParallelRunResult Run() {
    std::uint64_t filled = 0;
    std::uint64_t written = 0;
    bool atEnd = false;
    while (!atEnd || written < filled) {
      if (!atEnd && filled - written < chunks_.size()) {
        Chunk& chunk = chunks_[filled % chunks_.size()];
        atEnd = !Fill(chunk);
        if (chunk.input.empty()) continue;
        std::lock_guard lock(mutex_);
        chunk.index = filled++;
        chunk.prescanned = chunk.startKnown = chunk.decoded = chunk.frameFound = false;
        queue_.push_back(&chunk);
        changed_.notify_all();
        continue;
      }
      Chunk& chunk = chunks_[written % chunks_.size()];
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return chunk.decoded; });
      }
      writer_.Put(chunk.output);
      result_.frameFound = result_.frameFound || chunk.frameFound;
      ++written;
    }
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
      changed_.notify_all();
    }
    for (std::thread& worker : workers_) worker.join();
    g_linkSetupPending = nextState_;
    return result_;
  }

 private:
  // Reads the next chunk: the carried tail of the last read, then input up
  // to the chunk size, cut after the last line end (or, inside a line longer
  // than a chunk, at a multiple of the piece size) so the next chunk also
  // starts at a piece boundary. False at the end of the input.
  bool Fill(Chunk& chunk) {
    chunk.input.swap(carry_);
    carry_.clear();
    bool more = !inputEnded_;
    while (more) {
      const std::size_t had = chunk.input.size();
      chunk.input.resize(had + kChunkSize);
      const ssize_t got = ::read(inputFd_, chunk.input.data() + had, kChunkSize);
      if (got < 0 && errno == EINTR) {
        chunk.input.resize(had);
        continue;
      }
      chunk.input.resize(had + static_cast<std::size_t>(got > 0 ? got : 0));
      if (got <= 0) {
        if (got < 0) result_.readError = errno;
        inputEnded_ = true;
        more = false;
        break;
      }
      result_.bytesRead += static_cast<std::uint64_t>(got);
      if (onRead_) onRead_(result_.bytesRead);
      if (chunk.input.size() >= kChunkSize) break;
    }
    if (!inputEnded_) {
      std::size_t cut = 0;
      const char* data = chunk.input.data();
      for (std::size_t i = chunk.input.size(); i > 0; --i)
        if (data[i - 1] == '\n') {
          cut = i;
          break;
        }
      if (cut == 0) cut = chunk.input.size() / kMaxPiece * kMaxPiece;
      carry_.assign(chunk.input, cut, std::string::npos);
      chunk.input.resize(cut);
    }
    return !inputEnded_ || !carry_.empty();
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
      const LinkEffect effect = LinkEffectOfText(chunk->input);
      int startState = 0;
      {
        std::unique_lock lock(mutex_);
        chunk->effect = effect;
        chunk->prescanned = true;
        PropagateLinkStates();
        changed_.wait(lock, [&] { return chunk->startKnown; });
        startState = chunk->startState;
      }
      Decode(*chunk, startState);
      std::lock_guard lock(mutex_);
      chunk->decoded = true;
      changed_.notify_all();
    }
  }

  // Hands each chunk, in input order, the link memory left by the chunks
  // before it, as far as their prescans are done. Called with the lock held.
  void PropagateLinkStates() {
    for (;;) {
      Chunk& chunk = chunks_[nextIndex_ % chunks_.size()];
      if (chunk.index != nextIndex_ || !chunk.prescanned || chunk.startKnown) break;
      chunk.startState = nextState_;
      chunk.startKnown = true;
      if (chunk.effect == LinkEffect::Set) nextState_ = 1;
      if (chunk.effect == LinkEffect::Clear) nextState_ = 0;
      ++nextIndex_;
    }
    changed_.notify_all();
  }

  static void Decode(Chunk& chunk, int startState) {
    chunk.output.clear();
    StringSink sink(chunk.output);
    OutputWriter writer(sink, 64 * 1024);
    g_outputFile = &writer;
    g_frameFound = false;
    g_linkSetupPending = startState;
    ForEachPiece(chunk.input, [](std::string_view piece) { TranslateTraceLine(piece); });
    writer.Flush();
    chunk.frameFound = g_frameFound;
    g_outputFile = nullptr;
  }

  int inputFd_;
  OutputWriter& writer_;
  const std::function<void(std::uint64_t)>& onRead_;
  std::vector<Chunk> chunks_;
  std::string carry_;
  bool inputEnded_ = false;
  ParallelRunResult result_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Chunk*> queue_;
  bool stopping_ = false;
  std::uint64_t nextIndex_ = 0;
  int nextState_;
  std::vector<std::thread> workers_;
};

}  // namespace

ParallelRunResult TranslateInParallel(int inputFd, OutputWriter& writer, unsigned jobs,
                                      const std::function<void(std::uint64_t)>& onRead) {
  ParallelRun run(inputFd, writer, jobs == 0 ? 1 : jobs, onRead);
  return run.Run();
}

}  // namespace velmora
