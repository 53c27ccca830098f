#pragma once
// Translating one large regular file with several threads. The output is
// byte for byte that of the single-threaded run.
#include <cstddef>
#include <cstdint>
#include <functional>

#include "detail_level.h"
#include "output_writer.h"
#include "translation.h"

namespace velmora {

struct ParallelRunResult {
  bool frameFound = false;
  int readError = 0;
  std::uint64_t bytesRead = 0;
  ScanNotes scanNotes = {};
};

// The cores this process may run on: more decoding threads than these only
// take turns on them, and cost more than they give.
unsigned UsableCores();

// Reads `inputFd` (of `inputSize` bytes when it was opened) in chunks that begin at piece boundaries, decodes the
// chunks on `jobs` threads and hands their output to `writer` in input
// order. A chunk is decoded without knowing the link memory at its start;
// the UA lines before its own first SABME or DISC get their wording when
// the chunks before it are written, so no chunk is decoded twice. Leaves
// `link` as a single-threaded run would. With `stopOnWriteError`, no chunk
// is read after `writer` has failed. No more threads start than the input
// has chunks.
// Small chunks keep the memory flat: a chunk's output is several times its
// input, and jobs + 2 chunks are in flight at most. Tests and fuzzing take
// smaller ones, down to kSmallestChunk, to cut an input into many.
inline constexpr std::size_t kDefaultChunk = 256 * 1024;
inline constexpr std::size_t kSmallestChunk = 4096;
// More jobs take smaller chunks, so that the jobs + 2 chunks in flight
// stay within the same memory: at most this much input between them. With
// their output (about three times the input, in blocks of the chunk's
// size) and the blocks kept for the next chunk, that came to about 7 MB
// resident at 16 and at 32 jobs.
inline constexpr std::size_t kChunkInputInFlight = 680 * 1024;
constexpr std::size_t ChunkSizeForJobs(unsigned jobs) {
  const std::size_t size = kChunkInputInFlight / (static_cast<std::size_t>(jobs) + 2);
  return size < kSmallestChunk ? kSmallestChunk : size > kDefaultChunk ? kDefaultChunk : size & ~std::size_t{4095};
}
ParallelRunResult TranslateInParallel(int inputFd, std::uint64_t inputSize, OutputWriter& writer, LinkMemory& link,
                                      unsigned jobs, bool stopOnWriteError,
                                      const std::function<void(std::uint64_t)>& onRead,
                                      std::size_t chunkSize = kDefaultChunk,
                                      DetailLevel detail = DetailLevel::Description);

}  // namespace velmora
